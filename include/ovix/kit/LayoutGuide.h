#pragma once

#include <memory>
#include <string>

#include "ovix/kit/Geometry.h"
#include "ovix/kit/LayoutItem.h"

namespace ovix::kit {

/// A rectangle in a view's coordinate space that takes part in layout without being a view.
///
/// The kit makes the built-in ones: each view's `safeAreaLayoutGuide` (the view's bounds minus its
/// safe-area insets) and `layoutMarginsGuide` (minus its layout margins), a scroll view's
/// `contentLayoutGuide` (its edges define the content size) and `frameLayoutGuide` (the scroll
/// view's own untranslated frame). Custom guides are added with `View::addLayoutGuide`. The guide
/// holds its owning view weakly; the view owns the guide.
class LayoutGuide : public LayoutItem {
  public:
    enum class Kind { custom, safeArea, layoutMargins, scrollContent, scrollFrame };

    static std::shared_ptr<LayoutGuide> create() { return std::make_shared<LayoutGuide>(Kind::custom); }

    std::shared_ptr<View> owningView() const { return owner_.lock(); }
    /// The guide's rectangle in the owning view's coordinates, as of the last layout pass.
    Rect layoutFrame() const { return layoutFrame_; }
    Kind kind() const { return kind_; }
    const std::string& identifier() const { return identifier_; }
    void setIdentifier(std::string identifier) { identifier_ = std::move(identifier); }

    std::shared_ptr<View> layoutView() const override { return owningView(); }
    std::string debugName() const override;

    explicit LayoutGuide(Kind kind) : kind_(kind) {}

  private:
    friend class View;
    friend class LayoutEngine;

    Kind kind_;
    std::weak_ptr<View> owner_;
    Rect layoutFrame_;
    std::string identifier_;
};

}  // namespace ovix::kit
