#include <gtest/gtest.h>

#include <cmath>

#include "KitTest.h"
#include "ovix/kit/CollectionView.h"
#include "ovix/kit/Label.h"
#include "ovix/kit/LayoutConstraint.h"
#include "ovix/kit/ScrollView.h"
#include "ovix/kit/StackView.h"
#include "ovix/kit/TableView.h"
#include "ovix/kit/TapGestureRecognizer.h"

namespace ovix::test {
namespace {

using kit::IndexPath;
using kit::LayoutConstraint;
using kit::Rect;
using kit::View;

/// A row whose height follows its title's constraints, as the news rows do.
class TitleCell : public kit::TableViewCell {
  public:
    static std::shared_ptr<TitleCell> create(kit::TableViewCellStyle style, const std::string& id) {
        auto cell = std::make_shared<TitleCell>(style, id);
        cell->setUpCell();
        cell->title->setNumberOfLines(0);
        cell->contentView()->addSubview(constrained(cell->title));
        auto& c = *cell->contentView();
        LayoutConstraint::activate({
            cell->title->topAnchor().constraintEqualTo(c.topAnchor(), 8),
            cell->title->leadingAnchor().constraintEqualTo(c.leadingAnchor(), 8),
            cell->title->trailingAnchor().constraintEqualTo(c.trailingAnchor(), -8),
            cell->title->bottomAnchor().constraintEqualTo(c.bottomAnchor(), -8),
        });
        return cell;
    }
    using kit::TableViewCell::TableViewCell;
    void prepareForReuse() override { ++reuses; }

    std::shared_ptr<kit::Label> title = kit::Label::create();
    int reuses = 0;
};

class Rows : public kit::TableViewDataSource, public kit::TableViewDelegate {
  public:
    std::vector<std::string> items;
    std::vector<IndexPath> selected;
    int cellRequests = 0;

