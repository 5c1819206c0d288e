#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <thread>

#include "ovix/testing/CapturingConsole.h"
#include "ovix/testing/HeadlessPlatform.h"

namespace {

using namespace ovix;
using ovix::testing::HeadlessPlatform;

}  // namespace

TEST(PlatformRegistry, AReplacedPlatformIsReleasedOutsideTheRegistryLock) {
    auto first = HeadlessPlatform::create();
    // A service whose teardown waits for a thread that asks the registry for the platform, as a
    // transport joining a worker that is inside a completion does.
    first.platform->console.reset(new ovix::testing::CapturingConsole, [](platform::Console* console) {
        std::thread([] { (void)platform::current(); }).join();
        delete console;
    });
    first.install();
    auto second = HeadlessPlatform::create();
    std::weak_ptr<platform::Platform> replaced = first.platform;
    first.platform.reset();

    // Held under the lock, the old console's teardown would wait forever for its reader; the
    // installing thread is let go so that such a failure is reported rather than hung on.
    auto installed = std::make_shared<std::promise<void>>();
    auto done = installed->get_future();
    std::thread([installed, platform = second.platform] {
        platform::install(platform);
        installed->set_value();
    }).detach();
    ASSERT_EQ(done.wait_for(std::chrono::seconds(20)), std::future_status::ready);
    EXPECT_TRUE(replaced.expired());
    EXPECT_EQ(platform::current(), second.platform);
}
