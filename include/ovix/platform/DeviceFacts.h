#pragma once

#include <optional>
#include <string>
#include <vector>

namespace ovix::platform {

struct ScreenFacts {
    double width = 0;   ///< points
    double height = 0;  ///< points
    double scale = 1;   ///< pixels per point
};

/// One entry of the system's list of interface addresses.
struct InterfaceAddress {
    enum class Family { IPv4, IPv6, Other };

    std::string name;  ///< interface name, e.g. "en0", "eth0"
    Family family = Family::Other;
    /// The address as numeric host text ("192.168.1.20", "fe80::1%eth0"); "" for other families or
    /// when the system could not convert it. May hold bytes that are not UTF-8: readers repair them.
    std::string numericHost;
};

/// Facts about the device that the device record is built from.
///
/// Threading: main thread. Every getter answers something (an empty string when the platform has no
/// such fact); none fails.
class DeviceFacts {
  public:
    virtual ~DeviceFacts() = default;
    /// Identifier for the vendor, stable per machine, as upper-case UUID text; "" when none can be
    /// formed.
    virtual std::string vendorIdentifier() const = 0;
    /// The user-visible name of the device.
    virtual std::string deviceName() const = 0;
    virtual std::string model() const = 0;
    virtual std::string localizedModel() const = 0;
    virtual std::string systemName() const = 0;
    virtual std::string systemVersion() const = 0;
    /// Carrier names of the cellular subscriptions in a fixed order; empty without telephony.
    virtual std::vector<std::string> carrierNames() const = 0;
    /// Locale identifier in the "vi_VN" form.
    virtual std::string localeIdentifier() const = 0;
    /// Time-zone identifier, e.g. "Asia/Ho_Chi_Minh".
    virtual std::string timeZoneIdentifier() const = 0;
    /// The main screen's bounds in points and its scale.
    virtual ScreenFacts screen() const = 0;
    /// Name of the interface whose IPv4 address is reported ("en0" on phones).
    virtual std::string primaryInterfaceName() const = 0;
    /// Every entry of the system's interface-address list, in the system's order; nullopt when the
    /// list could not be obtained. Entries without an address are left out.
    virtual std::optional<std::vector<InterfaceAddress>> interfaceAddresses() const = 0;
};

}  // namespace ovix::platform
