#include "ovix/desktop/GameWindowOverlay.h"

#include <gtk/gtk.h>

#include <cmath>
#include <optional>

#include "ovix/desktop/OverlayInput.h"
#include "ovix/platform/Platform.h"
#include "platform/cairo/KitRenderer.h"
#include "platform/desktop/ActivityMainQueue.h"
#include "platform/desktop/GameWindowApplication.h"
#include "platform/gtk/EmbeddedViewPlacer.h"
#include "platform/gtk/WidgetSnapshot.h"

namespace ovix::desktop {

namespace {

std::optional<kit::Key> keyFor(guint keyval) {
    switch (keyval) {
        case GDK_KEY_Left:
        case GDK_KEY_KP_Left:
            return kit::Key::left;
        case GDK_KEY_Right:
        case GDK_KEY_KP_Right:
            return kit::Key::right;
        case GDK_KEY_Up:
        case GDK_KEY_KP_Up:
            return kit::Key::up;
        case GDK_KEY_Down:
        case GDK_KEY_KP_Down:
            return kit::Key::down;
        case GDK_KEY_Home:
        case GDK_KEY_KP_Home:
            return kit::Key::home;
        case GDK_KEY_End:
        case GDK_KEY_KP_End:
            return kit::Key::end;
        case GDK_KEY_BackSpace:
            return kit::Key::backspace;
        case GDK_KEY_Delete:
        case GDK_KEY_KP_Delete:
            return kit::Key::deleteForward;
        case GDK_KEY_Return:
        case GDK_KEY_KP_Enter:
            return kit::Key::enter;
        case GDK_KEY_Tab:
        case GDK_KEY_ISO_Left_Tab:
            return kit::Key::tab;
        case GDK_KEY_Escape:
            return kit::Key::escape;
        default:
            return std::nullopt;
    }
}

std::optional<PointerButton> buttonFor(guint button) {
    switch (button) {
        case GDK_BUTTON_PRIMARY:
            return PointerButton::primary;
        case GDK_BUTTON_MIDDLE:
            return PointerButton::middle;
        case GDK_BUTTON_SECONDARY:
            return PointerButton::secondary;
        default:
            return std::nullopt;
    }
}

}  // namespace

struct GameWindowOverlay::Impl {
    GtkWindow* gameWindow = nullptr;
    GtkWidget* gameChild = nullptr;
    GtkWidget* overlay = nullptr;
    GtkWidget* below = nullptr;
    GtkWidget* above = nullptr;
    GtkEventController* events = nullptr;
    GtkIMContext* im = nullptr;
    guint tick = 0;
    int framesToDraw = 0;
    std::optional<kit::Point> lastPointer;

    std::shared_ptr<platform::desktop::GameWindowApplication> application;
    std::shared_ptr<platform::desktop::ActivityMainQueue> queue;
    std::shared_ptr<kit::Window> window;
    std::unique_ptr<OverlayInput> input;
    std::unique_ptr<platform::gtk::EmbeddedViewPlacer> placer;
    platform::gtk::KitRenderer renderer;

    void build();
    void teardown();
    void wake();
    bool route(GdkEvent* event);
    bool routeKey(GdkEvent* event);
    bool routeScroll(GdkEvent* event, kit::Point point);
    std::optional<kit::Point> overlayPoint(GdkEvent* event) const;
    bool insidePage(kit::Point point) const;

