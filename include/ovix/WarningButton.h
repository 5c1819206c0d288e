#pragma once

#include <memory>

#include "ovix/kit/Button.h"
#include "ovix/kit/Geometry.h"
#include "ovix/kit/Image.h"

namespace ovix {

/// The two looks of a `WarningButton`, compact first.
enum class WarningButtonState { normal, full };

/// A small image button with a compact (`normal`) and an enlarged (`full`) look, each with its own
/// image and size. A tap toggles the look with a 0.25 s animation. The facade shows one through
/// `OvixCore::showWarningButton`; a game may also create and place its own.
///
/// Geometry: a change of look resizes the bounds about the centre, so the look grows and shrinks in
/// place and the frame's origin moves; the origin given at creation or to `updatePosition` is the
/// origin of whatever look is current then.
///
/// A missing image leaves that look without an image; its size still applies. Main thread only.
class WarningButton final : public kit::Button {
  public:
    static constexpr double toggleDuration = 0.25;
    static constexpr double cornerRadius = 8;

    /// A button in the `normal` look with frame (`origin`, `normalSize`), corners rounded and clipped,
    /// toggling on touch-up-inside. Images may be null.
    static std::shared_ptr<WarningButton> create(std::shared_ptr<const kit::Image> normalImage,
                                                 std::shared_ptr<const kit::Image> fullImage,
                                                 kit::Size normalSize, kit::Size fullSize, kit::Point origin);

    /// Takes `state`'s image and size (about the current centre); animated over `toggleDuration`.
    void updateState(WarningButtonState state, bool animated);
    /// Moves the frame's origin to `point`, keeping the current size and look.
    void updatePosition(kit::Point point);
    /// The tap action: the other look, animated.
    void toggleState();

    WarningButtonState currentState() const { return currentState_; }
    const std::shared_ptr<const kit::Image>& normalImage() const { return normalImage_; }
    const std::shared_ptr<const kit::Image>& fullImage() const { return fullImage_; }
    kit::Size normalSize() const { return normalSize_; }
    kit::Size fullSize() const { return fullSize_; }

    std::string className() const override { return "WarningButton"; }

  private:
    struct Private {};

  public:
    WarningButton(Private, std::shared_ptr<const kit::Image> normalImage,
                  std::shared_ptr<const kit::Image> fullImage, kit::Size normalSize, kit::Size fullSize,
                  kit::Point origin);

  private:
    void apply(WarningButtonState state);

    std::shared_ptr<const kit::Image> normalImage_;
    std::shared_ptr<const kit::Image> fullImage_;
    kit::Size normalSize_;
    kit::Size fullSize_;
    WarningButtonState currentState_ = WarningButtonState::normal;
};

}  // namespace ovix
