// CPU the process uses while a GTK game window shows the floating button and nothing happens: the
// overlay must not redraw or tick while the picture is still. The game itself draws one still frame,
// so what is measured is the SDK's own idle cost. Needs a display (run under xvfb-run).
//
//   ovix_idle_cpu [seconds] [--animate-game]
//       default 10 s; prints the share of one core used. --animate-game redraws the game's scene every
//       frame, for comparison: the cost of a window that does draw.
#include <gtk/gtk.h>
#include <sys/resource.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "ovix/OvixCore.h"
#include "ovix/desktop/DesktopPlatform.h"
#include "ovix/desktop/GameWindowOverlay.h"

namespace {

double cpuSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

struct Run {
    GMainLoop* loop = nullptr;
    double cpuStart = 0;
    gint64 wallStart = 0;
};

gboolean startMeasuring(gpointer data) {
    auto* run = static_cast<Run*>(data);
    run->cpuStart = cpuSeconds();
    run->wallStart = g_get_monotonic_time();
    return G_SOURCE_REMOVE;
}

gboolean stopMeasuring(gpointer data) {
    auto* run = static_cast<Run*>(data);
    const double cpu = cpuSeconds() - run->cpuStart;
    const double wall = static_cast<double>(g_get_monotonic_time() - run->wallStart) / 1e6;
    std::printf("floating button shown: %.3f s CPU over %.2f s = %.2f %% of one core\n", cpu, wall,
                100.0 * cpu / wall);
    g_main_loop_quit(run->loop);
    return G_SOURCE_REMOVE;
}

gboolean redrawScene(GtkWidget* scene, GdkFrameClock*, gpointer) {
    gtk_widget_queue_draw(scene);
    return G_SOURCE_CONTINUE;
}

void paintScene(GtkDrawingArea*, cairo_t* cr, int, int, gpointer) {
    cairo_set_source_rgb(cr, 0.1, 0.2, 0.4);
    cairo_paint(cr);
}

}  // namespace

int main(int argc, char** argv) {
    const double seconds = argc > 1 ? std::atof(argv[1]) : 10.0;
    gtk_init();
    GtkWidget* window = gtk_window_new();
    gtk_window_set_default_size(GTK_WINDOW(window), 1280, 720);
    GtkWidget* scene = gtk_drawing_area_new();
    gtk_drawing_area_set_draw_func(GTK_DRAWING_AREA(scene), paintScene, nullptr, nullptr);
    if (argc > 2 && std::string(argv[2]) == "--animate-game") {
        gtk_widget_add_tick_callback(scene, redrawScene, nullptr, nullptr);
    }
    gtk_window_set_child(GTK_WINDOW(window), scene);

    auto overlay = ovix::desktop::DesktopPlatform::install(GTK_WINDOW(window));
    ovix::OvixCore::shared().showFloatingButton(60);
    gtk_window_present(GTK_WINDOW(window));

    Run run;
    run.loop = g_main_loop_new(nullptr, FALSE);
    // Two seconds to map the window and draw its first frames, then the still period.
    g_timeout_add(2000, startMeasuring, &run);
    g_timeout_add(2000 + static_cast<guint>(seconds * 1000), stopMeasuring, &run);
    g_main_loop_run(run.loop);
    g_main_loop_unref(run.loop);
    overlay.reset();
    gtk_window_destroy(GTK_WINDOW(window));
    return 0;
}
