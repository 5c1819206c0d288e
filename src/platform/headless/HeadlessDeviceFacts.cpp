#include "ovix/testing/HeadlessDeviceFacts.h"

namespace ovix::testing {

void HeadlessDeviceFacts::set(Facts facts) {
    std::lock_guard lock(mutex_);
    facts_ = std::move(facts);
}

HeadlessDeviceFacts::Facts HeadlessDeviceFacts::get() const {
    std::lock_guard lock(mutex_);
    return facts_;
}

std::string HeadlessDeviceFacts::vendorIdentifier() const {
    return get().vendorIdentifier;
}
std::string HeadlessDeviceFacts::deviceName() const {
    return get().deviceName;
}
std::string HeadlessDeviceFacts::model() const {
    return get().model;
}
std::string HeadlessDeviceFacts::localizedModel() const {
    return get().localizedModel;
}
std::string HeadlessDeviceFacts::systemName() const {
    return get().systemName;
}
std::string HeadlessDeviceFacts::systemVersion() const {
    return get().systemVersion;
}
std::vector<std::string> HeadlessDeviceFacts::carrierNames() const {
    return get().carrierNames;
}
std::string HeadlessDeviceFacts::localeIdentifier() const {
    return get().localeIdentifier;
}
std::string HeadlessDeviceFacts::timeZoneIdentifier() const {
    return get().timeZoneIdentifier;
}
platform::ScreenFacts HeadlessDeviceFacts::screen() const {
    return get().screen;
}
std::string HeadlessDeviceFacts::primaryInterfaceName() const {
    return get().primaryInterfaceName;
}
std::optional<std::vector<platform::InterfaceAddress>> HeadlessDeviceFacts::interfaceAddresses() const {
    return get().interfaceAddresses;
}

}  // namespace ovix::testing
