#include <gtest/gtest.h>

#include <filesystem>
#include <thread>

#include "core/SessionManager.h"
#include "ovix/OvixCore.h"
#include "ovix/testing/HeadlessPlatform.h"
#include "push/FirebaseManager.h"
#include "support/ScratchDirectory.h"

namespace {

namespace fs = std::filesystem;
using ovix::Dictionary;
using ovix::FirebaseManager;
using Lines = std::vector<std::string>;

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
        headless.install();
        headless.store->setString(ovix::SessionManager::shared().clientIdKey, "client-7");
    }

    void place(const char* source, const fs::path& directory) {
        fs::create_directories(root / directory);
        fs::copy_file(kData / source, root / directory / "GoogleService-Info.plist",
                      fs::copy_options::overwrite_existing);
    }
    /// Configures and lets the registration happen, then forgets the configure line.
    void configured() {
        manager.configure();
        headless.mainQueue->runUntilIdle();
        headless.console->clear();
    }
    Lines lines() const { return headless.console->lines(); }
    int registrations() const { return headless.application->remoteNotificationRegistrations(); }
    void expectDelegatesInstalledAndPermissionAsked() {
        EXPECT_EQ(headless.pushClient->delegate().get(), &manager);
        EXPECT_EQ(headless.notificationCenter->delegate().get(), &manager);
        EXPECT_EQ(headless.notificationCenter->requestCount(), 1);
    }

    FirebaseManager& manager = FirebaseManager::shared();
    ovix::test::ScratchDirectory root{"ovix-push"};
    ovix::testing::HeadlessPlatform headless;
};

TEST_F(Push, HostOptionsComeFirstThenDelegatesAndPermissionRequest) {
    place("options-xml.plist", "host");
    place("options-binary.plist", "sdk");
    manager.configure();

    EXPECT_EQ(lines(), Lines{kHostLine});
    ASSERT_TRUE(headless.pushClient->configuredOptions());
    EXPECT_EQ(headless.pushClient->configuredOptions()->googleAppId, "1:123456789012:ios:abcdef0123456789");
    expectDelegatesInstalledAndPermissionAsked();
    EXPECT_EQ(headless.notificationCenter->lastRequestOptions(), 7u);
    EXPECT_EQ(registrations(), 0) << "granted inline, yet registered only from the main queue";
    headless.mainQueue->runUntilIdle();
    EXPECT_EQ(registrations(), 1);
}

TEST_F(Push, OptionsOnlyInTheSdkBundleAreUsedWithTheSecondLine) {
    place("options-binary.plist", "sdk");
    manager.configure();
    EXPECT_EQ(lines(), Lines{kSdkLine});
    EXPECT_EQ(headless.pushClient->configuredOptions()->projectId, "ovix-binary");
}

TEST_F(Push, UnreadableHostFileFallsBackToTheSdkResourceBundle) {
    root.write("host/GoogleService-Info.plist", "not a property list");
    place("options-xml.plist", "sdk/OvixSdkResources.bundle");
    manager.configure();
    EXPECT_EQ(lines(), Lines{kSdkLine});
    auto attempts = headless.pushClient->configureAttempts();
    ASSERT_FALSE(attempts.empty());
    EXPECT_EQ(attempts.front(), root / "host" / "GoogleService-Info.plist")
        << "the host's file is tried first";
}

TEST_F(Push, NoUsableOptionsStillAsksAndARefusalRegistersNothing) {
    place("options-xml.plist", "host");
    headless.pushClient->setAcceptsOptions(false);
    headless.notificationCenter->setAnswer(false, "denied by the player");
    manager.configure();
    headless.mainQueue->runUntilIdle();
    EXPECT_EQ(lines(), Lines{kNotFoundLine});
    EXPECT_FALSE(headless.pushClient->hasDefaultApp());
    expectDelegatesInstalledAndPermissionAsked();
    EXPECT_EQ(registrations(), 0);
}

TEST_F(Push, InitSdkRunsThePushSetUpOnEveryCallAndOnceConfiguredItOnlyWarns) {
    place("options-xml.plist", "host");
    ovix::OvixCore::shared().initSdk("client-9", "", "", "");
    ovix::OvixCore::shared().initSdk("client-9", "", "", "");
    EXPECT_EQ(lines(), (Lines{kHostLine, kAlreadyLine}));
    EXPECT_EQ(headless.pushClient->configureAttempts().size(), 1u);
    EXPECT_EQ(headless.notificationCenter->requestCount(), 1);
}

TEST_F(Push, EveryTokenIsCachedPrintedAndSubscribesTheSameTopic) {
    configured();
    ASSERT_TRUE(headless.pushClient->deliverToken("token-1"));
    EXPECT_EQ(manager.fcmTokenCache(), "token-1");
    // A refresh, from the service's own thread.
    std::thread([&] { headless.pushClient->deliverToken("token-2"); }).join();
    EXPECT_EQ(manager.fcmTokenCache(), "token-2");
    headless.pushClient->deliverToken(std::nullopt);  // an absent token does nothing
    EXPECT_EQ(manager.fcmTokenCache(), "token-2");

    EXPECT_EQ(headless.pushClient->subscriptions(), (Lines{"games-dev-client-7", "games-dev-client-7"}));
    EXPECT_EQ(lines(), (Lines{"📲 FCM Token: token-1", "✅ Subscribed to topic: games-dev-client-7",
                              "📲 FCM Token: token-2", "✅ Subscribed to topic: games-dev-client-7"}));
}

TEST_F(Push, TopicKeepsTheHyphenWithoutClientIdAndReportsFailures) {
    headless.store->remove(ovix::SessionManager::shared().clientIdKey);
    headless.pushClient->setSubscriptionError("The Internet connection appears to be offline.");
    configured();
    headless.pushClient->deliverToken("t");
    EXPECT_EQ(headless.pushClient->subscriptions(), Lines{"games-dev-"});
    EXPECT_EQ(
        lines(),
        (Lines{"📲 FCM Token: t",
               "❌ Failed to subscribe to topic games-dev-: The Internet connection appears to be offline."}));
}

TEST_F(Push, ForegroundNotificationsAreLoggedAndShownAndOnlyAValidLinkOpensOnTheMainQueue) {
    configured();
    for (const Dictionary& data :
         {Dictionary{{"reward", 100}, {"type", true}},
          Dictionary{{"url", "https://ovix.vn/a b"}, {"icon", "x"}}, Dictionary{{"url", 42}},
          Dictionary{
              {"url", "https://ovix.vn/e?id=7"}, {"reward", "100"}, {"type", "gift"}, {"icon", "i.png"}}}) {
        EXPECT_EQ(headless.notificationCenter->presentInForeground(data), 19u);
    }
    EXPECT_TRUE(headless.notificationCenter->tap(Dictionary{{"url", "https://ovix.vn"}, {"reward", "5"}}));
    EXPECT_TRUE(headless.application->openedUrls().empty()) << "opened later, on the main queue";
    headless.mainQueue->runUntilIdle();
    EXPECT_EQ(
        lines(),
        (Lines{"Notification Data - reward: , type: , icon: , url: ",
               "Notification Data - reward: , type: , icon: x, url: https://ovix.vn/a b",
               "Notification Data - reward: , type: , icon: , url: ",
               "Notification Data - reward: 100, type: gift, icon: i.png, url: https://ovix.vn/e?id=7"}));
    EXPECT_EQ(headless.application->openedUrls(), Lines{"https://ovix.vn/e?id=7"}) << "a tap opens nothing";
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
