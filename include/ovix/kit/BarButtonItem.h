#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "ovix/kit/Color.h"

namespace ovix::kit {

enum class BarButtonItemStyle { plain, done };

/// A button for a navigation bar: a title, a style and an action (hold the owner weakly).
class BarButtonItem {
  public:
    static std::shared_ptr<BarButtonItem> create(std::string title, BarButtonItemStyle style,
                                                 std::function<void()> action) {
        return std::make_shared<BarButtonItem>(std::move(title), style, std::move(action));
    }
    BarButtonItem(std::string title, BarButtonItemStyle style, std::function<void()> action)
        : title_(std::move(title)), style_(style), action_(std::move(action)) {}

    const std::string& title() const { return title_; }
    BarButtonItemStyle style() const { return style_; }
    bool isEnabled() const { return enabled_; }
    void setEnabled(bool enabled) { enabled_ = enabled; }
    std::optional<Color> tintColor() const { return tint_; }
    void setTintColor(std::optional<Color> color) { tint_ = color; }
    /// Runs the action when enabled (the bar's button calls this on touch-up-inside).
    void trigger() const {
        if (enabled_ && action_) {
            action_();
        }
    }

  private:
    std::string title_;
    BarButtonItemStyle style_;
    std::function<void()> action_;
    bool enabled_ = true;
    std::optional<Color> tint_;
};

}  // namespace ovix::kit
