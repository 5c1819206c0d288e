#pragma once

#include <memory>

#include "ovix/kit/Button.h"
#include "ovix/kit/Label.h"
#include "ovix/kit/View.h"

namespace ovix::kit {

class ViewController;

/// The bar a navigation controller shows above its top controller: that controller's navigation
/// item title in the middle, its left and right bar button items as buttons at the edges.
class NavigationBar : public View {
  public:
    static constexpr double height = 44;

    static std::shared_ptr<NavigationBar> create();
    NavigationBar();

    /// Shows `controller`'s navigation item (null clears the bar) and follows its changes.
    void showItemOf(const std::shared_ptr<ViewController>& controller);

    const std::shared_ptr<Label>& titleLabel() const { return titleLabel_; }
    /// The buttons made for the left and right items; hidden when the item has none.
    const std::shared_ptr<Button>& leftButton() const { return leftButton_; }
    const std::shared_ptr<Button>& rightButton() const { return rightButton_; }

    Size intrinsicContentSize() const override { return {noIntrinsicMetric, height}; }
    void layoutSubviews() override;
    std::string className() const override { return "NavigationBar"; }

  private:
    void setUp();
    void refresh();

    std::weak_ptr<ViewController> controller_;
    std::shared_ptr<Label> titleLabel_;
    std::shared_ptr<Button> leftButton_;
    std::shared_ptr<Button> rightButton_;
};

}  // namespace ovix::kit
