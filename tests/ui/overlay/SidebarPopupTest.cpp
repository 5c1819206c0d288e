#include <gtest/gtest.h>

#include "core/SessionManager.h"
#include "ovix/FloatingButton.h"
#include "ovix/kit/ViewController.h"
#include "ui/overlay/AccountPopup.h"
#include "ui/overlay/PanelTestSupport.h"
#include "ui/overlay/PopupTabEvents.h"
#include "ui/overlay/PopupTabHome.h"
#include "ui/overlay/PopupTabReport.h"
#include "ui/overlay/SidebarPopup.h"
#include "ui/overlay/UILabelContent.h"
#include "ui/support/SupportReportVC.h"

namespace ovix::test {
namespace {

class SidebarPopupTest : public PanelTest {
  protected:
    /// A panel the way the floating button shows it: in a 390 x 400 sheet on the window.
    std::shared_ptr<SidebarPopup> openPanel() {
        auto panel = SidebarPopup::create({0, 0, 390, 400});
        panel->onClose = [this] { ++closes; };
        window()->addSubview(panel);
        window()->layoutIfNeeded();
        return panel;
    }
    static std::shared_ptr<kit::View> shown(const SidebarPopup& panel) {
        const auto& views = panel.contentView()->subviews();
        return views.size() == 1 ? views[0] : nullptr;
    }
    static std::vector<kit::Color> tints(const SidebarPopup& panel) {
        std::vector<kit::Color> out;
        for (const auto& button : panel.menuButtons()) {
            out.push_back(button->tintColor());
        }
        return out;
    }

