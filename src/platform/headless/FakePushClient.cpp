#include "ovix/testing/FakePushClient.h"

#include "platform/plist/PushOptionsFile.h"

namespace ovix::testing {

bool FakePushClient::hasDefaultApp() const {
    std::lock_guard lock(mutex_);
    return hasDefaultApp_;
}

bool FakePushClient::configure(const std::filesystem::path& optionsFile) {
    bool accepts;
    {
        std::lock_guard lock(mutex_);
        attempts_.push_back(optionsFile);
        accepts = acceptsOptions_;
    }
    auto options = accepts ? platform::PushOptionsFile::read(optionsFile) : std::nullopt;
    if (!options) {
        return false;
    }
    std::lock_guard lock(mutex_);
    options_ = std::move(options);
    hasDefaultApp_ = true;
    return true;
}

void FakePushClient::setDelegate(std::weak_ptr<platform::PushClientDelegate> delegate) {
    std::lock_guard lock(mutex_);
    delegate_ = std::move(delegate);
}

void FakePushClient::subscribe(const std::string& topic,
                               std::function<void(std::optional<std::string>)> completion) {
    std::optional<std::string> error;
    {
        std::lock_guard lock(mutex_);
        subscriptions_.push_back(topic);
        error = subscriptionError_;
    }
    completion(std::move(error));
}

void FakePushClient::setHasDefaultApp(bool present) {
    std::lock_guard lock(mutex_);
    hasDefaultApp_ = present;
}

void FakePushClient::setAcceptsOptions(bool accepts) {
    std::lock_guard lock(mutex_);
    acceptsOptions_ = accepts;
}

void FakePushClient::setSubscriptionError(std::optional<std::string> error) {
    std::lock_guard lock(mutex_);
    subscriptionError_ = std::move(error);
}

bool FakePushClient::deliverToken(const std::optional<std::string>& token) {
    auto target = delegate();
    if (!target) {
        return false;
    }
    target->didReceiveRegistrationToken(token);
    return true;
}

std::vector<std::filesystem::path> FakePushClient::configureAttempts() const {
    std::lock_guard lock(mutex_);
    return attempts_;
}

std::optional<platform::PushOptions> FakePushClient::configuredOptions() const {
    std::lock_guard lock(mutex_);
    return options_;
}

std::shared_ptr<platform::PushClientDelegate> FakePushClient::delegate() const {
    std::lock_guard lock(mutex_);
    return delegate_.lock();
}

std::vector<std::string> FakePushClient::subscriptions() const {
    std::lock_guard lock(mutex_);
    return subscriptions_;
}

}  // namespace ovix::testing
