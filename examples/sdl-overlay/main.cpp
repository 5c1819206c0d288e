// A small SDL2 game with the SDK's floating button over it (the desktop's "Mode B"): the game runs
// its own loop and renderer; each frame it pumps the SDK, offers it the input first, and draws the
// SDK's overlay texture over the scene.
//
//   ovix_sdl_overlay                                   play; close the window to quit
//   ovix_sdl_overlay --frames 60 --screenshot out.png  write frame 60, then quit
//   ovix_sdl_overlay --tap-button ...                  also tap the floating button at frame 10
//   ovix_sdl_overlay --size 600x900 ...                the window's size in points (960x540)
#include <SDL.h>
#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ovix/OvixCore.h"
#include "ovix/desktop/DesktopPlatform.h"
#include "ovix/desktop/OverlaySurface.h"

namespace {

struct Options {
    int frames = 0;  // 0: run until closed
    std::string screenshot;
    bool tapButton = false;
    int width = 960;
    int height = 540;
};

struct Game {
    double time = 0;
    int clicks = 0;
    double paddle = 0.5;  // the arrow keys move it, unless the SDK has a text field focused
};

/// The overlay's pixels, kept between frames: the surface redraws them only when they change.
struct OverlayLayer {
    SDL_Texture* texture = nullptr;
    std::vector<std::uint8_t> pixels;
    int width = 0;
    int height = 0;

