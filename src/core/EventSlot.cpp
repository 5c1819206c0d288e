#include "core/EventSlot.h"

#include <string>

namespace ovix {

EventSlot& EventSlot::shared() {
    static EventSlot instance;
    return instance;
}

std::shared_ptr<OvixSdkListener> EventSlot::listener() const {
    std::lock_guard lock(mutex_);
    return listener_.lock();
}

void EventSlot::setListener(std::shared_ptr<OvixSdkListener> listener) {
    std::lock_guard lock(mutex_);
    listener_ = listener;
}

void EventSlot::raise(std::string_view event, const Value& data) const {
    // A strong reference for the duration of the call: the game may drop its listener meanwhile.
    if (auto target = listener()) {
        target->onEventReceived(std::string(event), data);
    }
}

}  // namespace ovix
