#include <system_error>

#include "ovix/platform/ResourceBundle.h"

namespace ovix::platform {

namespace fs = std::filesystem;

std::optional<Bundle> Bundle::open(const fs::path& directory) {
    std::error_code ec;
    if (!fs::is_directory(directory, ec)) {
        return std::nullopt;
    }
    // A directory we cannot list is as good as missing.
    fs::directory_iterator probe(directory, ec);
    if (ec) {
        return std::nullopt;
    }
    return Bundle(directory);
}

std::optional<fs::path> Bundle::pathForResource(std::string_view name, std::string_view type) const {
    if (name.empty()) {
        return std::nullopt;
    }
    std::string file(name);
    if (!type.empty()) {
        file += ".";
        file += type;
    }
    fs::path candidate = directory_ / file;
    std::error_code ec;
    // A nested bundle is a directory; everything else must be a regular file.
    if (type == "bundle" ? fs::is_directory(candidate, ec) : fs::is_regular_file(candidate, ec)) {
        return candidate;
    }
    return std::nullopt;
}

std::optional<fs::path> Bundle::imagePath(std::string_view name) const {
    std::string base(name);
    for (const char* suffix : {".png", "@2x.png", "@3x.png", ".jpg"}) {
        fs::path candidate = directory_ / (base + suffix);
        std::error_code ec;
        if (!base.empty() && fs::is_regular_file(candidate, ec)) {
            return candidate;
        }
    }
    return std::nullopt;
}

}  // namespace ovix::platform
