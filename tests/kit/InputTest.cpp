#include <gtest/gtest.h>

#include <algorithm>

#include "KitTest.h"
#include "ovix/kit/Button.h"
#include "ovix/kit/PanGestureRecognizer.h"
#include "ovix/kit/TapGestureRecognizer.h"
#include "ovix/kit/TextField.h"
#include "ovix/kit/TextView.h"

namespace ovix::test {
namespace {

using kit::ControlEvent;
using kit::Point;
using kit::Rect;

class Input : public KitTest {};

TEST_F(Input, TouchUpInsideOnlyWhenLiftedInsideAnEnabledControl) {
    auto button = kit::Button::create(kit::ButtonType::system, {20, 100, 40, 40});
    window()->addSubview(button);
    std::vector<std::string> events;
    auto down = button->addTarget([&] { events.push_back("down"); }, ControlEvent::touchDown);
    button->addTarget([&] { events.push_back("up-in"); }, ControlEvent::touchUpInside);
    button->addTarget([&] { events.push_back("up-out"); }, ControlEvent::touchUpOutside);

    window()->touchDown({30, 110});
    EXPECT_TRUE(button->isHighlighted());
    window()->touchUp({35, 115});
    window()->tap({5, 5});  // misses the button
    window()->touchDown({30, 110});
    window()->touchMove({32, 112});
    window()->touchUp({100, 300});
    EXPECT_EQ(events, (std::vector<std::string>{"down", "up-in", "down", "up-out"}));
    EXPECT_FALSE(button->isHighlighted());

    button->setEnabled(false);
    window()->tap({30, 110});
    button->setEnabled(true);
    window()->setHidden(true);  // nor does a hidden window take touches
    window()->tap({30, 110});
    EXPECT_EQ(events.size(), 4u);

    window()->setHidden(false);
    button->sendActions(ControlEvent::touchUpInside | ControlEvent::touchUpOutside);
    EXPECT_EQ(events.size(), 6u) << "sendActions runs every matching action";
    button->removeTarget(down);
    window()->tap({30, 110});
    EXPECT_EQ(events,
              (std::vector<std::string>{"down", "up-in", "down", "up-out", "up-in", "up-out", "up-in"}));
}

TEST_F(Input, PanReportsBeganChangedEndedWithLocationsAndCancelsTheControl) {
    auto button = kit::Button::create(kit::ButtonType::custom, {100, 200, 60, 60});
    window()->addSubview(button);
    int taps = 0;
    int cancels = 0;
    button->addTarget([&] { ++taps; }, ControlEvent::touchUpInside);
    button->addTarget([&] { ++cancels; }, ControlEvent::touchCancel);
    std::vector<std::pair<kit::GestureRecognizerState, Point>> seen;
    auto pan = kit::PanGestureRecognizer::create([&](kit::PanGestureRecognizer& g) {
        seen.emplace_back(g.state(), g.location(window().get()));
        if (g.state() == kit::GestureRecognizerState::changed) {
            // Drag the button along, as the floating button does.
            Point p = g.translation(nullptr);
            button->setCenter({130 + p.x, 230 + p.y});
        }
    });
    button->addGestureRecognizer(pan);

    window()->touchDown({130, 230});
    window()->touchMove({135, 230});  // under the threshold: still a possible tap
    window()->touchMove({150, 240});
    window()->touchMove({170, 250});
    window()->touchUp({170, 250});
    using S = kit::GestureRecognizerState;
    ASSERT_EQ(seen.size(), 3u);
    EXPECT_EQ(seen[0], std::make_pair(S::began, Point{150, 240}));
    EXPECT_EQ(seen[1], std::make_pair(S::changed, Point{170, 250}));
    EXPECT_EQ(seen[2], std::make_pair(S::ended, Point{170, 250}));
    EXPECT_EQ(button->center(), (Point{170, 250}));
    EXPECT_EQ(taps, 0);
    EXPECT_EQ(cancels, 1);
    EXPECT_EQ(pan->state(), S::possible) << "ready for the next touch";

    window()->tap({170, 250});
    EXPECT_EQ(taps, 1) << "a tap without movement is the button's";
    EXPECT_EQ(seen.size(), 3u);
}

TEST_F(Input, CancelledAndDisabledGesturesReportNothingMore) {
    auto area = kit::View::create({0, 0, 300, 300});
    window()->addSubview(area);
    std::vector<kit::GestureRecognizerState> states;
    auto pan = kit::PanGestureRecognizer::create([&](auto& g) { states.push_back(g.state()); });
    area->addGestureRecognizer(pan);
    window()->touchDown({10, 10});
    window()->touchMove({60, 10});
    window()->touchCancel();
    using S = kit::GestureRecognizerState;
    EXPECT_EQ(states, (std::vector<S>{S::began, S::cancelled}));

    pan->setEnabled(false);
    window()->drag({10, 10}, {100, 100});
    EXPECT_EQ(states.size(), 2u);
    pan->setEnabled(true);
    area->removeGestureRecognizer(*pan);
    EXPECT_EQ(pan->view(), nullptr);
    window()->drag({10, 10}, {100, 100});
    EXPECT_EQ(states.size(), 2u);
}

TEST_F(Input, TapRecognizersFireUnlessAControlIsTouched) {
    auto section = kit::View::create({0, 0, 390, 200});
    auto remove = kit::Button::create(kit::ButtonType::custom, {10, 10, 24, 24});
    section->addSubview(remove);
    window()->addSubview(section);
    std::vector<kit::GestureRecognizerState> sectionTaps;
    int removes = 0;
    section->addGestureRecognizer(
        kit::TapGestureRecognizer::create([&](auto& g) { sectionTaps.push_back(g.state()); }));
    remove->addTarget([&] { ++removes; }, ControlEvent::touchUpInside);

    window()->tap({200, 100});
    window()->tap({20, 20});
    window()->drag({200, 100}, {200, 180});  // moved too far for a tap
    section->setUserInteractionEnabled(false);
    window()->tap({200, 100});
    EXPECT_EQ(sectionTaps, std::vector<kit::GestureRecognizerState>{kit::GestureRecognizerState::ended});
    EXPECT_EQ(removes, 1);
}

/// Records the delegate calls of text fields and text views.
class Recorder : public kit::TextFieldDelegate, public kit::TextViewDelegate {
  public:
    std::vector<std::string> calls;
    bool allowBegin = true;
    bool textFieldShouldBeginEditing(kit::TextField&) override {
        calls.push_back("should");
        return allowBegin;
    }
    void textFieldDidBeginEditing(kit::TextField& f) override { calls.push_back("begin " + f.placeholder()); }
    void textFieldDidEndEditing(kit::TextField& f) override { calls.push_back("end " + f.placeholder()); }
    void textViewDidBeginEditing(kit::TextView&) override { calls.push_back("view begin"); }
    void textViewDidChange(kit::TextView& v) override { calls.push_back("view " + v.text()); }
    void textViewDidEndEditing(kit::TextView&) override { calls.push_back("view end"); }
};

TEST_F(Input, FocusMovesBetweenFieldsAndTextGoesToTheFocusedOne) {
    auto recorder = std::make_shared<Recorder>();
    auto title = kit::TextField::create({20, 100, 300, 44});
    title->setPlaceholder("Tiêu đề");
    auto server = kit::TextField::create({20, 160, 300, 44});
    server->setPlaceholder("Server");
    for (auto& f : {title, server}) {
        f->setDelegate(recorder);
        window()->addSubview(f);
    }
    std::vector<std::string> events;
    title->addTarget([&] { events.push_back("did-begin"); }, ControlEvent::editingDidBegin);
    title->addTarget([&] { events.push_back("changed"); }, ControlEvent::editingChanged);
    title->addTarget([&] { events.push_back("did-end"); }, ControlEvent::editingDidEnd);

    window()->tap({100, 120});
    EXPECT_TRUE(title->isFirstResponder());
    window()->insertText("Lỗi ");
    window()->insertText("đăng nhập");
    window()->deleteBackward();
    window()->deleteBackward();  // "ậ" is several bytes: removed whole
    EXPECT_EQ(title->text(), "Lỗi đăng nh");
    window()->insertText("\n");
    EXPECT_EQ(title->text(), "Lỗi đăng nh") << "return is not inserted";

    window()->tap({100, 180});
    EXPECT_TRUE(server->isFirstResponder());
    EXPECT_FALSE(title->isEditing());
    window()->insertText("S1");
    EXPECT_EQ(server->text(), "S1");
    EXPECT_EQ(recorder->calls,
              (std::vector<std::string>{"should", "begin Tiêu đề", "end Tiêu đề", "should", "begin Server"}))
        << "return ends editing";
    EXPECT_EQ(events,
              (std::vector<std::string>{"did-begin", "changed", "changed", "changed", "changed", "did-end"}));

    server->removeFromSuperview();  // leaving the window ends editing
    EXPECT_EQ(window()->firstResponder(), nullptr);
    EXPECT_EQ(recorder->calls.back(), "end Server");

    // A delegate can keep a field from taking focus; the tap still reaches the control.
    recorder->allowBegin = false;
    title->addTarget([&] { events.push_back("up"); }, ControlEvent::touchUpInside);
    window()->tap({100, 120});
    window()->insertText("x");
    EXPECT_FALSE(title->isEditing());
    EXPECT_EQ(recorder->calls.back(), "should");
    EXPECT_EQ(events.back(), "up");
    EXPECT_EQ(title->text(), "Lỗi đăng nh");
}

TEST_F(Input, LeftViewShowsByModeAndInsetsTheText) {
    auto field = kit::TextField::create({0, 0, 300, 44});
    auto pad = kit::View::create({0, 0, 12, 44});
    field->setLeftView(pad);
    EXPECT_FALSE(field->isLeftViewShown());
    EXPECT_EQ(field->textRect(), (Rect{0, 0, 300, 44}));
    field->setLeftViewMode(kit::TextFieldViewMode::always);
    EXPECT_TRUE(field->isLeftViewShown());
    EXPECT_EQ(field->textRect(), (Rect{12, 0, 288, 44}));
    field->setLeftViewMode(kit::TextFieldViewMode::whileEditing);
    EXPECT_FALSE(field->isLeftViewShown());
    window()->addSubview(field);
    field->becomeFirstResponder();
    EXPECT_TRUE(field->isLeftViewShown());
}

TEST_F(Input, TextViewGrowsWithItsTextWhenNotScrolling) {
    auto recorder = std::make_shared<Recorder>();
    auto view = kit::TextView::create({0, 0, 200, 100});
    view->setFont(kit::Font::systemFont(16));
    view->setDelegate(recorder);
    window()->addSubview(view);
    EXPECT_EQ(view->intrinsicContentSize().height, kit::TextView::noIntrinsicMetric)
        << "scrolling: no height";
    view->setScrollEnabled(false);
    double one = view->intrinsicContentSize().height;
    EXPECT_EQ(one, std::ceil(kit::Font::systemFont(16).lineHeight()) + 16);

    window()->tap({50, 50});
    window()->insertText("Mô tả");
    window()->insertText("\n");
    double two = view->intrinsicContentSize().height;
    EXPECT_GT(two, one);
    window()->deleteBackward();
    EXPECT_EQ(view->text(), "Mô tả");
    EXPECT_EQ(view->intrinsicContentSize().height, one);
    view->resignFirstResponder();
    EXPECT_EQ(recorder->calls, (std::vector<std::string>{"view begin", "view Mô tả", "view Mô tả\n",
                                                         "view Mô tả", "view end"}));
}

}  // namespace
}  // namespace ovix::test
