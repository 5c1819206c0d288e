#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "ovix/FloatingButton.h"
#include "ovix/desktop/OverlaySurface.h"
#include "ovix/kit/ViewController.h"
#include "ovix/kit/Window.h"
#include "ovix/testing/HeadlessPlatform.h"

namespace {

using namespace ovix;

constexpr int width = 1280;
constexpr int height = 720;

// A 1280 x 720 landscape game with the floating button, drawn through the overlay surface into an
// RGBA buffer the size of the game's frame.
struct Game {
    Game() {
        testing::HeadlessPlatform::Options options;
        options.codeResources = OVIX_RESOURCES_DIR;
        options.application.screenSize = {height, width};
        h = testing::HeadlessPlatform::create(options);
        h.install();
        h.application->rotate(kit::DeviceOrientation::landscapeLeft);
        window = h.application->windows().front();
        window->setRootViewController(std::make_shared<kit::ViewController>());
        button = FloatingButton::create({100, 200, 60, 60});
        window->rootViewController()->view()->addSubview(button);
        surface = std::make_unique<desktop::OverlaySurface>(window);
        surface->resize(width, height, 1);
    }
    /// Taps the button: the sheet (side menu, home tab) starts sliding up.
    void openSheet() {
        surface->pointerPress({130, 230});
        surface->pointerRelease({130, 230});
        window->layoutIfNeeded();
    }
    bool render() { return surface->render(pixels.data(), width, height, width * 4); }

    testing::HeadlessPlatform h;
    std::shared_ptr<kit::Window> window;
    std::shared_ptr<FloatingButton> button;
    std::unique_ptr<desktop::OverlaySurface> surface;
    std::vector<std::uint8_t> pixels = std::vector<std::uint8_t>(std::size_t{width} * height * 4);
};

// The open sheet, settled: one full frame (digest, Cairo drawing, conversion to straight RGBA).
void OpenSheetFrame(benchmark::State& state) {
    Game game;
    game.openSheet();
    game.h.mainQueue->advance(1);
    for (auto _ : state) {
        game.surface->setNeedsDisplay();
        benchmark::DoNotOptimize(game.render());
    }
}

// Halfway through the slide: each frame is a new picture while the animation runs.
void SlideFrame(benchmark::State& state) {
    Game game;
    game.openSheet();
    game.h.mainQueue->advance(FloatingButton::slideDuration / 2);
    for (auto _ : state) {
        game.surface->setNeedsDisplay();
        benchmark::DoNotOptimize(game.render());
    }
}

// Nothing changed since the last frame: the surface only walks the tree to see that.
void IdleFrame(benchmark::State& state) {
    Game game;
    if (state.range(0) != 0) {
        game.openSheet();
        game.h.mainQueue->advance(1);
    }
    game.render();
    for (auto _ : state) {
        if (game.render()) {
            state.SkipWithError("an idle frame drew");
            break;
        }
    }
    state.SetLabel(state.range(0) != 0 ? "sheet open" : "button only");
}

BENCHMARK(OpenSheetFrame)->Unit(benchmark::kMillisecond);
BENCHMARK(SlideFrame)->Unit(benchmark::kMillisecond);
BENCHMARK(IdleFrame)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

}  // namespace
