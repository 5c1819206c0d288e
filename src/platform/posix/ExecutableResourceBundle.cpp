#include "platform/posix/ExecutableResourceBundle.h"

#include <cstdlib>
#include <system_error>

namespace ovix::platform {

namespace {

constexpr const char* kSdkBundle = "OvixSdkResources.bundle";

}  // namespace

ExecutableResourceBundle::ExecutableResourceBundle()
    : ExecutableResourceBundle(std::vector<std::filesystem::path>{OVIX_INSTALLED_RESOURCES}) {}

ExecutableResourceBundle::ExecutableResourceBundle(const std::vector<std::filesystem::path>& libraryDirs)
    : main_(programDirectory()), code_(sdkDirectory(main_, libraryDirs)) {}

std::filesystem::path ExecutableResourceBundle::programDirectory() {
    std::error_code ec;
    auto exe = std::filesystem::read_symlink("/proc/self/exe", ec);
    return ec ? std::filesystem::current_path(ec) : exe.parent_path();
}

std::filesystem::path ExecutableResourceBundle::sdkDirectory(
    const std::filesystem::path& programDir, const std::vector<std::filesystem::path>& libraryDirs) {
    const char* sdkDir = std::getenv("OVIX_SDK_DIR");
    if (sdkDir != nullptr && *sdkDir != '\0') {
        return sdkDir;
    }
    std::vector<std::filesystem::path> candidates{programDir};
    if (!programDir.empty()) {
        // Configured as the path from the install's programs to its data, so it holds in any prefix.
        candidates.push_back((programDir / OVIX_PROGRAM_TO_RESOURCES).lexically_normal());
    }
    candidates.insert(candidates.end(), libraryDirs.begin(), libraryDirs.end());
    std::error_code ec;
    for (const auto& dir : candidates) {
        if (!dir.empty() && std::filesystem::is_directory(dir / kSdkBundle, ec)) {
            return dir;
        }
    }
    return programDir;
}

}  // namespace ovix::platform
