#pragma once

#include <memory>

#include "ovix/kit/ViewController.h"

namespace ovix {

/// The start screen: the SDK logo on white while notification permission is asked; 1.0 s after the
/// answer (whatever it is) it routes. With no stored token the login screen replaces it; with one,
/// the user-information request decides: rejected → the session is cleared (status "logout") and the
/// login screen replaces it; accepted → `LOGIN_SUCCESS` is raised and the splash stays on screen.
///
/// The splash is held weakly across the permission request and the delay: released before routing,
/// nothing more happens. Main thread only.
class SplashViewController : public kit::ViewController {
  public:
    static constexpr double routingDelay = 1.0;
    static constexpr double logoSide = 200;

    static std::shared_ptr<SplashViewController> create() { return std::make_shared<SplashViewController>(); }

    std::string className() const override { return "SplashViewController"; }

  protected:
    void viewDidLoad() override;

  private:
    void setupLogo();
    void requestPermission();
    static void routeAfterSplash();
};

}  // namespace ovix
