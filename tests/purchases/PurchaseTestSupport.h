#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <string>
#include <vector>

#include "ovix/OvixCore.h"
#include "ovix/testing/HeadlessPlatform.h"
#include "purchases/IAPManager.h"
#include "support/RecordingListener.h"

namespace ovix::test {

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
};

/// Waits for an operation whose completion arrives on the store's thread; the bound only guards
/// against a hang.
inline void await(std::future<void> future) {
    ASSERT_EQ(future.wait_for(std::chrono::seconds(10)), std::future_status::ready);
    future.get();
}

/// A fresh headless platform, installed.
class HeadlessTest : public ::testing::Test {
  protected:
    void SetUp() override {
        headless = ovix::testing::HeadlessPlatform::create();
        headless.install();
    }
    ovix::testing::HeadlessPlatform headless;
};

/// On top of `Base`'s installed headless platform: a listening game and a purchase manager whose
/// product list was emptied by the fixture's own fetch (the manager is a process singleton).
template <typename Base>
class PurchaseFixtureOn : public Base {
  protected:
    void SetUp() override {
        Base::SetUp();
        OvixCore::shared().setListener(nullptr);
        await(IAPManager::shared().fetchProducts({}));
        listen();
    }
    void TearDown() override { OvixCore::shared().setListener(nullptr); }

    platform::SandboxStore& store() { return *this->headless.sandboxStore; }
    std::vector<std::string> consoleLines() const { return this->headless.console->lines(); }
    /// A new listener, so that a test sees only what follows.
    void listen() {
        listener_ = std::make_shared<ObservingListener>();
        OvixCore::shared().setListener(listener_);
    }

    /// Fetches `products` into the manager, then forgets the events and lines that caused.
    void loadProducts(std::vector<platform::StoreProduct> products) {
        std::vector<std::string> ids;
        for (const auto& product : products) {
            ids.push_back(product.id);
        }
        store().setProducts(std::move(products));
        await(IAPManager::shared().fetchProducts(ids));
        listen();
        this->headless.console->clear();
    }

    std::shared_ptr<ObservingListener> listener_;
};

using PurchaseFixture = PurchaseFixtureOn<HeadlessTest>;

}  // namespace ovix::test
