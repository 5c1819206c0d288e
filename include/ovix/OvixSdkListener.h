#pragma once

#include <string>

#include "ovix/Value.h"

namespace ovix {

/// The game's event sink. Register it with `OvixCore::shared().setListener(...)`.
///
/// Threading: events arrive on whatever thread raised them (the main thread for screens, a store or
/// network thread for purchases); do not assume the main thread. The SDK holds the listener weakly:
/// keep it alive yourself; once you release it, events are dropped silently.
class OvixSdkListener {
  public:
    virtual ~OvixSdkListener() = default;
    /// `event` is one of the `OvixEvents` values; `data` is null for login and logout and carries the
    /// payload described for each purchase event otherwise.
    virtual void onEventReceived(const std::string& event, const Value& data) = 0;
};

}  // namespace ovix
