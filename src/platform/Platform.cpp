#include "ovix/platform/Platform.h"

#include <atomic>
#include <utility>

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
    std::shared_ptr<Platform> replaced;
    {
        std::lock_guard lock(slotMutex());
        replaced = std::exchange(slot(), std::move(platform));
    }
    // Released outside the lock: tearing services down may wait for threads that call current().
}

std::shared_ptr<Platform> current() {
    {
        std::lock_guard lock(slotMutex());
        if (slot()) {
            return slot();
        }
    }
    // Built outside the lock, for the same reason; should two threads race here, one default wins
    // and the other is released, again outside the lock.
    auto made = makeDefault();
    std::lock_guard lock(slotMutex());
    if (!slot()) {
        slot() = std::move(made);
    }
    return slot();
}

}  // namespace ovix::platform
