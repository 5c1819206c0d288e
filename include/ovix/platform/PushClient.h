#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace ovix::platform {

/// Client options of the push service, as its options file ("GoogleService-Info.plist", a property
/// list whose root is a dictionary) holds them. A file counts as options when "GOOGLE_APP_ID" is a
/// non-empty string; every other entry is optional and read as "" when absent or not a string.
struct PushOptions {
    std::string googleAppId;    ///< "GOOGLE_APP_ID"
    std::string gcmSenderId;    ///< "GCM_SENDER_ID"
    std::string apiKey;         ///< "API_KEY"
    std::string projectId;      ///< "PROJECT_ID"
    std::string bundleId;       ///< "BUNDLE_ID"
    std::string clientId;       ///< "CLIENT_ID"
    std::string storageBucket;  ///< "STORAGE_BUCKET"
    std::string databaseUrl;    ///< "DATABASE_URL"

    friend bool operator==(const PushOptions&, const PushOptions&) = default;
};

/// Receives registration tokens from the push service.
/// Threading: called on any thread.
class PushClientDelegate {
  public:
    virtual ~PushClientDelegate() = default;
    /// A new registration token, the first one and every refresh; nullopt when the service has none.
    virtual void didReceiveRegistrationToken(const std::optional<std::string>& token) = 0;
};

/// The push-messaging service's client.
///
/// Threading: any thread; completions and delegate calls arrive on any thread, possibly inline. The
/// delegate is held weakly. A platform without a push service never delivers a token and answers
/// every subscription with an "unsupported" error.
class PushClient {
  public:
    virtual ~PushClient() = default;
    /// Whether a default app is already configured.
    virtual bool hasDefaultApp() const = 0;
    /// Reads client options from a property-list file (XML or binary) and configures the default app
    /// with them. Returns false, configuring nothing, when the file is missing, unreadable, not a
    /// property list or not options (see `PushOptions`).
    virtual bool configure(const std::filesystem::path& optionsFile) = 0;
    virtual void setDelegate(std::weak_ptr<PushClientDelegate> delegate) = 0;
    /// Subscribes this installation to `topic`. `completion` runs once: `error` is the localised
    /// description of a failure, nullopt on success.
    virtual void subscribe(const std::string& topic,
                           std::function<void(std::optional<std::string> error)> completion) = 0;
};

}  // namespace ovix::platform
