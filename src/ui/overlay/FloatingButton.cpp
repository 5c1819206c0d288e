#include "ovix/FloatingButton.h"

#include <algorithm>

#include "core/EventSlot.h"
#include "core/SessionManager.h"
#include "ovix/OvixEvents.h"
#include "ovix/kit/Application.h"
#include "ovix/kit/Image.h"
#include "ovix/kit/Window.h"
#include "ui/overlay/SidebarPopup.h"

namespace ovix {

std::shared_ptr<FloatingButton> FloatingButton::create(kit::Rect frame) {
    auto button = std::make_shared<FloatingButton>(frame);
    // The action and the gesture refer back to the button weakly: set up once it is owned.
    button->setUp();
    button->setUpFloatingButton();
    return button;
}

FloatingButton::FloatingButton(kit::Rect frame) : kit::Button(kit::ButtonType::custom, frame) {}

double FloatingButton::sheetHeight(kit::Size window) {
    if (window.height < window.width) {
        return window.height;
    }
    return std::max(portraitSheetFraction * window.height, minimumPortraitSheetHeight);
}

void FloatingButton::setUpFloatingButton() {
    setBackgroundColor(kit::Color::systemBlue());
    layer().setCornerRadius(0.5 * frame().width());
    setClipsToBounds(true);
    setImage(kit::Image::named("ic_sdk_float"));

    std::weak_ptr<FloatingButton> weak = self<FloatingButton>();
    addTarget(
        [weak] {
            if (auto button = weak.lock()) {
                button->buttonTapped();
            }
        },
        kit::ControlEvent::touchUpInside);
    addGestureRecognizer(kit::PanGestureRecognizer::create([weak](kit::PanGestureRecognizer& gesture) {
        if (auto button = weak.lock()) {
            button->handlePan(gesture);
        }
    }));
}

void FloatingButton::buttonTapped() {
    if (popupView_) {
        closeMenu();
    } else {
        openMenu();
    }
}

void FloatingButton::openMenu() {
    auto window = kit::Application::keyWindow();
    if (!window) {
        return;
    }
    const kit::Rect area = window->frame();
    const double width = area.width();
    const double height = area.height();
    const double sheetHeight = FloatingButton::sheetHeight(area.size);

    auto sheet = kit::View::create({0, height, width, sheetHeight});
    sheet->layer().setCornerRadius(sheetCornerRadius);
    sheet->setClipsToBounds(true);
    window->addSubview(sheet);
    popupView_ = sheet;

    auto sidebar = SidebarPopup::create(sheet->bounds());
    sidebar->setTranslatesAutoresizingMaskIntoConstraints(false);
    std::weak_ptr<FloatingButton> weak = self<FloatingButton>();
    sidebar->onClose = [weak] {
        if (auto button = weak.lock()) {
            button->closeMenu();
        }
    };
    sheet->addSubview(sidebar);
    kit::LayoutConstraint::activate({
        sidebar->topAnchor().constraintEqualTo(sheet->topAnchor()),
        sidebar->bottomAnchor().constraintEqualTo(sheet->bottomAnchor()),
        sidebar->leadingAnchor().constraintEqualTo(sheet->leadingAnchor()),
        sidebar->trailingAnchor().constraintEqualTo(sheet->trailingAnchor()),
    });

    kit::View::animate(slideDuration, [sheet, height, sheetHeight] {
        kit::Rect frame = sheet->frame();
        frame.origin.y = height - sheetHeight;
        sheet->setFrame(frame);
    });
}

void FloatingButton::closeMenu() {
    if (!popupView_) {
        return;
    }
    // Forgotten as the slide starts: a tap meanwhile opens a fresh sheet.
    auto sheet = std::move(popupView_);
    popupView_.reset();
    kit::View::animate(
        slideDuration,
        [sheet] {
            kit::Rect frame = sheet->frame();
            frame.origin.y += frame.height();
            sheet->setFrame(frame);
        },
        [sheet](bool) { sheet->removeFromSuperview(); });
}

void FloatingButton::handlePan(kit::PanGestureRecognizer& gesture) {
    auto parent = superview();
    if (!parent) {
        return;
    }
    const kit::Point location = gesture.location(parent.get());
    switch (gesture.state()) {
        case kit::GestureRecognizerState::began:
            initialTouchPoint_ = location;
            break;
        case kit::GestureRecognizerState::changed: {
            kit::Point moved{center().x + (location.x - initialTouchPoint_.x),
                             center().y + (location.y - initialTouchPoint_.y)};
            const double halfWidth = bounds().width() / 2;
            const double halfHeight = bounds().height() / 2;
            const kit::Size area = parent->bounds().size;
            // max outside min: a superview smaller than the button keeps the button's top-left in it.
            moved.x = std::max(halfWidth, std::min(moved.x, area.width - halfWidth));
            moved.y = std::max(halfHeight, std::min(moved.y, area.height - halfHeight));
            setCenter(moved);
            initialTouchPoint_ = location;
            break;
        }
        default:
            break;
    }
}

void FloatingButton::logoutTapped() {
    SessionManager::shared().clearToken();
    EventSlot::shared().raise(OvixEvents::LOGOUT_SUCCESS);
    closeMenu();
}

}  // namespace ovix
