#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "ovix/kit/View.h"

namespace ovix::kit {

class ViewController;
class WindowScene;

/// The root of a view tree on screen, with a root view controller, key state, safe-area insets,
/// the focused (first) responder and the input routing for its tree.
///
/// Windows start hidden; `makeKeyAndVisible` shows one and makes it the only key window of the
/// process. A window made for a scene is owned by the scene. Touches come in window coordinates
/// (`touchDown`/`touchMove`/`touchUp`, or `tap`/`drag`); text input goes to the first responder.
/// Main thread only.
class Window : public View {
  public:
    /// A window covering the scene's screen, appended to the scene's windows, with the display's
    /// safe-area insets.
    static std::shared_ptr<Window> create(const std::shared_ptr<WindowScene>& scene,
                                          EdgeInsets safeArea = {});
    /// A window outside any scene (not listed by the application).
    static std::shared_ptr<Window> create(Rect frame);
    explicit Window(Rect frame);
    ~Window() override;

    std::shared_ptr<WindowScene> windowScene() const { return scene_.lock(); }

    std::shared_ptr<ViewController> rootViewController() const { return rootViewController_; }
    /// Installs the controller's view filling the window (resizing with it) in place of the old root's
    /// view; controllers the old root presented are dismissed without animation.
    void setRootViewController(std::shared_ptr<ViewController> controller);

    void makeKeyAndVisible();
    void makeKey();
    bool isKeyWindow() const { return key_; }

    /// The insets the display leaves unsafe (notch, home indicator), set by the host.
    EdgeInsets windowSafeAreaInsets() const { return safeArea_; }
    void setWindowSafeAreaInsets(EdgeInsets insets);

    std::shared_ptr<View> firstResponder() const { return firstResponder_.lock(); }

    // --- Input (window coordinates) ---
    void touchDown(Point location);
    void touchMove(Point location);
    void touchUp(Point location);
    /// Cancels the touch in progress, if any.
    void touchCancel();
    /// Down and up at one point.
    void tap(Point location);
    /// Down at `from`, `steps` moves in equal parts to `to`, up at `to`.
    void drag(Point from, Point to, int steps = 4);
    /// Typed text for the first responder; ignored without one.
    void insertText(std::string_view text) override;
    void deleteBackward() override;
    /// A key for the first responder. What it leaves: Tab (shift: backwards) moves focus from it to
    /// the next view that can take text, in tree order, wrapping, within the topmost presented
    /// controller's view (else the window); Escape dismisses the topmost presented controller when it
    /// is a sheet (form or page sheet). True when something used the key.
    bool keyDown(Key key, KeyModifiers modifiers = {}) override;

    std::string className() const override { return "Window"; }

  private:
    friend class View;
    friend class ViewController;
    friend class WindowScene;

    static void track(const std::shared_ptr<Window>& window);
    bool setFirstResponder(std::shared_ptr<View> responder);
    /// The controller on top of the root's presentations; null when the root presents nothing.
    std::shared_ptr<ViewController> topPresentedController() const;
    bool focusNextTextInput(bool backwards);
    void scheduleLayout();

    std::weak_ptr<WindowScene> scene_;
    std::shared_ptr<ViewController> rootViewController_;
    bool key_ = false;
    EdgeInsets safeArea_;
    std::weak_ptr<View> firstResponder_;
    bool layoutScheduled_ = false;

    struct ActiveTouch {
        Touch touch;
        std::shared_ptr<View> view;
        std::vector<std::shared_ptr<GestureRecognizer>> recognizers;
        std::shared_ptr<GestureRecognizer> winner;
    };
    /// Gives a move or the lift to the recognizers still in the running; the first to take the
    /// touch wins and the others fail.
    std::shared_ptr<GestureRecognizer> offer(ActiveTouch& touch, bool ended);

    std::shared_ptr<ActiveTouch> active_;
};

}  // namespace ovix::kit
