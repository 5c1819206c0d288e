#pragma once

#include <memory>
#include <string>

#include "ovix/kit/LayoutAnchor.h"

namespace ovix::kit {

class View;

/// Something constraints can position: a view or a layout guide. Always owned by a shared_ptr
/// (views and guides are only made through their `create` functions), so anchors can hold it weakly.
class LayoutItem : public std::enable_shared_from_this<LayoutItem> {
  public:
    virtual ~LayoutItem() = default;

    LayoutXAxisAnchor leftAnchor() { return {weak_from_this(), LayoutAttribute::left}; }
    LayoutXAxisAnchor rightAnchor() { return {weak_from_this(), LayoutAttribute::right}; }
    LayoutXAxisAnchor leadingAnchor() { return {weak_from_this(), LayoutAttribute::leading}; }
    LayoutXAxisAnchor trailingAnchor() { return {weak_from_this(), LayoutAttribute::trailing}; }
    LayoutXAxisAnchor centerXAnchor() { return {weak_from_this(), LayoutAttribute::centerX}; }
    LayoutYAxisAnchor topAnchor() { return {weak_from_this(), LayoutAttribute::top}; }
    LayoutYAxisAnchor bottomAnchor() { return {weak_from_this(), LayoutAttribute::bottom}; }
    LayoutYAxisAnchor centerYAnchor() { return {weak_from_this(), LayoutAttribute::centerY}; }
    LayoutDimension widthAnchor() { return {weak_from_this(), LayoutAttribute::width}; }
    LayoutDimension heightAnchor() { return {weak_from_this(), LayoutAttribute::height}; }

    /// The view whose tree this item is part of: a view itself, a guide's owning view (null for a
    /// guide that was never added to a view).
    virtual std::shared_ptr<View> layoutView() const = 0;
    /// Short name for constraint descriptions ("View", "Label(\"Menu\")", "View.safeArea").
    virtual std::string debugName() const = 0;
};

}  // namespace ovix::kit
