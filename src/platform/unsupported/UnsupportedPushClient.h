#pragma once

#include "platform/unsupported/Unsupported.h"

namespace ovix::platform {

/// Push messaging on a platform without a push service: never configured, every subscription fails.
class UnsupportedPushClient : public PushClient {
  public:
    bool hasDefaultApp() const override { return false; }
    bool configure(const std::filesystem::path&) override {
        unsupported::report("Push messaging");
        return false;
    }
    void setDelegate(std::weak_ptr<PushClientDelegate>) override {}
    void subscribe(const std::string&, std::function<void(std::optional<std::string>)> completion) override {
        unsupported::later(
            [completion = std::move(completion)] { completion(unsupported::message("Push messaging")); });
    }
};

}  // namespace ovix::platform
