#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace ovix::platform {

/// Receives registration tokens from the push service.
/// Threading: called on any thread.
class PushClientDelegate {
public:
    virtual ~PushClientDelegate() = default;
    virtual void didReceiveRegistrationToken(const std::optional<std::string>& token) = 0;
};

/// The push-messaging service's client.
///
/// Threading: any thread; completions and delegate calls arrive on any thread. The delegate is held
/// weakly. A platform without a push service answers `false` from `configure` and reports
/// "unsupported" as the error of every subscription.
class PushClient {
public:
    virtual ~PushClient() = default;
    /// Whether a default app is already configured.
    virtual bool hasDefaultApp() const = 0;
    /// Reads client options from a property-list file and configures the default app with them.
    /// Returns false (and configures nothing) when the file is unreadable as options.
    virtual bool configure(const std::filesystem::path& optionsFile) = 0;
    virtual void setDelegate(std::weak_ptr<PushClientDelegate> delegate) = 0;
    /// `error` is the localised description of a failure, nullopt on success.
    virtual void subscribe(const std::string& topic, std::function<void(std::optional<std::string> error)> completion) = 0;
};

}  // namespace ovix::platform
