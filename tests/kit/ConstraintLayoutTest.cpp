#include <gtest/gtest.h>

#include <functional>

#include "KitTest.h"
#include "kit/LayoutEngine.h"
#include "ovix/kit/Label.h"
#include "ovix/kit/LayoutConstraint.h"
#include "ovix/kit/View.h"
#include "ovix/kit/ViewController.h"

namespace ovix::test {
namespace {

using kit::LayoutConstraint;
using kit::Rect;
using kit::View;

// A horizontal anchor pairs only with horizontal ones, a vertical with vertical: mixing them does
// not compile.
template <typename A, typename B>
concept Pairs = requires(const A& a, const B& b) {
    a.constraintEqualTo(b);
};
static_assert(Pairs<kit::LayoutXAxisAnchor, kit::LayoutXAxisAnchor> &&
              Pairs<kit::LayoutYAxisAnchor, kit::LayoutYAxisAnchor>);
static_assert(!Pairs<kit::LayoutXAxisAnchor, kit::LayoutYAxisAnchor> &&
              !Pairs<kit::LayoutYAxisAnchor, kit::LayoutXAxisAnchor> &&
              !Pairs<kit::LayoutXAxisAnchor, kit::LayoutDimension>);

class ConstraintLayout : public KitTest {};

TEST_F(ConstraintLayout, ContainerClampsBetweenMinAndMaxInsideMargins) {
    auto root = View::create({0, 0, 900, 800});
    auto box = constrainedIn(root);
    auto fill = box->widthAnchor().constraintEqualTo(root->widthAnchor());
    fill->setPriority(kit::LayoutPriority::defaultHigh);
    LayoutConstraint::activate({
        box->centerXAnchor().constraintEqualTo(root->centerXAnchor()),
        box->leadingAnchor().constraintGreaterThanOrEqualTo(root->leadingAnchor(), 20),
        box->trailingAnchor().constraintLessThanOrEqualTo(root->trailingAnchor(), -20),
        box->widthAnchor().constraintLessThanOrEqualToConstant(600),
        box->widthAnchor().constraintGreaterThanOrEqualToConstant(300),
        fill,
        box->topAnchor().constraintEqualTo(root->topAnchor()),
        box->heightAnchor().constraintEqualToConstant(10),
    });

    root->layoutIfNeeded();
    EXPECT_EQ(box->frame(), (Rect{150, 0, 600, 10}));

    root->setBounds({0, 0, 500, 800});
    root->layoutIfNeeded();
    EXPECT_EQ(box->frame(), (Rect{20, 0, 460, 10}));
    EXPECT_TRUE(headless.console->lines().empty());

    // 300 cannot fit inside the margins of 200: the later-activated minimum breaks, once.
    root->setBounds({0, 0, 200, 800});
    root->layoutIfNeeded();
    EXPECT_EQ(box->frame(), (Rect{20, 0, 160, 10}));
    ASSERT_EQ(headless.console->lines().size(), 1u);
    EXPECT_NE(headless.console->lines()[0].find("⚠️ Unable to simultaneously satisfy constraints:"),
              std::string::npos);
    EXPECT_NE(headless.console->lines()[0].find("width >= 300"), std::string::npos);
    root->layoutIfNeeded();
    EXPECT_EQ(headless.console->lines().size(), 1u);

    // Room again: the broken minimum holds once more.
    root->setBounds({0, 0, 500, 800});
    root->layoutIfNeeded();
    EXPECT_EQ(box->frame(), (Rect{20, 0, 460, 10}));
    root->setBounds({0, 0, 340, 800});
    root->layoutIfNeeded();
    EXPECT_EQ(box->frame(), (Rect{20, 0, 300, 10}));
    EXPECT_EQ(headless.console->lines().size(), 1u);
    root->setBounds({0, 0, 200, 800});
    root->layoutIfNeeded();
    EXPECT_EQ(headless.console->lines().size(), 2u) << "breaking again is reported again";
}

TEST_F(ConstraintLayout, OfTwoConflictingRequiredConstraintsTheLaterActivatedBreaks) {
    auto root = View::create({0, 0, 300, 100});
    auto child = constrainedIn(root);
    LayoutConstraint::activate({child->topAnchor().constraintEqualTo(root->topAnchor()),
                                child->leadingAnchor().constraintEqualTo(root->leadingAnchor()),
                                child->heightAnchor().constraintEqualToConstant(10)});
    auto own = child->widthAnchor().constraintEqualToConstant(100);  // held by the child itself
    own->setActive(true);
    auto stretch = child->widthAnchor().constraintEqualTo(root->widthAnchor());  // held by the root
    stretch->setActive(true);
    root->layoutIfNeeded();
    EXPECT_EQ(child->frame().width(), 100) << "the holder does not decide; the activation order does";
    ASSERT_EQ(headless.console->lines().size(), 1u);
    EXPECT_NE(headless.console->lines()[0].find(stretch->description()), std::string::npos);
}

TEST_F(ConstraintLayout, ConstantsMultipliersAndPrioritiesChangeAfterActivation) {
    auto root = View::create({0, 0, 400, 400});
    auto a = constrainedIn(root);
    auto b = constrainedIn(root);
    auto top = a->topAnchor().constraintEqualTo(root->topAnchor(), 10);
    auto wish = a->widthAnchor().constraintEqualToConstant(100);
    wish->setPriority(kit::LayoutPriority::defaultLow);
    LayoutConstraint::activate({
        top,
        a->leadingAnchor().constraintEqualTo(root->leadingAnchor()),
        a->heightAnchor().constraintEqualToConstant(20),
        wish,
        b->widthAnchor().constraintEqualTo(a->widthAnchor(), 0.5, 5),
        b->heightAnchor().constraintEqualTo(a->heightAnchor(), 2),
        b->topAnchor().constraintEqualTo(a->bottomAnchor(), 4),
        b->trailingAnchor().constraintEqualTo(root->trailingAnchor()),
    });
    root->layoutIfNeeded();
    EXPECT_EQ(a->frame(), (Rect{0, 10, 100, 20}));
    EXPECT_EQ(b->frame(), (Rect{345, 34, 55, 40}));

    top->setConstant(30);
    wish->setConstant(200);
    root->layoutIfNeeded();
    EXPECT_EQ(a->frame(), (Rect{0, 30, 200, 20}));
    EXPECT_EQ(b->frame(), (Rect{295, 54, 105, 40}));
}

TEST_F(ConstraintLayout, ViewsInDifferentBranchesAreSolvedInTheCommonAncestor) {
    auto root = View::create({0, 0, 400, 400});
    auto left = View::create({10, 10, 100, 100});  // fixed frames
    auto right = View::create({200, 50, 150, 150});
    auto inner = constrainedIn(left);
    auto follower = constrainedIn(right);
    root->addSubview(left);
    root->addSubview(right);
    auto cross = follower->topAnchor().constraintEqualTo(inner->bottomAnchor(), 5);
    LayoutConstraint::activate({
        inner->leadingAnchor().constraintEqualTo(left->leadingAnchor(), 5),
        inner->topAnchor().constraintEqualTo(left->topAnchor(), 5),
        inner->widthAnchor().constraintEqualToConstant(30),
        inner->heightAnchor().constraintEqualToConstant(30),
        follower->leadingAnchor().constraintEqualTo(inner->trailingAnchor()),
        cross,
        follower->widthAnchor().constraintEqualToConstant(10),
        follower->heightAnchor().constraintEqualToConstant(10),
    });
    EXPECT_EQ(cross->holder(), root);
    root->layoutIfNeeded();
    EXPECT_EQ(inner->frame(), (Rect{5, 5, 30, 30}));
    // In window terms the follower sits at (45, 50): inside `right` that is (-155, 0).
    EXPECT_EQ(follower->frame(), (Rect{-155, 0, 10, 10}));

    left->setFrame({20, 30, 100, 100});
    root->layoutIfNeeded();
    EXPECT_EQ(follower->frame(), (Rect{-145, 20, 10, 10}));

    // Taking a branch out drops the constraints that tied it to the rest.
    right->removeFromSuperview();
    EXPECT_FALSE(cross->isActive());
    EXPECT_TRUE(root->constraintsAffecting().empty());
}

TEST_F(ConstraintLayout, IntrinsicSizeHugsAndResistsByPriority) {
    auto root = View::create({0, 0, 300, 100});
    auto label = constrainedIn(root, kit::Label::create("Hello"));
    label->setFont(kit::Font::systemFont(20));
    kit::Size natural = label->intrinsicContentSize();
    ASSERT_GT(natural.width, 0);
    auto leading = label->leadingAnchor().constraintEqualTo(root->leadingAnchor(), 10);
    auto wide = label->widthAnchor().constraintEqualToConstant(200);
    wide->setPriority(200);  // weaker than hugging (250): the label keeps its natural width
    LayoutConstraint::activate({leading, label->topAnchor().constraintEqualTo(root->topAnchor()), wide});
    root->layoutIfNeeded();
    EXPECT_EQ(label->frame(), (Rect{10, 0, natural.width, natural.height}));

    wide->setPriority(300);  // now stronger than hugging
    root->layoutIfNeeded();
    EXPECT_EQ(label->frame().width(), 200);

    wide->setActive(false);
    auto narrow = label->widthAnchor().constraintEqualToConstant(5);
    narrow->setPriority(700);  // weaker than compression resistance (750)
    narrow->setActive(true);
    root->layoutIfNeeded();
    EXPECT_EQ(label->frame().width(), natural.width);
    label->setContentCompressionResistancePriority(600, kit::LayoutAxis::horizontal);
    root->layoutIfNeeded();
    EXPECT_EQ(label->frame().width(), 5);

    label->setText("Hello, world and more");
    narrow->setActive(false);
    root->layoutIfNeeded();
    EXPECT_EQ(label->frame().size, label->intrinsicContentSize());
    EXPECT_GT(label->frame().width(), natural.width);
}

TEST_F(ConstraintLayout, SafeAreaGuideFollowsTheWindowInsetsAndRotation) {
    auto controller = kit::ViewController::create();
    window()->setRootViewController(controller);
    auto view = controller->view();
    auto bar = constrainedIn(view);
    auto& safe = view->safeAreaLayoutGuide();
    for (int round = 0; round < 2; ++round) {  // a rebuild that pins again without removing first
        LayoutConstraint::activate({
            bar->topAnchor().constraintEqualTo(safe.topAnchor(), 8),
            bar->leadingAnchor().constraintEqualTo(safe.leadingAnchor(), 16),
            bar->widthAnchor().constraintEqualToConstant(60),
            bar->bottomAnchor().constraintEqualTo(safe.bottomAnchor()),
        });
        queue().runUntilIdle();  // layout runs on its own for views in a window
    }
    EXPECT_EQ(bar->frame(), (Rect{16, 55, 60, 844 - 34 - 55}));
    EXPECT_EQ(view->constraints().size(), 6u);
    EXPECT_TRUE(headless.console->lines().empty()) << "repeated constraints agree, none breaks";

    headless.application->rotate(kit::DeviceOrientation::landscapeLeft);
    queue().runUntilIdle();
    EXPECT_EQ(bar->frame(), (Rect{63, 8, 60, 390 - 21 - 8}));
}

TEST_F(ConstraintLayout, FixedFramesFollowTheirMasksWhenTheSuperviewIsConstrained) {
    auto root = View::create({0, 0, 400, 400});
    auto panel = constrainedIn(root);
    auto width = panel->widthAnchor().constraintEqualToConstant(200);
    LayoutConstraint::activate({panel->topAnchor().constraintEqualTo(root->topAnchor()),
                                panel->leadingAnchor().constraintEqualTo(root->leadingAnchor()), width,
                                panel->heightAnchor().constraintEqualToConstant(100)});
    root->layoutIfNeeded();
    auto fill = View::create({10, 10, 180, 80});
    fill->setAutoresizingMask(kit::AutoresizingMask::flexibleWidth | kit::AutoresizingMask::flexibleHeight);
    auto badge = View::create({170, 0, 30, 30});
    badge->setAutoresizingMask(kit::AutoresizingMask::flexibleLeftMargin);
    panel->addSubview(fill);
    panel->addSubview(badge);
    auto label = constrainedIn(panel);  // tied to the fixed-frame badge
    LayoutConstraint::activate({label->trailingAnchor().constraintEqualTo(badge->leadingAnchor()),
                                label->topAnchor().constraintEqualTo(badge->bottomAnchor()),
                                label->widthAnchor().constraintEqualToConstant(40),
                                label->heightAnchor().constraintEqualToConstant(10)});
    root->layoutIfNeeded();
    EXPECT_EQ(label->frame(), (Rect{130, 30, 40, 10}));

    width->setConstant(300);
    root->layoutIfNeeded();
    EXPECT_EQ(fill->frame(), (Rect{10, 10, 280, 80}));
    EXPECT_EQ(badge->frame(), (Rect{270, 0, 30, 30}));
    EXPECT_EQ(label->frame(), (Rect{230, 30, 40, 10}));

    // Measured on its own, the panel is as narrow as the label and the right-pinned badge allow.
    width->setActive(false);
    label->leadingAnchor().constraintEqualTo(panel->leadingAnchor(), 10)->setActive(true);
    const float low = kit::LayoutPriority::fittingSizeLevel;
    EXPECT_EQ(panel->systemLayoutSizeFitting({0, 0}, low, low), (kit::Size{80, 100}));
}

TEST_F(ConstraintLayout, MarginAndCustomGuidesPositionViews) {
    auto root = View::create({0, 0, 200, 100});
    root->setLayoutMargins({4, 10, 6, 20});
    auto inset = constrainedIn(root);
    auto& margins = root->layoutMarginsGuide();
    LayoutConstraint::activate({
        inset->leadingAnchor().constraintEqualTo(margins.leadingAnchor()),
        inset->trailingAnchor().constraintEqualTo(margins.trailingAnchor()),
        inset->topAnchor().constraintEqualTo(margins.topAnchor()),
        inset->bottomAnchor().constraintEqualTo(margins.bottomAnchor()),
    });
    auto half = kit::LayoutGuide::create();
    root->addLayoutGuide(half);
    auto guideWidth = half->widthAnchor().constraintEqualTo(root->widthAnchor(), 0.5);
    LayoutConstraint::activate({half->leadingAnchor().constraintEqualTo(root->leadingAnchor()), guideWidth,
                                half->topAnchor().constraintEqualTo(root->topAnchor()),
                                half->heightAnchor().constraintEqualToConstant(1)});
    root->layoutIfNeeded();
    EXPECT_EQ(inset->frame(), (Rect{10, 4, 170, 90}));
    EXPECT_EQ(margins.layoutFrame(), (Rect{10, 4, 170, 90}));
    EXPECT_EQ(half->layoutFrame(), (Rect{0, 0, 100, 1}));

    root->setLayoutMargins({0, 0, 0, 0});
    root->layoutIfNeeded();
    EXPECT_EQ(inset->frame(), (Rect{0, 0, 200, 100}));

    root->removeLayoutGuide(*half);
    EXPECT_FALSE(guideWidth->isActive()) << "a removed guide takes its constraints along";
    EXPECT_EQ(half->owningView(), nullptr);
}

TEST_F(ConstraintLayout, ConstraintsWithoutACommonAncestorStayInactive) {
    auto a = View::create();
    auto b = View::create();
    auto c = a->leadingAnchor().constraintEqualTo(b->leadingAnchor());
    c->setActive(true);
    EXPECT_FALSE(c->isActive());
    ASSERT_EQ(headless.console->lines().size(), 1u);
    EXPECT_NE(headless.console->lines()[0].find("no common ancestor"), std::string::npos);
}

// A column of two rows under the root; the engine kept on the root is looked at between passes.
struct Column {
    explicit Column(const std::shared_ptr<View>& root) {
        for (auto& row : rows) {
            row = constrainedIn(root);
        }
        firstTop = rows[0]->topAnchor().constraintEqualTo(root->topAnchor(), 10);
        firstHeight = rows[0]->heightAnchor().constraintEqualToConstant(20);
        auto aligned = rows[1]->leadingAnchor().constraintEqualTo(rows[0]->leadingAnchor());
        aligned->setPriority(kit::LayoutPriority::defaultLow);
        LayoutConstraint::activate({firstTop, firstHeight, aligned,
                                    rows[0]->leadingAnchor().constraintEqualTo(root->leadingAnchor()),
                                    rows[0]->widthAnchor().constraintEqualToConstant(50),
                                    rows[1]->topAnchor().constraintEqualTo(rows[0]->bottomAnchor(), 5),
                                    rows[1]->widthAnchor().constraintEqualTo(rows[0]->widthAnchor()),
                                    rows[1]->heightAnchor().constraintEqualToConstant(20)});
    }
    std::shared_ptr<View> rows[2];
    std::shared_ptr<LayoutConstraint> firstTop, firstHeight;
};

TEST_F(ConstraintLayout, ConstantChangesAloneUpdateJustThoseConstraintsAndEveryOtherChangeIsCompared) {
    auto root = View::create({0, 0, 200, 200});
    Column column(root);
    // Any change elsewhere counts as a change here too: the other tree is made before the pass.
    auto late = View::create({100, 100, 50, 50});
    auto lateChild = constrainedIn(late);
    auto inner = lateChild->widthAnchor().constraintEqualTo(late->widthAnchor(), 0.5);
    inner->setActive(true);
    root->layoutIfNeeded();
    const kit::LayoutEngine* engine = kit::LayoutEngine::of(*root);
    ASSERT_NE(engine, nullptr);
    EXPECT_EQ(engine->fullSyncCount(), 1u) << "the frames the first pass writes need no second round";

    std::shared_ptr<LayoutConstraint> extra;
    struct Case {
        const char* what;
        std::function<void()> change;
        std::uint64_t fullSyncs;  // added by the pass
        Rect second;
    };
    const Case cases[] = {
        {"one constant", [&] { column.firstTop->setConstant(30); }, 0, {0, 55, 50, 20}},
        {"two constants, one changed back",
         [&] {
             column.firstHeight->setConstant(40);
             column.firstTop->setConstant(0);
             column.firstTop->setConstant(30);
         },
         0,
         {0, 75, 50, 20}},
        {"a constant and a new constraint",
         [&] {
             column.firstTop->setConstant(10);
             extra = column.rows[1]->leadingAnchor().constraintEqualTo(root->leadingAnchor(), 7);
             extra->setActive(true);
         },
         1,
         {7, 55, 50, 20}},
        {"a priority",
         [&] { column.firstHeight->setPriority(kit::LayoutPriority::defaultHigh); },
         1,
         {7, 55, 50, 20}},
        {"a constant, then its constraint deactivated",
         [&] {
             extra->setConstant(90);
             extra->setActive(false);
         },
         1,
         {0, 55, 50, 20}},
        {"a subtree with its own constraints added", [&] { root->addSubview(late); }, 1, {0, 55, 50, 20}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        std::uint64_t before = engine->fullSyncCount();
        c.change();
        root->layoutIfNeeded();
        EXPECT_EQ(engine->fullSyncCount() - before, c.fullSyncs);
        EXPECT_EQ(column.rows[1]->frame(), c.second);
    }
    EXPECT_EQ(lateChild->frame().width(), 25);
}

TEST_F(ConstraintLayout, ABrokenConstraintIsTriedAgainWhenAConstantMakesRoom) {
    auto root = View::create({0, 0, 200, 100});
    auto box = constrainedIn(root);
    auto wish = box->widthAnchor().constraintEqualToConstant(100);
    wish->setPriority(kit::LayoutPriority::defaultLow);
    auto room = box->trailingAnchor().constraintLessThanOrEqualTo(root->trailingAnchor(), -40);
    auto least = box->widthAnchor().constraintGreaterThanOrEqualToConstant(300);
    LayoutConstraint::activate({box->leadingAnchor().constraintEqualTo(root->leadingAnchor()),
                                box->topAnchor().constraintEqualTo(root->topAnchor()),
                                box->heightAnchor().constraintEqualToConstant(10), wish, room, least});
    root->layoutIfNeeded();
    EXPECT_EQ(box->frame().width(), 100);
    ASSERT_EQ(headless.console->lines().size(), 1u);
    EXPECT_EQ(headless.console->lines()[0], "⚠️ Unable to simultaneously satisfy constraints: " +
                                                least->description() + "; breaking it");

    room->setConstant(200);  // the trailing edge may now reach 400
    root->layoutIfNeeded();
    EXPECT_EQ(box->frame().width(), 300) << "the minimum holds again once it fits";
    EXPECT_EQ(headless.console->lines().size(), 1u);
}

TEST_F(ConstraintLayout, AFrameThatMovesASafeAreaIsSolvedAgainInTheSamePass) {
    auto controller = kit::ViewController::create();
    window()->setRootViewController(controller);
    auto view = controller->view();
    queue().runUntilIdle();
    auto panel = constrainedIn(view);
    auto child = constrainedIn(panel);
    auto top = panel->topAnchor().constraintEqualTo(view->topAnchor());
    LayoutConstraint::activate(
        {top, panel->leadingAnchor().constraintEqualTo(view->leadingAnchor()),
         panel->widthAnchor().constraintEqualToConstant(200),
         panel->heightAnchor().constraintEqualToConstant(200),
         child->topAnchor().constraintEqualTo(panel->safeAreaLayoutGuide().topAnchor()),
         child->leadingAnchor().constraintEqualTo(panel->leadingAnchor()),
         child->widthAnchor().constraintEqualToConstant(10),
         child->heightAnchor().constraintEqualToConstant(10)});
    view->layoutIfNeeded();
    double unsafe = panel->safeAreaInsets().top;
    ASSERT_GT(unsafe, 20);
    EXPECT_EQ(child->frame().minY(), unsafe);

    // The panel's new place changes its safe area, which only the written frame tells.
    top->setConstant(20);
    view->layoutIfNeeded();
    EXPECT_EQ(panel->frame().minY(), 20);
    EXPECT_EQ(child->frame().minY(), unsafe - 20);
}

// Moves a subview by a constant taken from its own width, as views that adapt to their size do.
class Adaptive : public View {
  public:
    std::shared_ptr<LayoutConstraint> indent;
    void layoutSubviews() override { indent->setConstant(bounds().size.width / 2); }
};

TEST_F(ConstraintLayout, AConstantChangedWhileLayingOutIsSolvedInTheSamePass) {
    auto root = View::create({0, 0, 200, 100});
    auto adaptive = constrainedIn<Adaptive>(root, std::make_shared<Adaptive>());
    auto child = constrainedIn(adaptive);
    adaptive->indent = child->leadingAnchor().constraintEqualTo(adaptive->leadingAnchor());
    LayoutConstraint::activate({adaptive->leadingAnchor().constraintEqualTo(root->leadingAnchor()),
                                adaptive->topAnchor().constraintEqualTo(root->topAnchor()),
                                adaptive->widthAnchor().constraintEqualTo(root->widthAnchor(), 0.5),
                                adaptive->heightAnchor().constraintEqualToConstant(10), adaptive->indent,
                                child->topAnchor().constraintEqualTo(adaptive->topAnchor()),
                                child->widthAnchor().constraintEqualToConstant(5),
                                child->heightAnchor().constraintEqualToConstant(5)});
    const struct {
        double rootWidth;
        double childX;
    } cases[] = {{200, 50}, {300, 75}, {100, 25}};
    for (auto& c : cases) {
        SCOPED_TRACE(c.rootWidth);
        root->setBounds({0, 0, c.rootWidth, 100});
        root->layoutIfNeeded();
        EXPECT_EQ(child->frame().minX(), c.childX);
    }
}

TEST_F(ConstraintLayout, TheKeptEngineDoesNotKeepARemovedViewAlive) {
    auto root = View::create({0, 0, 100, 100});
    auto child = constrainedIn(root);
    LayoutConstraint::activate({child->topAnchor().constraintEqualTo(root->topAnchor()),
                                child->leadingAnchor().constraintEqualTo(root->leadingAnchor()),
                                child->widthAnchor().constraintEqualToConstant(10),
                                child->heightAnchor().constraintEqualToConstant(10)});
    root->layoutIfNeeded();
    std::weak_ptr<View> gone = child;
    child->removeFromSuperview();
    child.reset();
    EXPECT_TRUE(gone.expired()) << "a screen's closing may hang on a view being released";
    root->layoutIfNeeded();
}

// Runs a closure where a view's layout or size change would run its own code.
class Hook : public View {
  public:
    std::function<void()> onLayout, onResize;
    void layoutSubviews() override {
        if (onLayout) {
            onLayout();
        }
    }

  protected:
    void boundsSizeDidChange(kit::Size) override {
        if (onResize) {
            onResize();
        }
    }
};

TEST_F(ConstraintLayout, AViewReleasedByAnEarlierViewsCodeDuringThePassIsSkipped) {
    for (bool duringFrames : {false, true}) {
        SCOPED_TRACE(duringFrames ? "while frames are written" : "while views lay out their subviews");
        auto root = View::create({0, 0, 100, 100});
        auto first = constrainedIn<Hook>(root, std::make_shared<Hook>());
        auto victim = constrainedIn<Hook>(root, std::make_shared<Hook>());
        for (auto& v : {std::static_pointer_cast<View>(first), std::static_pointer_cast<View>(victim)}) {
            LayoutConstraint::activate({v->topAnchor().constraintEqualTo(root->topAnchor()),
                                        v->leadingAnchor().constraintEqualTo(root->leadingAnchor()),
                                        v->widthAnchor().constraintEqualToConstant(10),
                                        v->heightAnchor().constraintEqualToConstant(10)});
        }
        int victimLayouts = 0;
        victim->onLayout = [&] { ++victimLayouts; };
        std::weak_ptr<Hook> gone = victim;
        victim.reset();
        auto drop = [gone] {
            if (auto v = gone.lock()) {
                v->removeFromSuperview();
            }
        };
        (duringFrames ? first->onResize : first->onLayout) = drop;
        root->layoutIfNeeded();
        EXPECT_TRUE(gone.expired());
        EXPECT_EQ(victimLayouts, 0);
        EXPECT_EQ(first->frame(), (Rect{0, 0, 10, 10}));
    }
}

}  // namespace
}  // namespace ovix::test
