#include <gtest/gtest.h>

#include <algorithm>

#include "core/SessionManager.h"
#include "ovix/FloatingButton.h"
#include "ui/overlay/PanelTestSupport.h"
#include "ui/overlay/SidebarPopup.h"

namespace ovix::test {
namespace {

class FloatingButtonTest : public PanelTest {
  protected:
    std::shared_ptr<FloatingButton> addButton(kit::Rect frame = {100, 200, 60, 60}) {
        auto button = FloatingButton::create(frame);
        window()->addSubview(button);
        return button;
    }
    bool inWindow(const std::shared_ptr<kit::View>& view) const {
        const auto& all = window()->subviews();
        return std::find(all.begin(), all.end(), view) != all.end();
    }
};

TEST_F(FloatingButtonTest, TheSheetRisesFromBelowTheWindowToItsHeight) {
    struct Row {
        const char* name;
        kit::Size portrait;
        bool landscape;
        kit::Size sheet;
        double finalY;
    };
    const Row rows[] = {
        {"phone landscape: the whole window", {390, 844}, true, {844, 390}, 0},
        {"phone portrait: at least 400", {390, 844}, false, {390, 400}, 444},
        {"tablet portrait: 40 % of the height", {1024, 1366}, false, {1024, 546.4}, 819.6},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        start(row.portrait, row.landscape);
        const double windowHeight = window()->bounds().height();
        auto button = addButton();
        button->sendActions(kit::ControlEvent::touchUpInside);
        auto sheet = button->popupView();
        ASSERT_NE(sheet, nullptr);
        EXPECT_TRUE(inWindow(sheet));
        EXPECT_DOUBLE_EQ(sheet->layer().cornerRadius(), 16);
        EXPECT_TRUE(sheet->clipsToBounds());

        const double begin = now();
        EXPECT_EQ(sheet->presentation(begin).frame(),
                  (kit::Rect{0, windowHeight, row.sheet.width, row.sheet.height}));
        double halfway = sheet->presentation(begin + 0.15).frame().y();
        EXPECT_LT(halfway, windowHeight);
        EXPECT_GT(halfway, row.finalY);
        h.mainQueue->advance(0.3);
        EXPECT_NEAR(sheet->presentation(now()).frame().y(), row.finalY, 1e-9);
        EXPECT_NEAR(sheet->frame().height(), row.sheet.height, 1e-9);

        // The panel fills the sheet.
        ASSERT_EQ(sheet->subviews().size(), 1u);
        auto panel = std::dynamic_pointer_cast<SidebarPopup>(sheet->subviews()[0]);
        ASSERT_NE(panel, nullptr);
        window()->layoutIfNeeded();
        EXPECT_EQ(panel->frame(), (kit::Rect{0, 0, row.sheet.width, row.sheet.height}));
    }
}

// The pan begins once the finger has moved 12 points (past the recogniser's threshold); the button
// follows from there on.
TEST_F(FloatingButtonTest, DraggingKeepsTheCentreInsideTheSuperview) {
    struct Row {
        const char* name;
        kit::Rect container;  // the superview, in the window
        kit::Point from;      // window coordinates, the button's centre
        kit::Point to;
        kit::Point centre;  // in the container
    };
    const Row rows[] = {
        {"free move", {0, 0, 390, 844}, {130, 230}, {200, 300}, {188, 300}},
        {"past the right edge", {0, 0, 390, 844}, {130, 230}, {600, 230}, {360, 230}},
        {"past the top-left corner", {0, 0, 390, 844}, {130, 230}, {-50, -80}, {30, 30}},
        {"past the bottom", {0, 0, 390, 844}, {130, 230}, {130, 1000}, {118, 814}},
        // A 40-point superview cannot hold a 60-point button: the lower bound wins.
        {"superview smaller than the button", {0, 0, 40, 40}, {10, 10}, {300, 300}, {30, 30}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        auto container = kit::View::create(row.container);
        window()->addSubview(container);
        auto button = FloatingButton::create({row.from.x - 30, row.from.y - 30, 60, 60});
        container->addSubview(button);

        window()->touchDown(row.from);
        window()->touchMove({row.from.x + 12, row.from.y});
        EXPECT_EQ(button->initialTouchPoint(), (kit::Point{row.from.x + 12, row.from.y}));
        window()->touchMove(row.to);
        EXPECT_EQ(button->center(), row.centre);
        window()->touchUp({row.to.x + 40, row.to.y + 40});  // the lift reports "ended": no move
        h.mainQueue->advance(1);
        EXPECT_EQ(button->center(), row.centre) << "no snapping back or to an edge";
        EXPECT_EQ(button->popupView(), nullptr) << "a drag is not a tap";
        container->removeFromSuperview();
    }
}

TEST_F(FloatingButtonTest, ADragWithoutSuperviewIsIgnored) {
    auto button = addButton({100, 200, 60, 60});
    window()->touchDown({130, 230});
    window()->touchMove({150, 230});
    window()->touchMove({170, 230});
    ASSERT_EQ(button->center(), (kit::Point{150, 230}));
    auto recognizer =
        std::dynamic_pointer_cast<kit::PanGestureRecognizer>(button->gestureRecognizers().at(0));
    ASSERT_NE(recognizer, nullptr);
    button->removeFromSuperview();
    ASSERT_EQ(recognizer->state(), kit::GestureRecognizerState::changed);
    button->handlePan(*recognizer);
    EXPECT_EQ(button->center(), (kit::Point{150, 230}));
    EXPECT_EQ(button->initialTouchPoint(), (kit::Point{170, 230}));
}

TEST_F(FloatingButtonTest, ASecondTapDuringTheSlideDownOpensANewSheet) {
    auto button = addButton();
    button->sendActions(kit::ControlEvent::touchUpInside);
    h.mainQueue->advance(0.3);
    auto first = button->popupView();

    button->sendActions(kit::ControlEvent::touchUpInside);
    EXPECT_EQ(button->popupView(), nullptr) << "forgotten when the slide starts";
    h.mainQueue->advance(0.1);
    EXPECT_TRUE(inWindow(first)) << "still leaving";
    button->sendActions(kit::ControlEvent::touchUpInside);
    auto second = button->popupView();
    ASSERT_NE(second, nullptr);
    EXPECT_NE(second, first);

    h.mainQueue->advance(0.2);
    EXPECT_FALSE(inWindow(first)) << "removed when its slide ends";
    EXPECT_TRUE(inWindow(second));
    EXPECT_EQ(first->frame().y(), 844) << "it slid down by its own height";
    h.mainQueue->advance(0.1);
    EXPECT_EQ(second->presentation(now()).frame().y(), 444);
}

TEST_F(FloatingButtonTest, ThePanelsCloseAndLogoutSlideTheSheetAway) {
    struct Row {
        const char* name;
        bool logout;
        bool listener;
    };
    for (const Row& row :
         {Row{"panel's close button", false, true}, Row{"logout with a listener", true, true},
          Row{"logout without a listener", true, false}}) {
        SCOPED_TRACE(row.name);
        start();
        auto recorder = std::make_shared<RecordingListener>();
        EventSlot::shared().setListener(row.listener ? recorder : nullptr);
        h.store->setString(SessionManager::shared().tokenKey, "token-1");
        auto button = addButton();
        button->sendActions(kit::ControlEvent::touchUpInside);
        h.mainQueue->advance(0.3);
        auto sheet = button->popupView();
        if (row.logout) {
            button->logoutTapped();
        } else {
            std::dynamic_pointer_cast<SidebarPopup>(sheet->subviews().at(0))
                ->closeButton()
                ->sendActions(kit::ControlEvent::touchUpInside);
        }
        EXPECT_EQ(button->popupView(), nullptr);
        h.mainQueue->advance(0.3);
        EXPECT_FALSE(inWindow(sheet));
        EXPECT_EQ(SessionManager::readString(SessionManager::shared().tokenKey), row.logout ? "" : "token-1");
        EXPECT_EQ(SessionManager::readString(SessionManager::shared().statusKey), row.logout ? "logout" : "");
        const auto expected = row.logout && row.listener ? std::vector<std::string>{"OvixLogoutSuccess"}
                                                         : std::vector<std::string>{};
        EXPECT_EQ(recorder->names(), expected);
    }
}

TEST_F(FloatingButtonTest, WithoutAKeyWindowATapDoesNothing) {
    start({390, 844}, false, 0);
    auto loose = kit::Window::create(kit::Rect{0, 0, 390, 844});  // not key, in no scene
    auto button = FloatingButton::create({100, 200, 60, 60});
    loose->addSubview(button);
    button->sendActions(kit::ControlEvent::touchUpInside);
    EXPECT_EQ(button->popupView(), nullptr);
    EXPECT_EQ(loose->subviews().size(), 1u);
}

}  // namespace
}  // namespace ovix::test
