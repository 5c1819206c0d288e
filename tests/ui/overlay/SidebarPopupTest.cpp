#include <gtest/gtest.h>

#include "core/SessionManager.h"
#include "ovix/kit/ViewController.h"
#include "ui/overlay/AccountPopup.h"
#include "ui/overlay/PanelTestSupport.h"
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
    ASSERT_EQ(panel->menuButtons().size(), 3u);
    EXPECT_EQ(tints(*panel), (std::vector<kit::Color>{blue, gray, gray}));
    const auto& close = *panel->closeButton();
    EXPECT_EQ(close.convertTo(close.bounds(), panel.get()), (kit::Rect{16, 336, 48, 48}))
        << "foot of the strip";
    EXPECT_EQ(shown(*panel)->className(), "PopupTabHome");
    EXPECT_EQ(shown(*panel)->frame(), (kit::Rect{0, 0, 310, 400}));
}

TEST_F(SidebarPopupTest, SwitchingTabsBuildsEachTabAfreshAndTheSelectedOneIsKept) {
    auto panel = openPanel();
    auto firstHome = shown(*panel);
    struct Step {
        int tap;
        std::string content;
        std::vector<kit::Color> tints;
        bool rebuilt;
    };
    const Step steps[] = {
        {2, "PopupTabReport", {gray, gray, blue}, true},
        {2, "PopupTabReport", {gray, gray, blue}, false},  // the selected tab: nothing happens
        {1, "PopupTabEvents", {gray, blue, gray}, true},
        {0, "PopupTabHome", {blue, gray, gray}, true},
    };
    for (const auto& step : steps) {
        SCOPED_TRACE(step.tap);
        auto before = shown(*panel);
        panel->menuButtons()[static_cast<std::size_t>(step.tap)]->sendActions(
            kit::ControlEvent::touchUpInside);
        EXPECT_EQ(shown(*panel)->className(), step.content);
        EXPECT_EQ(shown(*panel) != before, step.rebuilt);
        EXPECT_EQ(tints(*panel), step.tints);
        EXPECT_EQ(SidebarPopup::selectedIndex, step.tap);
    }
    EXPECT_NE(shown(*panel), firstHome) << "the home tab came back as a new view";

    // Closed on the events tab and opened again: the events tab, its button blue.
    panel->menuButtons()[1]->sendActions(kit::ControlEvent::touchUpInside);
    panel->removeFromSuperview();
    auto again = openPanel();
    EXPECT_EQ(shown(*again)->className(), "PopupTabEvents");
    EXPECT_EQ(tints(*again), (std::vector<kit::Color>{gray, blue, gray}));
}

TEST_F(SidebarPopupTest, AnIndexWithoutATabShowsKhacAndCannotOpenAPanel) {
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

    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH((void)SidebarPopup::create({0, 0, 390, 400}), "selected tab 7 has no menu button");
}

TEST_F(SidebarPopupTest, TheAccountTileClosesThePanelThenFadesTheAccountPopupIn) {
    struct Row {
        const char* name;
        const char* token;
        long status;
        bool popupShown;
    };
    const Row rows[] = {
        {"no stored token: nothing sent, nothing shown", "", 0, false},
        {"profile received", "token-1", 200, true},
        {"request rejected", "token-1", 401, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        start();
        closes = 0;
        h.store->setString(SessionManager::shared().tokenKey, row.token);
        auto panel = openPanel();
        auto home = std::dynamic_pointer_cast<PopupTabHome>(shown(*panel));
        ASSERT_NE(home, nullptr);
        const auto before = window()->subviews().size();
        home->didSelectItemAt(*home->collectionView(), kit::IndexPath::forItem(0));
        EXPECT_EQ(closes, 1) << "closed before the answer";
        if (row.status == 0) {
            h.mainQueue->advance(1);
            EXPECT_EQ(http->sentCount(), 0u);
            EXPECT_EQ(window()->subviews().size(), before);
            continue;
        }
        ASSERT_EQ(http->sentCount(), 1u);
        EXPECT_NE(http->lastUrl().find("/auth-connect/api/v2.0/oauth2/auth/userinfo"), std::string::npos);
        ASSERT_TRUE(http->answer(row.status, R"({"Data":{"Username":"player-1"}})"));
        EXPECT_EQ(window()->subviews().size(), before) << "views are touched on the main queue only";
        h.mainQueue->runUntilIdle();
        ASSERT_EQ(window()->subviews().size(), before + (row.popupShown ? 1 : 0));
        if (!row.popupShown) {
            continue;
        }
        auto account = std::dynamic_pointer_cast<AccountPopup>(window()->subviews().back());
        ASSERT_NE(account, nullptr);
        EXPECT_EQ(account->frame(), window()->bounds());
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
        auto root = row.withRoot ? kit::ViewController::create() : nullptr;
        if (root) {
            window()->setRootViewController(root);
        }
        auto panel = openPanel();
        panel->menuButtons()[2]->sendActions(kit::ControlEvent::touchUpInside);
        auto action = std::dynamic_pointer_cast<PopupTabReport>(shown(*panel))->onReport;
        ASSERT_TRUE(action);
        if (row.panelGone) {
            panel->removeFromSuperview();
            panel.reset();
        }
        action();
        EXPECT_EQ(closes, row.closes);
        if (root) {
            auto form = std::dynamic_pointer_cast<SupportReportVC>(root->presentedViewController());
            ASSERT_NE(form, nullptr);
            EXPECT_EQ(form->modalPresentationStyle(), kit::ModalPresentationStyle::overFullScreen);
            EXPECT_EQ(form->modalTransitionStyle(), kit::ModalTransitionStyle::crossDissolve);
        }
    }
}

}  // namespace
}  // namespace ovix::test
