#pragma once

#include <memory>
#include <string>
#include <vector>

#include "EventLog.h"
#include "Hud.h"
#include "ovix/Value.h"
#include "ovix/desktop/GameWindowOverlay.h"
#include "ovix/platform/ImagePicker.h"
#include "ovix/platform/Platform.h"

typedef struct _GtkWidget GtkWidget;
typedef struct _GtkWindow GtkWindow;
typedef struct _cairo cairo_t;

namespace demo {

class DemoListener;

/// The demo game: a GTK window with a moving Cairo scene, the game's HUD and the SDK's event log,
/// integrated with the SDK through its public calls only. Flow: splash, the login page, then the
/// game with the floating and warning buttons; logging out brings the login page back.
///
/// Threading: GTK's thread for everything but `EventLog` (events arrive on any thread; the listener
/// hops to GTK's thread before the game reacts). The game window must outlive the game; the SDK's
/// overlay is let go in the destructor, giving the window its scene back.
class DemoGame : public std::enable_shared_from_this<DemoGame> {
  public:
    struct Options {
        std::string backendUrl;               ///< the accounts and graph host
        std::vector<std::string> productIds;  ///< the sandbox catalog's products, in catalog order
        std::string storePath;                ///< the SDK's key-value file; "" for its default
        /// Replaces the desktop's file chooser (the tour answers the support form's picker with it).
        std::shared_ptr<ovix::platform::ImagePicker> imagePicker;
    };
    static constexpr const char* clientId = "demo-game";

    DemoGame(GtkWindow* window, Options options, std::shared_ptr<EventLog> log);
    ~DemoGame();
    DemoGame(const DemoGame&) = delete;
    DemoGame& operator=(const DemoGame&) = delete;

    /// Installs the desktop platform over the window, sets the listener, initialises the SDK, asks
    /// for notification permission and shows the splash. Call once, after the window is presented.
    void start();
    /// Runs a HUD button's action, as a click on it does.
    void run(const Hud::Item& item);
    /// Reacts to an SDK event on GTK's thread (the listener forwards every event here).
    void handle(const std::string& event, const ovix::Value& data);

    bool inGame() const { return inGame_; }
    const Hud& hud() const { return hud_; }
    EventLog& log() { return *log_; }
    const std::shared_ptr<ovix::desktop::GameWindowOverlay>& overlay() const { return overlay_; }
    GtkWidget* scene() const { return scene_; }

  private:
    static void draw(GtkWidget*, cairo_t* cr, int width, int height, void* data);
    static int tick(GtkWidget*, void* clock, void* data);
    static void pressed(void*, int, double x, double y, void* data);
    void drawScene(cairo_t* cr, int width, int height) const;
    void drawHud(cairo_t* cr) const;
    void drawLog(cairo_t* cr, int height) const;
    void enterGame();
    void leaveGame();
    void showUserInfo();

    GtkWindow* window_;
    GtkWidget* scene_;
    Options options_;
    std::shared_ptr<EventLog> log_;
    std::shared_ptr<DemoListener> listener_;
    std::shared_ptr<ovix::desktop::GameWindowOverlay> overlay_;
    Hud hud_;
    bool inGame_ = false;
    std::string player_;
    double time_ = 0;
    double lastFrame_ = -1;
    int score_ = 0;
};

}  // namespace demo
