#include <gtest/gtest.h>

#include <thread>

#include "ovix/OvixCore.h"
#include "ovix/testing/HeadlessPlatform.h"

namespace {

using ovix::platform::AuthorizationStatus;

struct Answer {
    int calls = 0;
    bool value = false;
    bool onMainThread = false;
};

class Permission : public ::testing::TestWithParam<bool /*background centre*/> {
  protected:
    void SetUp() override {
        headless.install();
        headless.notificationCenter->setDeliverOnBackgroundThread(GetParam());
    }

    // Asks, checks that nothing arrived inline, then waits for the main queue.
    Answer ask() {
        auto answer = std::make_shared<Answer>();
        auto queue = headless.mainQueue;
        ovix::OvixCore::shared().requestNotificationPermission([answer, queue](bool allowed) {
            ++answer->calls;
            answer->value = allowed;
            answer->onMainThread = queue->isMainThread();
        });
        EXPECT_EQ(answer->calls, 0) << "never inline";
        headless.mainQueue->runUntil([&] { return answer->calls > 0; });
        headless.mainQueue->advance(1.0);
        return *answer;
    }

    ovix::testing::HeadlessPlatform headless = ovix::testing::HeadlessPlatform::create();
};

TEST_P(Permission, AuthorisedAndProvisionalReportTrueWithoutPrompt) {
    for (auto status : {AuthorizationStatus::Authorized, AuthorizationStatus::Provisional}) {
        headless.notificationCenter->setStatus(status);
        auto a = ask();
        EXPECT_EQ(a.calls, 1);
        EXPECT_TRUE(a.value);
        EXPECT_TRUE(a.onMainThread);
    }
    EXPECT_EQ(headless.notificationCenter->requestCount(), 0);
}

TEST_P(Permission, DeniedAndOtherStatusesReportFalseWithoutPrompt) {
    for (auto status : {AuthorizationStatus::Denied, AuthorizationStatus::Ephemeral}) {
        headless.notificationCenter->setStatus(status);
        auto a = ask();
        EXPECT_EQ(a.calls, 1);
        EXPECT_FALSE(a.value);
        EXPECT_TRUE(a.onMainThread);
    }
    EXPECT_EQ(headless.notificationCenter->requestCount(), 0);
}

TEST_P(Permission, NotDeterminedPromptsOnceWithAlertSoundBadge) {
    headless.notificationCenter->setStatus(AuthorizationStatus::NotDetermined);
    headless.notificationCenter->setAnswer(true);
    auto a = ask();
    EXPECT_EQ(a.calls, 1);
    EXPECT_TRUE(a.value);
    EXPECT_EQ(headless.notificationCenter->requestCount(), 1);
    EXPECT_EQ(headless.notificationCenter->lastRequestOptions(), 7u);

    // Decided now: asking again reports without a second prompt.
    EXPECT_TRUE(ask().value);
    EXPECT_EQ(headless.notificationCenter->requestCount(), 1);
}

TEST_P(Permission, RequestErrorCountsOnlyThroughTheGrantedFlag) {
    headless.notificationCenter->setAnswer(false, "user said no");
    auto a = ask();
    EXPECT_EQ(a.calls, 1);
    EXPECT_FALSE(a.value);

    headless.notificationCenter->setStatus(AuthorizationStatus::NotDetermined);
    headless.notificationCenter->setAnswer(true, "spurious error");
    EXPECT_TRUE(ask().value);
}

INSTANTIATE_TEST_SUITE_P(CentreAnswering, Permission, ::testing::Values(false, true),
                         [](const auto& info) { return info.param ? "OnBackgroundThread" : "Inline"; });

}  // namespace
