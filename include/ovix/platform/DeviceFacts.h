#pragma once

#include <string>
#include <vector>

namespace ovix::platform {

struct ScreenFacts {
    double width = 0;   ///< points
    double height = 0;  ///< points
    double scale = 1;   ///< pixels per point
};

/// Facts about the device that the device record is built from.
///
/// Threading: main thread. Every getter answers something (an empty string when the platform has no
/// such fact); none fails.
class DeviceFacts {
public:
    virtual ~DeviceFacts() = default;
    /// Identifier for the vendor, stable per machine; "" when none can be formed.
    virtual std::string vendorIdentifier() const = 0;
    virtual std::string deviceName() const = 0;
    virtual std::string model() const = 0;
    virtual std::string localizedModel() const = 0;
    virtual std::string systemName() const = 0;
    virtual std::string systemVersion() const = 0;
    /// Carrier names of the cellular subscriptions in a fixed order; empty without telephony.
    virtual std::vector<std::string> carrierNames() const = 0;
    /// Locale identifier in the "vi_VN" form.
    virtual std::string localeIdentifier() const = 0;
    virtual std::string timeZoneIdentifier() const = 0;
    virtual ScreenFacts screen() const = 0;
    /// Name of the interface whose IPv4 address is reported ("en0" on phones).
    virtual std::string primaryInterfaceName() const = 0;
};

}  // namespace ovix::platform
