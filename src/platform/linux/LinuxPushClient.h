#pragma once

#include <atomic>
#include <mutex>
#include <optional>

#include "ovix/platform/PushClient.h"

namespace ovix::platform {

/// The desktop's push client. Linux has no push service for the SDK to register with, so no
/// registration token is ever delivered and every subscription answers "unsupported" (later, on
/// another thread). The options file is still read for real: a broken or misplaced file shows up
/// exactly as it would on a phone, and a good one configures the default app, so that a second
/// `initSdk` finds it configured.
class LinuxPushClient : public PushClient {
  public:
    bool hasDefaultApp() const override;
    bool configure(const std::filesystem::path& optionsFile) override;
    /// Accepted, and reported once as unsupported: no token will reach it.
    void setDelegate(std::weak_ptr<PushClientDelegate> delegate) override;
    void subscribe(const std::string& topic,
                   std::function<void(std::optional<std::string>)> completion) override;

    /// The options the default app was configured with.
    std::optional<PushOptions> options() const;

  private:
    mutable std::mutex mutex_;
    std::optional<PushOptions> options_;
    std::atomic<bool> reported_{false};
};

}  // namespace ovix::platform
