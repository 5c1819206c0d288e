#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "ovix/OvixCore.h"
#include "ovix/WarningButton.h"
#include "ui/overlay/OverlayTestSupport.h"

namespace ovix::test {
namespace {

class WarningButtonTest : public OverlayTest {
  public:
    ~WarningButtonTest() override { OvixCore::shared().hideWarningButton(); }

    std::shared_ptr<WarningButton> shown() const { return OvixCore::shared().warningButton(); }
    /// A player's tap on the shown button, through the window's touch routing.
    void tapShown() const { window()->tap(shown()->center()); }
};

struct Step {
    const char* what;
    std::function<void(WarningButtonTest&)> act;
    kit::Rect frame;
    WarningButtonState state;
};

TEST_F(WarningButtonTest, SequencesThroughTheFacadeGrowAndShrinkAboutTheCentre) {
    auto show = [](double x, double y) {
        return [x, y](WarningButtonTest&) { OvixCore::shared().showWarningButton({x, y}); };
    };
    auto tap = [](WarningButtonTest& t) { t.tapShown(); };
    const std::vector<std::pair<const char*, std::vector<Step>>> sequences{
        {"tap, tap",
         {{"show at (20, 100)", show(20, 100), {20, 100, 40, 40}, WarningButtonState::normal},
          {"tap: full about centre (40, 120)", tap, {-35, 90, 150, 60}, WarningButtonState::full},
          {"tap: back", tap, {20, 100, 40, 40}, WarningButtonState::normal}}},
        {"show again while full",
         {{"show", show(20, 100), {20, 100, 40, 40}, WarningButtonState::normal},
          {"tap", tap, {-35, 90, 150, 60}, WarningButtonState::full},
          {"show at (200, 300): moved full-size, then normal about (275, 330)",
           show(200, 300),
           {255, 310, 40, 40},
           WarningButtonState::normal}}},
        {"updatePosition while full",
         {{"show", show(20, 100), {20, 100, 40, 40}, WarningButtonState::normal},
          {"tap", tap, {-35, 90, 150, 60}, WarningButtonState::full},
          {"move to (0, 0)",
           [](WarningButtonTest& t) {
               t.shown()->updatePosition({0, 0});
           },
           {0, 0, 150, 60},
           WarningButtonState::full},
          {"normal about (75, 30)",
           [](WarningButtonTest& t) { t.shown()->updateState(WarningButtonState::normal, false); },
           {55, 10, 40, 40},
           WarningButtonState::normal}}},
    };
    for (const auto& [name, steps] : sequences) {
        SCOPED_TRACE(name);
        std::shared_ptr<WarningButton> first;
        for (const auto& step : steps) {
            SCOPED_TRACE(step.what);
            step.act(*this);
            h.mainQueue->advance(WarningButton::toggleDuration);
            auto button = shown();
            ASSERT_NE(button, nullptr);
            first = first ? first : button;
            EXPECT_EQ(button, first) << "one button per showing";
            EXPECT_EQ(button->frame(), step.frame);
            EXPECT_EQ(button->currentState(), step.state);
            const bool full = step.state == WarningButtonState::full;
            ASSERT_NE(button->currentImage(), nullptr);
            EXPECT_EQ(button->currentImage()->name(), full ? "ic_sdk_warning_full" : "ic_sdk_warning");
        }
        EXPECT_EQ(first->superview(), window());
        EXPECT_EQ(window()->subviews().size(), 1u) << "a repeated show does not add the button again";
        OvixCore::shared().hideWarningButton();
        EXPECT_EQ(first->superview(), nullptr);
        EXPECT_EQ(shown(), nullptr);
    }
}

TEST_F(WarningButtonTest, ATapAnimatesAQuarterSecondWhileAShowResetsAtOnce) {
    OvixCore::shared().showWarningButton({20, 100});
    auto button = shown();
    EXPECT_TRUE(button->layer().animationKeys().empty()) << "the first look is not animated";
    EXPECT_DOUBLE_EQ(button->layer().cornerRadius(), 8);
    EXPECT_TRUE(button->clipsToBounds());

    const double start = h.mainQueue->now();
    tapShown();
    EXPECT_EQ(button->frame(), (kit::Rect{-35, 90, 150, 60})) << "the model changes at once";
    const kit::Rect midway = button->presentation(start + WarningButton::toggleDuration / 2).frame();
    EXPECT_GT(midway.size.width, 40);
    EXPECT_LT(midway.size.width, 150);
    EXPECT_EQ(button->presentation(start + WarningButton::toggleDuration).frame(), button->frame());

    h.mainQueue->advance(WarningButton::toggleDuration);
    EXPECT_TRUE(button->layer().animationKeys().empty());
    OvixCore::shared().showWarningButton({20, 100});
    EXPECT_EQ(button->frame(), (kit::Rect{75, 110, 40, 40}))
        << "moved full-size, then shrunk about (95, 130)";
    EXPECT_TRUE(button->layer().animationKeys().empty()) << "no animation back to normal";
}

TEST_F(WarningButtonTest, AGameMadeButtonWithoutImagesStillChangesSize) {
    auto button = WarningButton::create(nullptr, nullptr, {40, 40}, {120, 120}, {0, 0});
    EXPECT_EQ(button->frame(), (kit::Rect{0, 0, 40, 40}));
    button->sendActions(kit::ControlEvent::touchUpInside);
    EXPECT_EQ(button->frame(), (kit::Rect{-40, -40, 120, 120}));
    EXPECT_EQ(button->currentImage(), nullptr);
    button->updateState(WarningButtonState::full, false);
    EXPECT_EQ(button->frame(), (kit::Rect{-40, -40, 120, 120}))
        << "asking for the current look changes nothing";
}

}  // namespace
}  // namespace ovix::test
