// The SDK over a GTK game, as a player meets it: a real game window under a private X server, its
// own drawing and click gesture, and mouse and keyboard input sent through the X server's test
// extension, so every event takes the path a person's would.
#include <cairo.h>
#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include "ovix/FloatingButton.h"
#include "ovix/OvixCore.h"
#include "ovix/desktop/DesktopPlatform.h"
#include "ovix/desktop/GameWindowOverlay.h"
#include "ovix/kit/NotificationCenter.h"
#include "ovix/kit/ScrollView.h"
#include "ovix/kit/TextField.h"
#include "ovix/kit/ViewController.h"
#include "ovix/kit/host/WebEngine.h"
#include "ovix/kit/host/WebView.h"
#include "platform/desktop/ActivityMainQueue.h"
#include "platform/gtk/GtkEmbeddedView.h"
#include "support/GtkTestEnvironment.h"
#include "support/ScratchDirectory.h"
#include "support/XTestInput.h"
#include "ui/support/SupportReportVC.h"
#include "ui/support/SupportReportView.h"

namespace ovix::test {
namespace {

// The game paints its whole area in one colour, so any other pixel is the SDK's.
constexpr double gameRed = 0.1, gameGreen = 0.5, gameBlue = 0.2;

struct Rgb {
    int r, g, b;
    bool isGame() const {
        return std::abs(r - 26) <= 2 && std::abs(g - 128) <= 2 && std::abs(b - 51) <= 2;  // 0.1/0.5/0.2
    }
};

class GameWindowOverlayTest : public ::testing::Test {
  protected:
    void SetUp() override {
        gameWindow = GTK_WINDOW(gtk_window_new());
        gtk_window_set_decorated(gameWindow, FALSE);  // the content is the whole window
        gtk_window_set_default_size(gameWindow, 800, 600);
        game = gtk_drawing_area_new();
        gtk_drawing_area_set_draw_func(
            GTK_DRAWING_AREA(game),
            [](GtkDrawingArea*, cairo_t* cr, int, int, gpointer) {
                cairo_set_source_rgb(cr, gameRed, gameGreen, gameBlue);
                cairo_paint(cr);
            },
            nullptr, nullptr);
        GtkGesture* click = gtk_gesture_click_new();
        g_signal_connect_swapped(click, "pressed", G_CALLBACK(+[](int* count) { ++*count; }), &gamePresses);
        gtk_widget_add_controller(game, GTK_EVENT_CONTROLLER(click));
        GtkEventController* wheel = gtk_event_controller_scroll_new(GTK_EVENT_CONTROLLER_SCROLL_BOTH_AXES);
        g_signal_connect_swapped(wheel, "scroll", G_CALLBACK(+[](int* count) {
                                     ++*count;
                                     return TRUE;
                                 }),
                                 &gameScrolls);
        gtk_widget_add_controller(game, wheel);
        GtkEventController* keys = gtk_event_controller_key_new();
        g_signal_connect_swapped(keys, "key-pressed", G_CALLBACK(+[](int* count) {
                                     ++*count;
                                     return FALSE;
                                 }),
                                 &gameKeys);
        gtk_widget_add_controller(GTK_WIDGET(gameWindow), keys);
        gtk_window_set_child(gameWindow, game);

        desktop::DesktopPlatform::Options options;
        options.storePath = scratch / "store.sqlite";
        // Nothing listens there: the SDK's requests fail at once and leave this machine alone.
        options.environment = platform::Environment::emulator("http://127.0.0.1:9");
        overlay = desktop::DesktopPlatform::install(gameWindow, options);
        ASSERT_TRUE(overlay);
        queue =
            std::dynamic_pointer_cast<platform::desktop::ActivityMainQueue>(platform::current()->mainQueue);
        ASSERT_TRUE(queue);
        gtk_window_present(gameWindow);
        ASSERT_TRUE(pumpUntil([&] { return gtk_widget_get_width(game) == 800 && !overlay->isRedrawing(); }));
        input = std::make_unique<XTestInput>(gameWindow);
    }

    void TearDown() override {
        OvixCore::shared().hideFloatingButton();
        overlay.reset();
        gtk_window_destroy(gameWindow);
        pumpPending();
    }

    // --- The player's hands ---
    void moveTo(kit::Point p) {
        double wx = 0, wy = 0;
        gtk_widget_translate_coordinates(game, GTK_WIDGET(gameWindow), p.x, p.y, &wx, &wy);
        input->moveTo(wx, wy);
    }
    void click(kit::Point p) {
        moveTo(p);
        input->button(true);
        input->button(false);
    }
    void drag(kit::Point from, kit::Point to, int steps = 6) {
        moveTo(from);
        input->button(true);
        for (int i = 1; i <= steps; ++i) {
            moveTo({from.x + (to.x - from.x) * i / steps, from.y + (to.y - from.y) * i / steps});
            EXPECT_TRUE(overlay->isRedrawing()) << "while the finger moves the picture follows";
        }
        input->button(false);
    }
    void key(const char* keysym) { input->key(keysym); }
    void focusGameWindow() { ASSERT_TRUE(input->focus()); }
    bool waitUntilStill() {
        return pumpUntil([&] { return !overlay->isRedrawing(); }, 5);
    }
    // After a change made outside any input: its redraw starts once the SDK's queued work has run.
    bool waitForPicture() {
        pumpUntil([&] { return overlay->isRedrawing(); }, 1);
        return waitUntilStill();
    }

