#pragma once

#include <atomic>
#include <memory>
#include <string_view>

#include "ovix/OvixSdkListener.h"
#include "ovix/Value.h"

namespace ovix {

/// The one place events leave the SDK: the game's listener, held weakly, and `raise`.
///
/// Every component raises through here, so none of them needs the facade. Safe from any thread: a
/// spin lock guards only the copying of the weak reference (a few instructions, never a call out) and
/// is never held while the listener runs. A raise costs little more than the weak reference's lock and
/// the virtual call (bench/core/EventBench.cpp).
class EventSlot {
  public:
    static EventSlot& shared();

    EventSlot(const EventSlot&) = delete;
    EventSlot& operator=(const EventSlot&) = delete;

    /// The listener, or null when none is set or the game has released it.
    std::shared_ptr<OvixSdkListener> listener() const;
    /// Holds `listener` weakly, replacing any earlier one; null clears it.
    void setListener(std::shared_ptr<OvixSdkListener> listener);
    /// The listener, if set, gets `event` once, on the calling thread.
    void raise(std::string_view event, const Value& data = Value()) const;

  private:
    EventSlot() = default;

    class Guard;

    mutable std::atomic<bool> busy_{false};
    std::weak_ptr<OvixSdkListener> listener_;
};

}  // namespace ovix
