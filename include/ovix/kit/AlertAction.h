#pragma once

#include <functional>
#include <memory>
#include <string>

namespace ovix::kit {

enum class AlertActionStyle { defaultStyle, cancel, destructive };

/// One button of an alert: a title, a style and an optional handler that receives the action.
class AlertAction : public std::enable_shared_from_this<AlertAction> {
  public:
    using Handler = std::function<void(const AlertAction&)>;

    static std::shared_ptr<AlertAction> create(std::string title, AlertActionStyle style,
                                               Handler handler = {}) {
        return std::make_shared<AlertAction>(std::move(title), style, std::move(handler));
    }
    AlertAction(std::string title, AlertActionStyle style, Handler handler)
        : title_(std::move(title)), style_(style), handler_(std::move(handler)) {}

    const std::string& title() const { return title_; }
    AlertActionStyle style() const { return style_; }
    bool hasHandler() const { return static_cast<bool>(handler_); }
    bool isEnabled() const { return enabled_; }
    void setEnabled(bool enabled) { enabled_ = enabled; }
    /// Runs the handler, if any.
    void invoke() const {
        if (handler_) {
            handler_(*this);
        }
    }

  private:
    std::string title_;
    AlertActionStyle style_;
    Handler handler_;
    bool enabled_ = true;
};

}  // namespace ovix::kit
