#include "ovix/desktop/OverlayInput.h"

#include <gtest/gtest.h>

#include "kit/KitTest.h"
#include "ovix/FloatingButton.h"
#include "ovix/kit/Button.h"
#include "ovix/kit/Label.h"
#include "ovix/kit/TableView.h"
#include "ovix/kit/TextField.h"
#include "ovix/kit/ViewController.h"

namespace ovix::test {
namespace {

using desktop::OverlayInput;
using desktop::PointerButton;
using desktop::ScrollUnit;
using kit::Point;

/// The key window as a game overlay: a transparent root controller's view holding a transparent
/// container (a toolbar strip without paint), the floating button and an opaque panel.
class OverlayInputTest : public KitTest {
  protected:
    void SetUp() override {
        KitTest::SetUp();
        window()->setRootViewController(std::make_shared<kit::ViewController>());
        root = window()->rootViewController()->view();
        container = kit::View::create({0, 600, 390, 100});
        root->addSubview(container);
        button = FloatingButton::create({100, 200, 60, 60});
        root->addSubview(button);
        panel = kit::View::create({200, 400, 150, 100});
        panel->setBackgroundColor(kit::Color::white());
        panel->addSubview(kit::View::create({10, 10, 50, 50}));  // unpainted, inside the panel
        root->addSubview(panel);
        window()->layoutIfNeeded();
        input = OverlayInput(window());
    }

