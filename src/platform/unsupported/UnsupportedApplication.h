#pragma once

#include "ovix/kit/host/Application.h"
#include "platform/unsupported/Unsupported.h"

namespace ovix::platform {

/// A process with no windowing: no scenes, no windows, URLs cannot be opened.
class UnsupportedApplication : public kit::host::Application {
  public:
    std::vector<std::shared_ptr<kit::WindowScene>> connectedScenes() const override { return {}; }
    std::vector<std::shared_ptr<kit::Window>> windows() const override { return {}; }
    bool open(const std::string&) override {
        unsupported::report("Opening URLs");
        return false;
    }
    bool canOpen(const std::string&) const override { return false; }
    void registerForRemoteNotifications() override { unsupported::report("Remote notifications"); }
};

}  // namespace ovix::platform
