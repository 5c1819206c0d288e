// Finding and tapping the SDK's views the way the tour does, on the headless platform's window.
#include <gtest/gtest.h>

#include "ViewFinder.h"
#include "ovix/kit/Label.h"
#include "ovix/kit/ScrollView.h"
#include "ovix/testing/HeadlessPlatform.h"

namespace demo {
namespace {

using namespace ovix;

class ViewFinderTest : public ::testing::Test {
  protected:
    void SetUp() override {
        h.install();
        window = h.application->windows().front();
        root = kit::View::create(window->bounds());
        window->addSubview(root);
    }
    std::shared_ptr<kit::Button> button(const std::string& title, kit::Rect frame,
                                        const std::shared_ptr<kit::View>& parent) {
        auto made = kit::Button::create(kit::ButtonType::system);
        made->setTitle(title);
        made->setFrame(frame);
        made->addTarget([this, title] { taps.push_back(title); }, kit::ControlEvent::touchUpInside);
        parent->addSubview(made);
        return made;
    }

    ovix::testing::HeadlessPlatform h = ovix::testing::HeadlessPlatform::create();
    std::shared_ptr<kit::Window> window;
    std::shared_ptr<kit::View> root;
    std::vector<std::string> taps;
};

TEST_F(ViewFinderTest, FindsOnlyWhatIsShownInTreeOrder) {
    auto hiddenParent = kit::View::create({0, 0, 100, 100});
    hiddenParent->setHidden(true);
    root->addSubview(hiddenParent);
    button("OK", {0, 0, 40, 20}, hiddenParent);
    auto faded = kit::View::create({0, 0, 100, 100});
    faded->setAlpha(0.005);
    root->addSubview(faded);
    button("OK", {0, 0, 40, 20}, faded);
    auto shown = button("OK", {50, 50, 40, 20}, root);
    auto label = kit::Label::create("Đóng");
    root->addSubview(label);

    EXPECT_EQ(ViewFinder::find(window, ViewFinder::buttonTitled("OK")), shown);
    EXPECT_EQ(ViewFinder::findAll(window, ViewFinder::buttonTitled("OK")).size(), 1u);
    EXPECT_EQ(ViewFinder::find(window, ViewFinder::buttonTitled("Đóng")), nullptr)
        << "a label is not a button";
    EXPECT_EQ(ViewFinder::find(window, ViewFinder::labelShowing("Đóng")), label);
    EXPECT_EQ(ViewFinder::find(window, ViewFinder::hasClass("Button")), shown);
    hiddenParent->setHidden(false);
    EXPECT_EQ(ViewFinder::findAll(window, ViewFinder::buttonTitled("OK")).size(), 2u);
}

TEST_F(ViewFinderTest, TapsTheCentreOfANestedViewThroughTheWindow) {
    auto panel = kit::View::create({100, 200, 200, 100});
    root->addSubview(panel);
    auto target = button("A", {20, 30, 40, 20}, panel);
    button("B", {70, 30, 40, 20}, panel);
    EXPECT_EQ(ViewFinder::centreInWindow(*target), (kit::Point{140, 240}));
    EXPECT_TRUE(ViewFinder::tap(target));
    EXPECT_EQ(taps, std::vector<std::string>{"A"});

    auto detached = kit::Button::create(kit::ButtonType::system);
    EXPECT_FALSE(ViewFinder::centreInWindow(*detached).has_value());
    EXPECT_FALSE(ViewFinder::tap(detached));
    EXPECT_FALSE(ViewFinder::tap(nullptr));
}

TEST_F(ViewFinderTest, ABelowTheFoldButtonIsScrolledIntoSightBeforeItsTap) {
    const double height = window->bounds().size.height;
    auto scroll = kit::ScrollView::create({0, 0, 300, height});
    root->addSubview(scroll);
    scroll->setContentSize({300, height + 400});
    auto below = button("Gửi", {10, height + 300, 100, 40}, scroll);
    EXPECT_TRUE(ViewFinder::tap(below));
    EXPECT_EQ(taps, std::vector<std::string>{"Gửi"});
    EXPECT_DOUBLE_EQ(scroll->contentOffset().y, 340) << "scrolled just enough to show all of it";

    auto top = button("Top", {10, 20, 100, 40}, scroll);
    EXPECT_TRUE(ViewFinder::tap(top));
    EXPECT_DOUBLE_EQ(scroll->contentOffset().y, 20);
    EXPECT_EQ(taps.back(), "Top");
}

}  // namespace
}  // namespace demo
