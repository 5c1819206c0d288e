#include <gtest/gtest.h>

#include "KitTest.h"
#include "ovix/kit/Button.h"
#include "ovix/kit/View.h"

namespace ovix::test {
namespace {

using kit::AutoresizingMask;
using kit::Rect;
using kit::View;

TEST(ViewGeometry, ChangingBoundsSizeKeepsTheCentre) {
    auto button = kit::Button::create(kit::ButtonType::custom, {20, 100, 40, 40});
    EXPECT_EQ(button->center(), (kit::Point{40, 120}));

    button->setBounds({0, 0, 150, 60});
    EXPECT_EQ(button->frame(), (Rect{-35, 90, 150, 60}));
    EXPECT_EQ(button->center(), (kit::Point{40, 120}));

    button->setBounds({0, 0, 40, 40});
    EXPECT_EQ(button->frame(), (Rect{20, 100, 40, 40}));

    // Moving the origin keeps the size; the next resize is about the new centre.
    button->setBounds({0, 0, 150, 60});
    button->setFrame({{0, 0}, button->frame().size});
    button->setBounds({0, 0, 40, 40});
    EXPECT_EQ(button->frame(), (Rect{55, 10, 40, 40}));
}

TEST(ViewGeometry, FlexibleMarginsKeepAViewCentredThroughResizes) {
    auto root = View::create({0, 0, 390, 844});
    auto logo = View::create({(390 - 200) / 2.0, (844 - 200) / 2.0, 200, 200});
    logo->setAutoresizingMask(static_cast<AutoresizingMask>(45));
    root->addSubview(logo);
    EXPECT_EQ(logo->frame(), (Rect{95, 322, 200, 200}));

    root->setFrame({0, 0, 844, 390});
    EXPECT_EQ(logo->frame(), (Rect{322, 95, 200, 200}));
    root->setBounds({0, 0, 1000, 1000});
    EXPECT_EQ(logo->frame(), (Rect{400, 400, 200, 200}));
    root->setFrame({0, 0, 390, 844});
    EXPECT_EQ(logo->frame(), (Rect{95, 322, 200, 200}));
}

TEST(ViewGeometry, AutoresizingSharesTheChangeAmongFlexibleParts) {
    auto root = View::create({0, 0, 100, 100});
    auto fill = View::create({10, 10, 80, 80});
    fill->setAutoresizingMask(AutoresizingMask::flexibleWidth | AutoresizingMask::flexibleHeight);
    auto pinnedRight = View::create({70, 0, 20, 20});
    pinnedRight->setAutoresizingMask(AutoresizingMask::flexibleLeftMargin);
    auto fixed = View::create({5, 5, 10, 10});
    auto constrained = View::create({0, 0, 10, 10});
    constrained->setAutoresizingMask(AutoresizingMask::flexibleWidth);
    constrained->setTranslatesAutoresizingMaskIntoConstraints(false);
    for (auto& v : {fill, pinnedRight, fixed, constrained}) {
        root->addSubview(v);
    }

    root->setBounds({0, 0, 200, 50});
    EXPECT_EQ(fill->frame(), (Rect{10, 10, 180, 30}));
    EXPECT_EQ(pinnedRight->frame(), (Rect{170, 0, 20, 20}));
    EXPECT_EQ(fixed->frame(), (Rect{5, 5, 10, 10}));
    EXPECT_EQ(constrained->frame(), (Rect{0, 0, 10, 10})) << "constraints, not the mask, place it";

    // Margin and width both flexible: the change splits in proportion to their sizes (30 : 60).
    auto both = View::create({30, 0, 60, 10});
    both->setAutoresizingMask(AutoresizingMask::flexibleLeftMargin | AutoresizingMask::flexibleWidth);
    auto box = View::create({0, 0, 100, 10});
    box->addSubview(both);
    box->setBounds({0, 0, 190, 10});
    EXPECT_EQ(both->frame(), (Rect{60, 0, 120, 10}));

    box->setAutoresizesSubviews(false);
    box->setBounds({0, 0, 100, 10});
    EXPECT_EQ(both->frame(), (Rect{60, 0, 120, 10}));
}

TEST(ViewHierarchy, OrderMovesAndRemoval) {
    auto a = View::create();
    auto b = View::create();
    auto x = View::create();
    auto y = View::create();
    auto z = View::create();
    a->addSubview(x);
    a->addSubview(y);
    a->addSubview(z);
    a->bringSubviewToFront(*x);
    EXPECT_EQ(a->subviews(), (std::vector<std::shared_ptr<View>>{y, z, x}));
    a->sendSubviewToBack(*z);
    EXPECT_EQ(a->subviews(), (std::vector<std::shared_ptr<View>>{z, y, x}));
    a->insertSubviewBelow(x, *z);
    EXPECT_EQ(a->subviews(), (std::vector<std::shared_ptr<View>>{x, z, y}));

    b->addSubview(y);  // moving a view takes it out of its old superview
    EXPECT_EQ(a->subviews(), (std::vector<std::shared_ptr<View>>{x, z}));
    EXPECT_EQ(y->superview(), b);

    y->addSubview(b);  // a view cannot contain its ancestor
    EXPECT_TRUE(y->subviews().empty());
    EXPECT_TRUE(y->isDescendantOf(*b));

    std::weak_ptr<View> weak = x;
    x.reset();
    a->subviews().front()->removeFromSuperview();
    EXPECT_TRUE(weak.expired()) << "the superview was the owner";
    EXPECT_EQ(a->subviews().size(), 1u);
}

TEST(ViewHierarchy, TagsAndTintAreFoundThroughTheTree) {
    auto root = View::create();
    auto child = View::create();
    auto leaf = View::create();
    leaf->setTag(7);
    root->addSubview(child);
    child->addSubview(leaf);
    EXPECT_EQ(root->viewWithTag(7), leaf);
    EXPECT_EQ(root->viewWithTag(8), nullptr);

    EXPECT_EQ(leaf->tintColor(), kit::Color::systemBlue());
    root->setTintColor(kit::Color::red());
    EXPECT_EQ(leaf->tintColor(), kit::Color::red());
    leaf->setTintColor(kit::Color::white());
    root->setTintColor(kit::Color::gray());
    EXPECT_EQ(leaf->tintColor(), kit::Color::white());
    EXPECT_EQ(child->tintColor(), kit::Color::gray());
}

TEST(ViewGeometry, PointsConvertThroughOffsetsAndScrollPositions) {
    auto root = View::create({0, 0, 400, 400});
    auto scroller = View::create({10, 20, 100, 100});
    scroller->setBounds({0, 50, 100, 100});  // scrolled down by 50
    auto item = View::create({5, 60, 10, 10});
    root->addSubview(scroller);
    scroller->addSubview(item);

    EXPECT_EQ(item->convertTo(kit::Point{1, 1}, root.get()), (kit::Point{16, 31}));
    EXPECT_EQ(item->convertFrom(kit::Point{16, 31}, root.get()), (kit::Point{1, 1}));
    EXPECT_EQ(root->convertTo(kit::Point{16, 31}, item.get()), (kit::Point{1, 1}));
}

TEST(ViewInput, HitTestingHonoursVisibilityInteractionBoundsAndOrder) {
    auto root = View::create({0, 0, 300, 300});
    auto back = View::create({0, 0, 100, 100});
    auto front = View::create({50, 50, 100, 100});
    auto overhang = View::create({90, 90, 40, 40});  // sticks out of `back`
    root->addSubview(back);
    root->addSubview(front);
    back->addSubview(overhang);

    EXPECT_EQ(root->hitTest({60, 60}), front) << "front subviews first";
    EXPECT_EQ(root->hitTest({20, 20}), back);
    EXPECT_EQ(root->hitTest({95, 95}), front);
    front->setHidden(true);
    EXPECT_EQ(root->hitTest({95, 95}), overhang);
    EXPECT_EQ(root->hitTest({120, 120}), root) << "outside `back`, its subview is not reached";
    front->setHidden(false);
    front->setAlpha(0.005);
    EXPECT_EQ(root->hitTest({60, 60}), back);
    front->setAlpha(1);
    front->setUserInteractionEnabled(false);
    EXPECT_EQ(root->hitTest({60, 60}), back);
    EXPECT_EQ(root->hitTest({400, 10}), nullptr);
}

}  // namespace
}  // namespace ovix::test
