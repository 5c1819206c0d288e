// The desktop platform of a game with its own loop: no GTK window, no display needed.
#include <gtest/gtest.h>

#include <vector>

#include "ovix/desktop/DesktopPlatform.h"
#include "ovix/desktop/OverlaySurface.h"
#include "ovix/kit/NotificationCenter.h"
#include "ovix/kit/Screen.h"
#include "ovix/kit/host/Application.h"
#include "platform/unsupported/UnsupportedWebEngine.h"
#include "support/ScratchDirectory.h"

namespace ovix::test {
namespace {

TEST(SurfacePlatformTest, TheSurfaceShowsTheApplicationsWindowAndKeepsTheScreenInStep) {
    ScratchDirectory scratch{"ovix-surface"};
    desktop::DesktopPlatform::Options options;
    options.storePath = scratch / "store.sqlite";
    auto surface = desktop::DesktopPlatform::installSurface(800, 600, 2, options);
    auto p = platform::current();
    ASSERT_EQ(p->application->windows().size(), 1u);
    EXPECT_EQ(surface->window(), p->application->windows().front());
    EXPECT_TRUE(surface->window()->isKeyWindow()) << "the SDK's screens and buttons go to the key window";
    EXPECT_EQ(kit::Screen::main()->bounds(), (kit::Rect{0, 0, 800, 600}));
    EXPECT_EQ(kit::Screen::main()->scale(), 2);
    EXPECT_EQ(p->deviceFacts->screen().scale, 2);

    int turns = 0;
    auto token = std::make_shared<int>();
    kit::NotificationCenter::defaultCenter().addObserver(
        std::string(kit::deviceOrientationDidChangeNotification), token, [&] { ++turns; });
    surface->resize(600, 800, 1);
    EXPECT_EQ(turns, 1) << "the game's area turned portrait";
    EXPECT_EQ(kit::Screen::main()->bounds(), (kit::Rect{0, 0, 600, 800}));
    EXPECT_EQ(surface->window()->frame(), (kit::Rect{0, 0, 600, 800}));
    EXPECT_EQ(surface->scale(), 1);

    // The SDK's main-queue work runs when the game pumps, on the game's thread.
    std::vector<int> ran;
    p->mainQueue->async([&] { ran.push_back(1); });
    p->mainQueue->async([&] { ran.push_back(2); });
    EXPECT_TRUE(ran.empty()) << "never inline";
    surface->pump();
    EXPECT_EQ(ran, (std::vector<int>{1, 2}));

    // Pages need a GTK window: honestly unsupported here.
    EXPECT_NE(dynamic_cast<platform::UnsupportedWebEngine*>(p->webEngine.get()), nullptr);
}

}  // namespace
}  // namespace ovix::test
