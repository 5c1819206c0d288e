#include "core/EventSlot.h"

#include <array>
#include <string>
#include <thread>

#include "ovix/OvixEvents.h"

namespace ovix {

namespace {

// The listener takes the name as a std::string; most names are longer than the small-string buffer,
// so the public ones are made once here instead of allocated on every raise.
const std::string* knownName(std::string_view event) {
    static const std::array<std::string, 13> names{
        std::string(OvixEvents::LOGIN_SUCCESS),     std::string(OvixEvents::LOGOUT_SUCCESS),
        std::string(OvixEvents::AD_LOADED),         std::string(OvixEvents::AD_FAILED),
        std::string(OvixEvents::AD_CLOSED),         std::string(OvixEvents::REWARD_EARNED),
        std::string(OvixEvents::PURCHASE_UPDATED),  std::string(OvixEvents::BILLING_ERROR),
        std::string(OvixEvents::BILLING_CONNECTED), std::string(OvixEvents::BILLING_DISCONNECTED),
        std::string(OvixEvents::PURCHASE_CONSUMED), std::string(OvixEvents::PURCHASE_ACKNOWLEDGED),
        std::string(OvixEvents::PURCHASES_RESTORED)};
    for (const std::string& name : names) {
        if (name == event) {
            return &name;
        }
    }
    return nullptr;
}

}  // namespace

// Held only while the weak reference is copied or swapped, so a waiter yields at most a few times.
// A mutex would cost a second locked instruction on every raise.
class EventSlot::Guard {
  public:
    explicit Guard(std::atomic<bool>& busy) : busy_(busy) {
        while (busy_.exchange(true, std::memory_order_acquire)) {
            std::this_thread::yield();
        }
    }
    ~Guard() { busy_.store(false, std::memory_order_release); }
    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;

  private:
    std::atomic<bool>& busy_;
};

EventSlot& EventSlot::shared() {
    static EventSlot instance;
    return instance;
}

std::shared_ptr<OvixSdkListener> EventSlot::listener() const {
    Guard guard(busy_);
    return listener_.lock();
}

void EventSlot::setListener(std::shared_ptr<OvixSdkListener> listener) {
    std::weak_ptr<OvixSdkListener> replacement = listener;
    {
        Guard guard(busy_);
        listener_.swap(replacement);
    }
    // The old reference is released outside the lock: it may free the listener's control block.
}

void EventSlot::raise(std::string_view event, const Value& data) const {
    // A strong reference for the duration of the call: the game may drop its listener meanwhile.
    auto target = listener();
    if (!target) {
        return;
    }
    if (const std::string* name = knownName(event)) {
        target->onEventReceived(*name, data);
    } else {
        target->onEventReceived(std::string(event), data);
    }
}

}  // namespace ovix
