#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "ovix/kit/BarButtonItem.h"

namespace ovix::kit {

/// What a controller shows in its navigation controller's bar: a title and left and right buttons.
/// Changes reach the bar at once when the controller is on top.
class NavigationItem {
  public:
    const std::string& title() const { return title_; }
    void setTitle(std::string title) {
        title_ = std::move(title);
        changed();
    }
    const std::shared_ptr<BarButtonItem>& leftBarButtonItem() const { return left_; }
    void setLeftBarButtonItem(std::shared_ptr<BarButtonItem> item) {
        left_ = std::move(item);
        changed();
    }
    const std::shared_ptr<BarButtonItem>& rightBarButtonItem() const { return right_; }
    void setRightBarButtonItem(std::shared_ptr<BarButtonItem> item) {
        right_ = std::move(item);
        changed();
    }

    /// Set by the navigation bar showing this item.
    void setOnChange(std::function<void()> onChange) { onChange_ = std::move(onChange); }

  private:
    void changed() const {
        if (onChange_) {
            onChange_();
        }
    }

    std::string title_;
    std::shared_ptr<BarButtonItem> left_;
    std::shared_ptr<BarButtonItem> right_;
    std::function<void()> onChange_;
};

}  // namespace ovix::kit