    void resize(SDL_Renderer* renderer, int w, int h) {
        if (texture) {
            SDL_DestroyTexture(texture);
        }
        width = w;
        height = h;
        pixels.assign(static_cast<std::size_t>(w) * h * 4, 0);
        // RGBA bytes in memory order, straight alpha: what the surface writes.
        texture = SDL_CreateTexture(renderer, SDL_PIXELFORMAT_ABGR8888, SDL_TEXTUREACCESS_STREAMING, w, h);
        SDL_SetTextureBlendMode(texture, SDL_BLENDMODE_BLEND);
    }
};

void fillCircle(SDL_Renderer* renderer, int cx, int cy, int radius) {
    for (int dy = -radius; dy <= radius; ++dy) {
        const int half = static_cast<int>(std::sqrt(static_cast<double>(radius * radius - dy * dy)));
        SDL_RenderDrawLine(renderer, cx - half, cy + dy, cx + half, cy + dy);
    }
}

// A dusk sky, a row of hills, a paddle and a ball bouncing across; the ball changes colour with
// every click the game receives (clicks on the SDK's button never reach it).
void drawScene(SDL_Renderer* renderer, const Game& game, int width, int height) {
    for (int y = 0; y < height; y += 4) {
        const double f = static_cast<double>(y) / height;
        SDL_SetRenderDrawColor(renderer, static_cast<Uint8>(13 + 50 * f), static_cast<Uint8>(18 + 20 * f),
                               static_cast<Uint8>(51 + 40 * f), 255);
        SDL_Rect band{0, y, width, 4};
        SDL_RenderFillRect(renderer, &band);
    }
    SDL_SetRenderDrawColor(renderer, 26, 77, 46, 255);
    for (int x = 0; x < width; ++x) {
        const int top = static_cast<int>(height * 0.78 + height * 0.04 * std::sin(x / 70.0));
        SDL_RenderDrawLine(renderer, x, top, x, height);
    }
    SDL_SetRenderDrawColor(renderer, 230, 230, 240, 255);
    SDL_Rect paddle{static_cast<int>(game.paddle * (width - 120)), height - 40, 120, 12};
    SDL_RenderFillRect(renderer, &paddle);

    const double span = width - 60.0;
    const double phase = std::fmod(game.time * 180.0, 2 * span);
    const double x = 30 + (phase < span ? phase : 2 * span - phase);
    const double y = height * 0.72 - std::abs(std::sin(game.time * 3.0)) * height * 0.45;
    const int hue = game.clicks % 3;
    SDL_SetRenderDrawColor(renderer, 242, static_cast<Uint8>(140 + 50 * hue),
                           static_cast<Uint8>(200 - 70 * hue), 255);
    fillCircle(renderer, static_cast<int>(x), static_cast<int>(y), 26);
}

std::optional<ovix::kit::Key> kitKey(SDL_Keycode key) {
    using ovix::kit::Key;
    switch (key) {
        case SDLK_LEFT:
            return Key::left;
        case SDLK_RIGHT:
            return Key::right;
        case SDLK_UP:
            return Key::up;
        case SDLK_DOWN:
            return Key::down;
        case SDLK_HOME:
            return Key::home;
        case SDLK_END:
            return Key::end;
        case SDLK_BACKSPACE:
            return Key::backspace;
        case SDLK_DELETE:
            return Key::deleteForward;
        case SDLK_RETURN:
        case SDLK_KP_ENTER:
            return Key::enter;
        case SDLK_TAB:
            return Key::tab;
        case SDLK_ESCAPE:
            return Key::escape;
        default:
            return std::nullopt;
    }
}

ovix::desktop::PointerButton pointerButton(Uint8 button) {
    switch (button) {
        case SDL_BUTTON_RIGHT:
            return ovix::desktop::PointerButton::secondary;
        case SDL_BUTTON_MIDDLE:
            return ovix::desktop::PointerButton::middle;
        default:
            return ovix::desktop::PointerButton::primary;
    }
}

/// Offers one event to the SDK; true when it consumed it (the game then ignores it).
bool offerToSdk(ovix::desktop::OverlaySurface& overlay, const SDL_Event& event) {
    using ovix::kit::Point;
    switch (event.type) {
        case SDL_MOUSEBUTTONDOWN:
            return overlay.pointerPress(Point{double(event.button.x), double(event.button.y)},
                                        pointerButton(event.button.button));
        case SDL_MOUSEBUTTONUP:
            return overlay.pointerRelease(Point{double(event.button.x), double(event.button.y)},
                                          pointerButton(event.button.button));
        case SDL_MOUSEMOTION:
            return overlay.pointerMove(Point{double(event.motion.x), double(event.motion.y)});
        case SDL_MOUSEWHEEL: {
            int x = 0;
            int y = 0;
            SDL_GetMouseState(&x, &y);
            const double flip = event.wheel.direction == SDL_MOUSEWHEEL_FLIPPED ? -1 : 1;
            // SDL's wheel y grows away from the player (scrolling up); the SDK's dy grows downwards.
            return overlay.scroll(Point{double(x), double(y)}, flip * event.wheel.x, -flip * event.wheel.y,
                                  ovix::desktop::ScrollUnit::notches);
        }
        case SDL_KEYDOWN: {
            const auto key = kitKey(event.key.keysym.sym);
            const SDL_Keymod mod = static_cast<SDL_Keymod>(event.key.keysym.mod);
            return key && overlay.key(*key, {(mod & KMOD_SHIFT) != 0, (mod & KMOD_CTRL) != 0});
        }
        case SDL_TEXTINPUT:
            return overlay.text(event.text.text);
        default:
            return false;
    }
}

void gameHandles(Game& game, const SDL_Event& event) {
    if (event.type == SDL_MOUSEBUTTONDOWN) {
        ++game.clicks;
        std::printf("Game: click at %d, %d\n", event.button.x, event.button.y);
    } else if (event.type == SDL_KEYDOWN && event.key.keysym.sym == SDLK_LEFT) {
        game.paddle = std::max(0.0, game.paddle - 0.05);
    } else if (event.type == SDL_KEYDOWN && event.key.keysym.sym == SDLK_RIGHT) {
        game.paddle = std::min(1.0, game.paddle + 0.05);
    }
}

void pushClick(int x, int y) {
    for (Uint32 type : {SDL_MOUSEBUTTONDOWN, SDL_MOUSEBUTTONUP}) {
        SDL_Event event{};
        event.type = type;
        event.button.button = SDL_BUTTON_LEFT;
        event.button.state = type == SDL_MOUSEBUTTONDOWN ? SDL_PRESSED : SDL_RELEASED;
        event.button.x = x;
        event.button.y = y;
        SDL_PushEvent(&event);
    }
}

bool writeScreenshot(SDL_Renderer* renderer, int width, int height, const std::string& path) {
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(width) * height * 4);
    if (SDL_RenderReadPixels(renderer, nullptr, SDL_PIXELFORMAT_ARGB8888, pixels.data(), width * 4) != 0) {
        return false;
    }
    // ARGB8888 is Cairo's ARGB32 layout; the frame is opaque, so premultiplying changes nothing.
    cairo_surface_t* surface =
        cairo_image_surface_create_for_data(pixels.data(), CAIRO_FORMAT_ARGB32, width, height, width * 4);
    const bool written = cairo_surface_write_to_png(surface, path.c_str()) == CAIRO_STATUS_SUCCESS;
    cairo_surface_destroy(surface);
    return written;
}

