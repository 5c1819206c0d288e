#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ovix/kit/ImageView.h"
#include "ovix/kit/Label.h"
#include "ovix/kit/NotificationCenter.h"
#include "ui/overlay/AccountPopup.h"
#include "ui/overlay/OverlayTestSupport.h"

namespace ovix::test {
namespace {

struct ShownRow {
    std::string title;
    std::string value;
    kit::Color valueColor;
    std::string mark;
    kit::Color markTint;
};

/// The rows of the popup's card as a player sees them (the heading excluded).
std::vector<ShownRow> shownRows(const AccountPopup& popup) {
    std::vector<ShownRow> out;
    const auto& arranged = popup.contentStack()->arrangedSubviews();
    for (std::size_t i = 1; i < arranged.size(); ++i) {
        auto row = std::dynamic_pointer_cast<kit::StackView>(arranged[i]);
        auto title = std::dynamic_pointer_cast<kit::Label>(row->arrangedSubviews().at(0));
        auto line = std::dynamic_pointer_cast<kit::StackView>(row->arrangedSubviews().at(1));
        auto value = std::dynamic_pointer_cast<kit::Label>(line->arrangedSubviews().at(0));
        auto mark = std::dynamic_pointer_cast<kit::ImageView>(line->arrangedSubviews().at(1));
        out.push_back({title->text(), value->text(), value->textColor(),
                       mark->image() ? mark->image()->name() : "", mark->tintColor()});
    }
    return out;
}

const kit::Color grey = kit::Color::gray();
const kit::Color white = kit::Color::white();
const kit::Color green = kit::Color::systemGreen();
const kit::Color red = kit::Color::systemRed();
constexpr const char* setMark = "checkmark.seal.fill";
constexpr const char* unsetMark = "xmark.seal.fill";

using AccountPopupTest = OverlayTest;

TEST_F(AccountPopupTest, OnlyANonEmptyStringCountsAsSet) {
    struct Case {
        const char* name;
        Dictionary info;
        std::vector<ShownRow> rows;
    };
    const std::vector<Case> cases{
        {"string, empty string, number",
         {{"Username", Value("abc")}, {"Email", Value("")}, {"PhoneNumber", Value(std::int64_t{912345678})}},
         {{"Tên tài khoản", "abc", white, setMark, green},
          {"Email", "Chưa cập nhật", grey, unsetMark, red},
          {"Số điện thoại", "Chưa cập nhật", grey, unsetMark, red}}},
        {"empty dictionary",
         {},
         {{"Tên tài khoản", "Chưa cập nhật", grey, unsetMark, red},
          {"Email", "Chưa cập nhật", grey, unsetMark, red},
          {"Số điện thoại", "Chưa cập nhật", grey, unsetMark, red}}},
        {"all set; keys match exactly; null and bool are not set",
         {{"Username", Value(true)},
          {"username", Value("lower")},
          {"Email", Value("a@b.vn")},
          {"PhoneNumber", Value("0912")}},
         {{"Tên tài khoản", "Chưa cập nhật", grey, unsetMark, red},
          {"Email", "a@b.vn", white, setMark, green},
          {"Số điện thoại", "0912", white, setMark, green}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        auto popup = AccountPopup::create({0, 0, 390, 844});
        popup->updateInfo(c.info);
        const auto rows = shownRows(*popup);
        ASSERT_EQ(rows.size(), c.rows.size());
        for (std::size_t i = 0; i < rows.size(); ++i) {
            SCOPED_TRACE(c.rows[i].title);
            EXPECT_EQ(rows[i].title, c.rows[i].title);
            EXPECT_EQ(rows[i].value, c.rows[i].value);
            EXPECT_EQ(rows[i].valueColor, c.rows[i].valueColor);
            EXPECT_EQ(rows[i].mark, c.rows[i].mark);
            EXPECT_EQ(rows[i].markTint, c.rows[i].markTint);
        }
    }
}

TEST_F(AccountPopupTest, TheScreenShapeChoosesTheCloseButton) {
    struct Case {
        kit::Size portraitScreen;
        bool turned;
        bool topShown;
        kit::Rect shownFrame;  // in window coordinates, after layout
    };
    // Safe areas: portrait 47 top and 34 bottom, landscape none on top. The card spans the safe
    // area less 16 on every side; the round button sits 16 under the safe top, 16 from the edge.
    const std::vector<Case> cases{
        {{390, 844}, true, true, {844 - 16 - 30, 16, 30, 30}},
        {{390, 844}, false, false, {32, 844 - 34 - 16 - 16 - 40, 326, 40}},
        {{600, 600}, false, false, {32, 600 - 34 - 16 - 16 - 40, 536, 40}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::Message() << c.portraitScreen << (c.turned ? " turned" : ""));
        install(c.portraitScreen);
        if (c.turned) {
            h.application->rotate(kit::DeviceOrientation::landscapeLeft);
        }
        auto popup = AccountPopup::create(window()->bounds());
        window()->addSubview(popup);
        window()->layoutIfNeeded();
        EXPECT_EQ(popup->closeButtonTop()->isHidden(), !c.topShown);
        EXPECT_EQ(popup->closeButtonBottom()->isHidden(), c.topShown);
        const auto& shown = c.topShown ? popup->closeButtonTop() : popup->closeButtonBottom();
        EXPECT_EQ(shown->convertTo(shown->bounds(), nullptr), c.shownFrame);
    }
}

TEST_F(AccountPopupTest, TurningTheDeviceSwapsTheCloseButtonsWhileThePopupLives) {
    auto popup = AccountPopup::create(window()->bounds());
    window()->addSubview(popup);
    const auto observers =
        kit::NotificationCenter::defaultCenter().observerCount(kit::deviceOrientationDidChangeNotification);
    struct Step {
        kit::DeviceOrientation orientation;
        bool topShown;
    };
    for (const Step step :
         {Step{kit::DeviceOrientation::landscapeLeft, true}, Step{kit::DeviceOrientation::portrait, false},
          Step{kit::DeviceOrientation::landscapeRight, true}}) {
        h.application->rotate(step.orientation);
        EXPECT_EQ(popup->closeButtonTop()->isHidden(), !step.topShown);
        EXPECT_EQ(popup->closeButtonBottom()->isHidden(), step.topShown);
    }
    popup->removeFromSuperview();
    popup.reset();
    EXPECT_EQ(
        kit::NotificationCenter::defaultCenter().observerCount(kit::deviceOrientationDidChangeNotification),
        observers - 1)
        << "a released popup stops observing";
}

TEST_F(AccountPopupTest, UpdatingTwiceLeavesOneHeadingThreeRowsAndTheLatestValues) {
    auto popup = AccountPopup::create(window()->bounds());
    window()->addSubview(popup);
    popup->updateInfo({{"Username", Value("first")}});
    popup->updateInfo({{"Username", Value("second")}});
    window()->layoutIfNeeded();

    ASSERT_EQ(popup->container()->subviews().size(), 2u) << "the stack and the bottom button only";
    const auto& arranged = popup->contentStack()->arrangedSubviews();
    ASSERT_EQ(arranged.size(), 4u);
    auto heading = std::dynamic_pointer_cast<kit::Label>(arranged[0]);
    ASSERT_NE(heading, nullptr);
    EXPECT_EQ(heading->text(), "Tài khoản");
    EXPECT_EQ(shownRows(*popup)[0].value, "second");
}

TEST_F(AccountPopupTest, EitherCloseButtonOnlyCallsOnClose) {
    auto popup = AccountPopup::create(window()->bounds());
    window()->addSubview(popup);
    popup->closeButtonBottom()->sendActions(kit::ControlEvent::touchUpInside);  // no closure set: nothing
    int closes = 0;
    popup->onClose = [&closes] { ++closes; };
    popup->closeButtonBottom()->sendActions(kit::ControlEvent::touchUpInside);
    popup->closeButtonTop()->sendActions(kit::ControlEvent::touchUpInside);
    EXPECT_EQ(closes, 2);
    EXPECT_EQ(popup->superview(), window()) << "the presenter removes it, not the popup";
}

}  // namespace
}  // namespace ovix::test
