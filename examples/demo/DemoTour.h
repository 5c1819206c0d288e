#pragma once

#include <memory>
#include <optional>
#include <string>

#include "DemoGame.h"
#include "FilePicker.h"
#include "TourRunner.h"
#include "ovix/Value.h"
#include "ovix/kit/host/WebView.h"

typedef struct _GMainLoop GMainLoop;

namespace demo {

/// The scripted tour of the demo: splash, the login form filled and sent in the page, the game with
/// the overlay's buttons, each tab of the sheet, the account popup, the support form with a picture
/// uploaded and shown as a thumbnail, a refused and an allowed purchase, restore, logout. Each step
/// waits for the event or screen it should bring and writes "<out>/NN-step.png"; every step's
/// result and every SDK event is printed.
///
/// The tour drives the game only as a player would: it taps the SDK's views through the window's
/// pointer path, runs the HUD buttons' actions, and types into the login page by running script in
/// it. The support form's picture comes from `picker` (the game's platform must have it installed),
/// answering with the tour's own screenshot of the game.
///
/// Threading: GTK's thread; it ticks from a GLib timeout on the default main context and quits
/// `loop` when it ends. The game, loop and picker must outlive the tour.
class DemoTour {
  public:
    DemoTour(DemoGame& game, std::shared_ptr<FilePicker> picker, std::string outputDirectory,
             GMainLoop* loop);
    ~DemoTour();
    DemoTour(const DemoTour&) = delete;
    DemoTour& operator=(const DemoTour&) = delete;

    /// Starts ticking; the first step starts the game.
    void begin();
    bool passed() const { return runner_.passed(); }
    const TourRunner& runner() const { return runner_; }

  private:
    static int tick(void* data);
    void addSteps();
    void addLoginSteps();
    void addOverlaySteps();
    void addStoreSteps();
    /// The class name of the screen the SDK shows now (a navigation controller's top screen), "".
    std::string screen() const;
    std::shared_ptr<ovix::kit::View> root() const;
    std::shared_ptr<ovix::kit::View> find(const std::function<bool(const ovix::kit::View&)>& matches) const;
    std::shared_ptr<ovix::kit::host::WebView> page() const;
    /// Runs `script` in the login page unless a run is under way; true once a run answered `expected`.
    bool pageAnswers(const std::string& script, const ovix::Value& expected);
    /// The sheet's menu buttons: home, events, report, close.
    std::shared_ptr<ovix::kit::View> menuButton(std::size_t index) const;
    /// Whether the login screen's loading cover is still shown.
    bool loading() const;
    /// Whether the overlay's sheet is open and has finished sliding up.
    bool sheetAtRest() const;
    void tapHud(Hud::Action action, const std::string& productId = "");

    DemoGame& game_;
    std::shared_ptr<FilePicker> picker_;
    std::string directory_;
    GMainLoop* loop_;
    TourRunner runner_;
    unsigned source_ = 0;
    bool pageBusy_ = false;
    std::optional<std::pair<std::string, ovix::Value>> pageAnswer_;  // the script and its answer
    std::size_t eventsBefore_ = 0;
};

}  // namespace demo
