#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "ovix/platform/Crypto.h"
#include "ovix/platform/DeviceFacts.h"

namespace ovix::platform {

/// The facts of a Linux machine, from the nearest equivalents of a phone's:
///
/// - vendor identifier: an application-specific id derived from the machine id ("etc/machine-id",
///   32 hexadecimal digits) with HMAC-SHA-256 under a key fixed for this SDK, as upper-case UUID text
///   (stable per machine, different from the raw machine id); "" when no machine id can be read;
/// - device name: the pretty hostname ("etc/machine-info" PRETTY_HOSTNAME), else the kernel's
///   hostname ("proc/sys/kernel/hostname", else "etc/hostname");
/// - model and localised model: the DMI product name ("sys/class/dmi/id/product_name"), else "PC";
/// - system name and version: "etc/os-release" (else "usr/lib/os-release") NAME, "Linux" when unset,
///   and VERSION_ID, "" when unset;
/// - carriers: none (no telephony);
/// - locale: LC_ALL, else LC_MESSAGES, else LANG, without encoding and modifier ("vi_VN.UTF-8" is
///   "vi_VN"); the C/POSIX locale, or none set, is "en_US_POSIX";
/// - time zone: TZ (a leading ":" and a path up to "zoneinfo/" dropped), else "etc/timezone", else the
///   zone the "etc/localtime" link points to; "UTC" when there is no "etc/localtime" at all, "" when it
///   exists but names no zone;
/// - primary interface: the interface of the default IPv4 route ("proc/net/route"; the lowest metric
///   when there are several), "" without one;
/// - interface addresses: `getifaddrs`, each address converted with `getnameinfo` (numeric host);
/// - screen: from the screen source the desktop host sets; 0 x 0 points at scale 1 while no display is
///   known.
///
/// Files are read below `Sources::root` ("/" for the real machine). Threading: any thread; every call
/// reads afresh.
class LinuxDeviceFacts : public DeviceFacts {
  public:
    struct Sources {
        std::filesystem::path root = "/";
        /// Environment lookup; nullopt when unset. Unset in `Sources` means the process environment.
        std::function<std::optional<std::string>(const std::string& name)> environment;
    };

    /// The real machine.
    explicit LinuxDeviceFacts(std::shared_ptr<const Crypto> crypto);
    LinuxDeviceFacts(std::shared_ptr<const Crypto> crypto, Sources sources);

    /// Where screen facts come from once a display is known; null for "no display".
    void setScreenSource(std::function<ScreenFacts()> source);

    std::string vendorIdentifier() const override;
    std::string deviceName() const override;
    std::string model() const override;
    std::string localizedModel() const override;
    std::string systemName() const override;
    std::string systemVersion() const override;
    std::vector<std::string> carrierNames() const override;
    std::string localeIdentifier() const override;
    std::string timeZoneIdentifier() const override;
    ScreenFacts screen() const override;
    std::string primaryInterfaceName() const override;
    std::optional<std::vector<InterfaceAddress>> interfaceAddresses() const override;

  private:
    std::optional<std::string> readFile(const std::filesystem::path& relative) const;
    std::optional<std::string> osRelease(const std::string& key) const;
    std::optional<std::string> env(const std::string& name) const;

    std::shared_ptr<const Crypto> crypto_;
    Sources sources_;
    mutable std::mutex screenMutex_;
    std::function<ScreenFacts()> screenSource_;
};

}  // namespace ovix::platform
