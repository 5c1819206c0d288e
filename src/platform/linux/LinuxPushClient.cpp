#include "platform/linux/LinuxPushClient.h"

#include "platform/plist/PushOptionsFile.h"
#include "platform/unsupported/Unsupported.h"

namespace ovix::platform {

namespace {
constexpr std::string_view kService = "Push messaging";
}

bool LinuxPushClient::hasDefaultApp() const {
    std::lock_guard lock(mutex_);
    return options_.has_value();
}

bool LinuxPushClient::configure(const std::filesystem::path& optionsFile) {
    auto options = PushOptionsFile::read(optionsFile);
    if (!options) {
        return false;
    }
    std::lock_guard lock(mutex_);
    options_ = std::move(options);
    return true;
}

void LinuxPushClient::setDelegate(std::weak_ptr<PushClientDelegate> /*delegate*/) {
    if (!reported_.exchange(true)) {
        unsupported::report(kService);
    }
}

void LinuxPushClient::subscribe(const std::string& /*topic*/,
                                std::function<void(std::optional<std::string>)> completion) {
    // The error is a description, as the console line quotes it after the topic.
    unsupported::later([completion = std::move(completion)] {
        completion(std::string(kService) + " is unsupported on this platform");
    });
}

std::optional<PushOptions> LinuxPushClient::options() const {
    std::lock_guard lock(mutex_);
    return options_;
}

}  // namespace ovix::platform
