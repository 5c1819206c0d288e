#include "ovix/platform/Platform.h"

#include <atomic>

namespace ovix::platform {

namespace {

constexpr std::string_view kSdkBundleName = "OvixSdkResources";

std::shared_ptr<Platform>& slot() {
    static std::shared_ptr<Platform> installed;
    return installed;
}

std::mutex& slotMutex() {
    static std::mutex m;
    return m;
}

}  // namespace

const Bundle& Platform::sdkBundle() const {
    std::call_once(sdkBundleOnce_, [this] {
        Bundle code = resources ? resources->codeBundle() : Bundle(".");
        auto url = code.pathForResource(kSdkBundleName, "bundle");
        std::optional<Bundle> opened = url ? Bundle::open(*url) : std::nullopt;
        sdkBundle_ = opened ? *opened : code;
    });
    return *sdkBundle_;
}

void install(std::shared_ptr<Platform> platform) {
    std::lock_guard lock(slotMutex());
    slot() = std::move(platform);
}

std::shared_ptr<Platform> current() {
    std::lock_guard lock(slotMutex());
    if (!slot()) {
        slot() = makeDefault();
    }
    return slot();
}

}  // namespace ovix::platform