    static gboolean onTick(GtkWidget*, GdkFrameClock*, gpointer self);
    static void onDraw(GtkDrawingArea* area, cairo_t* cr, int, int, gpointer self);
    static void onResize(GtkDrawingArea*, int width, int height, gpointer self);
    static gboolean onEvent(GtkEventControllerLegacy*, GdkEvent* event, gpointer self);
    static void onCommit(GtkIMContext*, const char* text, gpointer self);
};

std::shared_ptr<GameWindowOverlay> GameWindowOverlay::attach(GtkWindow* gameWindow) {
    auto platform = platform::current();
    auto application =
        std::dynamic_pointer_cast<platform::desktop::GameWindowApplication>(platform->application);
    auto queue = std::dynamic_pointer_cast<platform::desktop::ActivityMainQueue>(platform->mainQueue);
    if (!application || !queue || gameWindow == nullptr || gtk_window_get_child(gameWindow) == nullptr) {
        return nullptr;
    }
    auto impl = std::make_unique<Impl>();
    impl->gameWindow = gameWindow;
    impl->application = std::move(application);
    impl->queue = std::move(queue);
    impl->window = impl->application->window();
    impl->input = std::make_unique<OverlayInput>(impl->window);
    impl->build();
    return std::make_shared<GameWindowOverlay>(std::move(impl));
}

GameWindowOverlay::GameWindowOverlay(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}

GameWindowOverlay::~GameWindowOverlay() {
    impl_->teardown();
}

std::shared_ptr<kit::Window> GameWindowOverlay::window() const {
    return impl_->window;
}

void GameWindowOverlay::setNeedsDisplay() {
    impl_->wake();
}

bool GameWindowOverlay::isRedrawing() const {
    return impl_->tick != 0;
}

bool GameWindowOverlay::writeSnapshot(const std::filesystem::path& path) const {
    return platform::gtk::writeWidgetSnapshot(GTK_WIDGET(impl_->gameWindow), path);
}

void GameWindowOverlay::Impl::build() {
    // The game's content moves into an overlay, under the SDK's two painted layers; pages go between.
    gameChild = GTK_WIDGET(g_object_ref(gtk_window_get_child(gameWindow)));
    gtk_window_set_child(gameWindow, nullptr);
    overlay = gtk_overlay_new();
    gtk_overlay_set_child(GTK_OVERLAY(overlay), gameChild);
    g_object_unref(gameChild);
    gtk_window_set_child(gameWindow, overlay);

    below = gtk_drawing_area_new();
    above = gtk_drawing_area_new();
    for (GtkWidget* layer : {below, above}) {
        // Painting only: picking never lands on a layer, so the game's widgets stay the targets.
        gtk_widget_set_can_target(layer, FALSE);
        gtk_drawing_area_set_draw_func(GTK_DRAWING_AREA(layer), onDraw, this, nullptr);
        gtk_overlay_add_overlay(GTK_OVERLAY(overlay), layer);
    }
    g_signal_connect(below, "resize", G_CALLBACK(onResize), this);

    placer = std::make_unique<platform::gtk::EmbeddedViewPlacer>(platform::gtk::EmbeddedViewPlacer::Container{
        [this](GtkWidget* widget) {
            gtk_widget_set_halign(widget, GTK_ALIGN_START);
            gtk_widget_set_valign(widget, GTK_ALIGN_START);
            gtk_widget_insert_before(widget, overlay, above);
        },
        [](GtkWidget* widget, int x, int y, int width, int height) {
            gtk_widget_set_margin_start(widget, x);
            gtk_widget_set_margin_top(widget, y);
            gtk_widget_set_size_request(widget, width, height);
        },
        [this](GtkWidget* widget) { gtk_overlay_remove_overlay(GTK_OVERLAY(overlay), widget); }});

    // Every event of the game window passes here first, before any of the game's own controllers.
    events = gtk_event_controller_legacy_new();
    gtk_event_controller_set_propagation_phase(events, GTK_PHASE_CAPTURE);
    g_signal_connect(events, "event", G_CALLBACK(onEvent), this);
    gtk_widget_add_controller(GTK_WIDGET(gameWindow), events);

    im = gtk_im_multicontext_new();
    gtk_im_context_set_client_widget(im, overlay);
    g_signal_connect(im, "commit", G_CALLBACK(onCommit), this);

    queue->setActivityListener([this] { wake(); });
    wake();
}

void GameWindowOverlay::Impl::teardown() {
    queue->setActivityListener({});
    if (tick != 0) {
        gtk_widget_remove_tick_callback(overlay, tick);
    }
    placer.reset();
    gtk_im_context_set_client_widget(im, nullptr);
    g_object_unref(im);
    gtk_widget_remove_controller(GTK_WIDGET(gameWindow), events);
    g_object_ref(gameChild);
    gtk_overlay_set_child(GTK_OVERLAY(overlay), nullptr);
    gtk_window_set_child(gameWindow, gameChild);
    g_object_unref(gameChild);
}

void GameWindowOverlay::Impl::wake() {
    // Two frames at least: one for the change, one to find the picture still.
    framesToDraw = 2;
    if (tick == 0) {
        tick = gtk_widget_add_tick_callback(overlay, onTick, this, nullptr);
    }
}

gboolean GameWindowOverlay::Impl::onTick(GtkWidget*, GdkFrameClock*, gpointer self) {
    auto* impl = static_cast<Impl*>(self);
    impl->placer->sync(impl->window, impl->queue->now());
    gtk_widget_queue_draw(impl->below);
    gtk_widget_queue_draw(impl->above);
    if (impl->framesToDraw > 0) {
        --impl->framesToDraw;
    }
    const bool moving = impl->queue->now() < impl->queue->busyUntil() || impl->input->isOverlayPressed();
    if (impl->framesToDraw > 0 || moving) {
        return G_SOURCE_CONTINUE;
    }
    impl->tick = 0;
    return G_SOURCE_REMOVE;
}

void GameWindowOverlay::Impl::onDraw(GtkDrawingArea* area, cairo_t* cr, int, int, gpointer self) {
    auto* impl = static_cast<Impl*>(self);
    const auto layer = GTK_WIDGET(area) == impl->below ? platform::gtk::KitRenderer::Layer::below
                                                       : platform::gtk::KitRenderer::Layer::above;
    impl->renderer.draw(cr, *impl->window, impl->queue->now(), layer);
}

void GameWindowOverlay::Impl::onResize(GtkDrawingArea* area, int width, int height, gpointer self) {
    auto* impl = static_cast<Impl*>(self);
    impl->application->resize({static_cast<double>(width), static_cast<double>(height)},
                              gtk_widget_get_scale_factor(GTK_WIDGET(area)));
    impl->wake();
}

std::optional<kit::Point> GameWindowOverlay::Impl::overlayPoint(GdkEvent* event) const {
    double x = 0;
    double y = 0;
    if (!gdk_event_get_position(event, &x, &y)) {
        return std::nullopt;
    }
    // Event positions are the surface's; the surface may add a frame (client-side decorations).
    double frameX = 0;
    double frameY = 0;
    gtk_native_get_surface_transform(GTK_NATIVE(gameWindow), &frameX, &frameY);
    double ox = 0;
    double oy = 0;
    if (!gtk_widget_translate_coordinates(GTK_WIDGET(gameWindow), overlay, x - frameX, y - frameY, &ox,
                                          &oy)) {
        return std::nullopt;
    }
    return kit::Point{ox, oy};
}

bool GameWindowOverlay::Impl::insidePage(kit::Point point) const {
    return platform::gtk::EmbeddedViewPlacer::insideEmbedded(window->hitTest(point));
}

gboolean GameWindowOverlay::Impl::onEvent(GtkEventControllerLegacy*, GdkEvent* event, gpointer self) {
    auto* impl = static_cast<Impl*>(self);
    const bool consumed = impl->route(event);
    return consumed ? GDK_EVENT_STOP : GDK_EVENT_PROPAGATE;
}

bool GameWindowOverlay::Impl::route(GdkEvent* event) {
    const GdkEventType type = gdk_event_get_event_type(event);
    if (type == GDK_KEY_PRESS || type == GDK_KEY_RELEASE) {
        return routeKey(event);
    }
    if (type == GDK_GRAB_BROKEN) {
        input->pointerCancel();
        wake();
        return false;
    }
    auto point = overlayPoint(event);
    if (point) {
        lastPointer = point;
    } else if (type == GDK_SCROLL) {
        point = lastPointer;  // wheel events carry no position: they happen where the pointer is
    }
    if (!point) {
        return false;
    }
    bool consumed = false;
    switch (type) {
        case GDK_BUTTON_PRESS:
        case GDK_BUTTON_RELEASE: {
            const auto button = buttonFor(gdk_button_event_get_button(event));
            if (!button || (type == GDK_BUTTON_PRESS && !input->isOverlayPressed() && insidePage(*point))) {
                return false;  // a page's own widget takes it
            }
            consumed = type == GDK_BUTTON_PRESS ? input->pointerPress(*point, *button)
                                                : input->pointerRelease(*point, *button);
            break;
        }
        case GDK_MOTION_NOTIFY:
            consumed = input->pointerMove(*point);
            if (!consumed) {
                return false;  // hover and the game's drags change nothing of ours
            }
            break;
        case GDK_SCROLL:
            consumed = routeScroll(event, *point);
            break;
        default:
            return false;
    }
    wake();
    return consumed;
}

bool GameWindowOverlay::Impl::routeScroll(GdkEvent* event, kit::Point point) {
    if (insidePage(point)) {
        return false;
    }
    double dx = 0;
    double dy = 0;
    auto unit = ScrollUnit::notches;
    switch (gdk_scroll_event_get_direction(event)) {
        case GDK_SCROLL_UP:
            dy = -1;
            break;
        case GDK_SCROLL_DOWN:
            dy = 1;
            break;
        case GDK_SCROLL_LEFT:
            dx = -1;
            break;
        case GDK_SCROLL_RIGHT:
            dx = 1;
            break;
        case GDK_SCROLL_SMOOTH:
            gdk_scroll_event_get_deltas(event, &dx, &dy);
            if (gdk_scroll_event_get_unit(event) == GDK_SCROLL_UNIT_SURFACE) {
                unit = ScrollUnit::points;  // touchpads
            }
            break;
    }
    return input->scroll(point, dx, dy, unit);
}

bool GameWindowOverlay::Impl::routeKey(GdkEvent* event) {
    const bool editing = window->firstResponder() != nullptr;
    if (gdk_event_get_event_type(event) == GDK_KEY_RELEASE) {
        return editing && gtk_im_context_filter_keypress(im, event);
    }
    bool consumed = false;
    if (auto key = keyFor(gdk_key_event_get_keyval(event))) {
        const GdkModifierType state = gdk_event_get_modifier_state(event);
        consumed = input->key(*key, {(state & GDK_SHIFT_MASK) != 0, (state & GDK_CONTROL_MASK) != 0});
    } else if (editing) {
        // Printable keys become text through the input method (compose sequences, IM windows).
        gtk_im_context_focus_in(im);
        consumed = gtk_im_context_filter_keypress(im, event);
    }
    if (consumed) {
        wake();
    }
    return consumed;
}

void GameWindowOverlay::Impl::onCommit(GtkIMContext*, const char* text, gpointer self) {
    auto* impl = static_cast<Impl*>(self);
    impl->input->text(text);
    impl->wake();
}

}  // namespace ovix::desktop
