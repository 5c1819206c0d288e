#include <gtest/gtest.h>

#include "KitTest.h"
#include "ovix/kit/Button.h"
#include "ovix/kit/Label.h"
#include "ovix/kit/Screen.h"
#include "ovix/kit/TextMeasurer.h"
#include "ovix/kit/WindowScene.h"

namespace ovix::test {
namespace {

using kit::Rect;

/// A tablet-sized screen with no window yet.
class TabletWithoutWindows : public KitTest {
  protected:
    testing::HeadlessPlatform::Options options() override {
        testing::HeadlessPlatform::Options o;
        o.application.screenSize = {1024, 1366};
        o.application.scale = 2;
        o.application.portraitSafeArea = {24, 0, 20, 0};
        o.application.windowCount = 0;
        return o;
    }
};

TEST_F(TabletWithoutWindows, TheScreenAndWindowsFollowTheOptionsAndTheKeyWindowIsSearchedInScenes) {
    auto screen = kit::Screen::main();
    EXPECT_EQ(screen->bounds(), (Rect{0, 0, 1024, 1366}));
    EXPECT_EQ(screen->nativeBounds(), (Rect{0, 0, 2048, 2732}));
    auto& app = kit::Application::shared();
    ASSERT_EQ(app.connectedScenes().size(), 1u);
    EXPECT_TRUE(app.windows().empty());
    EXPECT_EQ(kit::Application::keyWindow(), nullptr);

    auto window = headless.application->addWindow();
    EXPECT_EQ(window->frame(), (Rect{0, 0, 1024, 1366}));
    EXPECT_EQ(window->windowSafeAreaInsets(), (kit::EdgeInsets{24, 0, 20, 0}));
    EXPECT_TRUE(window->isHidden()) << "windows start hidden";
    EXPECT_EQ(kit::Application::keyWindow(), nullptr);
    window->makeKeyAndVisible();
    EXPECT_EQ(kit::Application::keyWindow(), window);
    EXPECT_EQ(window->windowScene(), app.connectedScenes().front());
    headless.application->rotate(kit::DeviceOrientation::landscapeLeft);
    EXPECT_EQ(window->frame(), (Rect{0, 0, 1366, 1024}));

    auto second = headless.application->addWindow();
    second->makeKeyAndVisible();
    EXPECT_FALSE(window->isKeyWindow());
    EXPECT_EQ(kit::Application::keyWindow(), second);
    auto scene = kit::WindowScene::create(headless.application->mainScreen());
    auto elsewhere = kit::Window::create(scene);
    headless.application->connectScene(scene);
    EXPECT_EQ(app.windows().size(), 3u);
    elsewhere->makeKey();
    EXPECT_EQ(kit::Application::keyWindow(), elsewhere);
    headless.application->disconnectScene(*scene);
    EXPECT_EQ(kit::Application::keyWindow(), nullptr)
        << "a key window outside the connected scenes is not found";
}

class Basics : public KitTest {};

/// Counts the times it was moved into or out of a window.
class WindowWatcher : public kit::View {
  public:
    int moves = 0;

  protected:
    void didMoveToWindow() override { ++moves; }
};

TEST_F(Basics, DeepViewsKnowTheirWindowAndHearWhenItChanges) {
    auto outer = kit::View::create();
    auto watcher = std::make_shared<WindowWatcher>();
    outer->addSubview(watcher);
    EXPECT_EQ(watcher->window(), nullptr);
    EXPECT_EQ(watcher->moves, 0);
    window()->addSubview(outer);
    EXPECT_EQ(watcher->window(), window());
    EXPECT_EQ(watcher->moves, 1);
    auto other = headless.application->addWindow();
    other->addSubview(outer);
    EXPECT_EQ(watcher->window(), other);
    EXPECT_EQ(watcher->moves, 2);
    outer->removeFromSuperview();
    EXPECT_EQ(watcher->moves, 3);
}

TEST_F(Basics, SafeAreaCoversOnlyTheUnsafePartOfAView) {
    auto top = kit::View::create({0, 20, 390, 100});
    auto bottom = kit::View::create({10, 800, 100, 44});
    window()->addSubview(top);
    window()->addSubview(bottom);
    EXPECT_EQ(top->safeAreaInsets(), (kit::EdgeInsets{27, 0, 0, 0}));
    EXPECT_EQ(bottom->safeAreaInsets(), (kit::EdgeInsets{0, 0, 34, 0}));
    top->setAdditionalSafeAreaInsets({5, 1, 0, 0});
    EXPECT_EQ(top->safeAreaInsets(), (kit::EdgeInsets{32, 1, 0, 0}));
    EXPECT_EQ(kit::View::create()->safeAreaInsets(), (kit::EdgeInsets{}));
}

/// Every character one point wide, one line ten points tall.
class UnitMeasurer : public kit::TextMeasurer {
  public:
    kit::Size measure(std::string_view text, const kit::Font&, double, int) const override {
        return {static_cast<double>(text.size()), 10};
    }
};

TEST_F(Basics, AnInstalledMeasurerSizesTextAndButtonsAddTheirInsets) {
    kit::TextMeasurer::install(std::make_shared<UnitMeasurer>());
    auto button = kit::Button::create();
    button->setTitle("abcd");
    button->setContentEdgeInsets({1, 2, 3, 4});
    EXPECT_EQ(button->intrinsicContentSize(), (kit::Size{4 + 2 + 4, 10 + 1 + 3}));
    EXPECT_EQ(kit::Label::create("hello")->intrinsicContentSize(), (kit::Size{5, 10}));
    kit::TextMeasurer::install(nullptr);
    EXPECT_NE(kit::Label::create("hello")->intrinsicContentSize(), (kit::Size{5, 10}))
        << "back to the default";
}

TEST_F(Basics, ConstraintDescriptionsNameItemsAttributesAndPriority) {
    auto root = kit::View::create();
    auto label = kit::Label::create("Menu");
    root->addSubview(label);
    auto c = label->topAnchor().constraintEqualTo(root->safeAreaLayoutGuide().topAnchor(), -8);
    EXPECT_EQ(c->description(), "Label(\"Menu\").top == View.safeArea.top - 8");
    auto w = label->widthAnchor().constraintLessThanOrEqualTo(root->widthAnchor(), 0.5);
    w->setPriority(250);
    EXPECT_EQ(w->description(), "Label(\"Menu\").width <= View.width * 0.5 @250");
    root->setTag(3);
    EXPECT_EQ(label->heightAnchor().constraintEqualToConstant(20)->description(),
              "Label(\"Menu\").height == 20");
    EXPECT_EQ(root->debugName(), "View#3");
}

}  // namespace
}  // namespace ovix::test
