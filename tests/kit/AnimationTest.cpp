#include <gtest/gtest.h>

#include "KitTest.h"
#include "ovix/kit/LayoutConstraint.h"
#include "ovix/kit/ProgressView.h"
#include "ovix/kit/View.h"

namespace ovix::test {
namespace {

using kit::Rect;
using kit::View;

class Animation : public KitTest {};

TEST_F(Animation, ModelChangesAtOnceAndTheCompletionWaitsForTheDuration) {
    auto view = View::create({0, 0, 100, 100});
    std::vector<bool> finished;
    View::animate(
        0.3, 0, {kit::AnimationCurve::linear},
        [&] {
            view->setFrame({0, 300, 100, 100});
            view->setAlpha(0);
        },
        [&](bool done) { finished.push_back(done); });
    EXPECT_EQ(view->frame(), (Rect{0, 300, 100, 100}));
    EXPECT_EQ(view->alpha(), 0);

    auto mid = view->presentation(0.15);
    EXPECT_EQ(mid.frame(), (Rect{0, 150, 100, 100}));
    EXPECT_DOUBLE_EQ(mid.alpha, 0.5);
    EXPECT_EQ(view->presentation(0.3).frame(), view->frame()) << "at the end the model shows";
    EXPECT_EQ(view->layer().animationKeys(), (std::vector<std::string>{"alpha", "center"}));

    queue().advance(0.29);
    EXPECT_TRUE(finished.empty());
    queue().advance(0.01);
    EXPECT_EQ(finished, std::vector<bool>{true});
    EXPECT_TRUE(view->layer().animationKeys().empty());

    // No duration: nothing to animate, but the completion still waits for the queue.
    View::animate(
        0, [&] { view->setAlpha(0.2); }, [&](bool done) { finished.push_back(done); });
    EXPECT_TRUE(view->layer().animationKeys().empty());
    EXPECT_EQ(finished.size(), 1u);
    queue().runUntilIdle();
    EXPECT_EQ(finished, (std::vector<bool>{true, true}));
}

TEST_F(Animation, EaseCurveAndDelayShapeThePresentation) {
    auto view = View::create();
    View::animate(1, 0.5, {}, [&] { view->setAlpha(0); });
    EXPECT_DOUBLE_EQ(view->presentation(0.25).alpha, 1) << "nothing moves during the delay";
    double early = 1 - view->presentation(0.6).alpha;
    double middle = 1 - view->presentation(1.0).alpha;
    EXPECT_LT(early, 0.1 / 2) << "ease-in-out starts slowly";
    EXPECT_NEAR(middle, 0.5, 1e-6);
    EXPECT_NEAR(kit::curveProgress(kit::AnimationCurve::easeIn, 0.5) +
                    kit::curveProgress(kit::AnimationCurve::easeOut, 0.5),
                1, 1e-9);
}

TEST_F(Animation, ProgressClampsAndRemovingAnimationsFinishesThemAtOnceWithFinishedFalse) {
    auto bar = kit::ProgressView::create();
    bar->setProgress(2, true);  // outside a block the bar animates on its own
    EXPECT_DOUBLE_EQ(bar->progress(), 1);
    const double half = bar->presentationProgress(kit::ProgressView::defaultAnimationDuration / 2);
    EXPECT_TRUE(half > 0 && half < 1) << half;
    bar->setProgress(-1, false);
    EXPECT_DOUBLE_EQ(bar->progress(), 0);

    std::vector<bool> finished;
    View::animate(
        5.0, [&] { bar->setProgress(1.0, true); }, [&](bool done) { finished.push_back(done); });
    EXPECT_DOUBLE_EQ(bar->progress(), 1);
    EXPECT_NEAR(bar->presentationProgress(2.5), 0.5, 1e-6);

    queue().advance(0.8);
    bar->layer().removeAllAnimations();
    EXPECT_DOUBLE_EQ(bar->presentationProgress(0.9), 1) << "the fill jumps to the model value";
    queue().runUntilIdle();
    EXPECT_EQ(finished, std::vector<bool>{false});
    queue().advance(10);
    EXPECT_EQ(finished, std::vector<bool>{false}) << "the completion runs once";
}

TEST_F(Animation, ANewAnimationStartsFromWhatIsOnScreen) {
    auto view = View::create({0, 0, 10, 10});
    View::animate(1, 0, {kit::AnimationCurve::linear}, [&] { view->setCenter({105, 5}); });
    queue().advance(0.5);  // on screen: x = 55
    std::vector<bool> first;
    View::animate(
        1, 0, {kit::AnimationCurve::linear},
        [&] {
            view->setCenter({5, 5});
        },
        [&](bool done) { first.push_back(done); });
    EXPECT_NEAR(view->presentation(0.5).center.x, 55, 1e-9);
    EXPECT_NEAR(view->presentation(1.0).center.x, 30, 1e-9);
    queue().advance(1);
    EXPECT_EQ(first, std::vector<bool>{true});
}

// Constraint layout run inside a block slides the solved frames; the login screen's back-button
// test shows it.
TEST_F(Animation, ChangesMadeWithoutAnimationInsideABlockAreNotAnimated) {
    auto view = View::create();
    View::animate(0.25, [&] { View::performWithoutAnimation([&] { view->setAlpha(0.5); }); });
    EXPECT_EQ(view->alpha(), 0.5);
    EXPECT_EQ(view->presentationValue("alpha", 0.1), std::nullopt);
}

}  // namespace
}  // namespace ovix::test
