#pragma once

#include <gtk/gtk.h>

#include <filesystem>
#include <memory>
#include <string>

#include "ovix/kit/Window.h"
#include "platform/cairo/KitRenderer.h"
#include "platform/gtk/EmbeddedViewPlacer.h"

namespace ovix::platform::gtk {

/// Shows a kit window in an undecorated GTK window of the same size: the kit tree is painted under
/// and over the widgets of embedded views (web pages), which are placed on their views' frames,
/// every frame of GTK's clock. Primary-button presses outside embedded views become the kit
/// window's touches; those on an embedded view go to its widget.
///
/// Threading: GTK's thread, which must be the platform's main thread (its main queue a
/// `GlibMainQueue`), with GTK initialised. Destroying the host closes the GTK window.
class GtkWindowHost {
  public:
    explicit GtkWindowHost(std::shared_ptr<kit::Window> window, const std::string& title = "Ovix");
    ~GtkWindowHost();
    GtkWindowHost(const GtkWindowHost&) = delete;
    GtkWindowHost& operator=(const GtkWindowHost&) = delete;

    GtkWindow* gtkWindow() const { return GTK_WINDOW(gtkWindow_); }
    void present();
    /// Places the embedded widgets where their views are now and asks GTK to repaint.
    void sync();
    /// Writes what the GTK window shows (embedded pages included) as a PNG; false when the window
    /// has not been drawn yet or the file could not be written.
    bool writeSnapshot(const std::filesystem::path& path) const;

  private:
    static gboolean onTick(GtkWidget* widget, GdkFrameClock* clock, gpointer self);
    static void onDraw(GtkDrawingArea* area, cairo_t* cr, int width, int height, gpointer self);
    static void onPressed(GtkGestureClick* gesture, int presses, double x, double y, gpointer self);
    static void onReleased(GtkGestureClick* gesture, int presses, double x, double y, gpointer self);
    static void onMotion(GtkEventControllerMotion* motion, double x, double y, gpointer self);
    double now() const;

    std::shared_ptr<kit::Window> window_;
    GtkWidget* gtkWindow_;
    GtkWidget* fixed_;
    GtkWidget* below_;
    GtkWidget* above_;
    guint tick_ = 0;
    bool touching_ = false;
    std::unique_ptr<EmbeddedViewPlacer> placer_;
    KitRenderer renderer_;
};

}  // namespace ovix::platform::gtk
