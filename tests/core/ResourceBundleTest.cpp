#include <gtest/gtest.h>

#include "ovix/testing/HeadlessPlatform.h"
#include "support/ScratchDirectory.h"

namespace {

namespace fs = std::filesystem;

class ResourceLookup : public ::testing::Test {
  protected:
    void SetUp() override {
        fs::create_directories(root / "code");
        fs::create_directories(root / "host");
    }

    void touch(const fs::path& relative) { root.write(relative, "x"); }

    ovix::platform::Bundle sdkBundle() {
        ovix::testing::HeadlessPlatform::Options options;
        options.mainResources = root / "host";
        options.codeResources = root / "code";
        return ovix::testing::HeadlessPlatform::create(options).platform->sdkBundle();
    }

    ovix::test::ScratchDirectory root{"ovix-bundle"};
};

TEST_F(ResourceLookup, UsesTheResourcesBundleInsideTheCodeBundle) {
    touch("code/OvixSdkResources.bundle/ic_sdk_float.png");
    auto bundle = sdkBundle();
    EXPECT_EQ(bundle.directory(), root / "code" / "OvixSdkResources.bundle");
    EXPECT_EQ(bundle.imagePath("ic_sdk_float"),
              root / "code" / "OvixSdkResources.bundle" / "ic_sdk_float.png");
    EXPECT_FALSE(bundle.imagePath("user")) << "an absent image is nothing, not an error";
}

TEST_F(ResourceLookup, FallsBackToTheCodeBundleWhenMissingOrNotABundle) {
    touch("code/user.png");
    EXPECT_EQ(sdkBundle().directory(), root / "code");
    EXPECT_TRUE(sdkBundle().imagePath("user"));

    touch("code/OvixSdkResources.bundle");  // a plain file is not a bundle
    EXPECT_EQ(sdkBundle().directory(), root / "code");
}

TEST_F(ResourceLookup, FilesByNameAndType) {
    touch("host/GoogleService-Info.plist");
    ovix::platform::Bundle host(root / "host");
    EXPECT_EQ(host.pathForResource("GoogleService-Info", "plist"),
              root / "host" / "GoogleService-Info.plist");
    EXPECT_FALSE(host.pathForResource("GoogleService-Info", "json"));
    EXPECT_FALSE(host.pathForResource("", "plist"));
    EXPECT_FALSE(ovix::platform::Bundle::open(root / "nowhere"));
}

TEST_F(ResourceLookup, ComputedOncePerPlatform) {
    ovix::testing::HeadlessPlatform::Options options;
    options.codeResources = root / "code";
    auto h = ovix::testing::HeadlessPlatform::create(options);
    EXPECT_EQ(h.platform->sdkBundle().directory(), root / "code");
    fs::create_directories(root / "code" / "OvixSdkResources.bundle");
    EXPECT_EQ(h.platform->sdkBundle().directory(), root / "code") << "first answer is kept";
}

}  // namespace
