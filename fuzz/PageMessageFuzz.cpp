// Messages a page posts to the login screen, in any shape: the screen stores at most one token,
// never crashes, and closes only for a string token within the size limit.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "core/SessionManager.h"
#include "ovix/OvixCore.h"
#include "ovix/testing/HeadlessPlatform.h"
#include "ui/login/LoginViewController.h"

namespace {

struct Harness {
    ovix::testing::HeadlessPlatform h = ovix::testing::HeadlessPlatform::create();
    Harness() { h.install(); }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Harness harness;
    auto& h = harness.h;
    h.store->remove(ovix::SessionManager::shared().tokenKey);
    ovix::OvixCore::shared().showLogin();
    h.mainQueue->runUntilIdle();
    auto page = h.webEngine->lastWebView();
    if (!page) {
        std::abort();
    }
    page->completeNavigation();
    // Page messages arrive as the JSON text of what the page posted.
    auto body = ovix::Value::fromJson(std::string_view(reinterpret_cast<const char*>(data), size));
    if (body) {
        page->postMessage("OvixLoginSuccess", *body);
        page->postMessage("OvixLoginSuccess", *body);
    }
    const auto stored = ovix::SessionManager::readString(ovix::SessionManager::shared().tokenKey);
    const auto* object = body ? body->asObject() : nullptr;
    const auto* token = object ? body->find("data") : nullptr;
    const bool expected =
        token && token->asString() && token->asString()->size() <= ovix::LoginViewController::maxTokenBytes;
    if (expected != !stored.empty() && !(expected && token->asString()->empty())) {
        std::abort();
    }
    h.mainQueue->runUntilIdle();
    return 0;
}