    std::shared_ptr<kit::View> root;
    std::shared_ptr<kit::View> container;
    std::shared_ptr<FloatingButton> button;
    std::shared_ptr<kit::View> panel;
    OverlayInput input{nullptr};
};

TEST_F(OverlayInputTest, PressesWhereTheOverlayShowsNothingGoToTheGame) {
    struct Row {
        const char* name;
        Point at;
        bool consumed;
    };
    auto label = kit::Label::create();
    label->setText("Lỗi");
    label->setFrame({20, 10, 60, 20});
    container->addSubview(label);
    const Row rows[] = {
        {"transparent root", {20, 20}, false},
        {"transparent container", {50, 680}, false},
        {"a label: not interactive, its container's", {30, 620}, false},
        {"painted panel", {340, 490}, true},
        {"unpainted view inside the panel", {230, 430}, true},
        {"a plain button", {315, 615}, true},
    };
    container->addSubview(kit::Button::create(kit::ButtonType::custom, {300, 0, 30, 30}));
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(input.takesPointerAt(row.at), row.consumed);
        EXPECT_EQ(input.pointerPress(row.at), row.consumed);
        EXPECT_EQ(input.pointerMove({row.at.x + 1, row.at.y}), row.consumed);
        EXPECT_EQ(input.pointerRelease({row.at.x + 1, row.at.y}), row.consumed);
        EXPECT_FALSE(input.isOverlayPressed() || input.isGamePressed()) << "the sequence ended";
    }
    panel->setHidden(true);
    EXPECT_FALSE(input.pointerPress({340, 490})) << "a hidden panel takes nothing";
    input.pointerRelease({340, 490});
    panel->setHidden(false);
    panel->setBackgroundColor(kit::Color::clear());
    EXPECT_FALSE(input.pointerPress({340, 490})) << "nor does a clear one";
}

TEST_F(OverlayInputTest, AGamePressKeepsItsWholeSequenceEvenOverTheButton) {
    ASSERT_FALSE(input.pointerPress({20, 20}));
    EXPECT_TRUE(input.isGamePressed());
    EXPECT_FALSE(input.pointerMove({130, 230}));
    EXPECT_FALSE(input.scroll({130, 230}, 0, 3, ScrollUnit::notches));
    EXPECT_FALSE(input.pointerPress({130, 230}, PointerButton::secondary))
        << "a second button joins the game's";
    EXPECT_FALSE(input.pointerRelease({130, 230}, PointerButton::secondary));
    EXPECT_FALSE(input.pointerRelease({130, 230}));
    EXPECT_EQ(button->popupView(), nullptr) << "released over the button, but never pressed there";

    EXPECT_FALSE(input.pointerMove({130, 230})) << "hover is the game's";
}

TEST_F(OverlayInputTest, AClickOnTheFloatingButtonIsConsumedAndOpensTheSheet) {
    EXPECT_TRUE(input.pointerPress({130, 230}, PointerButton::secondary));
    EXPECT_TRUE(input.pointerRelease({130, 230}, PointerButton::secondary));
    EXPECT_EQ(button->popupView(), nullptr) << "only the primary button taps";

    EXPECT_TRUE(input.pointerPress({130, 230}));
    EXPECT_TRUE(input.isOverlayPressed());
    EXPECT_TRUE(input.takesPointerAt({5, 5})) << "during an overlay press, everywhere";
    EXPECT_TRUE(input.pointerRelease({131, 231}));
    EXPECT_NE(button->popupView(), nullptr);
}

TEST_F(OverlayInputTest, ADragMovesTheButtonAndDoesNotTapIt) {
    EXPECT_TRUE(input.pointerPress({130, 230}));
    for (double dx = 10; dx <= 80; dx += 10) {
        EXPECT_TRUE(input.pointerMove({130 + dx, 230 + dx / 2}));
    }
    EXPECT_TRUE(input.pointerRelease({210, 270}));
    // The pan starts past its threshold, so the button trails the pointer by that much.
    EXPECT_GT(button->center().x, 180);
    EXPECT_GT(button->center().y, 245);
    EXPECT_EQ(button->popupView(), nullptr);

    // A cancelled drag leaves the button where it got to and the next press starts fresh.
    const Point before = button->center();
    input.pointerPress(before);
    input.pointerMove({before.x + 40, before.y});
    input.pointerCancel();
    EXPECT_FALSE(input.isOverlayPressed());
    EXPECT_FALSE(input.pointerMove({before.x + 80, before.y}));
    EXPECT_LT(button->center().x, before.x + 60);
}

class Rows : public kit::TableViewDataSource {
  public:
    int numberOfRowsInSection(kit::TableView&, int) override { return 30; }
    std::shared_ptr<kit::TableViewCell> cellForRowAt(kit::TableView&, const kit::IndexPath&) override {
        auto cell = kit::TableViewCell::create();
        cell->textLabel()->setText("row");
        return cell;
    }
};

TEST_F(OverlayInputTest, TheWheelScrollsTheTableUnderThePointerWithinItsContent) {
    auto rows = std::make_shared<Rows>();
    auto table = kit::TableView::create({0, 0, 200, 300});
    table->setRowHeight(20);
    table->setDataSource(rows);
    table->reloadData();
    panel->setFrame({0, 100, 390, 400});
    panel->addSubview(table);
    window()->layoutIfNeeded();
    ASSERT_EQ(table->contentSize().height, 600);

    struct Step {
        const char* name;
        Point at;
        double dy;
        ScrollUnit unit;
        bool consumed;
        double offset;  // afterwards
    };
    const Step steps[] = {
        {"three notches down", {50, 200}, 3, ScrollUnit::notches, true, 120},
        {"touchpad points", {50, 200}, 35.5, ScrollUnit::points, true, 155.5},
        {"past the end: clamped", {50, 200}, 50, ScrollUnit::notches, true, 300},
        {"over the panel beside the table: consumed, table unmoved",
         {300, 200},
         -2,
         ScrollUnit::notches,
         true,
         300},
        {"over the game: not consumed", {20, 50}, -2, ScrollUnit::notches, false, 300},
        {"past the start: clamped", {50, 200}, -1000, ScrollUnit::points, true, 0},
    };
    for (const auto& step : steps) {
        SCOPED_TRACE(step.name);
        EXPECT_EQ(input.scroll(step.at, 0, step.dy, step.unit), step.consumed);
        EXPECT_DOUBLE_EQ(table->contentOffset().y, step.offset);
        EXPECT_DOUBLE_EQ(table->contentOffset().x, 0)
            << "content as wide as the table does not move sideways";
    }
}

TEST_F(OverlayInputTest, TextAndKeysReachTheFocusedFieldUntilTheGameTakesAPress) {
    auto field = kit::TextField::create({10, 40, 120, 30});
    panel->addSubview(field);
    EXPECT_FALSE(input.text("a")) << "no field focused: the game's";
    EXPECT_FALSE(input.key(kit::Key::backspace));

    input.pointerPress({270, 455});
    input.pointerRelease({270, 455});
    ASSERT_TRUE(field->isFirstResponder());
    EXPECT_TRUE(input.text("Lỗi "));
    EXPECT_TRUE(input.text("mạng"));
    EXPECT_EQ(field->text(), "Lỗi mạng");

    EXPECT_FALSE(input.pointerPress({20, 20}));
    input.pointerRelease({20, 20});
    EXPECT_FALSE(field->isFirstResponder()) << "a click on the game ends editing";
    EXPECT_FALSE(input.text("w"));
    EXPECT_EQ(field->text(), "Lỗi mạng");
}

}  // namespace
}  // namespace ovix::test
