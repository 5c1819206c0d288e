#include "platform/gtk/GtkWindowHost.h"

#include <cmath>

#include "ovix/platform/Platform.h"
#include "platform/gtk/WidgetSnapshot.h"

namespace ovix::platform::gtk {

GtkWindowHost::GtkWindowHost(std::shared_ptr<kit::Window> window, const std::string& title)
    : window_(std::move(window)),
      gtkWindow_(gtk_window_new()),
      fixed_(gtk_fixed_new()),
      below_(gtk_drawing_area_new()),
      above_(gtk_drawing_area_new()),
      placer_(std::make_unique<EmbeddedViewPlacer>(EmbeddedViewPlacer::Container{
          [this](GtkWidget* widget) { gtk_widget_insert_before(widget, fixed_, above_); },
          [this](GtkWidget* widget, int x, int y, int width, int height) {
              gtk_fixed_move(GTK_FIXED(fixed_), widget, x, y);
              gtk_widget_set_size_request(widget, width, height);
          },
          [this](GtkWidget* widget) { gtk_fixed_remove(GTK_FIXED(fixed_), widget); }})) {
    const auto size = window_->bounds().size;
    const int width = static_cast<int>(std::lround(size.width));
    const int height = static_cast<int>(std::lround(size.height));
    gtk_window_set_title(GTK_WINDOW(gtkWindow_), title.c_str());
    gtk_window_set_decorated(GTK_WINDOW(gtkWindow_), FALSE);
    gtk_window_set_resizable(GTK_WINDOW(gtkWindow_), FALSE);
    gtk_window_set_default_size(GTK_WINDOW(gtkWindow_), width, height);
    gtk_window_set_child(GTK_WINDOW(gtkWindow_), fixed_);

    for (GtkWidget* area : {below_, above_}) {
        gtk_widget_set_size_request(area, width, height);
        gtk_drawing_area_set_draw_func(GTK_DRAWING_AREA(area), onDraw, this, nullptr);
        gtk_fixed_put(GTK_FIXED(fixed_), area, 0, 0);
    }
    // The upper layer only paints; input goes to what lies below it.
    gtk_widget_set_can_target(above_, FALSE);

    GtkGesture* click = gtk_gesture_click_new();
    gtk_gesture_single_set_button(GTK_GESTURE_SINGLE(click), GDK_BUTTON_PRIMARY);
    gtk_event_controller_set_propagation_phase(GTK_EVENT_CONTROLLER(click), GTK_PHASE_CAPTURE);
    g_signal_connect(click, "pressed", G_CALLBACK(onPressed), this);
    g_signal_connect(click, "released", G_CALLBACK(onReleased), this);
    gtk_widget_add_controller(fixed_, GTK_EVENT_CONTROLLER(click));
    GtkEventController* motion = gtk_event_controller_motion_new();
    g_signal_connect(motion, "motion", G_CALLBACK(onMotion), this);
    gtk_widget_add_controller(fixed_, motion);

    tick_ = gtk_widget_add_tick_callback(gtkWindow_, onTick, this, nullptr);
    sync();
}

GtkWindowHost::~GtkWindowHost() {
    gtk_widget_remove_tick_callback(gtkWindow_, tick_);
    placer_.reset();
    gtk_window_destroy(GTK_WINDOW(gtkWindow_));
}

void GtkWindowHost::present() {
    gtk_window_present(GTK_WINDOW(gtkWindow_));
}

double GtkWindowHost::now() const {
    return platform::current()->mainQueue->now();
}

void GtkWindowHost::sync() {
    placer_->sync(window_, now());
    gtk_widget_queue_draw(below_);
    gtk_widget_queue_draw(above_);
}

gboolean GtkWindowHost::onTick(GtkWidget*, GdkFrameClock*, gpointer self) {
    static_cast<GtkWindowHost*>(self)->sync();
    return G_SOURCE_CONTINUE;
}

void GtkWindowHost::onDraw(GtkDrawingArea* area, cairo_t* cr, int, int, gpointer self) {
    auto* host = static_cast<GtkWindowHost*>(self);
    const auto layer =
        GTK_WIDGET(area) == host->below_ ? KitRenderer::Layer::below : KitRenderer::Layer::above;
    host->renderer_.draw(cr, *host->window_, host->now(), layer);
}

void GtkWindowHost::onPressed(GtkGestureClick* gesture, int, double x, double y, gpointer self) {
    auto* host = static_cast<GtkWindowHost*>(self);
    if (EmbeddedViewPlacer::insideEmbedded(host->window_->hitTest({x, y}))) {
        return;  // the page's own widget takes it
    }
    gtk_gesture_set_state(GTK_GESTURE(gesture), GTK_EVENT_SEQUENCE_CLAIMED);
    host->touching_ = true;
    host->window_->touchDown({x, y});
}

void GtkWindowHost::onReleased(GtkGestureClick*, int, double x, double y, gpointer self) {
    auto* host = static_cast<GtkWindowHost*>(self);
    if (host->touching_) {
        host->touching_ = false;
        host->window_->touchUp({x, y});
    }
}

void GtkWindowHost::onMotion(GtkEventControllerMotion*, double x, double y, gpointer self) {
    auto* host = static_cast<GtkWindowHost*>(self);
    if (host->touching_) {
        host->window_->touchMove({x, y});
    }
}

bool GtkWindowHost::writeSnapshot(const std::filesystem::path& path) const {
    return writeWidgetSnapshot(gtkWindow_, path);
}

}  // namespace ovix::platform::gtk
