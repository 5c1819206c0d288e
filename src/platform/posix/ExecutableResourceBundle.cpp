#include "platform/posix/ExecutableResourceBundle.h"

#include <cstdlib>
#include <system_error>

namespace ovix::platform {

ExecutableResourceBundle::ExecutableResourceBundle() {
    std::error_code ec;
    auto exe = std::filesystem::read_symlink("/proc/self/exe", ec);
    main_ = ec ? std::filesystem::current_path(ec) : exe.parent_path();
    const char* sdkDir = std::getenv("OVIX_SDK_DIR");
    code_ = (sdkDir != nullptr && *sdkDir != '\0') ? std::filesystem::path(sdkDir) : main_;
}

}  // namespace ovix::platform