    // --- What the player sees ---
    Rgb pixelAt(kit::Point p) {
        const auto file = scratch / "window.png";
        EXPECT_TRUE(overlay->writeSnapshot(file));
        cairo_surface_t* image = cairo_image_surface_create_from_png(file.c_str());
        Rgb rgb{-1, -1, -1};
        if (cairo_surface_status(image) == CAIRO_STATUS_SUCCESS) {
            cairo_surface_flush(image);
            const auto* row = cairo_image_surface_get_data(image) +
                              static_cast<int>(p.y) * cairo_image_surface_get_stride(image);
            const auto pixel = reinterpret_cast<const std::uint32_t*>(row)[static_cast<int>(p.x)];
            rgb = {static_cast<int>((pixel >> 16) & 0xff), static_cast<int>((pixel >> 8) & 0xff),
                   static_cast<int>(pixel & 0xff)};
        }
        cairo_surface_destroy(image);
        return rgb;
    }

    std::shared_ptr<FloatingButton> showButton() {
        OvixCore::shared().showFloatingButton(60);
        auto shown = OvixCore::shared().floatingButton();
        EXPECT_TRUE(shown);
        EXPECT_TRUE(waitForPicture());
        return shown;
    }
    static kit::Point centreOf(const kit::View& view) {
        return view.convertTo(kit::Point{view.bounds().width() / 2, view.bounds().height() / 2}, nullptr);
    }

