#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ovix/Value.h"
#include "ovix/platform/DeviceFacts.h"

namespace ovix {

/// Builds the record that describes this device to the publisher's login page.
///
/// Stateless: every call reads the installed platform's device facts and crypto afresh. Call on the
/// main thread (device facts are main-thread objects).
class DeviceInfoCollector {
  public:
    /// The record: exactly the keys "device_id", "firebase_id", "adjust_id", "fingerprint" (strings)
    /// and "os", "hardware", "network", "screen" (maps). An absent id is the same as "". Never fails
    /// and is never empty. A screen width or height that is not finite or does not fit a signed
    /// 64-bit integer is a programming fault and aborts the process.
    static Dictionary buildDeviceInfoJson(std::optional<std::string_view> firebaseId,
                                          std::optional<std::string_view> adjustId);

    /// The record as the page receives it: compact JSON text (no spaces, no pretty-printing), UTF-8;
    /// consumers must not rely on key order. Invalid UTF-8 inside strings is replaced, never rejected.
    static std::string toJsonString(const Dictionary& record);

    /// The numeric IPv4 address of interface `name` in `addresses`: the last IPv4 entry of that exact
    /// name in list order wins; "" when the list is absent or has none. Invalid UTF-8 is repaired.
    static std::string ipv4Address(const std::optional<std::vector<platform::InterfaceAddress>>& addresses,
                                   std::string_view name);
};

}  // namespace ovix
