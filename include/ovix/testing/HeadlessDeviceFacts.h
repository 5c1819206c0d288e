#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "ovix/platform/DeviceFacts.h"

namespace ovix::testing {

/// Device facts that the test sets, every one of them.
///
/// Starts as a made-up phone-like device (see `Facts`' defaults) with no interface addresses. Safe
/// from any thread: a test may change facts while the SDK reads them; each getter sees either the
/// old or the new value.
class HeadlessDeviceFacts : public platform::DeviceFacts {
  public:
    struct Facts {
        std::string vendorIdentifier = "6F9619FF-8B86-4011-B42D-00C04FC964FF";
        std::string deviceName = "Headless Device";
        std::string model = "PC";
        std::string localizedModel = "PC";
        std::string systemName = "Headless";
        std::string systemVersion = "1.0";
        std::vector<std::string> carrierNames;
        std::string localeIdentifier = "vi_VN";
        std::string timeZoneIdentifier = "Asia/Ho_Chi_Minh";
        platform::ScreenFacts screen{390, 844, 3};
        std::string primaryInterfaceName = "en0";
        /// nullopt: the system's list cannot be obtained.
        std::optional<std::vector<platform::InterfaceAddress>> interfaceAddresses =
            std::vector<platform::InterfaceAddress>{};
    };

    HeadlessDeviceFacts() = default;
    explicit HeadlessDeviceFacts(Facts facts) : facts_(std::move(facts)) {}

    /// Replaces every fact.
    void set(Facts facts);
    /// A copy of the current facts (to change one and `set` them back).
    Facts get() const;

    std::string vendorIdentifier() const override;
    std::string deviceName() const override;
    std::string model() const override;
    std::string localizedModel() const override;
    std::string systemName() const override;
    std::string systemVersion() const override;
    std::vector<std::string> carrierNames() const override;
    std::string localeIdentifier() const override;
    std::string timeZoneIdentifier() const override;
    platform::ScreenFacts screen() const override;
    std::string primaryInterfaceName() const override;
    std::optional<std::vector<platform::InterfaceAddress>> interfaceAddresses() const override;

  private:
    mutable std::mutex mutex_;
    Facts facts_;
};

}  // namespace ovix::testing
