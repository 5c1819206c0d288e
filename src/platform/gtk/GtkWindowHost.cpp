#include "platform/gtk/GtkWindowHost.h"

#include <algorithm>
#include <cmath>

#include "ovix/platform/Platform.h"
#include "platform/gtk/GtkEmbeddedView.h"

namespace ovix::platform::gtk {

namespace {

// Where `view` shows now, in its window's coordinates (animations included).
kit::Rect shownInWindow(const kit::View& view, double time) {
    auto shown = view.presentation(time);
    kit::Rect rect = shown.frame();
    for (auto parent = view.superview(); parent; parent = parent->superview()) {
        const auto parentShown = parent->presentation(time);
        rect.origin.x += parentShown.frame().origin.x - parentShown.bounds.origin.x;
        rect.origin.y += parentShown.frame().origin.y - parentShown.bounds.origin.y;
    }
    return rect;
}

bool visibleInTree(const kit::View& view) {
    for (const kit::View* v = &view; v; v = v->superview().get()) {
        if (v->isHidden()) {
            return false;
        }
    }
    return true;
}

void collectEmbedded(const std::shared_ptr<kit::View>& view, std::vector<std::shared_ptr<kit::View>>& out) {
    if (dynamic_cast<GtkEmbeddedView*>(view.get())) {
        out.push_back(view);
        return;
    }
    for (const auto& subview : view->subviews()) {
        collectEmbedded(subview, out);
    }
}

}  // namespace

GtkWindowHost::GtkWindowHost(std::shared_ptr<kit::Window> window, const std::string& title)
    : window_(std::move(window)),
      gtkWindow_(gtk_window_new()),
      fixed_(gtk_fixed_new()),
      below_(gtk_drawing_area_new()),
      above_(gtk_drawing_area_new()) {
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
    for (const auto& placed : placed_) {
        gtk_fixed_remove(GTK_FIXED(fixed_), placed.widget);
    }
    gtk_window_destroy(GTK_WINDOW(gtkWindow_));
}

void GtkWindowHost::present() {
    gtk_window_present(GTK_WINDOW(gtkWindow_));
}

double GtkWindowHost::now() const {
    return platform::current()->mainQueue->now();
}

void GtkWindowHost::sync() {
    const double time = now();
    std::vector<std::shared_ptr<kit::View>> embedded;
    collectEmbedded(window_, embedded);

    // Widgets whose views left the window go first.
    std::erase_if(placed_, [&](const Placed& placed) {
        auto view = placed.view.lock();
        if (view && std::find(embedded.begin(), embedded.end(), view) != embedded.end()) {
            return false;
        }
        gtk_fixed_remove(GTK_FIXED(fixed_), placed.widget);
        return true;
    });
    for (const auto& view : embedded) {
        GtkWidget* widget = dynamic_cast<GtkEmbeddedView*>(view.get())->widget();
        if (gtk_widget_get_parent(widget) == nullptr) {
            gtk_widget_insert_before(widget, fixed_, above_);
            placed_.push_back({widget, view});
        }
        const kit::Rect rect = shownInWindow(*view, time);
        gtk_fixed_move(GTK_FIXED(fixed_), widget, rect.origin.x, rect.origin.y);
        gtk_widget_set_size_request(widget, std::max(0, static_cast<int>(std::lround(rect.size.width))),
                                    std::max(0, static_cast<int>(std::lround(rect.size.height))));
        gtk_widget_set_visible(widget, visibleInTree(*view));
    }
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
    auto hit = host->window_->hitTest({x, y});
    for (auto v = hit; v; v = v->superview()) {
        if (dynamic_cast<GtkEmbeddedView*>(v.get())) {
            return;  // the page's own widget takes it
        }
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
    const int width = gtk_widget_get_width(gtkWindow_);
    const int height = gtk_widget_get_height(gtkWindow_);
    GskRenderer* renderer = gtk_native_get_renderer(GTK_NATIVE(gtkWindow_));
    if (width <= 0 || height <= 0 || renderer == nullptr) {
        return false;
    }
    GdkPaintable* paintable = gtk_widget_paintable_new(gtkWindow_);
    GtkSnapshot* snapshot = gtk_snapshot_new();
    gdk_paintable_snapshot(paintable, snapshot, width, height);
    GskRenderNode* node = gtk_snapshot_free_to_node(snapshot);
    bool written = false;
    if (node != nullptr) {
        graphene_rect_t viewport =
            GRAPHENE_RECT_INIT(0, 0, static_cast<float>(width), static_cast<float>(height));
        GdkTexture* texture = gsk_renderer_render_texture(renderer, node, &viewport);
        written = gdk_texture_save_to_png(texture, path.c_str());
        g_object_unref(texture);
        gsk_render_node_unref(node);
    }
    g_object_unref(paintable);
    return written;
}

}  // namespace ovix::platform::gtk