    ScratchDirectory scratch{"ovix-overlay"};
    GtkWindow* gameWindow = nullptr;
    GtkWidget* game = nullptr;
    int gamePresses = 0;
    int gameKeys = 0;
    int gameScrolls = 0;
    std::shared_ptr<desktop::GameWindowOverlay> overlay;
    std::shared_ptr<platform::desktop::ActivityMainQueue> queue;
    std::unique_ptr<XTestInput> input;
};

TEST_F(GameWindowOverlayTest, ClicksReachTheGameExceptOnTheSdksButton) {
    auto floating = showButton();
    const kit::Point onButton = centreOf(*floating);
    const kit::Point empty{600, 150};
    EXPECT_TRUE(pixelAt(empty).isGame());
    EXPECT_FALSE(pixelAt(onButton).isGame()) << "the button is painted over the game";

    struct Click {
        const char* where;
        kit::Point point;
        int gamePresses;
        bool menuOpen;
    } const clicks[] = {
        {"empty overlay", empty, 1, false},
        {"floating button", onButton, 1, true},
        // In landscape the open sheet is as tall as the window: the whole width of it is the SDK's.
        {"the open sheet", {700, 590}, 1, true},
    };
    for (const auto& c : clicks) {
        SCOPED_TRACE(c.where);
        const bool wasOpen = floating->popupView() != nullptr;
        const double before = queue->now();
        click(c.point);
        EXPECT_EQ(gamePresses, c.gamePresses);
        EXPECT_EQ(floating->popupView() != nullptr, c.menuOpen);
        if (c.menuOpen && !wasOpen) {
            // The sheet slides up: the overlay knows the slide is on and draws until it is over.
            EXPECT_GE(queue->busyUntil(), before + FloatingButton::slideDuration);
            while (queue->now() < queue->busyUntil() - 0.02) {
                ASSERT_TRUE(overlay->isRedrawing()) << "stopped drawing mid-slide";
                pumpUntil([] { return false; }, 0.01);
            }
            ASSERT_TRUE(waitUntilStill());
        }
    }
    EXPECT_FALSE(pixelAt({400, 590}).isGame());
}

TEST_F(GameWindowOverlayTest, DraggingTheButtonMovesItAndTheGameSeesNothing) {
    auto floating = showButton();
    const kit::Point start = centreOf(*floating);
    drag(start, {start.x + 300, start.y + 150}, 6);
    EXPECT_EQ(gamePresses, 0);
    EXPECT_EQ(floating->popupView(), nullptr) << "a drag is not a tap";
    // The button follows the finger from where the pan began, the first of the six moves.
    const kit::Point end{start.x + 250, start.y + 125};
    EXPECT_NEAR(centreOf(*floating).x, end.x, 1);
    EXPECT_NEAR(centreOf(*floating).y, end.y, 1);
    ASSERT_TRUE(waitUntilStill()) << "redrawing stops once nothing moves";
    EXPECT_TRUE(pixelAt(start).isGame());
    EXPECT_FALSE(pixelAt(end).isGame());
}

TEST_F(GameWindowOverlayTest, KeysGoToTheSdksFieldOrSheetBeforeTheGame) {
    focusGameWindow();
    key("a");
    EXPECT_EQ(gameKeys, 1) << "without a focused field the keys are the game's";

    auto form = SupportReportVC::create();
    form->setModalPresentationStyle(kit::ModalPresentationStyle::formSheet);
    overlay->window()->rootViewController()->present(form, false);
    overlay->setNeedsDisplay();
    ASSERT_TRUE(waitUntilStill());
    overlay->window()->layoutIfNeeded();
    const auto& title = form->reportView()->txtTitle();
    click(centreOf(*title));
    ASSERT_TRUE(title->isFirstResponder());
    EXPECT_EQ(gamePresses, 0);

    for (const char* k : {"h", "i", "space", "2", "BackSpace", "3"}) {
        key(k);
    }
    EXPECT_EQ(title->text(), "hi 3");
    EXPECT_EQ(gameKeys, 1);

    // Escape closes the SDK's sheet; with nothing left to close it is the game's again.
    key("Escape");
    const auto root = overlay->window()->rootViewController();
    ASSERT_TRUE(pumpUntil([&] { return root->presentedViewController() == nullptr; }, 5));
    EXPECT_EQ(gameKeys, 1);
    key("Escape");
    EXPECT_EQ(gameKeys, 2);
}

TEST_F(GameWindowOverlayTest, AWindowManagerResizeTurnsTheScreenAndReleasingGivesTheWindowBack) {
    auto window = overlay->window();
    int turns = 0;
    auto token = std::make_shared<int>();
    kit::NotificationCenter::defaultCenter().addObserver(
        std::string(kit::deviceOrientationDidChangeNotification), token, [&] { ++turns; });
    struct Step {
        int width, height;
        int turns;
    } const steps[] = {{480, 800, 1}, {500, 820, 1}, {900, 500, 2}};
    for (const auto& step : steps) {
        SCOPED_TRACE(testing::Message() << step.width << "x" << step.height);
        // As a window manager would: the X window changes size and GTK follows.
        input->resize(step.width, step.height);
        ASSERT_TRUE(pumpUntil(
            [&] {
                return window->frame().size ==
                       (kit::Size{static_cast<double>(step.width), static_cast<double>(step.height)});
            },
            5));
        EXPECT_EQ(turns, step.turns);
    }
    // Letting the overlay go gives the game its window back.
    overlay.reset();
    EXPECT_EQ(gtk_window_get_child(gameWindow), game);
}

TEST_F(GameWindowOverlayTest, APageLiesOverItsViewTakesItsOwnClicksAndLeavesWithIt) {
    auto page = platform::current()->webEngine->makeWebView({100, 80, 300, 200}, {});
    GtkWidget* widget = dynamic_cast<platform::gtk::GtkEmbeddedView&>(*page).widget();
    auto placedAt = [&](kit::Rect expected) {
        return pumpUntil(
            [&] {
                graphene_rect_t r;
                return gtk_widget_get_parent(widget) != nullptr &&
                       gtk_widget_compute_bounds(widget, game, &r) &&
                       kit::Rect{r.origin.x, r.origin.y, r.size.width, r.size.height} == expected;
            },
            5);
    };
    overlay->window()->addSubview(page);
    EXPECT_TRUE(placedAt({100, 80, 300, 200}));
    page->setFrame({40, 300, 200, 120});
    overlay->setNeedsDisplay();
    EXPECT_TRUE(placedAt({40, 300, 200, 120})) << "the widget follows its view";

    click({140, 360});
    EXPECT_EQ(gamePresses, 0) << "the page's widget has the click";
    click({600, 100});
    EXPECT_EQ(gamePresses, 1);

    page->removeFromSuperview();
    overlay->setNeedsDisplay();
    EXPECT_TRUE(pumpUntil([&] { return gtk_widget_get_parent(widget) == nullptr; }, 5));
}

TEST_F(GameWindowOverlayTest, TheWheelScrollsTheSdksListUnderThePointerAndTheGameElsewhere) {
    auto list = kit::ScrollView::create({500, 100, 200, 200});
    list->setBackgroundColor(kit::Color::white());
    list->setContentSize({200, 1000});
    overlay->window()->addSubview(list);
    ASSERT_TRUE(waitForPicture());
    struct Turn {
        const char* what;
        kit::Point at;
        int button;  // X's wheel buttons: 4 up, 5 down
        bool listMoves;
        bool down;
        int gameScrolls;
    } const turns[] = {
        {"down over the list", {600, 200}, 5, true, true, 0},
        {"up over the list", {600, 200}, 4, true, false, 0},
        {"down over the game", {200, 400}, 5, false, true, 1},
    };
    for (const auto& t : turns) {
        SCOPED_TRACE(t.what);
        const double before = list->contentOffset().y;
        moveTo(t.at);
        input->button(true, t.button);
        input->button(false, t.button);
        const double after = list->contentOffset().y;
        if (t.listMoves) {
            EXPECT_EQ(after > before, t.down) << before << " -> " << after;
            EXPECT_NE(after, before);
        } else {
            EXPECT_EQ(after, before);
        }
        EXPECT_EQ(gameScrolls, t.gameScrolls);
    }
}

}  // namespace
}  // namespace ovix::test
