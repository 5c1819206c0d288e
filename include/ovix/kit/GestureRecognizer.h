#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "ovix/kit/Geometry.h"
#include "ovix/kit/Touch.h"

namespace ovix::kit {

class View;

enum class GestureRecognizerState { possible, began, changed, ended, cancelled, failed };

/// Watches the touches of its view (and the view's subviews) and reports a gesture.
///
/// The window gives each touch to the recognizers of the touched view and of its ancestors,
/// deepest first; the first one to begin or recognise wins and the others fail. A winner with
/// `cancelsTouchesInView` (the default) cancels the touch for the views (a control under a pan gets
/// `touchCancel`, not `touchUpInside`). Actions run synchronously on each reported state, in
/// registration order. The recognizer holds its view weakly; the view owns its recognizers.
/// Main thread only.
class GestureRecognizer : public std::enable_shared_from_this<GestureRecognizer> {
  public:
    using Action = std::function<void(GestureRecognizer&)>;

    virtual ~GestureRecognizer() = default;

    void addTarget(Action action) { actions_.push_back(std::move(action)); }
    GestureRecognizerState state() const { return state_; }
    std::shared_ptr<View> view() const { return view_.lock(); }
    bool isEnabled() const { return enabled_; }
    void setEnabled(bool enabled);
    bool cancelsTouchesInView() const { return cancelsTouchesInView_; }
    void setCancelsTouchesInView(bool value) { cancelsTouchesInView_ = value; }
    /// The touch's current location in `view`'s coordinates (window coordinates when null).
    Point location(const View* in) const;

    // Called by the window's touch routing.
    virtual void touchBegan(const Touch& touch);
    virtual void touchMoved(const Touch& touch) = 0;
    virtual void touchEnded(const Touch& touch) = 0;
    virtual void touchCancelled(const Touch& touch);
    /// Back to `possible` once the touch is over.
    virtual void reset();
    /// Whether this recognizer has taken the current touch (began or recognised).
    bool hasRecognized() const {
        return state_ == GestureRecognizerState::began || state_ == GestureRecognizerState::changed ||
               state_ == GestureRecognizerState::ended;
    }
    /// Another recognizer won: this one fails for the rest of the touch.
    void fail() { state_ = GestureRecognizerState::failed; }

  protected:
    GestureRecognizer() = default;
    /// Moves to `state` and runs the actions (not for `possible` and `failed`).
    void setState(GestureRecognizerState state);
    Touch touch_;

  private:
    friend class View;
    void attach(std::shared_ptr<View> view) { view_ = view; }

    std::weak_ptr<View> view_;
    std::vector<Action> actions_;
    GestureRecognizerState state_ = GestureRecognizerState::possible;
    bool enabled_ = true;
    bool cancelsTouchesInView_ = true;
};

}  // namespace ovix::kit
