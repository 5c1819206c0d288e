#include "ovix/WarningButton.h"

namespace ovix {

std::shared_ptr<WarningButton> WarningButton::create(std::shared_ptr<const kit::Image> normalImage,
                                                     std::shared_ptr<const kit::Image> fullImage,
                                                     kit::Size normalSize, kit::Size fullSize,
                                                     kit::Point origin) {
    auto button = std::make_shared<WarningButton>(Private{}, std::move(normalImage), std::move(fullImage),
                                                  normalSize, fullSize, origin);
    button->setUp();
    // The button owns its action: hold it weakly.
    std::weak_ptr<WarningButton> weak = button;
    button->addTarget(
        [weak] {
            if (auto strong = weak.lock()) {
                strong->toggleState();
            }
        },
        kit::ControlEvent::touchUpInside);
    button->updateState(WarningButtonState::normal, false);
    return button;
}

WarningButton::WarningButton(Private, std::shared_ptr<const kit::Image> normalImage,
                             std::shared_ptr<const kit::Image> fullImage, kit::Size normalSize,
                             kit::Size fullSize, kit::Point origin)
    : kit::Button(kit::ButtonType::custom, kit::Rect{origin, normalSize}),
      normalImage_(std::move(normalImage)),
      fullImage_(std::move(fullImage)),
      normalSize_(normalSize),
      fullSize_(fullSize) {
    layer().setCornerRadius(cornerRadius);
    setClipsToBounds(true);
}

void WarningButton::updateState(WarningButtonState state, bool animated) {
    currentState_ = state;
    if (!animated) {
        apply(state);
        return;
    }
    std::weak_ptr<WarningButton> weak = self<WarningButton>();
    kit::View::animate(toggleDuration, [weak, state] {
        if (auto strong = weak.lock()) {
            strong->apply(state);
        }
    });
}

void WarningButton::apply(WarningButtonState state) {
    const bool full = state == WarningButtonState::full;
    setImage(full ? fullImage_ : normalImage_, kit::ControlState::normal);
    // A new bounds size keeps the centre: the look changes in place.
    setBounds({bounds().origin, full ? fullSize_ : normalSize_});
}

void WarningButton::updatePosition(kit::Point point) {
    setFrame({point, frame().size});
}

void WarningButton::toggleState() {
    updateState(
        currentState_ == WarningButtonState::normal ? WarningButtonState::full : WarningButtonState::normal,
        true);
}

}  // namespace ovix
