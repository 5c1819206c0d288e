#include <gtest/gtest.h>

#include <limits>
#include <nlohmann/json.hpp>

#include "device/DeviceInfoCollector.h"
#include "ovix/testing/HeadlessDeviceFacts.h"
#include "ovix/testing/HeadlessPlatform.h"

namespace {

using ovix::DeviceInfoCollector;
using ovix::Dictionary;
using ovix::platform::InterfaceAddress;
using Family = ovix::platform::InterfaceAddress::Family;
using Facts = ovix::testing::HeadlessDeviceFacts::Facts;

class DeviceRecord : public ::testing::Test {
  protected:
    void SetUp() override {
        headless.platform->deviceFacts = facts;
        headless.install();
    }
    void change(const std::function<void(Facts&)>& edit) {
        auto f = facts->get();
        edit(f);
        facts->set(f);
    }
    static Dictionary build() { return DeviceInfoCollector::buildDeviceInfoJson({}, {}); }
    static const Dictionary& map(const Dictionary& record, const std::string& key) {
        return *record.at(key).asObject();
    }
    static std::string text(const Dictionary& d, const std::string& key) { return *d.at(key).asString(); }

    ovix::testing::HeadlessPlatform headless = ovix::testing::HeadlessPlatform::create();
    std::shared_ptr<ovix::testing::HeadlessDeviceFacts> facts =
        std::make_shared<ovix::testing::HeadlessDeviceFacts>();
};

TEST_F(DeviceRecord, CarriesTheFactsUnderTheContractedKeysAndConstants) {
    change([](Facts& f) {
        f.vendorIdentifier = "E621E1F8-C36C-495A-93FC-0C247A3E6E5F";
        f.deviceName = "Phone";
        f.model = "iPhone";
        f.localizedModel = "iPhone (vi)";
        f.systemName = "iOS";
        f.systemVersion = "17.2";
        f.carrierNames = {"Viettel", "Mobifone"};
        f.localeIdentifier = "vi_VN";
        f.timeZoneIdentifier = "Asia/Ho_Chi_Minh";
        // The last IPv4 address of the primary interface is the one reported.
        f.primaryInterfaceName = "eth0";
        f.interfaceAddresses = std::vector<InterfaceAddress>{
            {"lo", Family::IPv4, "127.0.0.1"},      {"eth0", Family::IPv4, "192.168.1.20"},
            {"eth0", Family::IPv6, "fe80::1"},      {"eth0", Family::IPv4, "10.0.0.7"},
            {"eth0.1", Family::IPv4, "172.16.0.1"}, {"eth0", Family::Other, ""},
        };
    });
    auto record = DeviceInfoCollector::buildDeviceInfoJson("fb", "adj");

    EXPECT_EQ(record.size(), 8u) << "the four ids, os, hardware, network and screen";
    EXPECT_EQ(text(record, "device_id"), "E621E1F8-C36C-495A-93FC-0C247A3E6E5F");
    EXPECT_EQ(text(record, "firebase_id"), "fb");
    EXPECT_EQ(text(record, "adjust_id"), "adj");
    EXPECT_EQ(text(record, "fingerprint"),
              "98280271d5e1833a04b854aecb9fa1da53c2b4391c145a7544966c98138059df");

    EXPECT_EQ(
        map(record, "os"),
        (Dictionary{
            {"platform", "ios"}, {"version", "17.2"}, {"sdk", "iOS"}, {"build_fingerprint", "Phone-17.2"}}));
    EXPECT_EQ(map(record, "hardware"), (Dictionary{{"manufacturer", "Apple"},
                                                   {"brand", "Apple"},
                                                   {"model", "iPhone"},
                                                   {"device", "Phone"},
                                                   {"board", "AppleBoard"},
                                                   {"hardware", "AppleChip"},
                                                   {"product", "iPhone (vi)"},
                                                   {"cpu_abi", "arm64"}}));
    EXPECT_EQ(map(record, "network"), (Dictionary{{"carrier", "Viettel"},
                                                  {"locale", "vi_VN"},
                                                  {"timezone", "Asia/Ho_Chi_Minh"},
                                                  {"ip", "10.0.0.7"}}));
}

TEST_F(DeviceRecord, FingerprintFollowsVersionAndVendorId) {
    auto fingerprint = [] { return text(build(), "fingerprint"); };
    const auto first = fingerprint();
    EXPECT_EQ(first, "7e411dee753265941a3e42c9ecc37cf5f1864bd1b704d4d0dd7c0016f7cf45b2");

    change([](Facts& f) { f.systemVersion = "1.1"; });
    EXPECT_NE(fingerprint(), first) << "a system update changes the fingerprint";

    // Without a vendor id the source text ends in the bar: "Apple|PC|iOS|1.0|".
    change([](Facts& f) {
        f.systemVersion = "1.0";
        f.vendorIdentifier = "";
    });
    EXPECT_EQ(fingerprint(), "c05018ff7a26b9d1aec4e30b12c746164baa5e4df23338043829bc31cb99ede0");
}

TEST_F(DeviceRecord, AbsentAndEmptyIdsGiveTheSameRecord) {
    EXPECT_EQ(build(), DeviceInfoCollector::buildDeviceInfoJson("", ""));
    auto record = DeviceInfoCollector::buildDeviceInfoJson(std::nullopt, "a");
    EXPECT_EQ(text(record, "firebase_id"), "");
    EXPECT_EQ(text(record, "adjust_id"), "a");
}

TEST(DeviceIpWalk, EmptyWithoutIpv4OnTheInterfaceAndHostTextIsRepaired) {
    using namespace std::string_literals;
    using List = std::optional<std::vector<InterfaceAddress>>;
    const List ipv6Only = std::vector<InterfaceAddress>{{"en0", Family::IPv6, "fe80::1"},
                                                        {"pdp_ip0", Family::IPv4, "10.1.1.1"}};
    const struct {
        List list;
        std::string primary, expected;
    } cases[] = {
        {ipv6Only, "en0", ""},
        {std::nullopt, "en0", ""},
        {std::vector<InterfaceAddress>{}, "en0", ""},
        {ipv6Only, "", ""},  // no primary interface matches nothing
        {std::vector<InterfaceAddress>{{"en0", Family::IPv4, "10.0.0.1\0garbage"s}}, "en0", "10.0.0.1"},
        {std::vector<InterfaceAddress>{{"en0", Family::IPv4, "10.0.\xff.\xe0\x80"}}, "en0",
         "10.0.\xEF\xBF\xBD.\xEF\xBF\xBD\xEF\xBF\xBD"},
        {std::vector<InterfaceAddress>{{"en0", Family::IPv4, "v\xc3\xa9 \xf0\x9f\x93\xb2"}}, "en0",
         "v\xc3\xa9 \xf0\x9f\x93\xb2"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(DeviceInfoCollector::ipv4Address(c.list, c.primary), c.expected) << c.expected;
    }
}

TEST_F(DeviceRecord, JsonTextIsCompactTruncatesTheScreenAndIsReadByAnIndependentParser) {
    change([](Facts& f) {
        f.deviceName = "Máy của \"Lan\"";
        f.screen = {414.9, -0.7, 3};
        f.carrierNames.clear();
    });
    const auto json = DeviceInfoCollector::toJsonString(build());
    EXPECT_EQ(json.find('\n'), std::string::npos);
    EXPECT_EQ(json.find("\": "), std::string::npos) << json;
    EXPECT_EQ(json.find(", \""), std::string::npos) << json;

    auto parsed = nlohmann::json::parse(json);
    ASSERT_TRUE(parsed.is_object());
    EXPECT_EQ(parsed.size(), 8u);
    EXPECT_EQ(parsed["hardware"]["device"], "Máy của \"Lan\"");
    EXPECT_EQ(parsed["network"]["carrier"], "");
    EXPECT_EQ(parsed["screen"].size(), 3u);
    EXPECT_TRUE(parsed["screen"]["width"].is_number_integer());
    EXPECT_EQ(parsed["screen"]["width"], 414);
    EXPECT_EQ(parsed["screen"]["height"], 0) << "toward zero, not down";
    EXPECT_TRUE(parsed["screen"]["scale"].is_number_float()) << "a floating number, even when whole";
    EXPECT_EQ(parsed["screen"]["scale"], 3.0);
}

using DeviceRecordDeathTest = DeviceRecord;

TEST_F(DeviceRecordDeathTest, ScreenThatIsNoIntegerHalts) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    for (double bad :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(), 1e19}) {
        change([bad](Facts& f) { f.screen = {bad, 100, 1}; });
        EXPECT_DEATH(build(), "") << bad;
    }
}

}  // namespace
