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

TEST(ViewGeometry, AutoresizingSharesTheChangeAmongFlexibleParts) {
    using M = AutoresizingMask;
    const M left = M::flexibleLeftMargin, right = M::flexibleRightMargin, top = M::flexibleTopMargin;
    const M bottom = M::flexibleBottomMargin, width = M::flexibleWidth, height = M::flexibleHeight;
    struct Case {
        const char* what;
        M mask;
        Rect frame;
        Rect resized;  // once the 100 x 100 superview is 200 x 50
        bool constrained = false;
        bool superviewResizes = true;
    };
    const Case cases[] = {
        {"fixed", M::none, {5, 5, 10, 10}, {5, 5, 10, 10}},
        {"filling", width | height, {10, 10, 80, 80}, {10, 10, 180, 30}},
        {"pinned right", left, {70, 0, 20, 20}, {170, 0, 20, 20}},
        {"pinned bottom", top, {0, 70, 20, 20}, {0, 20, 20, 20}},
        {"centred", left | right | top | bottom, {40, 40, 20, 20}, {90, 15, 20, 20}},
        {"margin and width in proportion, 20 : 60", left | width, {20, 0, 60, 10}, {45, 0, 135, 10}},
        {"flush margins share equally", left | right, {0, 0, 100, 100}, {50, 0, 100, 100}},
        {"constraints, not the mask, place it", width, {5, 5, 10, 10}, {5, 5, 10, 10}, true},
        {"the superview does not resize", width, {5, 5, 10, 10}, {5, 5, 10, 10}, false, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        auto root = View::create({0, 0, 100, 100});
        root->setAutoresizesSubviews(c.superviewResizes);
        auto view = View::create(c.frame);
        view->setAutoresizingMask(c.mask);
        view->setTranslatesAutoresizingMaskIntoConstraints(!c.constrained);
        root->addSubview(view);
        root->setFrame({0, 0, 200, 50});
        EXPECT_EQ(view->frame(), c.resized);
        root->setBounds({0, 0, 100, 100});
        EXPECT_EQ(view->frame(), c.frame) << "and back";
    }
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
