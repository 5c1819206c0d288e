#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ovix/kit/AlertAction.h"
#include "ovix/kit/Button.h"
#include "ovix/kit/Label.h"
#include "ovix/kit/ViewController.h"

namespace ovix::kit {

enum class AlertControllerStyle { actionSheet, alert };

/// A titled message with action buttons, presented over full screen with a fade.
///
/// Tapping an action's button dismisses the alert (animated) and runs the action's handler once the
/// alert is gone. The view is a dimmed backdrop with a centred card (alert) or a card at the bottom
/// (action sheet): title, message, then the buttons — side by side for two actions in an alert,
/// stacked otherwise, a cancel action last.
class AlertController : public ViewController {
  public:
    static constexpr double cardWidth = 270;

    static std::shared_ptr<AlertController> create(std::optional<std::string> title,
                                                   std::optional<std::string> message,
                                                   AlertControllerStyle preferredStyle);
    AlertController(std::optional<std::string> title, std::optional<std::string> message,
                    AlertControllerStyle preferredStyle);

    const std::optional<std::string>& alertTitle() const { return alertTitle_; }
    const std::optional<std::string>& message() const { return message_; }
    AlertControllerStyle preferredStyle() const { return style_; }

    /// Actions added after the view loaded are shown too.
    void addAction(std::shared_ptr<AlertAction> action);
    const std::vector<std::shared_ptr<AlertAction>>& actions() const { return actions_; }
    /// The button made for `actions()[index]` (loads the view); null out of range.
    std::shared_ptr<Button> buttonForAction(std::size_t index);
    /// The card holding the texts and buttons (loads the view).
    std::shared_ptr<View> cardView();

    std::string className() const override { return "AlertController"; }

  protected:
    void loadView() override;

  private:
    void rebuild();
    void actionTapped(std::size_t index);

    std::optional<std::string> alertTitle_;
    std::optional<std::string> message_;
    AlertControllerStyle style_;
    std::vector<std::shared_ptr<AlertAction>> actions_;
    std::shared_ptr<View> card_;
    std::shared_ptr<Label> titleLabel_;
    std::shared_ptr<Label> messageLabel_;
    std::vector<std::shared_ptr<Button>> buttons_;
};

}  // namespace ovix::kit
