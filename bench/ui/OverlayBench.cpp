#include <benchmark/benchmark.h>
#include <cairo.h>

#include <memory>

#include "ovix/FloatingButton.h"
#include "ovix/kit/Window.h"
#include "ovix/testing/HeadlessPlatform.h"
#include "platform/cairo/KitRenderer.h"
#include "ui/overlay/SidebarPopup.h"

namespace {

using namespace ovix;

// A 1280 x 720 landscape game window with the SDK's own images, as a desktop game shows the overlay.
struct Game {
    Game() {
        testing::HeadlessPlatform::Options options;
        options.codeResources = OVIX_RESOURCES_DIR;
        options.application.screenSize = {720, 1280};
        h = testing::HeadlessPlatform::create(options);
        h.install();
        h.application->rotate(kit::DeviceOrientation::landscapeLeft);
        window = h.application->windows().front();
        auto scene = kit::View::create(window->bounds());
        scene->setBackgroundColor(kit::Color::rgb255(110, 180, 235));
        window->addSubview(scene);
    }

    testing::HeadlessPlatform h;
    std::shared_ptr<kit::Window> window;
};

// Opening the sheet: a new panel on the home tab (menu strip, tile grid, four cells) built inside
// a full-window sheet and laid out for the first time.
void OpenSheet(benchmark::State& state) {
    Game game;
    const kit::Rect frame = game.window->bounds();
    for (auto _ : state) {
        auto sheet = kit::View::create(frame);
        game.window->addSubview(sheet);
        auto panel = SidebarPopup::create(sheet->bounds());
        panel->setTranslatesAutoresizingMaskIntoConstraints(false);
        sheet->addSubview(panel);
        kit::LayoutConstraint::activate({
            panel->topAnchor().constraintEqualTo(sheet->topAnchor()),
            panel->bottomAnchor().constraintEqualTo(sheet->bottomAnchor()),
            panel->leadingAnchor().constraintEqualTo(sheet->leadingAnchor()),
            panel->trailingAnchor().constraintEqualTo(sheet->trailingAnchor()),
        });
        game.window->layoutIfNeeded();
        benchmark::DoNotOptimize(panel->contentView()->frame());

        state.PauseTiming();
        sheet->removeFromSuperview();
        game.h.mainQueue->runUntilIdle();
        state.ResumeTiming();
    }
}

// One frame of the slide-up, halfway, drawn by the Cairo renderer into a 1280 x 720 surface.
void SlideFrame(benchmark::State& state) {
    Game game;
    auto button = FloatingButton::create({100, 200, 56, 56});
    game.window->addSubview(button);
    button->sendActions(kit::ControlEvent::touchUpInside);
    game.window->layoutIfNeeded();
    const double halfway = game.h.mainQueue->now() + FloatingButton::slideDuration / 2;

    platform::gtk::KitRenderer renderer;
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 1280, 720);
    for (auto _ : state) {
        cairo_t* cr = cairo_create(surface);
        renderer.draw(cr, *game.window, halfway);
        cairo_destroy(cr);
        cairo_surface_flush(surface);
        benchmark::DoNotOptimize(cairo_image_surface_get_data(surface));
    }
    cairo_surface_destroy(surface);
}

BENCHMARK(OpenSheet)->Unit(benchmark::kMicrosecond);
BENCHMARK(SlideFrame)->Unit(benchmark::kMicrosecond);

}  // namespace
