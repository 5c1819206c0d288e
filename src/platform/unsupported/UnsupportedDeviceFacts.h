#pragma once

#include "platform/unsupported/Unsupported.h"

namespace ovix::platform {

/// A platform that knows nothing about its device: every fact is empty, the screen is zero-sized.
class UnsupportedDeviceFacts : public DeviceFacts {
  public:
    std::string vendorIdentifier() const override { return ""; }
    std::string deviceName() const override { return ""; }
    std::string model() const override { return ""; }
    std::string localizedModel() const override { return ""; }
    std::string systemName() const override { return ""; }
    std::string systemVersion() const override { return ""; }
    std::vector<std::string> carrierNames() const override { return {}; }
    std::string localeIdentifier() const override { return ""; }
    std::string timeZoneIdentifier() const override { return ""; }
    ScreenFacts screen() const override { return ScreenFacts{0, 0, 1}; }
    std::string primaryInterfaceName() const override { return ""; }
    std::optional<std::vector<InterfaceAddress>> interfaceAddresses() const override { return std::nullopt; }
};

}  // namespace ovix::platform
