// A console game's first integration with the Ovix SDK, on the headless platform: initialise,
// listen, keep a session, log out. Every event the SDK raises is printed.
#include <iostream>

#include "ovix/OvixCore.h"
#include "ovix/testing/HeadlessPlatform.h"

namespace {

class PrintingListener : public ovix::OvixSdkListener {
  public:
    void onEventReceived(const std::string& event, const ovix::Value& data) override {
        std::cout << "event: " << event << " data: " << data.toJson() << std::endl;
    }
};

}  // namespace

int main() {
    ovix::testing::HeadlessPlatform::Options options;
    options.echoConsole = true;  // the SDK's own diagnostic lines, as a player's device would log them
    auto headless = ovix::testing::HeadlessPlatform::create(options);
    headless.install();

    auto& sdk = ovix::OvixCore::shared();
    sdk.initSdk("quickstart-client", "", "", "");

    auto listener = std::make_shared<PrintingListener>();
    sdk.setListener(listener);

    sdk.requestNotificationPermission([](bool allowed) {
        std::cout << "notifications allowed: " << (allowed ? "yes" : "no") << std::endl;
    });
    headless.mainQueue->runUntilIdle();

    std::cout << "token before login: \"" << sdk.getTokenApp() << "\"" << std::endl;
    // The login page hands the token over; here the game's test stands in for it.
    headless.store->setString("ovix_token", "demo-access-token");
    headless.store->setString("ovix_status", "login");
    std::cout << "token after login: \"" << sdk.getTokenApp() << "\"" << std::endl;

    sdk.logout();
    std::cout << "token after logout: \"" << sdk.getTokenApp() << "\"" << std::endl;
    std::cout << "status: " << headless.store->string("ovix_status").value_or("(none)") << std::endl;
    return 0;
}
