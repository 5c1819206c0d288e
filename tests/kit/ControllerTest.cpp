#include <gtest/gtest.h>

#include "KitTest.h"
#include "ovix/kit/AlertController.h"
#include "ovix/kit/NavigationController.h"
#include "ovix/kit/NotificationCenter.h"
#include "ovix/kit/Screen.h"
#include "ovix/kit/ViewController.h"

namespace ovix::test {
namespace {

using kit::Rect;
using kit::ViewController;

/// Counts its lifecycle calls.
class CountingController : public ViewController {
  public:
    int loads = 0;
    int appeared = 0;
    int disappeared = 0;
    void viewDidAppear(bool) override { ++appeared; }
    void viewDidDisappear(bool) override { ++disappeared; }

  protected:
    void viewDidLoad() override {
        ++loads;
        view()->setBackgroundColor(kit::Color::white());
    }
};

class Controllers : public KitTest {};

TEST_F(Controllers, ViewLoadsOnceAndTheRootFillsTheWindowUnderOverlays) {
    auto first = std::make_shared<CountingController>();
    EXPECT_FALSE(first->isViewLoaded());
    auto v = first->view();
    EXPECT_EQ(first->view(), v);
    EXPECT_EQ(first->loads, 1);
    EXPECT_EQ(v->frame(), (Rect{0, 0, 390, 844})) << "the default view covers the main screen";
    EXPECT_EQ(v->viewController(), first);
    EXPECT_EQ(v->backgroundColor(), kit::Color::white());

    auto w = window();
    auto overlay = kit::View::create({100, 200, 50, 50});
    w->setRootViewController(first);
    w->addSubview(overlay);
    auto modal = std::make_shared<CountingController>();
    first->present(modal, false);
    auto second = std::make_shared<CountingController>();
    w->setRootViewController(second);
    EXPECT_EQ(w->subviews(), (std::vector<std::shared_ptr<kit::View>>{second->view(), overlay}))
        << "the new root takes the old root's place, under overlays, and what the old one presented goes";
    EXPECT_EQ(first->presentedViewController(), nullptr);
    EXPECT_EQ(modal->disappeared, 1);
    EXPECT_EQ(second->view()->frame(), w->bounds());
    EXPECT_EQ(second->appeared, 1);
}

TEST_F(Controllers, PresentAndDismissLinkAndAnimateOnTheVirtualClock) {
    auto root = std::make_shared<CountingController>();
    auto nav = kit::NavigationController::create(root);
    window()->setRootViewController(nav);
    auto sheet = std::make_shared<CountingController>();
    sheet->setModalPresentationStyle(kit::ModalPresentationStyle::overFullScreen);
    sheet->setModalTransitionStyle(kit::ModalTransitionStyle::crossDissolve);
    bool presented = false;
    root->present(sheet, true, [&] { presented = true; });

    EXPECT_EQ(nav->presentedViewController(), sheet)
        << "the child presents through its navigation controller";
    EXPECT_EQ(sheet->presentingViewController(), nav);
    EXPECT_EQ(sheet->view()->superview(), window());
    EXPECT_EQ(sheet->view()->frame(), window()->bounds());
    EXPECT_EQ(sheet->view()->alpha(), 1) << "the model is final at once";
    auto halfway = sheet->view()->presentation(kit::ViewController::transitionDuration / 2);
    EXPECT_GT(halfway.alpha, 0);
    EXPECT_LT(halfway.alpha, 1);
    queue().advance(0.29);
    EXPECT_FALSE(presented);
    queue().advance(0.02);
    EXPECT_TRUE(presented);
    EXPECT_EQ(sheet->appeared, 1);

    // Presenting again while presenting is refused with a warning.
    auto other = ViewController::create();
    root->present(other, false);
    EXPECT_EQ(other->presentingViewController(), nullptr);
    EXPECT_EQ(headless.console->lines().size(), 1u);

    bool dismissed = false;
    sheet->dismiss(true, [&] { dismissed = true; });
    EXPECT_EQ(nav->presentedViewController(), nullptr);
    EXPECT_EQ(sheet->presentingViewController(), nullptr);
    EXPECT_EQ(sheet->view()->superview(), window()) << "the view leaves after the transition";
    queue().advance(kit::ViewController::transitionDuration);
    EXPECT_TRUE(dismissed);
    EXPECT_EQ(sheet->view()->superview(), nullptr);
    EXPECT_EQ(sheet->disappeared, 1);

    // A controller that neither presents nor is presented ignores dismiss; one outside a window
    // cannot present.
    bool called = false;
    root->dismiss(true, [&] { called = true; });
    auto lonely = ViewController::create();
    lonely->present(ViewController::create(), false, [&] { called = true; });
    queue().advance(1);
    EXPECT_FALSE(called);
    EXPECT_EQ(lonely->presentedViewController(), nullptr);
    EXPECT_EQ(headless.console->lines().size(), 2u);
}

TEST_F(Controllers, SheetsStartBelowTheTopSafeAreaAndNestedDismissClosesTheChain) {
    auto root = ViewController::create();
    window()->setRootViewController(root);
    auto list = ViewController::create();
    auto nav = kit::NavigationController::create(list);
    nav->setModalPresentationStyle(kit::ModalPresentationStyle::formSheet);
    root->present(nav, false);
    EXPECT_EQ(nav->view()->frame(), (Rect{0, 57, 390, 844 - 57}));
    auto top = ViewController::create();
    list->present(top, false);

    list->dismiss(false);  // the child of a presented controller dismisses the presented one
    EXPECT_EQ(root->presentedViewController(), nullptr);
    EXPECT_EQ(nav->presentedViewController(), nullptr);
    EXPECT_EQ(top->view()->superview(), nullptr);
    EXPECT_EQ(nav->view()->superview(), nullptr);
}

TEST_F(Controllers, NavigationBarShowsTheTopItemAndInsetsTheSafeArea) {
    auto root = ViewController::create();
    root->setTitle("Chọn loại lỗi");
    int done = 0;
    root->navigationItem().setRightBarButtonItem(
        kit::BarButtonItem::create("OK", kit::BarButtonItemStyle::done, [&] { ++done; }));
    auto nav = kit::NavigationController::create(root);
    window()->setRootViewController(nav);
    queue().runUntilIdle();

    auto bar = nav->navigationBar();
    EXPECT_EQ(bar->titleLabel()->text(), "Chọn loại lỗi");
    EXPECT_EQ(bar->frame(), (Rect{0, 47, 390, 44}));
    EXPECT_EQ(root->view()->safeAreaInsets().top, 47 + 44);
    EXPECT_TRUE(bar->leftButton()->isHidden());
    tapCentre(*bar->rightButton());
    EXPECT_EQ(done, 1);

    nav->setNavigationBarHidden(true, false);
    EXPECT_TRUE(bar->isHidden());
    EXPECT_EQ(root->view()->safeAreaInsets().top, 47);

    auto pushed = ViewController::create();
    pushed->setTitle("Next");
    nav->pushViewController(pushed, false);
    EXPECT_EQ(bar->titleLabel()->text(), "Next");
    EXPECT_EQ(root->view()->superview(), nullptr);
    EXPECT_EQ(nav->popViewController(false), pushed);
    EXPECT_EQ(nav->popViewController(false), nullptr);
    EXPECT_EQ(root->view()->superview(), nav->view());
}

TEST_F(Controllers, AlertActionsDismissThenRunTheirHandler) {
    auto root = ViewController::create();
    window()->setRootViewController(root);
    auto alert = kit::AlertController::create("Giao dịch thất bại", "Có lỗi xảy ra vui lòng thử lại",
                                              kit::AlertControllerStyle::alert);
    std::vector<std::string> ran;
    alert->addAction(kit::AlertAction::create("OK", kit::AlertActionStyle::defaultStyle));
    alert->addAction(kit::AlertAction::create("Xoá", kit::AlertActionStyle::destructive,
                                              [&](const kit::AlertAction& a) { ran.push_back(a.title()); }));
    root->present(alert, true);
    EXPECT_EQ(alert->modalPresentationStyle(), kit::ModalPresentationStyle::overFullScreen);
    queue().advance(1);

    auto card = alert->cardView();
    EXPECT_EQ(card->frame().width(), kit::AlertController::cardWidth);
    EXPECT_NEAR(card->frame().midX(), 195, 1e-9);
    auto destructive = alert->buttonForAction(1);
    EXPECT_EQ(destructive->currentTitleColor(), kit::Color::systemRed());
    tapCentre(*destructive);
    EXPECT_EQ(root->presentedViewController(), nullptr);
    EXPECT_TRUE(ran.empty()) << "the handler waits for the alert to be gone";
    queue().advance(kit::ViewController::transitionDuration);
    EXPECT_EQ(ran, std::vector<std::string>{"Xoá"});
    EXPECT_EQ(alert->view()->superview(), nullptr);
}

TEST_F(Controllers, ActionSheetsStackTheirButtonsWithCancelLast) {
    auto root = ViewController::create();
    window()->setRootViewController(root);
    auto sheet = kit::AlertController::create(std::nullopt, "Chọn", kit::AlertControllerStyle::actionSheet);
    std::vector<std::string> ran;
    auto record = [&](const kit::AlertAction& a) { ran.push_back(a.title()); };
    sheet->addAction(kit::AlertAction::create("Hủy", kit::AlertActionStyle::cancel, record));
    sheet->addAction(kit::AlertAction::create("Một", kit::AlertActionStyle::defaultStyle, record));
    auto disabled = kit::AlertAction::create("Hai", kit::AlertActionStyle::defaultStyle, record);
    disabled->setEnabled(false);
    sheet->addAction(disabled);
    root->present(sheet, false);
    queue().runUntilIdle();

    auto cancel = sheet->buttonForAction(0)->frame();
    auto one = sheet->buttonForAction(1)->frame();
    auto two = sheet->buttonForAction(2)->frame();
    EXPECT_EQ(one.maxY(), two.y());
    EXPECT_EQ(two.maxY(), cancel.y()) << "cancel goes last";
    EXPECT_EQ(one.width(), kit::AlertController::cardWidth);
    EXPECT_GT(sheet->cardView()->frame().y(), 844 / 2) << "an action sheet sits low";
    EXPECT_EQ(sheet->buttonForAction(3), nullptr);

    tapCentre(*sheet->buttonForAction(2));
    EXPECT_EQ(root->presentedViewController(), sheet) << "a disabled action does nothing";
    tapCentre(*sheet->buttonForAction(0));
    queue().advance(1);
    EXPECT_EQ(ran, std::vector<std::string>{"Hủy"});
    EXPECT_EQ(root->presentedViewController(), nullptr);
}

TEST_F(Controllers, PushedControllersSlideInAndChildrenFollowTheStack) {
    auto root = ViewController::create();
    auto nav = kit::NavigationController::create(root);
    window()->setRootViewController(nav);
    auto next = std::make_shared<CountingController>();
    nav->pushViewController(next, true);
    EXPECT_EQ(next->view()->frame(), nav->view()->bounds());
    EXPECT_GT(next->view()->presentation(0.1).frame().x(), 0) << "sliding in from the right";
    EXPECT_EQ(next->appeared, 0);
    queue().advance(kit::ViewController::transitionDuration);
    EXPECT_EQ(next->appeared, 1);
    EXPECT_EQ(next->parent(), nav);

    auto a = ViewController::create();
    auto b = ViewController::create();
    nav->setViewControllers({a, b}, false);
    EXPECT_EQ(nav->viewControllers(), (std::vector<std::shared_ptr<ViewController>>{a, b}));
    EXPECT_EQ(root->parent(), nullptr);
    EXPECT_EQ(next->view()->superview(), nullptr);
    nav->popToRootViewController(false);
    EXPECT_EQ(nav->topViewController(), a);
    EXPECT_EQ(a->view()->superview(), nav->view());
}

TEST_F(Controllers, ApplicationOpensOnlyKnownSchemes) {
    auto& app = kit::Application::shared();
    EXPECT_TRUE(app.canOpen("https://example.com/news"));
    EXPECT_FALSE(app.canOpen("tel://00000000000"));
    EXPECT_FALSE(app.open("tel://00000000000"));
    EXPECT_FALSE(app.canOpen("not a url"));
    headless.application->setOpenableSchemes({"tel"});
    EXPECT_TRUE(app.open("tel://00000000000"));
    EXPECT_EQ(headless.application->openedUrls(), std::vector<std::string>{"tel://00000000000"});
}

TEST_F(Controllers, RotationTurnsTheScreenAndNotifiesLiveObserversOnly) {
    auto screen = kit::Screen::main();
    int calls = 0;
    auto owner = std::make_shared<int>(0);
    kit::NotificationCenter::defaultCenter().addObserver(
        std::string(kit::deviceOrientationDidChangeNotification), owner, [&] { ++calls; });
    headless.application->rotate(kit::DeviceOrientation::landscapeRight);
    EXPECT_EQ(screen->bounds(), (Rect{0, 0, 844, 390}));
    EXPECT_EQ(window()->windowSafeAreaInsets(), (kit::EdgeInsets{0, 47, 21, 47}));
    EXPECT_EQ(calls, 1);
    headless.application->rotate(kit::DeviceOrientation::landscapeRight);
    EXPECT_EQ(calls, 1) << "no turn, no notification";
    owner.reset();
    headless.application->rotate(kit::DeviceOrientation::portrait);
    EXPECT_EQ(calls, 1);

    // An observer removed by an earlier one during the same post is not called.
    auto& center = kit::NotificationCenter::defaultCenter();
    kit::NotificationCenter::Token second = 0;
    std::string order;
    auto first = center.addObserver("test.removal", [&] {
        order += "1";
        center.removeObserver(second);
    });
    second = center.addObserver("test.removal", [&] { order += "2"; });
    auto third = center.addObserver("test.removal", [&] { order += "3"; });
    center.post("test.removal");
    center.post("test.removal");
    EXPECT_EQ(order, "1313");
    center.removeObserver(first);
    center.removeObserver(third);
    EXPECT_EQ(
        kit::NotificationCenter::defaultCenter().observerCount(kit::deviceOrientationDidChangeNotification),
        0u);
}

}  // namespace
}  // namespace ovix::test
