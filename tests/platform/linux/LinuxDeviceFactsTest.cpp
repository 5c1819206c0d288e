#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <regex>

#include "device/DeviceInfoCollector.h"
#include "ovix/testing/HeadlessPlatform.h"
#include "platform/linux/LinuxDeviceFacts.h"
#include "platform/openssl/OpenSslCrypto.h"
#include "support/ScratchDirectory.h"

namespace {

namespace fs = std::filesystem;
using ovix::platform::LinuxDeviceFacts;

const std::regex kUpperUuid("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}");

// A machine laid out under a temporary root, with an environment of its own.
class LinuxMachine : public ::testing::Test {
  protected:
    void write(const std::string& relative, const std::string& text) { root.write(relative, text); }

    LinuxDeviceFacts facts() const {
        LinuxDeviceFacts::Sources sources;
        sources.root = root.path();
        sources.environment = [env = environment](const std::string& name) -> std::optional<std::string> {
            auto it = env.find(name);
            return it == env.end() ? std::nullopt : std::optional<std::string>(it->second);
        };
        return LinuxDeviceFacts(std::make_shared<ovix::platform::OpenSslCrypto>(), sources);
    }

    ovix::test::ScratchDirectory root{"ovix-linux"};
    std::map<std::string, std::string> environment;
};

TEST_F(LinuxMachine, VendorIdIsAStableUuidDerivedFromTheMachineId) {
    write("etc/machine-id", "0123456789abcdef0123456789abcdef\n");
    const auto id = facts().vendorIdentifier();
    // Pinned: a change here would give every installed machine a new identity.
    EXPECT_EQ(id, "99C376F8-115D-4D92-AD52-79AD53261391");
    write("etc/machine-id", "0123456789ABCDEF0123456789ABCDEF");
    EXPECT_EQ(facts().vendorIdentifier(), id) << "the same id in upper case is the same machine";

    write("etc/machine-id", "fedcba9876543210fedcba9876543210\n");
    EXPECT_EQ(facts().vendorIdentifier(), "5472E95C-DB89-4F4E-A037-8EA66C75EA4D");

    for (const char* unusable :
         {"", "uninitialized\n", "0123456789abcdef", "0123456789abcdef0123456789abcdeg"}) {
        write("etc/machine-id", unusable);
        EXPECT_EQ(facts().vendorIdentifier(), "") << unusable;
    }
    fs::remove(root / "etc/machine-id");
    EXPECT_EQ(facts().vendorIdentifier(), "");
}

TEST_F(LinuxMachine, NameModelAndSystemComeFromTheirFilesWithFallbacks) {
    EXPECT_EQ(facts().deviceName(), "");
    write("etc/hostname", "static-name\n");
    EXPECT_EQ(facts().deviceName(), "static-name");
    write("proc/sys/kernel/hostname", "kernel-name\n");
    EXPECT_EQ(facts().deviceName(), "kernel-name");
    write("etc/machine-info",
          "# set by hostnamectl\nCHASSIS=laptop\nPRETTY_HOSTNAME=\"Máy của \\\"Lan\\\"\"\n");
    EXPECT_EQ(facts().deviceName(), "Máy của \"Lan\"");
    write("etc/machine-info", "PRETTY_HOSTNAME=\n");
    EXPECT_EQ(facts().deviceName(), "kernel-name") << "an empty pretty name does not count";

    EXPECT_EQ(facts().model(), "PC");
    write("sys/class/dmi/id/product_name", "  \n");
    EXPECT_EQ(facts().model(), "PC");
    write("sys/class/dmi/id/product_name", "ThinkPad X1 Carbon Gen 9\n");
    EXPECT_EQ(facts().model(), "ThinkPad X1 Carbon Gen 9");
    EXPECT_EQ(facts().localizedModel(), "ThinkPad X1 Carbon Gen 9");

    EXPECT_EQ(facts().systemName(), "Linux");
    EXPECT_EQ(facts().systemVersion(), "");
    write("usr/lib/os-release", "NAME=Fedora\nVERSION_ID=40\n");
    EXPECT_EQ(facts().systemName(), "Fedora");
    write("etc/os-release",
          "PRETTY_NAME=\"Debian GNU/Linux 12 (bookworm)\"\n# comment\n\nNAME=\"Debian "
          "GNU/Linux\"\nVERSION_ID='12'\n");
    EXPECT_EQ(facts().systemName(), "Debian GNU/Linux") << "etc/ before usr/lib/";
    EXPECT_EQ(facts().systemVersion(), "12");
    write("etc/os-release", "NAME=Arch\\ Linux\nBUILD_ID=rolling\n");
    EXPECT_EQ(facts().systemName(), "Arch Linux");
    EXPECT_EQ(facts().systemVersion(), "") << "a rolling release has no version";
}

TEST_F(LinuxMachine, LocaleIsLanguageAndRegionFromTheEnvironment) {
    EXPECT_EQ(facts().localeIdentifier(), "en_US_POSIX");
    environment["LANG"] = "vi_VN.UTF-8";
    EXPECT_EQ(facts().localeIdentifier(), "vi_VN");
    environment["LC_MESSAGES"] = "";
    EXPECT_EQ(facts().localeIdentifier(), "vi_VN") << "an empty variable is skipped";
    environment["LC_ALL"] = "sr_RS.UTF-8@latin";
    EXPECT_EQ(facts().localeIdentifier(), "sr_RS");
    environment["LC_ALL"] = "de_DE@euro";
    EXPECT_EQ(facts().localeIdentifier(), "de_DE");
    environment["LC_ALL"] = "C.UTF-8";
    EXPECT_EQ(facts().localeIdentifier(), "en_US_POSIX");
}

TEST_F(LinuxMachine, TimeZoneFromTzThenTimezoneFileThenLocaltimeLink) {
    EXPECT_EQ(facts().timeZoneIdentifier(), "UTC") << "no local-time file: the C library keeps UTC";
    fs::create_directories(root / "etc");
    fs::create_symlink("../usr/share/zoneinfo/America/New_York", root / "etc/localtime");
    EXPECT_EQ(facts().timeZoneIdentifier(), "America/New_York");
    write("etc/timezone", "Asia/Bangkok\n");
    EXPECT_EQ(facts().timeZoneIdentifier(), "Asia/Bangkok");
    environment["TZ"] = ":Asia/Ho_Chi_Minh";
    EXPECT_EQ(facts().timeZoneIdentifier(), "Asia/Ho_Chi_Minh");
    environment["TZ"] = "/usr/share/zoneinfo/posix/Europe/Paris";
    EXPECT_EQ(facts().timeZoneIdentifier(), "Europe/Paris");

    environment.clear();
    fs::remove(root / "etc/timezone");
    fs::remove(root / "etc/localtime");
    write("etc/localtime", "TZif copied, not linked");
    EXPECT_EQ(facts().timeZoneIdentifier(), "") << "a copied zone file names no zone";
}

TEST_F(LinuxMachine, PrimaryInterfaceIsTheDefaultRouteWithTheLowestMetric) {
    EXPECT_EQ(facts().primaryInterfaceName(), "");
    const std::string header =
        "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\tWindow\tIRTT\n";
    write("proc/net/route", header +
                                "docker0\t000011AC\t00000000\t0001\t0\t0\t0\t0000FFFF\t0\t0\t0\n"
                                "wlan0\t00000000\t0101A8C0\t0003\t0\t0\t600\t00000000\t0\t0\t0\n"
                                "tun0\t00000000\t00000000\t0000\t0\t0\t1\t00000000\t0\t0\t0\n"
                                "eth0\t00000000\t0100000A\t0003\t0\t0\t100\t00000000\t0\t0\t0\n"
                                "truncated\t00000000\n");
    EXPECT_EQ(facts().primaryInterfaceName(), "eth0") << "a route that is down does not count";
    write("proc/net/route", header + "docker0\t000011AC\t00000000\t0001\t0\t0\t0\t0000FFFF\t0\t0\t0\n");
    EXPECT_EQ(facts().primaryInterfaceName(), "") << "no default route";
}

TEST_F(LinuxMachine, ScreenComesFromTheHostOnceADisplayIsKnown) {
    auto f = facts();
    EXPECT_EQ(std::tuple(f.screen().width, f.screen().height, f.screen().scale), std::tuple(0.0, 0.0, 1.0));
    f.setScreenSource([] { return ovix::platform::ScreenFacts{1920, 1080, 1.25}; });
    EXPECT_EQ(f.screen().scale, 1.25);
    EXPECT_TRUE(f.carrierNames().empty());
}

// The real machine this runs on: the record must be complete and well-formed JSON.
TEST(LinuxMachineReal, RecordOfThisMachineIsReadByAnIndependentParser) {
    auto headless = ovix::testing::HeadlessPlatform::create();
    auto real = std::make_shared<LinuxDeviceFacts>(headless.platform->crypto);
    headless.platform->deviceFacts = real;
    headless.install();

    ASSERT_TRUE(real->interfaceAddresses()) << "getifaddrs failed";

    auto json = nlohmann::json::parse(
        ovix::DeviceInfoCollector::toJsonString(ovix::DeviceInfoCollector::buildDeviceInfoJson({}, {})));
    EXPECT_TRUE(std::regex_match(json.at("fingerprint").get<std::string>(), std::regex("[0-9a-f]{64}")));
    const auto deviceId = json.at("device_id").get<std::string>();
    EXPECT_TRUE(deviceId.empty() || std::regex_match(deviceId, kUpperUuid)) << deviceId;
    const auto ip = json.at("network").at("ip").get<std::string>();
    EXPECT_TRUE(ip.empty() || std::regex_match(ip, std::regex(R"(\d{1,3}(\.\d{1,3}){3})"))) << ip;
    EXPECT_FALSE(json.at("os").at("sdk").get<std::string>().empty());
}

}  // namespace
