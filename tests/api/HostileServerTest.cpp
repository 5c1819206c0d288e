#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>

#include "api/APIService.h"
#include "api/ApiTest.h"

namespace ovix::test {
namespace {

const std::string kUserInfo = "/auth-connect/api/v2.0/oauth2/auth/userinfo";

TEST_F(ApiTest, ABodyNestedThousandsDeepIsNilNotACrash) {
    store("ovix_token", "t");
    // Arrays here; the same limit holds for objects (the value tests show it).
    const std::string data = std::string(20000, '[') + std::string(20000, ']');
    server.on(kUserInfo, LoopbackServer::Reply{200, R"({"Data":)" + data + "}"});
    EXPECT_FALSE(Outcome<std::optional<Dictionary>>().run([](auto done) { APIService::getUserInfo(done); }));
}

TEST_F(ApiTest, CallsInFlightWhenThePlatformIsReplacedAllComplete) {
    store("ovix_token", "t");
    server.on(kUserInfo, LoopbackServer::Reply{200, "", "application/json", true});
    constexpr int kCalls = 12;  // within the loopback server's threads, each held by a stalled answer
    std::atomic<int> completed{0};
    std::promise<void> all;
    for (int i = 0; i < kCalls; ++i) {
        APIService::getUserInfo([&](std::optional<Dictionary>) {
            if (++completed == kCalls) {
                all.set_value();
            }
        });
    }
    ASSERT_TRUE(server.waitForRequests(kCalls));
    // Nothing of the first platform is held here any more, but for its console.
    auto console = headless.console;
    headless = ovix::testing::HeadlessPlatform::create();
    headless.install();
    server.releaseStalled();
    ASSERT_EQ(all.get_future().wait_for(std::chrono::seconds(20)), std::future_status::ready);
    EXPECT_EQ(completed.load(), kCalls);
    EXPECT_EQ(console->count("❌ HTTP error: 503"), std::size_t{kCalls}) << "real answers, not cancellations";
}

}  // namespace
}  // namespace ovix::test
