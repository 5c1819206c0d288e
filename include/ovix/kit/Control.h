#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "ovix/kit/View.h"

namespace ovix::kit {

/// Control events; combine with `|`.
enum class ControlEvent : std::uint32_t {
    touchDown = 1u << 0,
    touchDragInside = 1u << 2,
    touchDragOutside = 1u << 3,
    touchUpInside = 1u << 6,
    touchUpOutside = 1u << 7,
    touchCancel = 1u << 8,
    valueChanged = 1u << 12,
    primaryActionTriggered = 1u << 13,
    editingDidBegin = 1u << 16,
    editingChanged = 1u << 17,
    editingDidEnd = 1u << 18,
    editingDidEndOnExit = 1u << 19,
};
constexpr ControlEvent operator|(ControlEvent a, ControlEvent b) {
    return static_cast<ControlEvent>(static_cast<std::uint32_t>(a) | static_cast<std::uint32_t>(b));
}
constexpr bool intersects(ControlEvent a, ControlEvent b) {
    return (static_cast<std::uint32_t>(a) & static_cast<std::uint32_t>(b)) != 0;
}

/// Control states, for per-state titles, images and colours. `normal` is the fallback of all.
enum class ControlState : std::uint32_t { normal = 0, highlighted = 1, disabled = 2, selected = 4 };

/// A view that turns touches into actions registered per control event.
///
/// Actions are closures (hold the owner weakly when it owns the control). They run in registration
/// order, on the main thread, synchronously inside `sendActions` or the touch that triggers them.
/// Touch handling: a touch that begins on an enabled control highlights it and sends `touchDown`; it
/// ends with `touchUpInside` when lifted inside the bounds, `touchUpOutside` otherwise, `touchCancel`
/// when a gesture takes it over. A disabled control swallows touches and sends nothing.
class Control : public View {
  public:
    using Action = std::function<void(Control& sender)>;

    static std::shared_ptr<Control> create(Rect frame = {}) { return std::make_shared<Control>(frame); }
    explicit Control(Rect frame = {}) : View(frame) {}

    /// Returns an id for `removeTarget`.
    std::size_t addTarget(Action action, ControlEvent events);
    std::size_t addTarget(std::function<void()> action, ControlEvent events);
    void removeTarget(std::size_t id);
    /// Runs every action registered for any of `events`.
    void sendActions(ControlEvent events);
    /// How many actions are registered for any of `events`.
    std::size_t actionCount(ControlEvent events) const;

    bool isEnabled() const { return enabled_; }
    virtual void setEnabled(bool enabled);
    bool isSelected() const { return selected_; }
    virtual void setSelected(bool selected);
    bool isHighlighted() const { return highlighted_; }
    virtual void setHighlighted(bool highlighted);
    /// The current state: disabled, else highlighted, else selected, else normal.
    ControlState state() const;

    std::string className() const override { return "Control"; }

    void touchesBegan(const Touch& touch) override;
    void touchesMoved(const Touch& touch) override;
    void touchesEnded(const Touch& touch) override;
    void touchesCancelled(const Touch& touch) override;

  protected:
    /// Hook after any of enabled/selected/highlighted changed.
    virtual void stateDidChange() {}

  private:
    struct Target {
        std::size_t id;
        ControlEvent events;
        Action action;
    };
    std::vector<Target> targets_;
    std::size_t nextId_ = 1;
    bool enabled_ = true;
    bool selected_ = false;
    bool highlighted_ = false;
    bool tracking_ = false;
};

}  // namespace ovix::kit
