#include <gtest/gtest.h>

#include <filesystem>
#include <thread>

#include "core/SessionManager.h"
#include "device/ScratchDirectory.h"
#include "ovix/OvixCore.h"
#include "ovix/testing/HeadlessPlatform.h"
#include "push/FirebaseManager.h"
#include "push/RecordingApplication.h"

namespace {

namespace fs = std::filesystem;
using ovix::Dictionary;
using ovix::FirebaseManager;

const fs::path kData = OVIX_PUSH_TEST_DATA;
constexpr const char* kHostLine = "✅ Firebase configured with host app GoogleService-Info.plist";
constexpr const char* kSdkLine = "✅ Firebase configured with SDK bundle GoogleService-Info.plist";
constexpr const char* kNotFoundLine = "❌ GoogleService-Info.plist not found in host app bundle or SDK bundle";
constexpr const char* kAlreadyLine = "⚠️ Firebase already configured";

class Push : public ::testing::Test {
  protected:
    void SetUp() override {
        fs::create_directories(root / "host");
        fs::create_directories(root / "sdk");
        ovix::testing::HeadlessPlatform::Options options;
        options.mainResources = root / "host";
        options.codeResources = root / "sdk";
        headless = ovix::testing::HeadlessPlatform::create(options);
        application = std::make_shared<ovix::test::RecordingApplication>(headless.mainQueue);
        headless.platform->application = application;
        headless.install();
        headless.store->setString(ovix::SessionManager::shared().clientIdKey, "client-7");
    }

    void place(const fs::path& source, const fs::path& directory) {
        fs::create_directories(root / directory);
        fs::copy_file(source, root / directory / "GoogleService-Info.plist",
                      fs::copy_options::overwrite_existing);
    }
    std::vector<std::string> lines() const { return headless.console->lines(); }
    FirebaseManager& manager = FirebaseManager::shared();

