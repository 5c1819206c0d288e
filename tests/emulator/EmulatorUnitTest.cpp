// The emulator's own parsing: fault texts on the command line and config files.
#include <gtest/gtest.h>

#include <stdexcept>
#include <tuple>

#include "emulator/AdminRoutes.h"
#include "emulator/EmulatorConfig.h"
#include "emulator/EmulatorServer.h"
#include "emulator/FaultInjector.h"
#include "emulator/LoginPage.h"
#include "support/ScratchDirectory.h"

namespace ovix::emulator {
namespace {

TEST(EmulatorFaultText, ReadsEveryItemAndRefusesWhatItCannotRead) {
    const std::tuple<std::string, Fault> valid[] = {
        {"drop", Fault{0, 0, Fault::Body::Intact, true, 0}},
        {"latency:1500,status:503", Fault{1500, 503, Fault::Body::Intact, false, 0}},
        {"truncated,times:3", Fault{0, 0, Fault::Body::Truncated, false, 3}},
        {"malformed,latency:0", Fault{0, 0, Fault::Body::Malformed, false, 0}},
    };
    for (const auto& [text, fault] : valid) {
        SCOPED_TRACE(text);
        EXPECT_EQ(Fault::parse(text), fault);
        EXPECT_EQ(Fault::parse(Fault::parse(text).describe()), fault) << "describe() reads back";
        EXPECT_EQ(Fault::fromJson(fault.toJson()), fault);
    }
    for (const char* text : {"", "status", "status:99", "status:600", "latency:-1", "latency:5s", "times:0",
                             "drop,", "Drop", "status:503 ", "slow"}) {
        SCOPED_TRACE(text);
        EXPECT_THROW(Fault::parse(text), std::invalid_argument);
    }
}

TEST(EmulatorFaultText, TheInjectorKnowsOnlyTheEmulatorsRoutes) {
    FaultInjector faults(EmulatorServer::routeNames());
    EXPECT_NO_THROW(faults.setFromText("upload=drop"));
    EXPECT_THROW(faults.setFromText("uploads=drop"), std::invalid_argument);
    EXPECT_THROW(faults.setFromText("upload"), std::invalid_argument);
    EXPECT_THROW(faults.setFromText("upload="), std::invalid_argument);
    EXPECT_EQ(faults.snapshot().size(), 1u);
}

class EmulatorConfigTest : public ::testing::Test {
  protected:
    void SetUp() override {
        dir.write("accounts.json", R"({"accounts":[{"username":"a","password":"p","profile":{"dob":"x"}}]})");
        dir.write("news.json", R"({"items":[{"Id":1}]})");
    }
    EmulatorConfig load(const std::string& config) {
        return EmulatorConfig::load(dir.write("config.json", config));
    }
    test::ScratchDirectory dir{"ovix-emulator-config"};
};

TEST_F(EmulatorConfigTest, TheShippedConfigLoadsWithItsDemoPlayersAndNews) {
    const auto config = EmulatorConfig::load(std::string(OVIX_EMULATOR_DATA_DIR) + "/config.json");
    EXPECT_GE(config.accounts.size(), 2u);
    EXPECT_GE(config.newsItems.size(), 2u);
    EXPECT_TRUE(config.clients.contains("demo-game"));
}

TEST_F(EmulatorConfigTest, RulesAndFilesResolveAndAnUnlistedProductTakesTheDefault) {
    const auto config = load(R"({"accountsFile":"accounts.json","newsFile":"news.json","clients":["g"],
        "eligibility":{"default":"refuse","products":{"x":"allow","y":429}},"faults":{"news":{"status":500}}})");
    EXPECT_EQ(config.ruleFor("x").kind, EmulatorConfig::Rule::Kind::Allow);
    EXPECT_EQ(std::tuple(config.ruleFor("y").kind, config.ruleFor("y").status),
              std::tuple(EmulatorConfig::Rule::Kind::Status, 429));
    EXPECT_EQ(config.ruleFor("z").kind, EmulatorConfig::Rule::Kind::Refuse);
    ASSERT_NE(config.findAccount("a"), nullptr);
    EXPECT_EQ(config.findAccount("a")->profile.at("dob"), "x");
    EXPECT_EQ(config.newsItems.size(), 1u);
    EXPECT_EQ(config.faults.at("news").status, 500);
}

TEST_F(EmulatorConfigTest, AMistakeIsReportedWithTheFileItIsIn) {
    const std::tuple<std::string, std::string> cases[] = {
        {R"({"acountsFile":"accounts.json"})", "config.json: unknown member \"acountsFile\""},
        {R"({"accountsFile":"missing.json"})", "missing.json: cannot be read"},
        {R"({"eligibility":{"default":"maybe"}})", "config.json: an eligibility rule"},
        {R"({"eligibility":{"products":{"x":200.5}}})", "config.json: an eligibility rule"},
        {R"({"faults":{"news":{"latency":5}}})", "config.json: fault member \"latency\""},
        {R"({"clients":["",1]})", "config.json: \"clients\""},
        {R"([1,2])", "config.json: the config is a JSON object"},
        {R"({"newsFile":"accounts.json"})", "accounts.json: expected {\"items\""},
        {"{", "config.json: not JSON"},
    };
    for (const auto& [text, message] : cases) {
        SCOPED_TRACE(text);
        try {
            load(text);
            ADD_FAILURE() << "loaded";
        } catch (const std::runtime_error& error) {
            EXPECT_NE(std::string(error.what()).find(message), std::string::npos) << error.what();
        }
    }
}

TEST(EmulatorLoginPage, AClientIdCannotBreakOutOfTheScriptOrTheMarkup) {
    const std::string id = "x</script><img src=y onerror=alert(1)>\"'";
    const auto page = LoginPage::html(id);
    EXPECT_EQ(page.find("</script><img"), std::string::npos);
    EXPECT_EQ(page.find("<img src=y"), std::string::npos);
    EXPECT_NE(page.find(R"("x\u003c/script>\u003cimg src=y onerror=alert(1)>\"'")"), std::string::npos);
}

TEST(EmulatorAdmin, OnlyLoopbackPeersCountAsThisMachine) {
    const std::tuple<const char*, bool> cases[] = {
        {"127.0.0.1", true},        {"127.8.9.10", true},  {"::1", true},
        {"::ffff:127.0.0.1", true}, {"10.0.0.127", false}, {"1270.0.0.1", false},
        {"::ffff:10.0.0.1", false}, {"::2", false},        {"", false},
    };
    for (const auto& [address, loopback] : cases) {
        SCOPED_TRACE(address);
        EXPECT_EQ(AdminRoutes::isLoopback(address), loopback);
    }
}

}  // namespace
}  // namespace ovix::emulator
