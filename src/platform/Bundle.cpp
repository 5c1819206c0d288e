#include <algorithm>
#include <array>
#include <cmath>
#include <string>
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

std::optional<fs::path> Bundle::imagePath(std::string_view name, double scale) const {
    if (name.empty()) {
        return std::nullopt;
    }
    struct Variant {
        const char* suffix;
        double scale;
    };
    std::array<Variant, 3> variants{{{".png", 1}, {"@2x.png", 2}, {"@3x.png", 3}}};
    // Nearest scale first; on a tie the larger one.
    std::stable_sort(variants.begin(), variants.end(), [scale](const Variant& a, const Variant& b) {
        const double da = std::abs(a.scale - scale), db = std::abs(b.scale - scale);
        return da != db ? da < db : a.scale > b.scale;
    });
    const std::string base(name);
    std::error_code ec;
    for (const auto& variant : variants) {
        fs::path candidate = directory_ / (base + variant.suffix);
        if (fs::is_regular_file(candidate, ec)) {
            return candidate;
        }
    }
    fs::path jpeg = directory_ / (base + ".jpg");
    if (fs::is_regular_file(jpeg, ec)) {
        return jpeg;
    }
    return std::nullopt;
}

}  // namespace ovix::platform
