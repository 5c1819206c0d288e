#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "ovix/kit/NavigationItem.h"
#include "ovix/kit/View.h"

namespace ovix::kit {

class NavigationController;
class Window;

enum class ModalPresentationStyle {
    automatic,  ///< a page sheet
    fullScreen,
    pageSheet,
    formSheet,  ///< on a phone-sized window, a page sheet
    overFullScreen,
    overCurrentContext,
    currentContext,
};

enum class ModalTransitionStyle { coverVertical, crossDissolve, flipHorizontal, partialCurl };

/// Owns a view (loaded once, on first use of `view()`: `loadView` then `viewDidLoad`) and the
/// presentation links between screens.
///
/// Presenting: the presenter is the root of the controller's parent chain (a child of a navigation
/// controller presents from the navigation controller). The presented controller's view is added
/// on top of the presenter's window at once, full window for the full-screen styles, as a sheet from
/// 10 points below the top safe area for the sheet styles; `presentedViewController` /
/// `presentingViewController` link the two at once. Animated transitions run on the view (slide up
/// or fade in, `transitionDuration`); the completion runs when they end, or on the next main-queue
/// turn without animation. Presenting while already presenting, or from a controller whose view is
/// not in a window, prints a warning and does nothing (no completion).
///
/// Dismissing: on a presenting controller, dismisses what it presents; on a presented one (or a
/// child of one), asks its presenter. The links are cleared at once; the view leaves the window
/// after the transition (at once without animation); then the completion runs. A controller that
/// neither presents nor is presented does nothing and its completion is not called.
///
/// Ownership: parents own children; a presenter owns what it presents; back links are weak. The
/// view holds its controller weakly, the controller owns the view. Main thread only.
class ViewController : public std::enable_shared_from_this<ViewController> {
  public:
    static constexpr double transitionDuration = 0.3;

    static std::shared_ptr<ViewController> create() { return std::make_shared<ViewController>(); }
    ViewController() = default;
    virtual ~ViewController();
    ViewController(const ViewController&) = delete;
    ViewController& operator=(const ViewController&) = delete;

    template <class T = ViewController>
    std::shared_ptr<T> self() {
        return std::static_pointer_cast<T>(shared_from_this());
    }

    /// The root view, loaded on first use.
    std::shared_ptr<View> view();
    std::shared_ptr<View> viewIfLoaded() const { return view_; }
    bool isViewLoaded() const { return view_ != nullptr; }
    void loadViewIfNeeded() { (void)view(); }
    /// Sets the root view (from `loadView`, or to replace it).
    void setView(std::shared_ptr<View> view);

    virtual void viewWillAppear(bool animated) { (void)animated; }
    virtual void viewDidAppear(bool animated) { (void)animated; }
    virtual void viewWillDisappear(bool animated) { (void)animated; }
    virtual void viewDidDisappear(bool animated) { (void)animated; }

    const std::string& title() const { return title_; }
    /// Also the navigation item's title.
    void setTitle(std::string title);
    NavigationItem& navigationItem() { return navigationItem_; }
    /// The nearest navigation controller among this controller and its parents.
    std::shared_ptr<NavigationController> navigationController() const;

    std::shared_ptr<ViewController> parent() const { return parent_.lock(); }
    const std::vector<std::shared_ptr<ViewController>>& children() const { return children_; }
    void addChild(std::shared_ptr<ViewController> child);
    void removeFromParent();

    void present(std::shared_ptr<ViewController> controller, bool animated,
                 std::function<void()> completion = {});
    void dismiss(bool animated, std::function<void()> completion = {});
    std::shared_ptr<ViewController> presentedViewController() const;
    /// The presenter of this controller or of the nearest presented parent.
    std::shared_ptr<ViewController> presentingViewController() const;

    ModalPresentationStyle modalPresentationStyle() const { return presentationStyle_; }
    void setModalPresentationStyle(ModalPresentationStyle style) { presentationStyle_ = style; }
    ModalTransitionStyle modalTransitionStyle() const { return transitionStyle_; }
    void setModalTransitionStyle(ModalTransitionStyle style) { transitionStyle_ = style; }

    EdgeInsets additionalSafeAreaInsets() const { return additionalSafeArea_; }
    void setAdditionalSafeAreaInsets(EdgeInsets insets);

    virtual std::string className() const { return "ViewController"; }

  protected:
    /// Makes the root view; the default is a plain view the size of the main screen that resizes
    /// with its container. Overrides call `setView`.
    virtual void loadView();
    /// Runs once, after the view is loaded.
    virtual void viewDidLoad() {}
    /// Extra safe-area insets a container adds to its child (a navigation bar).
    void setContainerSafeAreaInsets(EdgeInsets insets);

  private:
    friend class Window;
    friend class NavigationController;

    void applySafeArea();
    std::shared_ptr<ViewController> presentationRoot();
    void dismissAllPresentedImmediately();
    void removePresented(const std::shared_ptr<ViewController>& presented, bool animated,
                         std::function<void()> completion);

    std::shared_ptr<View> view_;
    bool loading_ = false;
    std::string title_;
    NavigationItem navigationItem_;
    std::weak_ptr<ViewController> parent_;
    std::vector<std::shared_ptr<ViewController>> children_;
    std::shared_ptr<ViewController> presented_;
    std::weak_ptr<ViewController> presenting_;
    ModalPresentationStyle presentationStyle_ = ModalPresentationStyle::automatic;
    ModalTransitionStyle transitionStyle_ = ModalTransitionStyle::coverVertical;
    EdgeInsets additionalSafeArea_;
    EdgeInsets containerSafeArea_;
};

}  // namespace ovix::kit
