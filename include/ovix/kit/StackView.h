#pragma once

#include <memory>
#include <vector>

#include "ovix/kit/View.h"

namespace ovix::kit {

enum class StackViewDistribution { fill, fillEqually, fillProportionally, equalSpacing, equalCentering };

enum class StackViewAlignment { fill, leading, center, trailing };

/// Lays out its arranged subviews in a row or column with constraints it makes and keeps up to
/// date (adding views, hiding or showing them, or changing a property rebuilds them).
///
/// Along the axis: the first view starts at the stack's edge and the last ends at the other, with
/// `spacing` between neighbours; `fillEqually` gives all the same length, `fillProportionally`
/// lengths in proportion to their intrinsic lengths, `equalSpacing` equal gaps of at least
/// `spacing`, `equalCentering` equal distances between centres. Across: `fill` pins both edges;
/// `leading`, `center`, `trailing` align and keep each view inside, with the stack hugging its
/// largest view when nothing else sets its thickness. Hidden views leave the arrangement. With
/// `isLayoutMarginsRelativeArrangement` the edges are the layout margins. Arranged views stop
/// translating their autoresizing masks. `removeArrangedSubview` keeps the view as a subview.
class StackView : public View {
  public:
    static std::shared_ptr<StackView> create(std::vector<std::shared_ptr<View>> arranged = {});
    StackView() = default;

    const std::vector<std::shared_ptr<View>>& arrangedSubviews() const { return arranged_; }
    void addArrangedSubview(std::shared_ptr<View> view);
    void insertArrangedSubview(std::shared_ptr<View> view, std::size_t index);
    void removeArrangedSubview(const View& view);

    LayoutAxis axis() const { return axis_; }
    void setAxis(LayoutAxis axis);
    StackViewDistribution distribution() const { return distribution_; }
    void setDistribution(StackViewDistribution distribution);
    StackViewAlignment alignment() const { return alignment_; }
    void setAlignment(StackViewAlignment alignment);
    double spacing() const { return spacing_; }
    void setSpacing(double spacing);
    bool isLayoutMarginsRelativeArrangement() const { return marginsRelative_; }
    void setLayoutMarginsRelativeArrangement(bool value);

    std::string className() const override { return "StackView"; }

  protected:
    void subviewVisibilityDidChange(View& subview) override;
    /// An arranged view removed from the stack's subviews leaves the arrangement at once.
    void willRemoveSubview(View& subview) override;

  private:
    void rebuild();

    std::vector<std::shared_ptr<View>> arranged_;
    LayoutAxis axis_ = LayoutAxis::horizontal;
    StackViewDistribution distribution_ = StackViewDistribution::fill;
    StackViewAlignment alignment_ = StackViewAlignment::fill;
    double spacing_ = 0;
    bool marginsRelative_ = false;
    std::vector<std::shared_ptr<LayoutConstraint>> generated_;
    std::vector<std::shared_ptr<LayoutGuide>> gaps_;
};

}  // namespace ovix::kit
