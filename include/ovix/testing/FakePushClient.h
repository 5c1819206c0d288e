#pragma once

#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "ovix/platform/PushClient.h"

namespace ovix::testing {

/// A push client whose service the test plays.
///
/// Starts with no default app. `configure` reads the options file for real (XML or binary property
/// list) unless the test makes it refuse every file; a successful configure creates the default app.
/// Tokens reach the delegate only when the test delivers them, on the test's thread. Subscriptions
/// are recorded and answered inline, with the error the test chose (none by default). Safe from any
/// thread; never calls out while holding its lock.
class FakePushClient : public platform::PushClient {
  public:
    bool hasDefaultApp() const override;
    bool configure(const std::filesystem::path& optionsFile) override;
    void setDelegate(std::weak_ptr<platform::PushClientDelegate> delegate) override;
    void subscribe(const std::string& topic,
                   std::function<void(std::optional<std::string>)> completion) override;

    /// As if the host application had configured the service itself (or not).
    void setHasDefaultApp(bool present);
    /// With false, every options file is refused as unreadable.
    void setAcceptsOptions(bool accepts);
    /// The error the next subscriptions answer with; nullopt for success.
    void setSubscriptionError(std::optional<std::string> error);

    /// Hands `token` to the delegate on the calling thread; false when there is no delegate.
    bool deliverToken(const std::optional<std::string>& token);

    /// Every file `configure` was given, in order.
    std::vector<std::filesystem::path> configureAttempts() const;
    /// The options the default app was configured with by `configure`.
    std::optional<platform::PushOptions> configuredOptions() const;
    std::shared_ptr<platform::PushClientDelegate> delegate() const;
    /// Every topic subscribed, in order.
    std::vector<std::string> subscriptions() const;

  private:
    mutable std::mutex mutex_;
    bool hasDefaultApp_ = false;
    bool acceptsOptions_ = true;
    std::optional<std::string> subscriptionError_;
    std::vector<std::filesystem::path> attempts_;
    std::optional<platform::PushOptions> options_;
    std::weak_ptr<platform::PushClientDelegate> delegate_;
    std::vector<std::string> subscriptions_;
};

}  // namespace ovix::testing
