#include <gtest/gtest.h>

#include "KitTest.h"
#include "ovix/kit/Button.h"
#include "ovix/kit/LayoutConstraint.h"
#include "ovix/kit/StackView.h"

namespace ovix::test {
namespace {

using kit::LayoutConstraint;
using kit::Rect;
using kit::StackView;
using kit::View;

class StackViews : public KitTest {};

TEST_F(StackViews, FillEquallySplitsTheWidthExactly) {
    auto root = View::create({0, 0, 337, 44});
    auto send = kit::Button::create(kit::ButtonType::system);
    send->setTitle("Gửi Hỗ trợ");
    auto close = kit::Button::create(kit::ButtonType::system);
    close->setTitle("Đóng");
    auto row = StackView::create({send, close});
    row->setSpacing(12);
    row->setDistribution(kit::StackViewDistribution::fillEqually);
    pin(row, root);
    root->layoutIfNeeded();
    EXPECT_EQ(send->frame(), (Rect{0, 0, 162.5, 44})) << "titles of different lengths still split evenly";
    EXPECT_EQ(close->frame(), (Rect{174.5, 0, 162.5, 44}));

    auto third = kit::Button::create(kit::ButtonType::system);
    row->addArrangedSubview(third);
    root->layoutIfNeeded();
    double w = (337 - 24) / 3.0;
    EXPECT_NEAR(third->frame().x(), 2 * (w + 12), 1e-6);
    EXPECT_NEAR(third->frame().width(), w, 1e-6);

    close->setHidden(true);  // hidden views leave the arrangement
    root->layoutIfNeeded();
    EXPECT_EQ(send->frame(), (Rect{0, 0, 162.5, 44}));
    EXPECT_EQ(third->frame(), (Rect{174.5, 0, 162.5, 44}));
}

TEST_F(StackViews, EqualSpacingSharesTheLeftoverBetweenGaps) {
    auto root = View::create({0, 0, 80, 400});
    auto logo = box(40, 40);
    auto a = box(48, 48);
    auto b = box(48, 48);
    auto spacer = View::create();
    auto close = box(48, 48);
    auto column = StackView::create({logo, a, b, spacer, close});
    column->setAxis(kit::LayoutAxis::vertical);
    column->setAlignment(kit::StackViewAlignment::center);
    column->setDistribution(kit::StackViewDistribution::equalSpacing);
    pin(column, root, 16);
    root->layoutIfNeeded();
    // 368 high, 184 of items, the spacer settles at zero: four gaps of 46.
    EXPECT_EQ(logo->frame(), (Rect{4, 0, 40, 40}));
    EXPECT_EQ(a->frame(), (Rect{0, 86, 48, 48}));
    EXPECT_EQ(b->frame(), (Rect{0, 180, 48, 48}));
    EXPECT_EQ(spacer->frame().height(), 0);
    EXPECT_EQ(spacer->frame().y(), 274);
    EXPECT_EQ(close->frame(), (Rect{0, 320, 48, 48}));
}

TEST_F(StackViews, LayoutMarginsCanBeTheArrangementEdges) {
    auto root = View::create({0, 0, 300, 200});
    // Fill alignment stretches across: the widths of 50 and 10 are only wishes.
    auto title = box(50, 20, 500);
    auto strip = box(10, 120, 500);
    auto column = StackView::create({title, strip});
    column->setAxis(kit::LayoutAxis::vertical);
    column->setSpacing(8);
    column->setLayoutMargins({12, 12, 12, 12});
    column->setLayoutMarginsRelativeArrangement(true);
    root->addSubview(constrained(column));
    LayoutConstraint::activate({
        column->topAnchor().constraintEqualTo(root->topAnchor()),
        column->leadingAnchor().constraintEqualTo(root->leadingAnchor()),
        column->widthAnchor().constraintEqualToConstant(300),
    });
    root->layoutIfNeeded();
    EXPECT_EQ(title->frame(), (Rect{12, 12, 276, 20}));
    EXPECT_EQ(strip->frame(), (Rect{12, 40, 276, 120}));
    EXPECT_EQ(column->frame(), (Rect{0, 0, 300, 172}));

    column->setLayoutMarginsRelativeArrangement(false);
    root->layoutIfNeeded();
    EXPECT_EQ(title->frame(), (Rect{0, 0, 300, 20}));
    EXPECT_EQ(column->frame().height(), 148);

    column->removeArrangedSubview(*strip);
    EXPECT_EQ(strip->superview(), column) << "removing from the arrangement keeps the subview";
    EXPECT_EQ(column->arrangedSubviews().size(), 1u);
}

}  // namespace
}  // namespace ovix::test