    int closes = 0;
    const kit::Color blue = kit::Color::systemBlue();
    const kit::Color gray = kit::Color::gray();
};

TEST_F(SidebarPopupTest, AMenuStripBesideTheContentOfTheSelectedTab) {
    auto panel = openPanel();
    EXPECT_EQ(panel->menuView()->frame(), (kit::Rect{0, 0, 80, 400}));
    EXPECT_EQ(panel->contentView()->frame(), (kit::Rect{80, 0, 310, 400}));
    EXPECT_EQ(panel->menuView()->backgroundColor(), kit::Color::rgb255(47, 45, 45));

    const char* symbols[] = {"list.dash", "calendar", "exclamationmark.circle"};
    ASSERT_EQ(panel->menuButtons().size(), 3u);
    for (int i = 0; i < 3; ++i) {
        SCOPED_TRACE(symbols[i]);
        const auto& button = panel->menuButtons()[static_cast<std::size_t>(i)];
        EXPECT_EQ(button->tag(), i);
        ASSERT_NE(button->currentImage(), nullptr);
        EXPECT_EQ(button->currentImage()->name(), symbols[i]);
        EXPECT_TRUE(button->currentImage()->isTemplate());
        EXPECT_EQ(button->frame().size, (kit::Size{48, 48}));
        EXPECT_NEAR(button->frame().midX(), 40, 1e-9) << "centred in the strip";
    }
    EXPECT_EQ(tints(*panel), (std::vector<kit::Color>{blue, gray, gray}));
    EXPECT_EQ(panel->closeButton()->tintColor(), gray);
    EXPECT_EQ(panel->closeButton()->currentImage()->name(), "multiply.circle");
    const auto& close = *panel->closeButton();
    EXPECT_NEAR(close.convertTo(close.bounds(), panel.get()).maxY(), 400 - 16, 1e-9)
        << "at the foot of the strip";

    auto home = std::dynamic_pointer_cast<PopupTabHome>(shown(*panel));
    ASSERT_NE(home, nullptr);
    EXPECT_EQ(home->frame(), (kit::Rect{0, 0, 310, 400}));
}

TEST_F(SidebarPopupTest, SwitchingTabsBuildsEachTabAfresh) {
    auto panel = openPanel();
    auto firstHome = shown(*panel);
    struct Step {
        int tap;
        bool (*isExpected)(const std::shared_ptr<kit::View>&);
        std::vector<kit::Color> tints;
    };
    auto isHome = [](const std::shared_ptr<kit::View>& v) {
        return !!std::dynamic_pointer_cast<PopupTabHome>(v);
    };
    auto isReport = [](const std::shared_ptr<kit::View>& v) {
        return !!std::dynamic_pointer_cast<PopupTabReport>(v);
    };
    auto isEvents = [](const std::shared_ptr<kit::View>& v) {
        return !!std::dynamic_pointer_cast<PopupTabEvents>(v);
    };
    const Step steps[] = {
        {2, isReport, {gray, gray, blue}},
        {1, isEvents, {gray, blue, gray}},
        {0, isHome, {blue, gray, gray}},
    };
    for (const auto& step : steps) {
        SCOPED_TRACE(step.tap);
        panel->menuButtons()[static_cast<std::size_t>(step.tap)]->sendActions(
            kit::ControlEvent::touchUpInside);
        EXPECT_TRUE(step.isExpected(shown(*panel)));
        EXPECT_EQ(tints(*panel), step.tints);
        EXPECT_EQ(SidebarPopup::selectedIndex, step.tap);
    }
    EXPECT_NE(shown(*panel), firstHome) << "the home tab came back as a new view";
}

TEST_F(SidebarPopupTest, TappingTheSelectedTabRebuildsNothing) {
    auto panel = openPanel();
    panel->menuButtons()[2]->sendActions(kit::ControlEvent::touchUpInside);
    auto report = shown(*panel);
    panel->menuButtons()[2]->sendActions(kit::ControlEvent::touchUpInside);
    EXPECT_EQ(shown(*panel), report);
    EXPECT_EQ(tints(*panel), (std::vector<kit::Color>{gray, gray, blue}));
}

TEST_F(SidebarPopupTest, ANewPanelOpensOnTheTabLastChosen) {
    auto first = openPanel();
    first->menuButtons()[1]->sendActions(kit::ControlEvent::touchUpInside);
    first->removeFromSuperview();

    auto second = openPanel();
    EXPECT_NE(std::dynamic_pointer_cast<PopupTabEvents>(shown(*second)), nullptr);
    EXPECT_EQ(tints(*second), (std::vector<kit::Color>{gray, blue, gray}));
    EXPECT_EQ(SidebarPopup::selectedIndex, 1);
}

TEST_F(SidebarPopupTest, AnIndexWithoutATabShowsKhac) {
    auto panel = openPanel();
    auto stranger = kit::Button::create();
    stranger->setTag(7);
    panel->menuButtonTapped(*stranger);
    auto label = std::dynamic_pointer_cast<UILabelContent>(shown(*panel));
    ASSERT_NE(label, nullptr);
    EXPECT_EQ(label->label()->text(), "Khác");
    EXPECT_EQ(tints(*panel), (std::vector<kit::Color>{gray, gray, gray}));
    window()->layoutIfNeeded();
    EXPECT_EQ(label->label()->center(), (kit::Point{155, 200})) << "centred in the content area";
}

TEST_F(SidebarPopupTest, ASelectedIndexWithoutAMenuButtonIsFatal) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            SidebarPopup::selectedIndex = 3;
            (void)SidebarPopup::create({0, 0, 390, 400});
        },
        "selected tab 3 has no menu button");
}

TEST_F(SidebarPopupTest, TheCloseButtonOnlyCallsOnClose) {
    auto panel = openPanel();
    panel->closeButton()->sendActions(kit::ControlEvent::touchUpInside);
    EXPECT_EQ(closes, 1);
    EXPECT_NE(panel->superview(), nullptr) << "the owner removes it";
    panel->onClose = nullptr;
    panel->closeTapped();
    EXPECT_EQ(closes, 1);
}

