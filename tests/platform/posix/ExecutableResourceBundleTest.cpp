#include "platform/posix/ExecutableResourceBundle.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "support/ScratchDirectory.h"

namespace {

namespace fs = std::filesystem;
using ovix::platform::ExecutableResourceBundle;

// A game installed as <prefix>/bin/game with the SDK in the same prefix, plus a second copy of the
// SDK where the library was installed when it was configured (a prefix since moved or another one).
struct Layout {
    const char* name;
    std::vector<std::string> bundlesIn;  // directories under the scratch root that hold the bundle
    const char* sdkDirEnv;               // OVIX_SDK_DIR, or null for unset
    std::string expected;                // chosen directory, relative to the scratch root
};

TEST(ExecutableResourceBundleTest, TheSdkDirectoryIsTheFirstPlaceThatHoldsTheBundle) {
    const std::string inPrefix = fs::path("prefix/bin") / OVIX_PROGRAM_TO_RESOURCES;
    const Layout layouts[] = {
        // A moved prefix keeps its images beside its programs: they beat the configured location.
        {"installed prefix before the configured one", {inPrefix, "configured"}, nullptr, inPrefix},
        {"configured location when the prefix has none", {"configured"}, nullptr, "configured"},
        {"a bundle shipped beside the executable first", {"prefix/bin", inPrefix}, nullptr, "prefix/bin"},
        // The developer's choice wins even where it holds nothing.
        {"OVIX_SDK_DIR before everything", {"prefix/bin", inPrefix}, "elsewhere", "elsewhere"},
        {"an empty OVIX_SDK_DIR is unset", {inPrefix}, "", inPrefix},
        {"nowhere: the executable's directory", {}, nullptr, "prefix/bin"},
    };
    for (const auto& layout : layouts) {
        SCOPED_TRACE(layout.name);
        ovix::test::ScratchDirectory root("ovix-exe-bundle");
        fs::create_directories(root / "prefix/bin");
        fs::create_directories(root / "configured");
        for (const auto& dir : layout.bundlesIn) {
            fs::create_directories(root / dir / "OvixSdkResources.bundle");
        }
        if (layout.sdkDirEnv == nullptr) {
            ::unsetenv("OVIX_SDK_DIR");
        } else {
            const std::string value = *layout.sdkDirEnv == '\0' ? "" : (root / layout.sdkDirEnv).string();
            ::setenv("OVIX_SDK_DIR", value.c_str(), 1);
        }
        const auto chosen =
            ExecutableResourceBundle::sdkDirectory(root / "prefix/bin", {root / "configured"});
        ::unsetenv("OVIX_SDK_DIR");
        EXPECT_EQ(chosen.lexically_normal(), (root / layout.expected).lexically_normal());
    }
}

TEST(ExecutableResourceBundleTest, TheHostsResourcesAreTheRunningProgramsDirectory) {
    // Catches a main bundle taken from the working directory or the SDK's directory.
    ovix::test::ScratchDirectory root("ovix-exe-bundle");
    fs::create_directories(root / "sdk/OvixSdkResources.bundle");
    ::setenv("OVIX_SDK_DIR", (root / "sdk").c_str(), 1);
    const ExecutableResourceBundle bundle;
    ::unsetenv("OVIX_SDK_DIR");
    EXPECT_EQ(bundle.mainBundle().directory(), fs::read_symlink("/proc/self/exe").parent_path());
    EXPECT_EQ(bundle.codeBundle().directory(), root / "sdk");
}

}  // namespace
