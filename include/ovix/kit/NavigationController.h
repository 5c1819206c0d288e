#pragma once

#include <memory>
#include <vector>

#include "ovix/kit/NavigationBar.h"
#include "ovix/kit/ViewController.h"

namespace ovix::kit {

/// A stack of controllers; the top one's view fills the navigation controller's view, under a bar
/// that shows its navigation item. The bar sits at the top of the safe area and adds its height to
/// the top controller's safe area while visible; hiding it gives that space back.
///
/// Model changes are immediate; an animated push slides the new view in from the right over
/// `transitionDuration`. Main thread only.
class NavigationController : public ViewController {
  public:
    static std::shared_ptr<NavigationController> create(std::shared_ptr<ViewController> root);

    /// Bottom to top.
    const std::vector<std::shared_ptr<ViewController>>& viewControllers() const { return children(); }
    std::shared_ptr<ViewController> topViewController() const;
    void setViewControllers(std::vector<std::shared_ptr<ViewController>> controllers, bool animated);
    void pushViewController(std::shared_ptr<ViewController> controller, bool animated);
    /// Null when only the root is left.
    std::shared_ptr<ViewController> popViewController(bool animated);
    void popToRootViewController(bool animated);

    bool isNavigationBarHidden() const { return barHidden_; }
    void setNavigationBarHidden(bool hidden, bool animated);
    /// The bar (loads the view).
    std::shared_ptr<NavigationBar> navigationBar();

    std::string className() const override { return "NavigationController"; }

  protected:
    void loadView() override;

  private:
    void showTop(bool animated);
    void applyBarInset(const std::shared_ptr<ViewController>& controller);

    std::shared_ptr<NavigationBar> bar_;
    std::weak_ptr<ViewController> shown_;
    bool barHidden_ = false;
};

}  // namespace ovix::kit
