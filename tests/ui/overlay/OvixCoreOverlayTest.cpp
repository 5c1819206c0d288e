#include <gtest/gtest.h>

#include <algorithm>

#include "core/SessionManager.h"
#include "ovix/OvixCore.h"
#include "ovix/WarningButton.h"
#include "ovix/kit/WindowScene.h"
#include "ui/overlay/PanelTestSupport.h"

namespace ovix::test {
namespace {

class OvixCoreOverlayTest : public PanelTest {
  protected:
    ~OvixCoreOverlayTest() override {
        core.hideFloatingButton();
        core.hideWarningButton();
    }

    static bool holds(const kit::View& parent, const std::shared_ptr<kit::View>& view) {
        const auto& all = parent.subviews();
        return std::find(all.begin(), all.end(), view) != all.end();
    }

    OvixCore& core = OvixCore::shared();
};

TEST_F(OvixCoreOverlayTest, ShowPutsOneButtonOnTheKeyWindowAndKeepsTheFirst) {
    core.showFloatingButton(56);
    auto button = core.floatingButton();
    ASSERT_NE(button, nullptr);
    EXPECT_EQ(button->frame(), (kit::Rect{100, 200, 56, 56}));
    EXPECT_TRUE(holds(*window(), button));

    core.showFloatingButton(80);
    EXPECT_EQ(core.floatingButton(), button);
    EXPECT_EQ(button->frame().size, (kit::Size{56, 56}));
    EXPECT_EQ(std::count(window()->subviews().begin(), window()->subviews().end(), button), 1);
}

TEST_F(OvixCoreOverlayTest, TheKeyWindowIsFoundThroughTheConnectedScenes) {
    struct Row {
        const char* name;
        int windows;
        int key;  // -1: none is key
    };
    const Row rows[] = {{"second window key", 2, 1}, {"no window key", 2, -1}, {"no window at all", 0, -1}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        start({390, 844}, false, row.windows);
        auto windows = h.application->windows();
        for (auto& w : windows) {
            w->setHidden(false);
        }
        if (row.key >= 0) {
            windows[static_cast<std::size_t>(row.key)]->makeKey();
        } else if (!windows.empty()) {
            // Another window, outside every scene, takes the key.
            kit::Window::create(kit::Rect{0, 0, 10, 10})->makeKey();
        }
        // Both buttons go to the key window, and nowhere when there is none.
        core.showFloatingButton(50);
        core.showWarningButton({20, 100});
        if (row.key < 0) {
            EXPECT_EQ(core.floatingButton(), nullptr);
            EXPECT_EQ(core.warningButton(), nullptr);
            core.hideWarningButton();  // nothing to hide: no harm
            continue;
        }
        ASSERT_NE(core.floatingButton(), nullptr);
        ASSERT_NE(core.warningButton(), nullptr);
        EXPECT_TRUE(holds(*windows[static_cast<std::size_t>(row.key)], core.floatingButton()));
        EXPECT_TRUE(holds(*windows[static_cast<std::size_t>(row.key)], core.warningButton()));
        core.hideFloatingButton();
        core.hideWarningButton();
    }
}

TEST_F(OvixCoreOverlayTest, HideRemovesTheButtonButAnOpenSheetStaysUntilClosed) {
    core.showFloatingButton(60);
    auto button = core.floatingButton();
    button->sendActions(kit::ControlEvent::touchUpInside);
    h.mainQueue->advance(0.3);
    auto sheet = button->popupView();
    ASSERT_NE(sheet, nullptr);
    std::weak_ptr<FloatingButton> weakButton = button;
    button.reset();

    core.hideFloatingButton();
    EXPECT_EQ(core.floatingButton(), nullptr);
    EXPECT_TRUE(weakButton.expired()) << "nothing else keeps the button";
    EXPECT_TRUE(holds(*window(), sheet));
    h.mainQueue->advance(1);
    EXPECT_TRUE(holds(*window(), sheet)) << "no one closes it on its own";

    core.hideFloatingButton();  // a second hide is harmless
    core.showFloatingButton(40);
    ASSERT_NE(core.floatingButton(), nullptr);
    EXPECT_EQ(core.floatingButton()->frame().size, (kit::Size{40, 40})) << "a fresh button after hiding";
}

TEST_F(OvixCoreOverlayTest, GetAllNewsReadsTheFeedIntoItemsOrNil) {
    std::vector<std::optional<std::vector<NewsItem>>> got;
    auto keep = [&](std::optional<std::vector<NewsItem>> items) { got.push_back(std::move(items)); };
    core.getAllNews(keep);
    core.getAllNews(keep);
    EXPECT_NE(http->lastUrl().find("/game/online/api/v2.0/client/all-news?clientId="), std::string::npos);
    ASSERT_TRUE(http->answer(200, R"({"Data":[{"Id":2,"Title":"B"},{"Id":1,"Title":"A"}]})"));
    ASSERT_TRUE(http->answer(500, R"({"Data":[]})"));
    ASSERT_EQ(got.size(), 2u);
    ASSERT_TRUE(got[0].has_value());
    ASSERT_EQ(got[0]->size(), 2u);
    EXPECT_EQ((*got[0])[0].id, 2);
    EXPECT_EQ((*got[0])[1].title, "A");
    EXPECT_FALSE(got[1].has_value());
}

}  // namespace
}  // namespace ovix::test
