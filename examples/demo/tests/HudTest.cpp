// The game's HUD: which button a click hits, where the column goes, what the buttons say.
#include <gtest/gtest.h>

#include "Hud.h"

namespace demo {
namespace {

TEST(HudTest, AClickHitsTheButtonUnderItAndNothingBetweenOrBesideThem) {
    Hud hud({"com.game.gems100", "com.game.vip"});
    hud.layout(960);
    const double x = 960 - Hud::margin - Hud::buttonWidth;
    const double step = Hud::buttonHeight + Hud::spacing;
    struct Case {
        double x, y;
        std::optional<Hud::Action> action;
        const char* product;
    };
    const Case cases[] = {
        {x + 1, Hud::margin + 1, Hud::Action::buy, "com.game.gems100"},
        {x + Hud::buttonWidth - 1, Hud::margin + step + 1, Hud::Action::buy, "com.game.vip"},
        {x + 10, Hud::margin + Hud::buttonHeight + 1, std::nullopt, ""},  // the gap below the first
        {x - 1, Hud::margin + 1, std::nullopt, ""},                       // left of the column
        {x + Hud::buttonWidth, Hud::margin + 1, std::nullopt, ""},        // right edge is outside
        {x + 10, Hud::margin + 2 * step + 5, Hud::Action::restore, ""},
        {x + 10, Hud::margin + 3 * step + 5, Hud::Action::userInfo, ""},
        {x + 10, Hud::margin + 4 * step + 5, Hud::Action::logout, ""},
        {x + 10, Hud::margin + 5 * step + 5, std::nullopt, ""},  // below the last
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::Message() << c.x << ", " << c.y);
        const auto item = hud.itemAt(c.x, c.y);
        ASSERT_EQ(item.has_value(), c.action.has_value());
        if (item) {
            EXPECT_EQ(item->action, *c.action);
            EXPECT_EQ(item->productId, c.product);
        }
    }
}

TEST(HudTest, TheColumnFollowsTheRightEdgeButNeverLeavesTheScene) {
    Hud hud({"p"});
    hud.layout(1280);
    EXPECT_EQ(hud.items().front().x, 1280 - Hud::margin - Hud::buttonWidth);
    hud.layout(100);  // narrower than a button
    EXPECT_EQ(hud.items().front().x, Hud::margin);
    EXPECT_TRUE(hud.itemAt(Hud::margin + 1, Hud::margin + 1).has_value());
}

TEST(HudTest, BuyButtonsNameTheProductShortlyAndShowOnlyTheirOwnPrice) {
    Hud hud({"com.game.gems100", "com.game.vip", "plain", "trailing."});
    EXPECT_EQ(hud.buyItem("com.game.gems100")->label, "Mua gems100");
    EXPECT_EQ(hud.buyItem("plain")->label, "Mua plain");
    EXPECT_EQ(hud.buyItem("trailing.")->label, "Mua trailing.");
    hud.setPrice("com.game.vip", "99.000 ₫");
    EXPECT_EQ(hud.buyItem("com.game.vip")->label, "Mua vip · 99.000 ₫");
    EXPECT_EQ(hud.buyItem("com.game.gems100")->label, "Mua gems100");
    EXPECT_FALSE(hud.buyItem("com.game.other").has_value());
    EXPECT_EQ(hud.item(Hud::Action::logout)->label, "Đăng xuất");
}

}  // namespace
}  // namespace demo
