#include "platform/desktop/InstalledResourceBundle.h"

#include <cstdlib>
#include <system_error>

namespace ovix::platform::desktop {

InstalledResourceBundle::InstalledResourceBundle(std::vector<std::filesystem::path> candidates) {
    std::error_code ec;
    auto exe = std::filesystem::read_symlink("/proc/self/exe", ec);
    main_ = ec ? std::filesystem::current_path(ec) : exe.parent_path();
    code_ = main_;
    const char* sdkDir = std::getenv("OVIX_SDK_DIR");
    if (sdkDir != nullptr && *sdkDir != '\0') {
        code_ = sdkDir;  // the developer's explicit choice, even when it turns out empty
        return;
    }
    candidates.insert(candidates.begin(), main_);
    for (const auto& dir : candidates) {
        if (!dir.empty() && std::filesystem::is_directory(dir / "OvixSdkResources.bundle", ec)) {
            code_ = dir;
            return;
        }
    }
}

}  // namespace ovix::platform::desktop