Options parse(int argc, char** argv) {
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string option = argv[i];
        if (option == "--tap-button") {
            options.tapButton = true;
        } else if (option == "--frames" && i + 1 < argc) {
            options.frames = std::max(1, std::atoi(argv[++i]));
        } else if (option == "--size" && i + 1 < argc) {
            int w = 0;
            int h = 0;
            if (std::sscanf(argv[++i], "%dx%d", &w, &h) == 2 && w > 0 && h > 0) {
                options.width = w;
                options.height = h;
            }
        } else if (option == "--screenshot" && i + 1 < argc) {
            options.screenshot = argv[++i];
        }
    }
    if (!options.screenshot.empty() && options.frames == 0) {
        options.frames = 60;
    }
    return options;
}

}  // namespace

int main(int argc, char** argv) {
    const Options options = parse(argc, argv);
    if (SDL_Init(SDL_INIT_VIDEO) != 0) {
        std::fprintf(stderr, "SDL: %s\n", SDL_GetError());
        return 1;
    }
    SDL_Window* window = SDL_CreateWindow("Ovix: SDL game with the SDK overlay", SDL_WINDOWPOS_CENTERED,
                                          SDL_WINDOWPOS_CENTERED, options.width, options.height,
                                          SDL_WINDOW_RESIZABLE | SDL_WINDOW_ALLOW_HIGHDPI);
    SDL_Renderer* renderer = window ? SDL_CreateRenderer(window, -1, SDL_RENDERER_PRESENTVSYNC) : nullptr;
    if (!renderer) {
        std::fprintf(stderr, "SDL: %s\n", SDL_GetError());
        return 1;
    }

    // The SDK: the platform and its surface, sized to the window in points, on the loop's thread.
    int points[2];
    int pixels[2];
    SDL_GetWindowSize(window, &points[0], &points[1]);
    SDL_GetRendererOutputSize(renderer, &pixels[0], &pixels[1]);
    double scale = static_cast<double>(pixels[0]) / points[0];
    auto overlay = ovix::desktop::DesktopPlatform::installSurface(points[0], points[1], scale);
    ovix::OvixCore::shared().showFloatingButton(60);
    OverlayLayer layer;
    layer.resize(renderer, pixels[0], pixels[1]);

    Game game;
    Uint64 last = SDL_GetPerformanceCounter();
    bool running = true;
    for (int frame = 1; running; ++frame) {
        overlay->pump();
        if (options.tapButton && frame == 5) {
            pushClick(20, 20);  // an empty spot: the game's
        }
        if (options.tapButton && frame == 10) {
            pushClick(130, 230);  // the floating button's centre: the SDK's
        }
        SDL_Event event;
        while (SDL_PollEvent(&event)) {
            if (event.type == SDL_QUIT) {
                running = false;
            } else if (event.type == SDL_WINDOWEVENT && event.window.event == SDL_WINDOWEVENT_SIZE_CHANGED) {
                SDL_GetWindowSize(window, &points[0], &points[1]);
                SDL_GetRendererOutputSize(renderer, &pixels[0], &pixels[1]);
                scale = static_cast<double>(pixels[0]) / points[0];
                overlay->resize(points[0], points[1], scale);
                layer.resize(renderer, pixels[0], pixels[1]);
            } else if (!offerToSdk(*overlay, event)) {
                gameHandles(game, event);
            }
        }

        const Uint64 now = SDL_GetPerformanceCounter();
        game.time += static_cast<double>(now - last) / SDL_GetPerformanceFrequency();
        last = now;
        drawScene(renderer, game, pixels[0], pixels[1]);
        if (overlay->render(layer.pixels.data(), layer.width, layer.height, layer.width * 4)) {
            SDL_UpdateTexture(layer.texture, nullptr, layer.pixels.data(), layer.width * 4);
        }
        SDL_RenderCopy(renderer, layer.texture, nullptr, nullptr);

        if (options.frames > 0 && frame >= options.frames) {
            if (!options.screenshot.empty()) {
                const bool written = writeScreenshot(renderer, pixels[0], pixels[1], options.screenshot);
                std::printf("%s %s\n", written ? "Wrote" : "Could not write", options.screenshot.c_str());
            }
            running = false;
        }
        SDL_RenderPresent(renderer);
    }

    ovix::OvixCore::shared().hideFloatingButton();
    overlay.reset();
    SDL_DestroyTexture(layer.texture);
    SDL_DestroyRenderer(renderer);
    SDL_DestroyWindow(window);
    SDL_Quit();
    return 0;
}
