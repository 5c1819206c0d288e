#pragma once

#include <memory>
#include <string>

namespace ovix::kit {

class LayoutItem;
class LayoutConstraint;

enum class LayoutAttribute { left, right, top, bottom, leading, trailing, width, height, centerX, centerY };

enum class LayoutRelation { lessThanOrEqual, equal, greaterThanOrEqual };

/// Constraint priorities, 1...1000; 1000 is required.
struct LayoutPriority {
    static constexpr float required = 1000;
    static constexpr float defaultHigh = 750;
    static constexpr float defaultLow = 250;
    static constexpr float fittingSizeLevel = 50;
};

/// One edge, centre or dimension of a view or layout guide; makes constraints (inactive until
/// activated). An anchor holds its item weakly. Leading is left and trailing is right (the SDK's
/// texts run left to right).
class LayoutAnchor {
  public:
    LayoutAnchor(std::weak_ptr<LayoutItem> item, LayoutAttribute attribute)
        : item_(std::move(item)), attribute_(attribute) {}

    std::shared_ptr<LayoutItem> item() const { return item_.lock(); }
    LayoutAttribute attribute() const { return attribute_; }

  protected:
    std::shared_ptr<LayoutConstraint> make(LayoutRelation relation, const LayoutAnchor* other,
                                           double multiplier, double constant) const;

  private:
    std::weak_ptr<LayoutItem> item_;
    LayoutAttribute attribute_;
};

/// Tags for the two position axes: an anchor on one cannot be constrained to an anchor on the other.
struct LayoutXAxis;
struct LayoutYAxis;

/// A position along one axis: left, right, leading, trailing or centre X on `LayoutXAxis`; top,
/// bottom or centre Y on `LayoutYAxis`.
template <typename Axis>
class LayoutAxisAnchor : public LayoutAnchor {
  public:
    using LayoutAnchor::LayoutAnchor;
    /// this = other + constant
    std::shared_ptr<LayoutConstraint> constraintEqualTo(const LayoutAxisAnchor& other,
                                                        double constant = 0) const {
        return make(LayoutRelation::equal, &other, 1, constant);
    }
    std::shared_ptr<LayoutConstraint> constraintGreaterThanOrEqualTo(const LayoutAxisAnchor& other,
                                                                     double constant = 0) const {
        return make(LayoutRelation::greaterThanOrEqual, &other, 1, constant);
    }
    std::shared_ptr<LayoutConstraint> constraintLessThanOrEqualTo(const LayoutAxisAnchor& other,
                                                                  double constant = 0) const {
        return make(LayoutRelation::lessThanOrEqual, &other, 1, constant);
    }
};

using LayoutXAxisAnchor = LayoutAxisAnchor<LayoutXAxis>;
using LayoutYAxisAnchor = LayoutAxisAnchor<LayoutYAxis>;

/// A width or height.
class LayoutDimension : public LayoutAnchor {
  public:
    using LayoutAnchor::LayoutAnchor;
    std::shared_ptr<LayoutConstraint> constraintEqualToConstant(double constant) const {
        return make(LayoutRelation::equal, nullptr, 0, constant);
    }
    std::shared_ptr<LayoutConstraint> constraintGreaterThanOrEqualToConstant(double constant) const {
        return make(LayoutRelation::greaterThanOrEqual, nullptr, 0, constant);
    }
    std::shared_ptr<LayoutConstraint> constraintLessThanOrEqualToConstant(double constant) const {
        return make(LayoutRelation::lessThanOrEqual, nullptr, 0, constant);
    }
    /// this = other * multiplier + constant
    std::shared_ptr<LayoutConstraint> constraintEqualTo(const LayoutDimension& other, double multiplier = 1,
                                                        double constant = 0) const {
        return make(LayoutRelation::equal, &other, multiplier, constant);
    }
    std::shared_ptr<LayoutConstraint> constraintGreaterThanOrEqualTo(const LayoutDimension& other,
                                                                     double multiplier = 1,
                                                                     double constant = 0) const {
        return make(LayoutRelation::greaterThanOrEqual, &other, multiplier, constant);
    }
    std::shared_ptr<LayoutConstraint> constraintLessThanOrEqualTo(const LayoutDimension& other,
                                                                  double multiplier = 1,
                                                                  double constant = 0) const {
        return make(LayoutRelation::lessThanOrEqual, &other, multiplier, constant);
    }
};

std::string toString(LayoutAttribute attribute);

}  // namespace ovix::kit
