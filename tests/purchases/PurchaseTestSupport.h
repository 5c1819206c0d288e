#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "api/ApiTest.h"
#include "purchases/IAPManager.h"
#include "support/RecordingListener.h"

namespace ovix::test {

using Events = std::vector<std::pair<std::string, Value>>;

/// Records events and lets a test look at the world at the moment each one arrives.
class ObservingListener : public RecordingListener {
  public:
    std::function<void(const std::string&, const Value&)> onEvent;

    void onEventReceived(const std::string& event, const Value& data) override {
        if (onEvent) {
            onEvent(event, data);
        }
        RecordingListener::onEventReceived(event, data);
    }
    /// Every event so far with its payload, in arrival order.
    Events events() const {
        Events out;
        for (const auto& r : received()) {
            out.emplace_back(r.event, r.data);
        }
        return out;
    }
};

/// Waits for an operation whose completion arrives on the store's thread; the bound only guards
/// against a hang.
inline void await(std::future<void> future) {
    ASSERT_EQ(future.wait_for(std::chrono::seconds(10)), std::future_status::ready);
    future.get();
}

/// On top of the API tests' platform (loopback server, curl client, sandbox store): a listening game
/// and a purchase manager whose product list was emptied by the fixture's own fetch (the manager is a
/// process singleton).
class PurchaseFixture : public ApiTest {
  protected:
    void SetUp() override {
        ApiTest::SetUp();
        OvixCore::shared().setListener(nullptr);
        await(IAPManager::shared().fetchProducts({}));
        listen();
    }
    void TearDown() override { OvixCore::shared().setListener(nullptr); }

    platform::SandboxStore& store() { return *headless.sandboxStore; }
    std::vector<std::string> consoleLines() const { return headless.console->lines(); }
    /// Whether every event so far came on the store's callback thread.
    bool allOnStoreThread() const {
        const auto thread = headless.sandboxStore->callbackThread();
        const auto all = listener_->received();
        return std::all_of(all.begin(), all.end(), [thread](const auto& r) { return r.thread == thread; });
    }
    /// A new listener, so that a test sees only what follows.
    void listen() {
        listener_ = std::make_shared<ObservingListener>();
        OvixCore::shared().setListener(listener_);
    }

    std::shared_ptr<ObservingListener> listener_;
};

}  // namespace ovix::test
