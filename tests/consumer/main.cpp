// The smallest game on an installed SDK: the headless platform, a listener, one event. Exits non-zero
// when the event does not arrive or the installed images are missing.
#include <filesystem>
#include <iostream>

#include "ovix/OvixCore.h"
#include "ovix/OvixEvents.h"
#include "ovix/testing/HeadlessPlatform.h"

namespace {

class PrintingListener : public ovix::OvixSdkListener {
  public:
    void onEventReceived(const std::string& event, const ovix::Value& data) override {
        std::cout << "event: " << event << " data: " << data.toJson() << std::endl;
        if (event == ovix::OvixEvents::LOGOUT_SUCCESS) {
            loggedOut = true;
        }
    }
    bool loggedOut = false;
};

}  // namespace

int main() {
    const std::filesystem::path resources = OVIX_RESOURCE_DIR;
    if (!std::filesystem::is_regular_file(resources / "OvixSdkResources.bundle" / "ic_sdk_float.png")) {
        std::cerr << "no SDK images under " << resources << std::endl;
        return 1;
    }
    ovix::testing::HeadlessPlatform::Options options;
    options.codeResources = resources;
    auto headless = ovix::testing::HeadlessPlatform::create(options);
    headless.install();

    auto& sdk = ovix::OvixCore::shared();
    sdk.initSdk("consumer-client", "", "", "");
    auto listener = std::make_shared<PrintingListener>();
    sdk.setListener(listener);
    sdk.logout();
    headless.mainQueue->runUntilIdle();
    return listener->loggedOut ? 0 : 1;
}
