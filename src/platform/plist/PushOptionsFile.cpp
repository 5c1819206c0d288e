#include "platform/plist/PushOptionsFile.h"

#include "platform/plist/PropertyListReader.h"

namespace ovix::platform {

std::optional<PushOptions> PushOptionsFile::read(const std::filesystem::path& path) {
    auto root = PropertyListReader::readFile(path);
    if (!root || !root->asObject()) {
        return std::nullopt;
    }
    auto text = [&](std::string_view key) { return root->stringAt(key).value_or(""); };
    PushOptions options{
        .googleAppId = text("GOOGLE_APP_ID"),
        .gcmSenderId = text("GCM_SENDER_ID"),
        .apiKey = text("API_KEY"),
        .projectId = text("PROJECT_ID"),
        .bundleId = text("BUNDLE_ID"),
        .clientId = text("CLIENT_ID"),
        .storageBucket = text("STORAGE_BUCKET"),
        .databaseUrl = text("DATABASE_URL"),
    };
    // Without the app's id the service cannot be configured: the file is not usable options.
    if (options.googleAppId.empty()) {
        return std::nullopt;
    }
    return options;
}

}  // namespace ovix::platform
