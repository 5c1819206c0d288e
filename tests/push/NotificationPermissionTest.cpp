#include <gtest/gtest.h>

#include "ovix/OvixCore.h"
#include "ovix/testing/HeadlessPlatform.h"

namespace {

using ovix::platform::AuthorizationStatus;

struct Answer {
    int calls = 0;
    bool value = false;
    bool onMainThread = false;
};

/// A centre that, once told to stutter, answers every status question twice, as a misbehaving
/// system service might.
class StutteringCentre : public ovix::testing::FakeNotificationCenter {
  public:
    void getAuthorizationStatus(std::function<void(AuthorizationStatus)> completion) override {
        if (stutter) {
            FakeNotificationCenter::getAuthorizationStatus(completion);
        }
        FakeNotificationCenter::getAuthorizationStatus(std::move(completion));
    }
    bool stutter = false;
};

class Permission : public ::testing::TestWithParam<bool /*background centre*/> {
  protected:
    void SetUp() override {
        headless.platform->notificationCenter = centre;
        headless.install();
        centre->setDeliverOnBackgroundThread(GetParam());
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
    std::shared_ptr<StutteringCentre> centre = std::make_shared<StutteringCentre>();
};

TEST_P(Permission, EachStatusAnswersOnceOnTheMainQueueAndOnlyAnUndecidedOnePrompts) {
    const struct {
        AuthorizationStatus status;
        bool granted;  // what a prompt would answer
        std::optional<std::string> error;
        bool expected;
        int prompts;
    } cases[] = {
        {AuthorizationStatus::Authorized, false, {}, true, 0},
        {AuthorizationStatus::Provisional, false, {}, true, 0},
        {AuthorizationStatus::Denied, true, {}, false, 0},
        {AuthorizationStatus::Ephemeral, true, {}, false, 0},
        // An error counts only through the granted flag.
        {AuthorizationStatus::NotDetermined, true, "spurious error", true, 1},
        {AuthorizationStatus::NotDetermined, false, "user said no", false, 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(static_cast<int>(c.status));
        const int before = centre->requestCount();
        centre->setStatus(c.status);
        centre->setAnswer(c.granted, c.error);
        auto a = ask();
        EXPECT_EQ(a.calls, 1);
        EXPECT_EQ(a.value, c.expected);
        EXPECT_TRUE(a.onMainThread);
        EXPECT_EQ(centre->requestCount() - before, c.prompts);
    }
    EXPECT_EQ(centre->lastRequestOptions(), 7u) << "alert, sound and badge";

    // Decided by the last prompt: asking again reports without another.
    centre->setAnswer(true);
    EXPECT_FALSE(ask().value);
    EXPECT_EQ(centre->requestCount(), 2);
}

TEST_P(Permission, ACentreThatAnswersTwiceIsHeardOnce) {
    centre->setStatus(AuthorizationStatus::Authorized);
    centre->stutter = true;
    EXPECT_EQ(ask().calls, 1);
}

INSTANTIATE_TEST_SUITE_P(CentreAnswering, Permission, ::testing::Values(false, true),
                         [](const auto& info) { return info.param ? "OnBackgroundThread" : "Inline"; });

}  // namespace