    ovix::test::ScratchDirectory root{"ovix-push"};
    ovix::testing::HeadlessPlatform headless;
    std::shared_ptr<ovix::test::RecordingApplication> application;
};

TEST_F(Push, HostOptionsComeFirstThenDelegatesAndPermissionRequest) {
    place(kData / "options-xml.plist", "host");
    place(kData / "options-binary.plist", "sdk");
    manager.configure();

    EXPECT_EQ(lines(), std::vector<std::string>{kHostLine});
    ASSERT_TRUE(headless.pushClient->configuredOptions());
    EXPECT_EQ(headless.pushClient->configuredOptions()->googleAppId, "1:123456789012:ios:abcdef0123456789");
    EXPECT_EQ(headless.pushClient->delegate().get(), &manager);
    EXPECT_EQ(headless.notificationCenter->delegate().get(), &manager);
    EXPECT_EQ(headless.notificationCenter->requestCount(), 1);
    EXPECT_EQ(headless.notificationCenter->lastRequestOptions(), 7u);
    EXPECT_EQ(application->registrations(), 0) << "granted inline, yet registered only from the main queue";
    headless.mainQueue->runUntilIdle();
    EXPECT_EQ(application->registrations(), 1);
}

TEST_F(Push, OptionsOnlyInTheSdkBundleAreUsedWithTheSecondLine) {
    place(kData / "options-binary.plist", "sdk");
    manager.configure();
    EXPECT_EQ(lines(), std::vector<std::string>{kSdkLine});
    EXPECT_EQ(headless.pushClient->configuredOptions()->projectId, "ovix-binary");
}

TEST_F(Push, UnreadableHostFileFallsBackToTheSdkResourceBundle) {
    root.write("host/GoogleService-Info.plist", "not a property list");
    place(kData / "options-xml.plist", "sdk/OvixSdkResources.bundle");
    manager.configure();
    EXPECT_EQ(lines(), std::vector<std::string>{kSdkLine});
    auto attempts = headless.pushClient->configureAttempts();
    ASSERT_FALSE(attempts.empty());
    EXPECT_EQ(attempts.front(), root / "host" / "GoogleService-Info.plist")
        << "the host's file is tried first";
}

TEST_F(Push, NoUsableOptionsStillInstallsDelegatesAndAsks) {
    place(kData / "options-xml.plist", "host");
    headless.pushClient->setAcceptsOptions(false);
    manager.configure();
    EXPECT_EQ(lines(), std::vector<std::string>{kNotFoundLine});
    EXPECT_FALSE(headless.pushClient->hasDefaultApp());
    EXPECT_EQ(headless.pushClient->delegate().get(), &manager);
    EXPECT_EQ(headless.notificationCenter->delegate().get(), &manager);
    EXPECT_EQ(headless.notificationCenter->requestCount(), 1);
}

TEST_F(Push, AlreadyConfiguredOnlyWarns) {
    place(kData / "options-xml.plist", "host");
    headless.pushClient->setHasDefaultApp(true);
    manager.configure();
    EXPECT_EQ(lines(), std::vector<std::string>{kAlreadyLine});
    EXPECT_TRUE(headless.pushClient->configureAttempts().empty());
    EXPECT_EQ(headless.pushClient->delegate(), nullptr);
    EXPECT_EQ(headless.notificationCenter->delegate(), nullptr);
    EXPECT_EQ(headless.notificationCenter->requestCount(), 0);
}

TEST_F(Push, InitSdkRunsThePushSetUpOnEveryCall) {
    place(kData / "options-xml.plist", "host");
    ovix::OvixCore::shared().initSdk("client-9", "", "", "");
    ovix::OvixCore::shared().initSdk("client-9", "", "", "");
    EXPECT_EQ(lines(), (std::vector<std::string>{kHostLine, kAlreadyLine}));
    EXPECT_EQ(headless.notificationCenter->requestCount(), 1);
}

TEST_F(Push, GrantedPermissionRegistersOnTheMainQueueOnly) {
    headless.notificationCenter->setDeliverOnBackgroundThread(true);
    manager.configure();
    ASSERT_TRUE(headless.mainQueue->runUntil([&] { return application->registrations() > 0; }));
    EXPECT_EQ(application->registrations(), 1);
    EXPECT_EQ(application->offMainCalls(), 0);
}

TEST_F(Push, RefusedPermissionRegistersNothingAndSaysNothing) {
    headless.notificationCenter->setAnswer(false, "denied by the player");
    manager.configure();
    headless.mainQueue->runUntilIdle();
    EXPECT_EQ(application->registrations(), 0);
    EXPECT_EQ(lines(), std::vector<std::string>{kNotFoundLine});
}

TEST_F(Push, EveryTokenIsCachedPrintedAndSubscribesTheSameTopic) {
    manager.configure();
    headless.console->clear();

    ASSERT_TRUE(headless.pushClient->deliverToken("token-1"));
    EXPECT_EQ(manager.fcmTokenCache(), "token-1");
    // A refresh, from the service's own thread.
    std::thread([&] { headless.pushClient->deliverToken("token-2"); }).join();
    EXPECT_EQ(manager.fcmTokenCache(), "token-2");

    EXPECT_EQ(headless.pushClient->subscriptions(),
              (std::vector<std::string>{"games-dev-client-7", "games-dev-client-7"}));
    EXPECT_EQ(lines(), (std::vector<std::string>{
                           "📲 FCM Token: token-1", "✅ Subscribed to topic: games-dev-client-7",
                           "📲 FCM Token: token-2", "✅ Subscribed to topic: games-dev-client-7"}));
    EXPECT_FALSE(manager.apnsTokenReady());
}

TEST_F(Push, AbsentTokenDoesNothing) {
    manager.configure();
    headless.pushClient->deliverToken("kept");
    headless.console->clear();
    headless.pushClient->deliverToken(std::nullopt);
    EXPECT_EQ(manager.fcmTokenCache(), "kept");
    EXPECT_TRUE(lines().empty());
    EXPECT_EQ(headless.pushClient->subscriptions().size(), 1u);
}

TEST_F(Push, TopicKeepsTheHyphenWithoutClientIdAndReportsFailures) {
    headless.store->remove(ovix::SessionManager::shared().clientIdKey);
    headless.pushClient->setSubscriptionError("The Internet connection appears to be offline.");
    manager.configure();
    headless.console->clear();
    headless.pushClient->deliverToken("t");
    EXPECT_EQ(headless.pushClient->subscriptions(), std::vector<std::string>{"games-dev-"});
    EXPECT_EQ(
        lines(),
        (std::vector<std::string>{
            "📲 FCM Token: t",
            "❌ Failed to subscribe to topic games-dev-: The Internet connection appears to be offline."}));
}

TEST_F(Push, ForegroundNotificationIsLoggedShownAndItsLinkOpenedOnTheMainQueue) {
    manager.configure();
    headless.console->clear();
    Dictionary data{
        {"url", "https://ovix.vn/event?id=7"}, {"reward", "100"}, {"type", "gift"}, {"icon", "i.png"}};
    EXPECT_EQ(headless.notificationCenter->presentInForeground(data), 19u);
    EXPECT_EQ(
        lines(),
        std::vector<std::string>{
            "Notification Data - reward: 100, type: gift, icon: i.png, url: https://ovix.vn/event?id=7"});
    EXPECT_TRUE(application->opened().empty()) << "opened later, on the main queue";
    headless.mainQueue->runUntilIdle();
    EXPECT_EQ(application->opened(), std::vector<std::string>{"https://ovix.vn/event?id=7"});
    EXPECT_EQ(application->offMainCalls(), 0);
}

TEST_F(Push, NonTextValuesLogAsEmptyAndBadLinksAreIgnored) {
    manager.configure();
    headless.console->clear();
    EXPECT_EQ(headless.notificationCenter->presentInForeground(Dictionary{{"reward", 100}, {"type", true}}),
              19u);
    EXPECT_EQ(
        headless.notificationCenter->presentInForeground(Dictionary{{"url", "not a url"}, {"icon", "x"}}),
        19u);
    EXPECT_EQ(headless.notificationCenter->presentInForeground(Dictionary{{"url", 42}}), 19u);
    headless.mainQueue->runUntilIdle();
    EXPECT_EQ(lines(),
              (std::vector<std::string>{"Notification Data - reward: , type: , icon: , url: ",
                                        "Notification Data - reward: , type: , icon: x, url: not a url",
                                        "Notification Data - reward: , type: , icon: , url: "}));
    EXPECT_TRUE(application->opened().empty());
}

TEST_F(Push, TappingOnlyCompletes) {
    manager.configure();
    headless.console->clear();
    EXPECT_TRUE(headless.notificationCenter->tap(Dictionary{{"url", "https://ovix.vn"}, {"reward", "5"}}));
    headless.mainQueue->runUntilIdle();
    EXPECT_TRUE(application->opened().empty());
    EXPECT_TRUE(lines().empty());
}

TEST(PushUrl, AbsoluteUrlsWithAUriAlphabetAreValid) {
    for (const char* good : {"https://ovix.vn/a?b=1#c", "http://127.0.0.1:8080/", "mailto:help@ovix.vn",
                             "ovixgame://open/shop", "itms-apps://apps.apple.com/app/id1", "a+b.c-d:x",
                             "https://ovix.vn/t%C3%AAn", "https://h/[::1]!$&'()*+,;=~_"}) {
        EXPECT_TRUE(FirebaseManager::isValidUrl(good)) << good;
    }
    for (const char* bad :
         {"", "ovix.vn/path", "/relative", ":nothing", "https:", "1http://x", "ht tp://x",
          "https://ovix.vn/a b", "https://ovix.vn/\"q\"", "https://ovix.vn/<x>", "https://ovix.vn/{}",
          "https://ovix.vn/%zz", "https://ovix.vn/%4", "https://ovix.vn/tên", "https://x/\n"}) {
        EXPECT_FALSE(FirebaseManager::isValidUrl(bad)) << bad;
    }
}

}  // namespace