TEST_F(SidebarPopupTest, TheAccountTileWithoutATokenClosesThePanelAndShowsNothing) {
    auto panel = openPanel();
    auto home = std::dynamic_pointer_cast<PopupTabHome>(shown(*panel));
    ASSERT_NE(home, nullptr);
    const auto before = window()->subviews().size();
    home->didSelectItemAt(*home->collectionView(), kit::IndexPath::forItem(0));
    EXPECT_EQ(closes, 1) << "closed before anything is fetched";
    h.mainQueue->advance(1);
    EXPECT_EQ(http->sentCount(), 0u);
    EXPECT_EQ(window()->subviews().size(), before);
}

TEST_F(SidebarPopupTest, TheAccountTileFadesTheAccountPopupInOverTheFirstWindow) {
    struct Row {
        const char* name;
        long status;
        bool popupShown;
    };
    const Row rows[] = {
        {"profile received", 200, true},
        {"request rejected", 401, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        start();
        closes = 0;
        h.store->setString(SessionManager::shared().tokenKey, "token-1");
        auto panel = openPanel();
        auto home = std::dynamic_pointer_cast<PopupTabHome>(shown(*panel));
        ASSERT_NE(home, nullptr);
        home->onSelectAccount();
        EXPECT_EQ(closes, 1) << "closed before the answer";
        ASSERT_EQ(http->sentCount(), 1u);
        EXPECT_NE(http->lastUrl().find("/auth-connect/api/v2.0/oauth2/auth/userinfo"), std::string::npos);

        const auto before = window()->subviews().size();
        ASSERT_TRUE(http->answer(row.status, R"({"Data":{"Username":"player-1"}})"));
        EXPECT_EQ(window()->subviews().size(), before) << "views are touched on the main queue only";
        h.mainQueue->runUntilIdle();
        if (!row.popupShown) {
            EXPECT_EQ(window()->subviews().size(), before);
            continue;
        }
        ASSERT_EQ(window()->subviews().size(), before + 1);
        auto account = std::dynamic_pointer_cast<AccountPopup>(window()->subviews().back());
        ASSERT_NE(account, nullptr);
        EXPECT_EQ(account->frame(), window()->bounds());
        EXPECT_EQ(account->alpha(), 1);
        const double begin = now();
        EXPECT_DOUBLE_EQ(account->presentation(begin).alpha, 0);
        EXPECT_GT(account->presentation(begin + 0.125).alpha, 0);
        EXPECT_LT(account->presentation(begin + 0.125).alpha, 1);
        h.mainQueue->advance(0.25);
        EXPECT_DOUBLE_EQ(account->presentation(now()).alpha, 1);

        account->onClose();
        EXPECT_EQ(account->superview(), nullptr) << "its close action removes it";
    }
}

TEST_F(SidebarPopupTest, TheReportButtonPresentsTheSupportFormOverTheFirstWindowsRoot) {
    struct Row {
        const char* name;
        bool withRoot;
        bool panelGone;
        int closes;
    };
    const Row rows[] = {
        {"root controller", true, false, 1},
        {"panel already gone: no close, still presented", true, true, 0},
        {"no root controller: only closed", false, false, 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        start();
        closes = 0;
        std::shared_ptr<kit::ViewController> root;
        if (row.withRoot) {
            root = kit::ViewController::create();
            window()->setRootViewController(root);
        }
        auto panel = openPanel();
        panel->menuButtons()[2]->sendActions(kit::ControlEvent::touchUpInside);
        auto report = std::dynamic_pointer_cast<PopupTabReport>(shown(*panel));
        ASSERT_NE(report, nullptr);
        auto action = report->onReport;
        ASSERT_TRUE(action);
        if (row.panelGone) {
            panel->removeFromSuperview();
            report.reset();
            panel.reset();
        }
        action();
        EXPECT_EQ(closes, row.closes);
        if (!root) {
            continue;
        }
        auto form = std::dynamic_pointer_cast<SupportReportVC>(root->presentedViewController());
        ASSERT_NE(form, nullptr);
        EXPECT_EQ(form->modalPresentationStyle(), kit::ModalPresentationStyle::overFullScreen);
        EXPECT_EQ(form->modalTransitionStyle(), kit::ModalTransitionStyle::crossDissolve);
    }
}

}  // namespace
}  // namespace ovix::test
