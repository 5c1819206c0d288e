// A small GTK game with the SDK's floating button over it (the desktop's "Mode A"): the game keeps
// its own window, drawing and input; the SDK layers its screens over the game's content.
//
//   ovix_gtk_overlay                          play; close the window to quit
//   ovix_gtk_overlay --screenshot out.png     write the window after 90 frames, then quit
//   ovix_gtk_overlay --frames 30 --screenshot out.png
//   ovix_gtk_overlay --open-menu --backend http://127.0.0.1:8080 --screenshot out.png
//       (taps the floating button after 20 frames; --backend: a local emulator's address)
#include <gtk/gtk.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "ovix/FloatingButton.h"
#include "ovix/OvixCore.h"
#include "ovix/desktop/DesktopPlatform.h"
#include "ovix/desktop/GameWindowOverlay.h"

namespace {

struct Game {
    double time = 0;
    int frames = 0;
    int clicks = 0;
    double lastFrame = -1;
    int screenshotAfter = 90;
    bool openMenu = false;
    std::string screenshot;
    std::shared_ptr<ovix::desktop::GameWindowOverlay> overlay;
    GMainLoop* loop = nullptr;
};

// The scene: a night sky gradient, a row of hills and a ball that bounces across; its colour
// changes with every click the game receives (clicks on the SDK's button never reach it).
void drawScene(GtkDrawingArea*, cairo_t* cr, int width, int height, gpointer data) {
    const auto* game = static_cast<const Game*>(data);
    cairo_pattern_t* sky = cairo_pattern_create_linear(0, 0, 0, height);
    cairo_pattern_add_color_stop_rgb(sky, 0, 0.05, 0.07, 0.20);
    cairo_pattern_add_color_stop_rgb(sky, 1, 0.25, 0.15, 0.35);
    cairo_set_source(cr, sky);
    cairo_paint(cr);
    cairo_pattern_destroy(sky);

    cairo_set_source_rgb(cr, 0.10, 0.30, 0.18);
    cairo_move_to(cr, 0, height);
    for (int x = 0; x <= width; x += 8) {
        cairo_line_to(cr, x, height * 0.78 + 24 * std::sin(x / 70.0));
    }
    cairo_line_to(cr, width, height);
    cairo_close_path(cr);
    cairo_fill(cr);

    const double span = width - 60.0;
    const double phase = std::fmod(game->time * 180.0, 2 * span);
    const double x = 30 + (phase < span ? phase : 2 * span - phase);
    const double y = height * 0.72 - std::abs(std::sin(game->time * 3.0)) * height * 0.45;
    const double hue = (game->clicks % 3) / 3.0;
    cairo_set_source_rgb(cr, 0.95, 0.55 + 0.4 * hue, 0.2 + 0.6 * (1 - hue));
    cairo_arc(cr, x, y, 26, 0, 2 * M_PI);
    cairo_fill(cr);
}

gboolean writeScreenshot(gpointer data) {
    auto* game = static_cast<Game*>(data);
    const bool written = game->overlay->writeSnapshot(game->screenshot);
    std::printf("%s %s\n", written ? "Wrote" : "Could not write", game->screenshot.c_str());
    g_main_loop_quit(game->loop);
    return G_SOURCE_REMOVE;
}

gboolean advance(GtkWidget* area, GdkFrameClock* clock, gpointer data) {
    auto* game = static_cast<Game*>(data);
    const double now = static_cast<double>(gdk_frame_clock_get_frame_time(clock)) / 1e6;
    if (game->lastFrame >= 0) {
        game->time += now - game->lastFrame;
    }
    game->lastFrame = now;
    gtk_widget_queue_draw(area);
    ++game->frames;
    if (game->openMenu && game->frames == 20) {
        // What a player's click on the button does; the game's clicks elsewhere stay the game's.
        if (auto button = ovix::OvixCore::shared().floatingButton()) {
            button->buttonTapped();
        }
    }
    if (!game->screenshot.empty() && game->frames == game->screenshotAfter) {
        g_idle_add(writeScreenshot, game);  // once this frame has been painted
    }
    return G_SOURCE_CONTINUE;
}

void clicked(GtkGestureClick*, int, double x, double y, gpointer data) {
    auto* game = static_cast<Game*>(data);
    ++game->clicks;
    std::printf("Game: click at %.0f, %.0f\n", x, y);
}

}  // namespace

int main(int argc, char** argv) {
    Game game;
    ovix::desktop::DesktopPlatform::Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string option = argv[i];
        const char* value = i + 1 < argc ? argv[i + 1] : nullptr;
        if (option == "--open-menu") {
            game.openMenu = true;
        } else if (option == "--screenshot" && value) {
            game.screenshot = argv[++i];
        } else if (option == "--frames" && value) {
            game.screenshotAfter = std::max(21, std::atoi(argv[++i]));
        } else if (option == "--backend" && value) {
            options.environment = ovix::platform::Environment::emulator(argv[++i]);
        }
    }
    if (!gtk_init_check()) {
        std::fprintf(stderr, "No display\n");
        return 1;
    }
    game.loop = g_main_loop_new(nullptr, FALSE);

    GtkWidget* window = gtk_window_new();
    gtk_window_set_title(GTK_WINDOW(window), "Ovix: GTK game with the SDK overlay");
    gtk_window_set_default_size(GTK_WINDOW(window), 960, 540);
    GtkWidget* area = gtk_drawing_area_new();
    gtk_drawing_area_set_draw_func(GTK_DRAWING_AREA(area), drawScene, &game, nullptr);
    gtk_widget_add_tick_callback(area, advance, &game, nullptr);
    GtkGesture* click = gtk_gesture_click_new();
    g_signal_connect(click, "pressed", G_CALLBACK(clicked), &game);
    gtk_widget_add_controller(area, GTK_EVENT_CONTROLLER(click));
    gtk_window_set_child(GTK_WINDOW(window), area);
    g_signal_connect(window, "close-request", G_CALLBACK(+[](GtkWindow*, gpointer loop) -> gboolean {
                         g_main_loop_quit(static_cast<GMainLoop*>(loop));
                         return TRUE;  // the window goes after the SDK lets go of it
                     }),
                     game.loop);

    // The SDK: one call on GTK's thread, before any other SDK call.
    game.overlay = ovix::desktop::DesktopPlatform::install(GTK_WINDOW(window), options);
    ovix::OvixCore::shared().showFloatingButton(60);

    gtk_window_present(GTK_WINDOW(window));
    g_main_loop_run(game.loop);

    ovix::OvixCore::shared().hideFloatingButton();
    game.overlay.reset();
    gtk_window_destroy(GTK_WINDOW(window));
    g_main_loop_unref(game.loop);
    return 0;
}
