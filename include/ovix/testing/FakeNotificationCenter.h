#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "ovix/platform/NotificationCenter.h"

namespace ovix::testing {

/// A notification centre whose authorisation status and answer the test sets.
///
/// Completions run inline in the call by default (the harshest case for callers that must not
/// assume asynchrony), or on a fresh background thread with `setDeliverOnBackgroundThread(true)`.
/// A granted request moves the status to authorised, a refused one to denied.
class FakeNotificationCenter : public platform::NotificationCenter {
  public:
    void getAuthorizationStatus(std::function<void(platform::AuthorizationStatus)> completion) override;
    void requestAuthorization(unsigned options,
                              std::function<void(bool, std::optional<std::string>)> completion) override;
    void setDelegate(std::weak_ptr<platform::NotificationCenterDelegate> delegate) override;

    void setStatus(platform::AuthorizationStatus status);
    /// What the next authorisation requests answer.
    void setAnswer(bool granted, std::optional<std::string> error = std::nullopt);
    void setDeliverOnBackgroundThread(bool on);

    int requestCount() const;
    unsigned lastRequestOptions() const;
    std::shared_ptr<platform::NotificationCenterDelegate> delegate() const;

    /// Simulates a notification arriving in the foreground; returns the options the delegate
    /// answered with, or nullopt when there is no delegate or it never answered.
    std::optional<unsigned> presentInForeground(const Dictionary& userInfo);
    /// Simulates a tap; returns whether the delegate completed.
    bool tap(const Dictionary& userInfo);

  private:
    void deliver(std::function<void()> work);

    mutable std::mutex mutex_;
    platform::AuthorizationStatus status_ = platform::AuthorizationStatus::NotDetermined;
    bool granted_ = true;
    std::optional<std::string> error_;
    bool background_ = false;
    int requests_ = 0;
    unsigned lastOptions_ = 0;
    std::weak_ptr<platform::NotificationCenterDelegate> delegate_;
};

}  // namespace ovix::testing
