#include "device/DeviceInfoCollector.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "ovix/platform/Platform.h"

namespace ovix {

namespace {

using platform::InterfaceAddress;

// Length of the well-formed UTF-8 sequence at the start of `s`, or 0 when it is not one.
std::size_t validSequenceLength(std::string_view s) {
    auto byte = [&](std::size_t i) { return static_cast<unsigned char>(s[i]); };
    unsigned char lead = byte(0);
    if (lead < 0x80) {
        return 1;
    }
    std::size_t length;
    unsigned char low = 0x80, high = 0xBF;  // allowed range of the second byte
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        if (lead == 0xE0)
            low = 0xA0;  // no overlong forms
        if (lead == 0xED)
            high = 0x9F;  // no surrogates
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        if (lead == 0xF0)
            low = 0x90;
        if (lead == 0xF4)
            high = 0x8F;  // nothing above U+10FFFF
    } else {
        return 0;
    }
    if (s.size() < length || byte(1) < low || byte(1) > high) {
        return 0;
    }
    for (std::size_t i = 2; i < length; ++i) {
        if (byte(i) < 0x80 || byte(i) > 0xBF) {
            return 0;
        }
    }
    return length;
}

// Text decoded leniently: every byte that does not start a well-formed sequence becomes U+FFFD.
std::string repairUtf8(std::string_view s) {
    std::string out;
    out.reserve(s.size());
    while (!s.empty()) {
        std::size_t n = validSequenceLength(s);
        if (n == 0) {
            out += "\xEF\xBF\xBD";
            n = 1;
        } else {
            out.append(s.substr(0, n));
        }
        s.remove_prefix(n);
    }
    return out;
}

// Points to whole points, toward zero. A size that cannot be an integer is a fault, not a value.
std::int64_t truncatedPoints(double points) {
    double whole = std::trunc(points);
    if (!std::isfinite(whole) || whole < -9223372036854775808.0 || whole >= 9223372036854775808.0) {
        platform::current()->console->printLine("❌ Screen size is not representable as an integer");
        std::abort();
    }
    return static_cast<std::int64_t>(whole);
}

}  // namespace

std::string DeviceInfoCollector::ipv4Address(const std::optional<std::vector<InterfaceAddress>>& addresses,
                                             std::string_view name) {
    std::string result;
    if (!addresses) {
        return result;
    }
    // The whole list is walked: with several IPv4 addresses on the interface the last one wins.
    for (const auto& entry : *addresses) {
        if (entry.family == InterfaceAddress::Family::IPv4 && entry.name == name) {
            std::string_view host = entry.numericHost;
            host = host.substr(0, host.find('\0'));
            result = repairUtf8(host);
        }
    }
    return result;
}

Dictionary DeviceInfoCollector::buildDeviceInfoJson(std::optional<std::string_view> firebaseId,
                                                    std::optional<std::string_view> adjustId) {
    auto p = platform::current();
    const auto& facts = *p->deviceFacts;

    const std::string model = facts.model();
    const std::string systemName = facts.systemName();
    const std::string systemVersion = facts.systemVersion();
    const std::string vendorId = facts.vendorIdentifier();
    const std::string localizedModel = facts.localizedModel();
    const std::string deviceName = facts.deviceName();

    // The literals are part of the record's contract: they stay the same on every platform.
    const std::string fingerprint =
        p->crypto->sha256Hex("Apple|" + model + "|iOS|" + systemVersion + "|" + vendorId);

    Dictionary os{
        {"platform", "ios"},
        {"version", systemVersion},
        {"sdk", systemName},  // the system's name under "sdk", as consumers of the record expect
        {"build_fingerprint", deviceName + "-" + systemVersion},
    };
    Dictionary hardware{
        {"manufacturer", "Apple"},   {"brand", "Apple"},      {"model", model},
        {"device", deviceName},      {"board", "AppleBoard"}, {"hardware", "AppleChip"},
        {"product", localizedModel}, {"cpu_abi", "arm64"},
    };

    const auto carriers = facts.carrierNames();
    const std::string carrier = carriers.empty() ? std::string() : carriers.front();
    const std::string locale = facts.localeIdentifier();
    const std::string timeZone = facts.timeZoneIdentifier();
    const std::string ip = ipv4Address(facts.interfaceAddresses(), facts.primaryInterfaceName());
    Dictionary network{{"carrier", carrier}, {"locale", locale}, {"timezone", timeZone}, {"ip", ip}};

    const auto bounds = facts.screen();
    Dictionary screen{
        {"width", truncatedPoints(bounds.width)},
        {"height", truncatedPoints(bounds.height)},
        {"scale", bounds.scale},
    };

    return Dictionary{
        {"device_id", vendorId},
        {"firebase_id", std::string(firebaseId.value_or(""))},
        {"adjust_id", std::string(adjustId.value_or(""))},
        {"fingerprint", fingerprint},
        {"os", std::move(os)},
        {"hardware", std::move(hardware)},
        {"network", std::move(network)},
        {"screen", std::move(screen)},
    };
}

std::string DeviceInfoCollector::toJsonString(const Dictionary& record) {
    return Value(record).toJson();
}

}  // namespace ovix
