// The smallest game on an installed SDK: the headless platform, a listener, one event. Exits non-zero
// when the event does not arrive or the installed images are missing.
//   ovix_consumer [--installed]
// --installed: the program runs from the bin directory of the SDK's prefix; the default platform must
// find the SDK's images by itself (prints "resources: ok"), whatever prefix the tree was moved to.
#include <cstring>
#include <filesystem>
#include <iostream>

#include "ovix/OvixCore.h"
#include "ovix/OvixEvents.h"
#include "ovix/platform/Platform.h"
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

// What the platform a game gets without choosing one finds, with nothing told where to look.
bool defaultPlatformFindsImages() {
    const auto platform = ovix::platform::makeDefault();
    const auto image = platform->sdkBundle().imagePath("ic_sdk_float");
    if (image) {
        std::cout << "resources: ok " << image->string() << std::endl;
        return true;
    }
    std::cout << "resources: none in " << platform->sdkBundle().directory() << std::endl;
    return false;
}

}  // namespace

int main(int argc, char** argv) {
    const bool installed = argc > 1 && std::strcmp(argv[1], "--installed") == 0;
    if (!defaultPlatformFindsImages() && installed) {
        return 1;
    }
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
