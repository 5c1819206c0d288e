#include <gtest/gtest.h>

#include <cmath>

#include "ui/overlay/PanelTestSupport.h"
#include "ui/overlay/PopupTabHome.h"
#include "ui/overlay/TabCell.h"

namespace ovix::test {
namespace {

class PopupTabHomeTest : public PanelTest {
  protected:
    /// A home tab `width` wide on the window, laid out.
    std::shared_ptr<PopupTabHome> laidOut(double width, double height = 400) {
        auto home = PopupTabHome::create({0, 0, width, height});
        window()->addSubview(home);
        window()->layoutIfNeeded();
        return home;
    }
    std::shared_ptr<TabCell> cell(const PopupTabHome& home, int item) {
        return std::dynamic_pointer_cast<TabCell>(
            home.collectionView()->cellForItem(kit::IndexPath::forItem(item)));
    }
};

TEST_F(PopupTabHomeTest, TileSizeFollowsTheColumnRule) {
    struct Row {
        double width;
        double tileWidth;
    };
    // Two and four columns are the grid test's; here the edges of the rule.
    const Row rows[] = {
        {539, 169},  // one point short of a 4th column
        {141, 125},  // exactly one column
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.width);
        EXPECT_NEAR(PopupTabHome::tileSize(row.width).width, row.tileWidth, 1e-9);
        EXPECT_EQ(PopupTabHome::tileSize(row.width).height, 90);
    }
    // Not clamped to one column: a grid narrower than a tile has none.
    EXPECT_FALSE(std::isfinite(PopupTabHome::tileSize(100).width));
}

TEST_F(PopupTabHomeTest, TheGridPlacesTheTilesItsWidthAllows) {
    struct Row {
        double tabWidth;  // the grid is 16 narrower
        std::vector<double> xs;
        std::vector<double> ys;
        double tileWidth;
    };
    const Row rows[] = {
        {416, {8, 204, 8, 204}, {8, 8, 106, 106}, 188},
        {557, {8, 141.25, 274.5, 407.75}, {8, 8, 8, 8}, 125.25},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.tabWidth);
        auto home = laidOut(row.tabWidth);
        EXPECT_EQ(home->collectionView()->frame(), (kit::Rect{8, 69, row.tabWidth - 16, 400 - 77}));
        ASSERT_EQ(home->collectionView()->numberOfItems(0), 4);
        for (std::size_t i = 0; i < 4; ++i) {
            SCOPED_TRACE(i);
            auto tile = cell(*home, static_cast<int>(i));
            ASSERT_NE(tile, nullptr);
            EXPECT_NEAR(tile->frame().x(), row.xs[i], 1e-9);
            EXPECT_EQ(tile->frame().y(), row.ys[i]);
            EXPECT_NEAR(tile->frame().width(), row.tileWidth, 1e-9);
            EXPECT_EQ(tile->frame().height(), 90);
            // The title ends 8 inside the tile, whatever its width.
            EXPECT_NEAR(tile->titleLabel()->frame().maxX(), row.tileWidth - 8, 1e-9);
            EXPECT_NEAR(tile->titleLabel()->frame().midY(), 45, 1e-9);
        }
        home->removeFromSuperview();
    }
}

TEST_F(PopupTabHomeTest, OnlyTheAccountTileActsTheOthersOnlyLog) {
    auto home = laidOut(416);
    int accounts = 0;
    home->onSelectAccount = [&] { ++accounts; };
    struct Row {
        int item;
        int accounts;
        std::vector<std::string> console;
    };
    const Row rows[] = {
        {1, 0, {"Selected tab: Facebook"}},
        {2, 0, {"Selected tab: Group"}},
        {3, 0, {"Selected tab: Chat Admin"}},
        {0, 1, {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.item);
        accounts = 0;
        h.console->clear();
        // Through the window, as a player's tap: tiles 188 wide, 90 high, two per row.
        auto tile = cell(*home, row.item);
        window()->tap(tile->convertTo(kit::Point{20, 20}, nullptr));
        EXPECT_EQ(accounts, row.accounts);
        EXPECT_EQ(h.console->lines(), row.console);
    }
    home->onSelectAccount = nullptr;
    home->didSelectItemAt(*home->collectionView(), kit::IndexPath::forItem(0));
    EXPECT_TRUE(h.console->lines().empty()) << "the account tile never logs";
}

}  // namespace
}  // namespace ovix::test
