#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "platform/gtk/GlibMainQueue.h"
#include "support/GtkTestEnvironment.h"

namespace ovix::test {
namespace {

using platform::gtk::GlibMainQueue;

TEST(GlibMainQueueTest, WorkRunsLaterInDueOrderOnTheMainThread) {
    GlibMainQueue queue;
    std::vector<std::string> ran;
    queue.asyncAfter(0.05, [&] { ran.push_back("late"); });
    queue.async([&] { ran.push_back("first"); });
    queue.async([&] { ran.push_back("second"); });
    queue.asyncAfter(0.01, [&] { ran.push_back("soon"); });
    EXPECT_TRUE(ran.empty());

    ASSERT_TRUE(pumpUntil([&] { return ran.size() == 4; }));
    EXPECT_EQ(ran, (std::vector<std::string>{"first", "second", "soon", "late"}));
    EXPECT_GE(queue.now(), 0.05);
}

TEST(GlibMainQueueTest, WorkPostedFromAnotherThreadRunsOnTheMainThread) {
    GlibMainQueue queue;
    bool posterWasMain = true;
    bool ranOnMain = false;
    bool ran = false;
    std::thread poster([&] {
        posterWasMain = queue.isMainThread();
        queue.async([&] {
            ranOnMain = queue.isMainThread();
            ran = true;
        });
    });
    poster.join();
    ASSERT_TRUE(pumpUntil([&] { return ran; }));
    EXPECT_FALSE(posterWasMain);
    EXPECT_TRUE(ranOnMain);
}

}  // namespace
}  // namespace ovix::test
