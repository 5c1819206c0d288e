#include <gtest/gtest.h>

#include <thread>

#include "ovix/testing/VirtualMainQueue.h"

namespace {

using ovix::testing::VirtualMainQueue;

TEST(VirtualMainQueue, RunsDueWorkInOrderIncludingWorkItPosts) {
    VirtualMainQueue q;
    std::vector<int> order;
    q.async([&] {
        order.push_back(1);
        q.async([&] { order.push_back(3); });
    });
    q.async([&] { order.push_back(2); });
    EXPECT_TRUE(order.empty()) << "nothing runs until the test drives the queue";
    EXPECT_EQ(q.runUntilIdle(), 3u);
    EXPECT_EQ(order, (std::vector<int>{1, 2, 3}));
}

TEST(VirtualMainQueue, DelaysRunOnlyWhenTheClockReachesThem) {
    VirtualMainQueue q;
    std::vector<std::pair<int, double>> ran;
    q.asyncAfter(1.0, [&] { ran.emplace_back(10, q.now()); });
    q.asyncAfter(0.8, [&] {
        ran.emplace_back(8, q.now());
        q.asyncAfter(0.1, [&] { ran.emplace_back(9, q.now()); });  // due at 0.9, inside this advance
    });
    q.advance(0.79);
    EXPECT_TRUE(ran.empty());
    q.advance(0.5);
    ASSERT_EQ(ran.size(), 3u);
    EXPECT_EQ(ran[0], std::make_pair(8, 0.8));
    EXPECT_DOUBLE_EQ(ran[1].second, 0.9);
    EXPECT_EQ(ran[2], std::make_pair(10, 1.0));
    EXPECT_DOUBLE_EQ(q.now(), 1.29);
    EXPECT_EQ(q.pendingCount(), 0u);
}

TEST(VirtualMainQueue, WaitsInRealTimeForWorkFromOtherThreads) {
    VirtualMainQueue q;
    bool ranOnMain = false;
    std::thread worker([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        EXPECT_FALSE(q.isMainThread());
        q.async([&] { ranOnMain = q.isMainThread(); });
    });
    EXPECT_TRUE(q.runUntil([&] { return ranOnMain; }));
    worker.join();
    EXPECT_FALSE(q.runUntil([] { return false; }, std::chrono::milliseconds(10))) << "times out honestly";
}

}  // namespace
