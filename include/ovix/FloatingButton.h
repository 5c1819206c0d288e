#pragma once

#include <memory>
#include <vector>

#include "ovix/kit/Button.h"
#include "ovix/kit/Geometry.h"
#include "ovix/kit/PanGestureRecognizer.h"
#include "ovix/kit/View.h"

namespace ovix {

/// The round, draggable overlay button. A tap slides the side menu up from the bottom of the key
/// window as a sheet; a second tap, the menu's close action or `logoutTapped` slides it down and
/// removes it. The facade creates and owns it (`OvixCore::showFloatingButton`).
///
/// Sheet: full window width; its height is the window height in landscape (height < width), else
/// the larger of 40 % of the window height and 400 points. It opens and closes in 0.3 s on the main
/// queue's clock. `popupView()` is cleared when the slide-down starts, so a tap during it opens a new
/// sheet while the old one leaves; the old one is removed from the window when its slide ends.
///
/// Ownership: the window owns the sheet; the sheet's menu refers back to the button weakly, so an
/// open sheet outlives the button until it is closed through its own close action.
/// Failures: no key window at tap time, the tap does nothing; a missing "ic_sdk_float" image leaves
/// the blue circle empty. Main thread only.
class FloatingButton : public kit::Button {
  public:
    static constexpr double sheetCornerRadius = 16;
    static constexpr double slideDuration = 0.3;
    static constexpr double minimumPortraitSheetHeight = 400;
    static constexpr double portraitSheetFraction = 0.4;

    /// A button with `frame`, a circle when square (corner radius half its width at creation).
    static std::shared_ptr<FloatingButton> create(kit::Rect frame);
    explicit FloatingButton(kit::Rect frame);

    /// The sheet's height for a window of `window` size.
    static double sheetHeight(kit::Size window);

    /// The sheet while the menu is open; null while closed (and from the start of a slide-down).
    std::shared_ptr<kit::View> popupView() const { return popupView_; }
    /// Declared for the menu's own buttons and content; always empty.
    const std::vector<std::shared_ptr<kit::Button>>& menuButtons() const { return menuButtons_; }
    const std::vector<std::shared_ptr<kit::View>>& contentViews() const { return contentViews_; }
    std::shared_ptr<kit::View> currentContent() const { return currentContent_; }
    /// The last drag location, in the superview's coordinates.
    kit::Point initialTouchPoint() const { return initialTouchPoint_; }

    /// Touch-up-inside: opens the menu when closed, closes it when open.
    void buttonTapped();
    /// The drag: moves the button with the finger, its centre kept inside the superview (when the
    /// superview is smaller than the button, the lower bound wins). Ignored without a superview.
    void handlePan(kit::PanGestureRecognizer& gesture);
    /// Clears the session (status "logout"), raises "OvixLogoutSuccess" to the listener if one is
    /// set (on this thread), then closes the menu. Not attached to any control by the SDK.
    void logoutTapped();

    std::string className() const override { return "FloatingButton"; }

  private:
    void setUpFloatingButton();
    void openMenu();
    void closeMenu();

    std::shared_ptr<kit::View> popupView_;
    std::vector<std::shared_ptr<kit::Button>> menuButtons_;
    std::vector<std::shared_ptr<kit::View>> contentViews_;
    std::shared_ptr<kit::View> currentContent_;
    kit::Point initialTouchPoint_;
};

}  // namespace ovix
