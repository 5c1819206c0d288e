#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>

#include "device/DeviceInfoCollector.h"
#include "ovix/testing/HeadlessDeviceFacts.h"
#include "ovix/testing/HeadlessPlatform.h"

namespace {

using ovix::DeviceInfoCollector;
using ovix::Dictionary;
using ovix::Value;
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
    });
    auto record = DeviceInfoCollector::buildDeviceInfoJson("fb", "adj");

    std::vector<std::string> keys;
    for (const auto& [k, v] : record)
        keys.push_back(k);
    EXPECT_EQ(keys, (std::vector<std::string>{"adjust_id", "device_id", "fingerprint", "firebase_id",
                                              "hardware", "network", "os", "screen"}));
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
    EXPECT_EQ(
        map(record, "network"),
        (Dictionary{
            {"carrier", "Viettel"}, {"locale", "vi_VN"}, {"timezone", "Asia/Ho_Chi_Minh"}, {"ip", ""}}));
}

TEST_F(DeviceRecord, FingerprintIsStableAndFollowsVersionAndVendorId) {
    auto fingerprint = [] { return text(DeviceInfoCollector::buildDeviceInfoJson({}, {}), "fingerprint"); };
    const auto first = fingerprint();
    EXPECT_EQ(first, "7e411dee753265941a3e42c9ecc37cf5f1864bd1b704d4d0dd7c0016f7cf45b2");
    EXPECT_EQ(fingerprint(), first);

    change([](Facts& f) { f.systemVersion = "1.1"; });
    EXPECT_NE(fingerprint(), first) << "a system update changes the fingerprint";

    // Without a vendor id the source text ends in the bar: "Apple|PC|iOS|1.0|".
    change([](Facts& f) {
        f.systemVersion = "1.0";
        f.vendorIdentifier = "";
    });
    EXPECT_EQ(fingerprint(), "c05018ff7a26b9d1aec4e30b12c746164baa5e4df23338043829bc31cb99ede0");
    EXPECT_EQ(text(DeviceInfoCollector::buildDeviceInfoJson({}, {}), "device_id"), "");
}

TEST_F(DeviceRecord, AbsentAndEmptyIdsGiveTheSameRecord) {
    EXPECT_EQ(DeviceInfoCollector::buildDeviceInfoJson(std::nullopt, std::nullopt),
              DeviceInfoCollector::buildDeviceInfoJson("", ""));
    auto record = DeviceInfoCollector::buildDeviceInfoJson(std::nullopt, "a");
    EXPECT_EQ(text(record, "firebase_id"), "");
    EXPECT_EQ(text(record, "adjust_id"), "a");
}

TEST_F(DeviceRecord, ScreenSizeIsTruncatedToIntegersAndScaleStaysFloating) {
    change([](Facts& f) { f.screen = {414.9, -0.7, 3}; });
    const auto record = DeviceInfoCollector::buildDeviceInfoJson({}, {});
    const auto& screen = map(record, "screen");
    EXPECT_EQ(screen.size(), 3u);
    EXPECT_EQ(screen.at("width").asInt(), 414);
    EXPECT_EQ(screen.at("height").asInt(), 0) << "toward zero, not down";
    EXPECT_EQ(screen.at("scale").asDouble(), 3.0);
}

TEST_F(DeviceRecord, NoCarrierReadsEmpty) {
    change([](Facts& f) { f.carrierNames.clear(); });
    EXPECT_EQ(text(map(DeviceInfoCollector::buildDeviceInfoJson({}, {}), "network"), "carrier"), "");
}

