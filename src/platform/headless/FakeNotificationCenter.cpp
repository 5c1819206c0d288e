#include "ovix/testing/FakeNotificationCenter.h"

#include <thread>

namespace ovix::testing {

using platform::AuthorizationStatus;

void FakeNotificationCenter::deliver(std::function<void()> work) {
    bool background;
    {
        std::lock_guard lock(mutex_);
        background = background_;
    }
    if (background) {
        std::thread(std::move(work)).detach();
    } else {
        work();
    }
}

void FakeNotificationCenter::getAuthorizationStatus(std::function<void(AuthorizationStatus)> completion) {
    AuthorizationStatus status;
    {
        std::lock_guard lock(mutex_);
        status = status_;
    }
    deliver([completion = std::move(completion), status] { completion(status); });
}

void FakeNotificationCenter::requestAuthorization(
    unsigned options, std::function<void(bool, std::optional<std::string>)> completion) {
    bool granted;
    std::optional<std::string> error;
    {
        std::lock_guard lock(mutex_);
        ++requests_;
        lastOptions_ = options;
        granted = granted_;
        error = error_;
        if (status_ == AuthorizationStatus::NotDetermined) {
            status_ = granted ? AuthorizationStatus::Authorized : AuthorizationStatus::Denied;
        }
    }
    deliver([completion = std::move(completion), granted, error] { completion(granted, error); });
}

void FakeNotificationCenter::setDelegate(std::weak_ptr<platform::NotificationCenterDelegate> delegate) {
    std::lock_guard lock(mutex_);
    delegate_ = std::move(delegate);
}

void FakeNotificationCenter::setStatus(AuthorizationStatus status) {
    std::lock_guard lock(mutex_);
    status_ = status;
}

void FakeNotificationCenter::setAnswer(bool granted, std::optional<std::string> error) {
    std::lock_guard lock(mutex_);
    granted_ = granted;
    error_ = std::move(error);
}

void FakeNotificationCenter::setDeliverOnBackgroundThread(bool on) {
    std::lock_guard lock(mutex_);
    background_ = on;
}

int FakeNotificationCenter::requestCount() const {
    std::lock_guard lock(mutex_);
    return requests_;
}

unsigned FakeNotificationCenter::lastRequestOptions() const {
    std::lock_guard lock(mutex_);
    return lastOptions_;
}

std::shared_ptr<platform::NotificationCenterDelegate> FakeNotificationCenter::delegate() const {
    std::lock_guard lock(mutex_);
    return delegate_.lock();
}

std::optional<unsigned> FakeNotificationCenter::presentInForeground(const Dictionary& userInfo) {
    auto target = delegate();
    if (!target) {
        return std::nullopt;
    }
    std::optional<unsigned> answered;
    target->willPresent(userInfo, [&answered](unsigned options) { answered = options; });
    return answered;
}

bool FakeNotificationCenter::tap(const Dictionary& userInfo) {
    auto target = delegate();
    if (!target) {
        return false;
    }
    bool completed = false;
    target->didReceive(userInfo, [&completed] { completed = true; });
    return completed;
}

}  // namespace ovix::testing