    int numberOfRowsInSection(kit::TableView&, int) override { return static_cast<int>(items.size()); }
    std::shared_ptr<kit::TableViewCell> cellForRowAt(kit::TableView& table, const IndexPath& p) override {
        ++cellRequests;
        auto cell = std::dynamic_pointer_cast<TitleCell>(table.dequeueReusableCell("TitleCell", p));
        cell->title->setText(items[static_cast<std::size_t>(p.row)]);
        return cell;
    }
    void didSelectRowAt(kit::TableView&, const IndexPath& p) override { selected.push_back(p); }
};

class ListViews : public KitTest {};

TEST_F(ListViews, ScrollContentGuideSetsTheContentSizeAndDragsStayInside) {
    auto root = View::create({0, 0, 390, 844});
    auto scroll = kit::ScrollView::create();
    pin(scroll, root);
    auto content = constrainedIn(scroll);
    auto& guide = scroll->contentLayoutGuide();
    LayoutConstraint::activate({
        content->topAnchor().constraintEqualTo(guide.topAnchor()),
        content->bottomAnchor().constraintEqualTo(guide.bottomAnchor()),
        content->leadingAnchor().constraintEqualTo(guide.leadingAnchor()),
        content->trailingAnchor().constraintEqualTo(guide.trailingAnchor()),
        content->widthAnchor().constraintEqualTo(scroll->frameLayoutGuide().widthAnchor()),
        content->heightAnchor().constraintEqualToConstant(1500),
    });
    root->layoutIfNeeded();
    EXPECT_EQ(content->frame(), (Rect{0, 0, 390, 1500}));
    EXPECT_EQ(scroll->contentSize(), (kit::Size{390, 1500}));
    EXPECT_EQ(scroll->maximumContentOffset(), (kit::Point{0, 656}));

    // Scrolling moves the bounds, never the laid-out content.
    window()->addSubview(root);
    window()->drag({200, 600}, {200, 300});
    EXPECT_EQ(scroll->contentOffset(), (kit::Point{0, 300}));
    window()->drag({200, 700}, {200, 0}, 10);
    EXPECT_EQ(scroll->contentOffset(), (kit::Point{0, 656}));
    queue().runUntilIdle();
    EXPECT_EQ(content->frame(), (Rect{0, 0, 390, 1500}));
    scroll->setScrollEnabled(false);
    window()->drag({200, 100}, {200, 600});
    EXPECT_EQ(scroll->contentOffset(), (kit::Point{0, 656}));
}

TEST_F(ListViews, EdgesOfAScrollViewTiedToItsContentAreTheContentEdges) {
    auto root = View::create({0, 0, 200, 120});
    auto strip = kit::ScrollView::create({0, 0, 200, 120});
    root->addSubview(strip);
    std::vector<std::shared_ptr<View>> thumbs{box(100, 100), box(100, 100), box(100, 100)};
    auto images = kit::StackView::create(thumbs);
    images->setSpacing(8);
    images->setAlignment(kit::StackViewAlignment::center);
    pin(images, strip);
    images->heightAnchor().constraintEqualTo(strip->heightAnchor())->setActive(true);
    root->layoutIfNeeded();
    EXPECT_EQ(images->frame(), (Rect{0, 0, 316, 120}));
    EXPECT_EQ(strip->contentSize(), (kit::Size{316, 120}));
    EXPECT_EQ(thumbs[2]->frame(), (Rect{216, 10, 100, 100}));
    EXPECT_TRUE(headless.console->lines().empty());
}

TEST_F(ListViews, TableRowsAreSizedByConstraintsReusedAndSelectedByTap) {
    auto rows = std::make_shared<Rows>();
    rows->items = {"short", "a long title that needs several lines in a narrow table row", "third"};
    auto table = kit::TableView::create({0, 0, 300, 400});
    table->registerCell<TitleCell>("TitleCell");
    table->setDataSource(rows);
    table->setDelegate(rows);
    window()->addSubview(table);
    table->reloadData();

    ASSERT_EQ(table->numberOfRows(0), 3);
    double line = kit::Font::systemFont(17).lineHeight();
    auto first = table->rectForRow({0, 0});
    auto second = table->rectForRow({0, 1});
    EXPECT_NEAR(first->height(), std::ceil(line) + 16, 1e-9);
    EXPECT_GT(second->height(), first->height() * 2) << "the long title wraps";
    EXPECT_EQ(second->y(), first->maxY());
    EXPECT_NEAR(table->contentSize().height, table->rectForRow({0, 2})->maxY(), 1e-9);

    auto cell = std::dynamic_pointer_cast<TitleCell>(table->cellForRow({0, 2}));
    rows->items[2] = "changed";
    table->reloadRows({{0, 2}}, kit::TableViewRowAnimation::none);
    EXPECT_EQ(rows->cellRequests, 4) << "only the reloaded row is asked for again";
    EXPECT_EQ(std::dynamic_pointer_cast<TitleCell>(table->cellForRow({0, 2}))->title->text(), "changed");
    EXPECT_EQ(table->cellForRow({0, 2}), cell) << "the released cell comes back";
    EXPECT_EQ(cell->reuses, 1);

    Rect r = *table->rectForRow({0, 1});
    window()->tap({150, r.midY()});
    EXPECT_EQ(rows->selected, (std::vector<IndexPath>{IndexPath{0, 1}}));
    EXPECT_EQ(table->indexPathForSelectedRow(), (IndexPath{0, 1}));

    // A tap recognizer inside a row takes the tap instead of the row.
    int cellTaps = 0;
    table->cellForRow({0, 0})->contentView()->addGestureRecognizer(
        kit::TapGestureRecognizer::create([&](kit::TapGestureRecognizer&) { ++cellTaps; }));
    window()->tap({150, first->midY()});
    EXPECT_EQ(cellTaps, 1);
    EXPECT_EQ(rows->selected.size(), 1u);

    // The table holds its data source weakly.
    std::weak_ptr<Rows> weak = rows;
    rows.reset();
    EXPECT_TRUE(weak.expired());
    table->reloadData();
    EXPECT_EQ(table->numberOfSections(), 0);
}

/// Fixed heights per row, two sections.
class Sections : public kit::TableViewDataSource, public kit::TableViewDelegate {
  public:
    int numberOfSections(kit::TableView&) override { return 2; }
    int numberOfRowsInSection(kit::TableView&, int section) override { return section == 0 ? 2 : 30; }
    std::shared_ptr<kit::TableViewCell> cellForRowAt(kit::TableView&, const IndexPath&) override {
        auto cell = kit::TableViewCell::create();  // a new cell per row, no reuse
        cell->textLabel()->setText("row");
        return cell;
    }
    double heightForRowAt(kit::TableView&, const IndexPath& p) override { return p.section == 0 ? 60 : 20; }
};

TEST_F(ListViews, SectionsStylesAndScrollingDecideWhichRowsShow) {
    auto sections = std::make_shared<Sections>();
    auto table = kit::TableView::create({0, 0, 390, 300}, kit::TableViewStyle::insetGrouped);
    table->setDataSource(sections);
    table->setDelegate(sections);
    table->reloadData();
    table->layoutIfNeeded();
    EXPECT_EQ(table->rectForRow({0, 0}), (Rect{20, 35, 350, 60}));
    EXPECT_EQ(table->rectForRow({1, 0}), (Rect{20, 35 + 120 + 35, 350, 20}));
    EXPECT_EQ(table->contentSize().height, 35 + 120 + 35 + 30 * 20);
    EXPECT_EQ(table->cellForRow({1, 0})->textLabel()->frame(), (Rect{16, 0, 318, 20}));
    EXPECT_EQ(table->visibleCells().size(), 2u + 6u) << "rows starting above y = 300";
    EXPECT_EQ(table->cellForRow({1, 30}), nullptr);
    EXPECT_EQ(table->indexPathForRow({100, 200}), (IndexPath{1, 0}));
    EXPECT_EQ(table->indexPathForRow({100, 10}), std::nullopt) << "the gap above a section is no row";

    table->setContentOffset({0, 400});
    auto visible = table->visibleCells();
    ASSERT_FALSE(visible.empty());
    EXPECT_EQ(table->indexPathForCell(*visible.front()), (IndexPath{1, 10}));
    EXPECT_EQ(table->indexPathForCell(*kit::TableViewCell::create()), std::nullopt);

    // A narrower table lays its rows out again at the new width.
    table->setFrame({0, 0, 200, 300});
    table->layoutIfNeeded();
    EXPECT_EQ(table->rectForRow({0, 1}), (Rect{20, 95, 160, 60}));

    table->selectRow({0, 1}, false);
    EXPECT_TRUE(table->cellForRow({0, 1})->isSelected());
    table->selectRow({1, 2}, false);
    EXPECT_FALSE(table->cellForRow({0, 1})->isSelected()) << "one selection at a time";
    table->deselectRow({1, 2}, false);
    EXPECT_EQ(table->indexPathForSelectedRow(), std::nullopt);
}

TEST_F(ListViews, AccessoryNarrowsTheContentViewAndAnUnregisteredIdentifierGivesNoCell) {
    auto cell = kit::TableViewCell::create(kit::TableViewCellStyle::defaultStyle, "Plain");
    cell->setFrame({0, 0, 300, 44});
    cell->layoutIfNeeded();
    EXPECT_EQ(cell->contentView()->frame(), (Rect{0, 0, 300, 44}));
    cell->setAccessoryType(kit::TableViewCellAccessoryType::checkmark);
    cell->layoutIfNeeded();
    EXPECT_EQ(cell->contentView()->frame(), (Rect{0, 0, 260, 44}));

    auto table = kit::TableView::create({0, 0, 300, 400});
    EXPECT_EQ(table->dequeueReusableCell("Missing", {0, 0}), nullptr);
    EXPECT_EQ(headless.console->lines().size(), 1u);
}

class Tiles : public kit::CollectionViewDataSource, public kit::CollectionViewDelegate {
  public:
    int count = 4;
    std::vector<IndexPath> selected;
    int numberOfItemsInSection(kit::CollectionView&, int) override { return count; }
    std::shared_ptr<kit::CollectionViewCell> cellForItemAt(kit::CollectionView& view,
                                                           const IndexPath& p) override {
        return view.dequeueReusableCell("TabCell", p);
    }
    std::optional<kit::Size> sizeForItemAt(kit::CollectionView& view, kit::CollectionViewFlowLayout&,
                                           const IndexPath&) override {
        double w = view.bounds().width();
        double columns = std::floor((w - 16 + 8) / 133);
        return kit::Size{(w - 16 - (columns - 1) * 8) / columns, 90};
    }
    void didSelectItemAt(kit::CollectionView&, const IndexPath& p) override { selected.push_back(p); }
};

TEST_F(ListViews, FlowLayoutPlacesDelegateSizedItemsInLines) {
    auto tiles = std::make_shared<Tiles>();
    auto layout = kit::CollectionViewFlowLayout::create();
    layout->minimumLineSpacing = 8;
    layout->minimumInteritemSpacing = 8;
    layout->sectionInset = {8, 8, 8, 8};
    auto grid = kit::CollectionView::create({0, 0, 400, 500}, layout);
    grid->registerCell<kit::CollectionViewCell>("TabCell");
    grid->setDataSource(tiles);
    grid->setDelegate(tiles);
    grid->reloadData();
    EXPECT_EQ(grid->cellForItem({0, 0})->frame(), (Rect{8, 8, 188, 90}));
    EXPECT_EQ(grid->cellForItem({0, 1})->frame(), (Rect{204, 8, 188, 90}));
    EXPECT_EQ(grid->cellForItem({0, 3})->frame(), (Rect{204, 106, 188, 90}));
    EXPECT_EQ(grid->contentSize(), (kit::Size{400, 204}));

    grid->setFrame({0, 0, 541, 500});
    grid->layoutIfNeeded();
    EXPECT_EQ(grid->cellForItem({0, 3})->frame(), (Rect{407.75, 8, 125.25, 90}));

    window()->addSubview(grid);
    window()->tap({200, 50});
    EXPECT_EQ(tiles->selected, (std::vector<IndexPath>{IndexPath{0, 1}}));
    EXPECT_TRUE(grid->cellForItem({0, 1})->isSelected());

    // A short last line is spread out; a line of one item is centred.
    tiles->count = 3;
    grid->setFrame({0, 0, 400, 500});
    grid->reloadData();
    EXPECT_EQ(grid->cellForItem({0, 2})->frame(), (Rect{106, 106, 188, 90}));
}

TEST(FlowLayout, HorizontalLinesWrapToTheRight) {
    kit::CollectionViewFlowLayout layout;
    layout.scrollDirection = kit::ScrollDirection::horizontal;
    layout.minimumInteritemSpacing = 0;
    layout.minimumLineSpacing = 10;
    auto result = layout.layout({300, 100}, {{{50, 40}, {40, 40}, {60, 40}}});
    EXPECT_EQ(result.frames[0][0], (Rect{0, 0, 50, 40}));
    EXPECT_EQ(result.frames[0][1], (Rect{5, 60, 40, 40})) << "spread down the column, centred across it";
    EXPECT_EQ(result.frames[0][2], (Rect{60, 30, 60, 40})) << "alone in its column";
    EXPECT_EQ(result.contentSize, (kit::Size{120, 100}));
}

}  // namespace
}  // namespace ovix::test
