#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "ovix/kit/LayoutAnchor.h"

namespace ovix::kit {

class View;

/// first.attribute  relation  second.attribute * multiplier + constant, at a priority.
///
/// Created inactive by the anchors. Activating installs it on the nearest common ancestor of the
/// views it relates (a guide counts as its owning view); the constraint then lives as long as that
/// view holds it, or as long as the caller does. Items are held weakly. A constraint whose items
/// have no common ancestor is not activated and prints one warning line. The constant and the
/// priority (between two non-required values) may change while active; the next layout pass
/// picks the change up incrementally. Removing a view from its superview deactivates every
/// constraint that ties the removed subtree to the rest of the tree. Main thread only.
class LayoutConstraint : public std::enable_shared_from_this<LayoutConstraint> {
  public:
    /// Most callers use the anchors; `second` may be null for a constant dimension.
    static std::shared_ptr<LayoutConstraint> create(std::shared_ptr<LayoutItem> first,
                                                    LayoutAttribute firstAttribute, LayoutRelation relation,
                                                    std::shared_ptr<LayoutItem> second,
                                                    LayoutAttribute secondAttribute, double multiplier,
                                                    double constant);

    static void activate(const std::vector<std::shared_ptr<LayoutConstraint>>& constraints);
    static void deactivate(const std::vector<std::shared_ptr<LayoutConstraint>>& constraints);

    bool isActive() const { return active_; }
    void setActive(bool active);

    std::shared_ptr<LayoutItem> firstItem() const { return first_.lock(); }
    std::shared_ptr<LayoutItem> secondItem() const { return second_.lock(); }
    LayoutAttribute firstAttribute() const { return firstAttribute_; }
    LayoutAttribute secondAttribute() const { return secondAttribute_; }
    LayoutRelation relation() const { return relation_; }
    double multiplier() const { return multiplier_; }

    double constant() const { return constant_; }
    void setConstant(double constant);

    float priority() const { return priority_; }
    /// Clamped to 1...1000.
    void setPriority(float priority);

    const std::string& identifier() const { return identifier_; }
    void setIdentifier(std::string identifier) { identifier_ = std::move(identifier); }

    /// "<first>.<attribute> == <second>.<attribute> * m + c @p" for warnings and test messages.
    std::string description() const;

    /// The view the active constraint is installed on.
    std::shared_ptr<View> holder() const { return holder_.lock(); }

    LayoutConstraint(std::weak_ptr<LayoutItem> first, LayoutAttribute firstAttribute, LayoutRelation relation,
                     std::weak_ptr<LayoutItem> second, LayoutAttribute secondAttribute, double multiplier,
                     double constant);

  private:
    friend class View;
    friend class LayoutEngine;

    std::weak_ptr<LayoutItem> first_;
    LayoutAttribute firstAttribute_;
    LayoutRelation relation_;
    std::weak_ptr<LayoutItem> second_;
    LayoutAttribute secondAttribute_;
    double multiplier_;
    double constant_;
    bool hasSecond_;
    float priority_ = LayoutPriority::required;
    bool active_ = false;
    std::string identifier_;
    std::weak_ptr<View> holder_;
    /// Bumped by every change of constant or priority so the engine can update incrementally.
    unsigned revision_ = 0;
    /// When it was last activated, process-wide: the solver takes constraints in this order.
    std::uint64_t activationOrder_ = 0;
};

}  // namespace ovix::kit