TEST_F(DeviceRecord, IpIsTheLastIpv4AddressOfThePrimaryInterface) {
    change([](Facts& f) {
        f.primaryInterfaceName = "eth0";
        f.interfaceAddresses = std::vector<InterfaceAddress>{
            {"lo", Family::IPv4, "127.0.0.1"},
            {"eth0", Family::IPv4, "192.168.1.20"},
            {"eth0", Family::IPv6, "fe80::1%eth0"},
            {"eth0", Family::IPv4, "10.0.0.7"},
            {"eth0.1", Family::IPv4, "172.16.0.1"},
            {"wlan0", Family::IPv4, "192.168.8.3"},
            {"eth0", Family::Other, ""},
        };
    });
    EXPECT_EQ(text(map(DeviceInfoCollector::buildDeviceInfoJson({}, {}), "network"), "ip"), "10.0.0.7");
}

TEST(DeviceIpWalk, NoIpv4OnTheInterfaceOrNoListGivesEmpty) {
    std::vector<InterfaceAddress> ipv6Only{{"en0", Family::IPv6, "fe80::1"},
                                           {"pdp_ip0", Family::IPv4, "10.1.1.1"}};
    EXPECT_EQ(DeviceInfoCollector::ipv4Address(ipv6Only, "en0"), "");
    EXPECT_EQ(DeviceInfoCollector::ipv4Address(std::nullopt, "en0"), "");
    EXPECT_EQ(DeviceInfoCollector::ipv4Address(std::vector<InterfaceAddress>{}, "en0"), "");
    EXPECT_EQ(DeviceInfoCollector::ipv4Address(ipv6Only, ""), "") << "no primary interface matches nothing";
}

TEST(DeviceIpWalk, HostTextStopsAtNulAndIsRepairedNotRejected) {
    using namespace std::string_literals;
    std::vector<InterfaceAddress> list{{"en0", Family::IPv4, "10.0.0.1\0garbage"s}};
    EXPECT_EQ(DeviceInfoCollector::ipv4Address(list, "en0"), "10.0.0.1");
    list = {{"en0", Family::IPv4, "10.0.\xff.\xe0\x80"}};
    EXPECT_EQ(DeviceInfoCollector::ipv4Address(list, "en0"), "10.0.\xEF\xBF\xBD.\xEF\xBF\xBD\xEF\xBF\xBD");
    list = {{"en0", Family::IPv4, "v\xc3\xa9 \xf0\x9f\x93\xb2"}};  // well-formed text is kept as it is
    EXPECT_EQ(DeviceInfoCollector::ipv4Address(list, "en0"), "v\xc3\xa9 \xf0\x9f\x93\xb2");
}

TEST_F(DeviceRecord, JsonTextIsCompactAndReadByAnIndependentParser) {
    change([](Facts& f) {
        f.deviceName = "Máy của \"Lan\"";
        f.screen = {375.5, 667, 2};
    });
    const auto json = DeviceInfoCollector::toJsonString(DeviceInfoCollector::buildDeviceInfoJson({}, {}));
    EXPECT_EQ(json.find('\n'), std::string::npos);
    EXPECT_EQ(json.find("\": "), std::string::npos) << json;
    EXPECT_EQ(json.find(", \""), std::string::npos) << json;

    auto parsed = nlohmann::json::parse(json);
    ASSERT_TRUE(parsed.is_object());
    EXPECT_EQ(parsed.size(), 8u);
    EXPECT_EQ(parsed["hardware"]["device"], "Máy của \"Lan\"");
    EXPECT_TRUE(parsed["screen"]["width"].is_number_integer());
    EXPECT_EQ(parsed["screen"]["width"], 375);
    EXPECT_TRUE(parsed["screen"]["scale"].is_number_float()) << "a floating number, even when whole";
    EXPECT_EQ(parsed["screen"]["scale"], 2.0);
    EXPECT_EQ(parsed["firebase_id"], "");
}

using DeviceRecordDeathTest = DeviceRecord;

TEST_F(DeviceRecordDeathTest, ScreenThatIsNoIntegerHalts) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    for (double bad :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(), 1e19}) {
        change([bad](Facts& f) { f.screen = {bad, 100, 1}; });
        EXPECT_DEATH(DeviceInfoCollector::buildDeviceInfoJson({}, {}), "") << bad;
    }
}

}  // namespace
