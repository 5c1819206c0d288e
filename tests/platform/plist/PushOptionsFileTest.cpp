#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <future>

#include "ovix/testing/HeadlessPlatform.h"
#include "platform/linux/LinuxPushClient.h"
#include "platform/plist/PropertyListReader.h"
#include "platform/plist/PushOptionsFile.h"
#include "support/ScratchDirectory.h"

namespace {

namespace fs = std::filesystem;
using ovix::Value;
using ovix::platform::PropertyListReader;
using ovix::platform::PushOptions;
using ovix::platform::PushOptionsFile;

const fs::path kData = OVIX_PUSH_TEST_DATA;

std::string slurp(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

class OptionsFiles : public ::testing::Test {
  protected:
    fs::path write(const std::string& name, std::string_view bytes) { return dir.write(name, bytes); }
    ovix::test::ScratchDirectory dir{"ovix-plist"};
};

// Both files were written by a standard property-list writer (Python's plistlib).
TEST(PushOptionsFile, ReadsXmlAndBinaryOptionsFromAStandardWriter) {
    auto xml = PushOptionsFile::read(kData / "options-xml.plist");
    ASSERT_TRUE(xml);
    EXPECT_EQ(*xml, (PushOptions{.googleAppId = "1:123456789012:ios:abcdef0123456789",
                                 .gcmSenderId = "123456789012",
                                 .apiKey = "AIzaSyDemoKeyForTests000000000000000",
                                 .projectId = "ovix-demo",
                                 .bundleId = "vn.ovix.demo",
                                 .clientId = "",
                                 .storageBucket = "ovix-demo.appspot.com",
                                 .databaseUrl = ""}));

    auto binary = PushOptionsFile::read(kData / "options-binary.plist");
    ASSERT_TRUE(binary);
    EXPECT_EQ(binary->googleAppId, "1:123456789012:ios:binary0000000001");
    EXPECT_EQ(binary->projectId, "ovix-binary");
    EXPECT_EQ(binary->gcmSenderId, "123456789012");
}

TEST(PropertyListReader, BinaryValuesKeepTheirKinds) {
    auto root = PropertyListReader::readFile(kData / "options-binary.plist");
    ASSERT_TRUE(root);
    EXPECT_EQ(root->find("IS_GCM_ENABLED")->asBool(), true);
    EXPECT_EQ(root->find("IS_ADS_ENABLED")->asBool(), false);
    const Value* nested = root->find("NESTED");
    ASSERT_TRUE(nested && nested->asObject());
    EXPECT_EQ(*nested->find("blob")->asString(), std::string("\x00\x01\xff", 3));
    const auto& list = *nested->find("list")->asArray();
    ASSERT_EQ(list.size(), 5u);
    EXPECT_EQ(list[0].asUInt(), 1u);
    EXPECT_EQ(list[1].asInt(), -2);
    EXPECT_EQ(list[2].asDouble(), 2.5);
    EXPECT_EQ(*list[3].asString(), "x");
    // 2024-01-02T03:04:05Z
    EXPECT_EQ(list[4].asDate(), ovix::Date(std::chrono::seconds(1704164645)));
}

TEST_F(OptionsFiles, XmlDatesAndNestingMatchTheBinaryReading) {
    auto path = write("x.plist", R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><dict>
  <key>when</key><date>2001-01-01T00:00:10Z</date>
  <key>list</key><array><integer>-3</integer><real>0.5</real><string>Tiếng Việt</string></array>
</dict></plist>)");
    auto root = PropertyListReader::readFile(path);
    ASSERT_TRUE(root);
    EXPECT_EQ(root->find("when")->asDate(), ovix::Date(std::chrono::seconds(978307210)));
    const auto& list = *root->find("list")->asArray();
    EXPECT_EQ(list.at(0).asInt(), -3);
    EXPECT_EQ(list.at(1).asDouble(), 0.5);
    EXPECT_EQ(*list.at(2).asString(), "Tiếng Việt");
}

TEST_F(OptionsFiles, UnreadableOrUnusableFilesAreNoOptions) {
    const std::string binary = slurp(kData / "options-binary.plist");
    const std::vector<fs::path> refused{
        dir / "missing.plist",
        dir.path(),  // a directory
        write("empty.plist", ""),
        write("garbage.plist", "GOOGLE_APP_ID = 1:2:ios:3"),
        write("truncated-binary.plist", binary.substr(0, binary.size() / 2)),
        write("truncated-xml.plist", slurp(kData / "options-xml.plist").substr(0, 300)),
        write("array.plist", R"(<plist version="1.0"><array><string>GOOGLE_APP_ID</string></array></plist>)"),
        write("no-app-id.plist",
              R"(<plist version="1.0"><dict><key>API_KEY</key><string>k</string></dict></plist>)"),
        write("empty-app-id.plist",
              R"(<plist version="1.0"><dict><key>GOOGLE_APP_ID</key><string></string></dict></plist>)"),
        write("number-app-id.plist",
              R"(<plist version="1.0"><dict><key>GOOGLE_APP_ID</key><integer>1</integer></dict></plist>)"),
    };
    for (const auto& path : refused) {
        EXPECT_FALSE(PushOptionsFile::read(path)) << path;
    }
    auto minimal = write("minimal.plist",
                         R"(<plist version="1.0"><dict><key>GOOGLE_APP_ID</key><string>1:2:ios:3</string>)"
                         R"(<key>API_KEY</key><integer>5</integer></dict></plist>)");
    auto options = PushOptionsFile::read(minimal);
    ASSERT_TRUE(options);
    EXPECT_EQ(options->googleAppId, "1:2:ios:3");
    EXPECT_EQ(options->apiKey, "") << "an entry that is not text reads as empty";
}

TEST_F(OptionsFiles, DesktopClientReadsOptionsButCannotSubscribe) {
    auto headless = ovix::testing::HeadlessPlatform::create();
    headless.install();
    ovix::platform::LinuxPushClient client;
    EXPECT_FALSE(client.configure(write("bad.plist", "nope")));
    EXPECT_FALSE(client.hasDefaultApp());
    EXPECT_TRUE(client.configure(kData / "options-xml.plist"));
    EXPECT_TRUE(client.hasDefaultApp());
    EXPECT_EQ(client.options()->projectId, "ovix-demo");

    client.setDelegate({});
    client.setDelegate({});
    EXPECT_EQ(headless.console->count("⚠️ Push messaging is unsupported on this platform"), 1u);

    std::promise<std::optional<std::string>> answer;
    auto caller = std::this_thread::get_id();
    std::thread::id answeredOn;
    client.subscribe("games-dev-1", [&](std::optional<std::string> error) {
        answeredOn = std::this_thread::get_id();
        answer.set_value(error);
    });
    auto error = answer.get_future().get();
    EXPECT_EQ(error, "Push messaging is unsupported on this platform");
    EXPECT_NE(answeredOn, caller) << "never inline";
}

}  // namespace
