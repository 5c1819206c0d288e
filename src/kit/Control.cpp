#include "ovix/kit/Control.h"

#include <algorithm>

namespace ovix::kit {

std::size_t Control::addTarget(Action action, ControlEvent events) {
    std::size_t id = nextId_++;
    targets_.push_back({id, events, std::move(action)});
    return id;
}

std::size_t Control::addTarget(std::function<void()> action, ControlEvent events) {
    return addTarget([action = std::move(action)](Control&) { action(); }, events);
}

void Control::removeTarget(std::size_t id) {
    std::erase_if(targets_, [id](const Target& t) { return t.id == id; });
}

void Control::sendActions(ControlEvent events) {
    // An action may remove targets or release the control: run from a copy, keep the control alive.
    auto keep = self<Control>();
    std::vector<Target> targets = targets_;
    for (auto& t : targets) {
        if (intersects(t.events, events) && t.action) {
            t.action(*this);
        }
    }
}

std::size_t Control::actionCount(ControlEvent events) const {
    return static_cast<std::size_t>(std::count_if(
        targets_.begin(), targets_.end(), [&](const Target& t) { return intersects(t.events, events); }));
}

void Control::setEnabled(bool enabled) {
    if (enabled != enabled_) {
        enabled_ = enabled;
        stateDidChange();
    }
}

void Control::setSelected(bool selected) {
    if (selected != selected_) {
        selected_ = selected;
        stateDidChange();
    }
}

void Control::setHighlighted(bool highlighted) {
    if (highlighted != highlighted_) {
        highlighted_ = highlighted;
        stateDidChange();
    }
}

ControlState Control::state() const {
    if (!enabled_) {
        return ControlState::disabled;
    }
    if (highlighted_) {
        return ControlState::highlighted;
    }
    return selected_ ? ControlState::selected : ControlState::normal;
}

void Control::touchesBegan(const Touch&) {
    if (!enabled_) {
        return;
    }
    tracking_ = true;
    setHighlighted(true);
    sendActions(ControlEvent::touchDown);
}

void Control::touchesMoved(const Touch& touch) {
    if (!tracking_) {
        return;
    }
    bool inside = pointInside(touch.location(this));
    setHighlighted(inside);
    sendActions(inside ? ControlEvent::touchDragInside : ControlEvent::touchDragOutside);
}

void Control::touchesEnded(const Touch& touch) {
    if (!tracking_) {
        return;
    }
    tracking_ = false;
    setHighlighted(false);
    bool inside = pointInside(touch.location(this));
    sendActions(inside ? ControlEvent::touchUpInside | ControlEvent::primaryActionTriggered
                       : ControlEvent::touchUpOutside);
}

void Control::touchesCancelled(const Touch&) {
    if (!tracking_) {
        return;
    }
    tracking_ = false;
    setHighlighted(false);
    sendActions(ControlEvent::touchCancel);
}

}  // namespace ovix::kit
