#include <gtest/gtest.h>

#include "ui/login/LoadingView.h"
#include "ui/login/LoginTestSupport.h"

namespace ovix::test {
namespace {

class LoadingViewTest : public LoginScreenTest {};

TEST_F(LoadingViewTest, LogoAndBarSitSideBySideAroundTheViewsCentre) {
    auto root = kit::View::create({0, 0, 390, 844});
    auto loading = LoadingView::create();
    loading->setTranslatesAutoresizingMaskIntoConstraints(false);
    root->addSubview(loading);
    kit::LayoutConstraint::activate({
        loading->centerXAnchor().constraintEqualTo(root->centerXAnchor()),
        loading->centerYAnchor().constraintEqualTo(root->centerYAnchor()),
    });
    root->layoutIfNeeded();

    // 100 + 16 + 120 = 236 wide around x 195; the bar centred on the logo's middle at y 422.
    EXPECT_EQ(loading->iconView()->convertTo(loading->iconView()->bounds(), root.get()),
              (kit::Rect{77, 372, 100, 100}));
    EXPECT_EQ(loading->progressView()->convertTo(loading->progressView()->bounds(), root.get()),
              (kit::Rect{193, 418, 120, 8}));
    EXPECT_EQ(loading->frame().size, (kit::Size{0, 0}));  // no size of its own
}

}  // namespace
}  // namespace ovix::test
