#include "DemoGame.h"

#include <gtk/gtk.h>
#include <pango/pangocairo.h>

#include <cmath>

#include "DemoListener.h"
#include "ovix/OvixCore.h"
#include "ovix/WarningButton.h"
#include "ovix/desktop/DesktopPlatform.h"
#include "ovix/kit/ViewController.h"

namespace demo {

namespace {

constexpr double floatingButtonSize = 60;
constexpr ovix::kit::Point warningButtonOrigin{20, 100};
constexpr int logLines = 9;

// One line of text, cut with an ellipsis at `width` points when it is longer.
void drawText(cairo_t* cr, const std::string& text, double x, double y, const char* font, double r, double g,
              double b, double width = -1) {
    PangoLayout* layout = pango_cairo_create_layout(cr);
    if (width > 0) {
        pango_layout_set_width(layout, static_cast<int>(width * PANGO_SCALE));
        pango_layout_set_ellipsize(layout, PANGO_ELLIPSIZE_END);
    }
    PangoFontDescription* description = pango_font_description_from_string(font);
    pango_layout_set_font_description(layout, description);
    pango_layout_set_text(layout, text.c_str(), -1);
    cairo_set_source_rgb(cr, r, g, b);
    cairo_move_to(cr, x, y);
    pango_cairo_show_layout(cr, layout);
    pango_font_description_free(description);
    g_object_unref(layout);
}

void roundedRectangle(cairo_t* cr, double x, double y, double width, double height, double radius) {
    cairo_new_sub_path(cr);
    cairo_arc(cr, x + width - radius, y + radius, radius, -M_PI / 2, 0);
    cairo_arc(cr, x + width - radius, y + height - radius, radius, 0, M_PI / 2);
    cairo_arc(cr, x + radius, y + height - radius, radius, M_PI / 2, M_PI);
    cairo_arc(cr, x + radius, y + radius, radius, M_PI, 3 * M_PI / 2);
    cairo_close_path(cr);
}

}  // namespace

DemoGame::DemoGame(GtkWindow* window, Options options, std::shared_ptr<EventLog> log)
    : window_(window),
      scene_(gtk_drawing_area_new()),
      options_(std::move(options)),
      log_(std::move(log)),
      hud_(options_.productIds) {
    gtk_drawing_area_set_draw_func(GTK_DRAWING_AREA(scene_), reinterpret_cast<GtkDrawingAreaDrawFunc>(draw),
                                   this, nullptr);
    gtk_widget_add_tick_callback(scene_, reinterpret_cast<GtkTickCallback>(tick), this, nullptr);
    GtkGesture* click = gtk_gesture_click_new();
    g_signal_connect(click, "pressed", G_CALLBACK(pressed), this);
    gtk_widget_add_controller(scene_, GTK_EVENT_CONTROLLER(click));
    gtk_window_set_child(window_, scene_);
}

DemoGame::~DemoGame() {
    if (overlay_) {
        ovix::OvixCore::shared().setListener(nullptr);
        ovix::OvixCore::shared().hideFloatingButton();
        ovix::OvixCore::shared().hideWarningButton();
        overlay_.reset();
    }
}

void DemoGame::start() {
    ovix::desktop::DesktopPlatform::Options platformOptions;
    platformOptions.environment = ovix::platform::Environment::emulator(options_.backendUrl);
    platformOptions.storePath = options_.storePath;
    // Built, adjusted, then installed: the one service the game chooses itself is the picker.
    auto platform = ovix::desktop::DesktopPlatform::create(window_, platformOptions);
    if (options_.imagePicker) {
        platform->imagePicker = options_.imagePicker;
    }
    ovix::platform::install(platform);
    overlay_ = ovix::desktop::GameWindowOverlay::attach(window_);

    listener_ = std::make_shared<DemoListener>(weak_from_this());
    auto& sdk = ovix::OvixCore::shared();
    sdk.setListener(listener_);
    sdk.initSdk(clientId, "", "", "");
    sdk.requestNotificationPermission([log = log_](bool allowed) {
        log->addNote(allowed ? "notifications: allowed" : "notifications: not allowed");
    });
    log_->addNote("backend " + sdk.urlString());
    sdk.showSplash();
}

void DemoGame::handle(const std::string& event, const ovix::Value& data) {
    if (event == ovix::OvixEvents::LOGIN_SUCCESS) {
        enterGame();
    } else if (event == ovix::OvixEvents::LOGOUT_SUCCESS) {
        leaveGame();
    } else if (event == ovix::OvixEvents::BILLING_CONNECTED) {
        if (const auto* products = data.asArray()) {
            for (const auto& product : *products) {
                const auto id = product.stringAt("id");
                const auto price = product.stringAt("price");
                if (id && price) {
                    hud_.setPrice(*id, *price);
                }
            }
        }
    } else if (event == ovix::OvixEvents::PURCHASE_UPDATED) {
        score_ += 100;
    }
    gtk_widget_queue_draw(scene_);
}

void DemoGame::enterGame() {
    if (inGame_) {
        return;
    }
    inGame_ = true;
    // The login screen has gone; an empty, transparent root stays so that the SDK's alerts (a
    // refused purchase) have a controller to show them. It takes no input: clicks reach the game.
    overlay_->window()->setRootViewController(ovix::kit::ViewController::create());
    auto& sdk = ovix::OvixCore::shared();
    sdk.showFloatingButton(floatingButtonSize);
    sdk.showWarningButton(warningButtonOrigin);
    showUserInfo();
}

void DemoGame::leaveGame() {
    inGame_ = false;
    player_.clear();
    auto& sdk = ovix::OvixCore::shared();
    sdk.hideFloatingButton();
    sdk.hideWarningButton();
    sdk.showLogin();
}

void DemoGame::showUserInfo() {
    std::weak_ptr<DemoGame> weak = weak_from_this();
    ovix::OvixCore::shared().getUserInfo([weak, log = log_](std::optional<ovix::Dictionary> info) {
        if (!info) {
            log->addNote("user info: none");
            return;
        }
        const std::string text = ovix::Value(*info).toJson();
        log->addNote("user info " + text);
        std::string name = ovix::Value(*info).stringAt("username").value_or("?");
        g_idle_add_full(
            G_PRIORITY_DEFAULT,
            [](gpointer pointer) -> gboolean {
                auto* update = static_cast<std::pair<std::weak_ptr<DemoGame>, std::string>*>(pointer);
                if (auto game = update->first.lock()) {
                    game->player_ = update->second;
                    gtk_widget_queue_draw(game->scene_);
                }
                return G_SOURCE_REMOVE;
            },
            new std::pair<std::weak_ptr<DemoGame>, std::string>(weak, name),
            [](gpointer pointer) {
                delete static_cast<std::pair<std::weak_ptr<DemoGame>, std::string>*>(pointer);
            });
    });
}

void DemoGame::run(const Hud::Item& item) {
    auto& sdk = ovix::OvixCore::shared();
    switch (item.action) {
        case Hud::Action::buy:
            log_->addNote("HUD: buy " + item.productId);
            // The future only says when the SDK is done raising; the events tell the game the outcome.
            (void)sdk.purchaseProduct(item.productId);
            break;
        case Hud::Action::restore:
            log_->addNote("HUD: restore");
            sdk.restorePurchases();
            break;
        case Hud::Action::userInfo:
            showUserInfo();
            break;
        case Hud::Action::logout:
            log_->addNote("HUD: log out");
            sdk.logout();
            break;
    }
}

void DemoGame::pressed(void*, int, double x, double y, void* data) {
    auto* game = static_cast<DemoGame*>(data);
    if (!game->inGame_) {
        return;
    }
    if (auto item = game->hud_.itemAt(x, y)) {
        game->run(*item);
    }
}

int DemoGame::tick(GtkWidget*, void* clock, void* data) {
    auto* game = static_cast<DemoGame*>(data);
    const double now =
        static_cast<double>(gdk_frame_clock_get_frame_time(static_cast<GdkFrameClock*>(clock))) / 1e6;
    if (game->lastFrame_ >= 0) {
        game->time_ += now - game->lastFrame_;
    }
    game->lastFrame_ = now;
    gtk_widget_queue_draw(game->scene_);
    return G_SOURCE_CONTINUE;
}

void DemoGame::draw(GtkWidget*, cairo_t* cr, int width, int height, void* data) {
    auto* game = static_cast<DemoGame*>(data);
    game->hud_.layout(width);
    game->drawScene(cr, width, height);
    if (game->inGame_) {
        game->drawHud(cr);
    }
    game->drawLog(cr, height);
}

void DemoGame::drawScene(cairo_t* cr, int width, int height) const {
    cairo_pattern_t* sky = cairo_pattern_create_linear(0, 0, 0, height);
    cairo_pattern_add_color_stop_rgb(sky, 0, 0.04, 0.06, 0.18);
    cairo_pattern_add_color_stop_rgb(sky, 1, 0.30, 0.16, 0.36);
    cairo_set_source(cr, sky);
    cairo_paint(cr);
    cairo_pattern_destroy(sky);

    // Stars drifting left, twinkling; then two rows of hills moving at different speeds.
    for (int i = 0; i < 60; ++i) {
        const double x = std::fmod(i * 173.0 - time_ * (8 + i % 3 * 6) + 4 * width, width);
        const double y = std::fmod(i * 97.0, height * 0.6);
        const double glow = 0.5 + 0.5 * std::sin(time_ * 2 + i);
        cairo_set_source_rgba(cr, 1, 1, 0.9, 0.3 + 0.6 * glow);
        cairo_arc(cr, x, y, 1.2 + (i % 4 == 0), 0, 2 * M_PI);
        cairo_fill(cr);
    }
    const double rows[2][4] = {{0.70, 30, 90, 20}, {0.80, 22, 60, 45}};
    for (int row = 0; row < 2; ++row) {
        cairo_set_source_rgb(cr, 0.08 + 0.05 * row, 0.22 + 0.10 * row, 0.16 + 0.03 * row);
        cairo_move_to(cr, 0, height);
        for (int x = 0; x <= width; x += 8) {
            cairo_line_to(
                cr, x,
                height * rows[row][0] + rows[row][1] * std::sin((x + time_ * rows[row][3]) / rows[row][2]));
        }
        cairo_line_to(cr, width, height);
        cairo_close_path(cr);
        cairo_fill(cr);
    }
    // The player's ship bobbing across the sky.
    const double span = width + 120.0;
    const double x = std::fmod(time_ * 90.0, span) - 60;
    const double y = height * 0.42 + 28 * std::sin(time_ * 1.7);
    cairo_set_source_rgb(cr, 0.95, 0.75, 0.25);
    cairo_move_to(cr, x + 34, y);
    cairo_line_to(cr, x - 22, y - 16);
    cairo_line_to(cr, x - 12, y);
    cairo_line_to(cr, x - 22, y + 16);
    cairo_close_path(cr);
    cairo_fill(cr);
    cairo_set_source_rgba(cr, 1, 0.5, 0.2, 0.5 + 0.4 * std::sin(time_ * 20));
    cairo_arc(cr, x - 18, y, 6, 0, 2 * M_PI);
    cairo_fill(cr);
}

void DemoGame::drawHud(cairo_t* cr) const {
    for (const auto& item : hud_.items()) {
        roundedRectangle(cr, item.x, item.y, item.width, item.height, 8);
        if (item.action == Hud::Action::logout) {
            cairo_set_source_rgba(cr, 0.55, 0.12, 0.12, 0.85);
        } else {
            cairo_set_source_rgba(cr, 0.10, 0.25, 0.50, 0.85);
        }
        cairo_fill(cr);
        drawText(cr, item.label, item.x + 12, item.y + 8, "DejaVu Sans 10", 1, 1, 1, item.width - 24);
    }
    const std::string status = "Người chơi: " + (player_.empty() ? std::string("…") : player_) +
                               "   Điểm: " + std::to_string(score_);
    // On a pill of its own, so that the drifting stars never sit between its words.
    roundedRectangle(cr, 88, 10, 300, 30, 15);
    cairo_set_source_rgba(cr, 0, 0, 0, 0.45);
    cairo_fill(cr);
    drawText(cr, status, 102, 15, "DejaVu Sans Bold 12", 1, 1, 1, 276);
}

void DemoGame::drawLog(cairo_t* cr, int height) const {
    const auto lines = log_->tail(logLines);
    const double lineHeight = 16;
    const double panelHeight = lineHeight * logLines + 40;
    const double top = height - panelHeight - 12;
    roundedRectangle(cr, 12, top, 600, panelHeight, 10);
    cairo_set_source_rgba(cr, 0, 0, 0, 0.55);
    cairo_fill(cr);
    drawText(cr, "Sự kiện SDK", 24, top + 8, "DejaVu Sans Bold 10", 1, 0.85, 0.4);
    cairo_save(cr);
    cairo_rectangle(cr, 12, top, 596, panelHeight);
    cairo_clip(cr);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        drawText(cr, lines[i], 24, top + 28 + lineHeight * static_cast<double>(i), "DejaVu Sans Mono 8", 0.85,
                 0.95, 0.85, 572);
    }
    cairo_restore(cr);
}

}  // namespace demo
