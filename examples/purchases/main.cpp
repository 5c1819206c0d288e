// A game's purchase flow on the desktop platform, against the sandbox store: products from a catalog
// file, a local stand-in for the backend's eligibility check, every event printed as it arrives.
//
//   ovix_purchases_demo [--catalog FILE] [--refuse PRODUCT]... [PRODUCT]...
//
// Each product (default: every product of the catalog) is bought the way a game does it: a first
// purchaseProduct call loads it, a second one asks the backend and buys. Then the purchases are
// restored. A product given with --refuse is declined by the stand-in backend.
#include <httplib.h>

#include <chrono>
#include <condition_variable>
#include <iostream>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "ovix/OvixCore.h"
#include "ovix/platform/Platform.h"
#include "ovix/platform/SandboxStore.h"

namespace {

using namespace std::chrono_literals;

class PrintingListener : public ovix::OvixSdkListener {
  public:
    explicit PrintingListener(std::thread::id mainThread) : mainThread_(mainThread) {}

    void onEventReceived(const std::string& event, const ovix::Value& data) override {
        std::lock_guard lock(mutex_);
        bool onStore = std::this_thread::get_id() != mainThread_;
        std::cout << "  event " << event << " " << data.toJson() << (onStore ? "  (store thread)" : "")
                  << std::endl;
        if (event == ovix::OvixEvents::PURCHASES_RESTORED || event == ovix::OvixEvents::BILLING_ERROR) {
            ++restoreReplies_;
        }
        changed_.notify_all();
    }

    /// Waits until `count` restore replies (restored purchases or errors) arrived since `reset`.
    bool waitForRestoreReplies(std::size_t count) {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, 10s, [&] { return restoreReplies_ >= count; });
    }
    void reset() {
        std::lock_guard lock(mutex_);
        restoreReplies_ = 0;
    }

  private:
    std::thread::id mainThread_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::size_t restoreReplies_ = 0;
};

std::size_t countEntitlements(ovix::platform::Store& store) {
    auto sequence = store.currentEntitlements();
    std::size_t count = 0;
    for (;;) {
        std::promise<bool> more;
        auto answer = more.get_future();
        sequence->next([&more](std::optional<ovix::platform::VerificationResult> element) {
            more.set_value(element.has_value());
        });
        if (!answer.get()) {
            return count;
        }
        ++count;
    }
}

}  // namespace

int main(int argc, char** argv) {
    std::string catalogFile = OVIX_DEMO_CATALOG;
    std::set<std::string> refused;
    std::vector<std::string> wanted;
    for (int i = 1; i < argc; ++i) {
        std::string arg = argv[i];
        if (arg == "--catalog" && i + 1 < argc) {
            catalogFile = argv[++i];
        } else if (arg == "--refuse" && i + 1 < argc) {
            refused.insert(argv[++i]);
        } else if (arg.starts_with("--")) {
            std::cerr << "usage: " << argv[0] << " [--catalog FILE] [--refuse PRODUCT]... [PRODUCT]..."
                      << std::endl;
            return 2;
        } else {
            wanted.push_back(arg);
        }
    }

    std::string error;
    auto catalog = ovix::platform::SandboxStore::loadCatalog(catalogFile, &error);
    if (!catalog) {
        std::cerr << "cannot use the catalog: " << error << std::endl;
        return 1;
    }
    if (wanted.empty()) {
        for (const auto& product : catalog->products) {
            wanted.push_back(product.id);
        }
    }

    // The backend's eligibility check, answered locally.
    httplib::Server backend;
    backend.Get("/billing/check", [&refused](const httplib::Request& request, httplib::Response& response) {
        bool eligible = !refused.contains(request.get_param_value("productId"));
        response.set_content(eligible ? R"({"eligible":true})" : R"({"eligible":false})", "application/json");
    });
    int port = backend.bind_to_any_port("127.0.0.1");
    std::thread serving([&backend] { backend.listen_after_bind(); });
    while (!backend.is_running()) {
        std::this_thread::yield();
    }

    // The desktop platform, pointed at the local backend, with the catalog's sandbox store.
    auto platform = ovix::platform::makeDefault();
    platform->environment = ovix::platform::Environment::emulator("http://127.0.0.1:" + std::to_string(port));
    platform->store = std::make_shared<ovix::platform::SandboxStore>(*catalog);
    ovix::platform::install(platform);

    auto& sdk = ovix::OvixCore::shared();
    auto listener = std::make_shared<PrintingListener>(std::this_thread::get_id());
    sdk.setListener(listener);

    for (const auto& productId : wanted) {
        std::cout << "purchaseProduct(\"" << productId << "\"): first call loads the product" << std::endl;
        sdk.purchaseProduct(productId).wait();
        std::cout << "purchaseProduct(\"" << productId << "\"): second call asks the backend"
                  << (refused.contains(productId) ? " (which declines: the game's window shows the alert)"
                                                  : "")
                  << std::endl;
        sdk.purchaseProduct(productId).wait();
    }

    auto expected = countEntitlements(*platform->store);
    std::cout << "restorePurchases(): " << expected << " entitlement(s)" << std::endl;
    listener->reset();
    sdk.restorePurchases();
    bool complete = listener->waitForRestoreReplies(expected);

    backend.stop();
    serving.join();
    return complete ? 0 : 1;
}
