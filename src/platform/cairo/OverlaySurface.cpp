#include "ovix/desktop/OverlaySurface.h"

#include <cairo.h>
#include <glib.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <optional>

#include "kit/LayoutEngine.h"
#include "ovix/platform/Platform.h"
#include "platform/cairo/KitRenderer.h"
#include "platform/cairo/PresentationDigest.h"

namespace ovix::desktop {

namespace {

using SurfacePtr = std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)>;

/// One premultiplied native-endian ARGB pixel as straight RGBA bytes.
inline void straightPixel(std::uint32_t v, std::uint8_t* to) {
    const std::uint32_t a = v >> 24;
    std::uint32_t r = (v >> 16) & 0xFF;
    std::uint32_t g = (v >> 8) & 0xFF;
    std::uint32_t b = v & 0xFF;
    if (a != 0 && a != 255) {
        r = (r * 255 + a / 2) / a;
        g = (g * 255 + a / 2) / a;
        b = (b * 255 + a / 2) / a;
    }
    to[0] = static_cast<std::uint8_t>(r);
    to[1] = static_cast<std::uint8_t>(g);
    to[2] = static_cast<std::uint8_t>(b);
    to[3] = static_cast<std::uint8_t>(a);
}

/// Cairo's premultiplied native-endian ARGB into straight RGBA bytes. Most of an overlay is either
/// empty or opaque, where premultiplied and straight agree and only the channels swap: that runs as
/// a plain loop the compiler vectorises; the few translucent pixels (edges, shadows) are redone.
void copyStraightRgba(cairo_surface_t* surface, std::uint8_t* rgba, int width, int height, int stride) {
    const unsigned char* data = cairo_image_surface_get_data(surface);
    const int sourceStride = cairo_image_surface_get_stride(surface);
    for (int y = 0; y < height; ++y) {
        const auto* from =
            reinterpret_cast<const std::uint32_t*>(data + static_cast<std::ptrdiff_t>(y) * sourceStride);
        std::uint8_t* to = rgba + static_cast<std::ptrdiff_t>(y) * stride;
        if constexpr (std::endian::native == std::endian::little) {
            std::uint32_t translucent = 0;
            for (int x = 0; x < width; ++x) {
                const std::uint32_t v = from[x];
                // ARGB in a little-endian word is the bytes B, G, R, A; RGBA wants R, G, B, A.
                const std::uint32_t swapped = (v & 0xFF00FF00u) | ((v >> 16) & 0xFFu) | ((v & 0xFFu) << 16);
                std::memcpy(to + 4 * x, &swapped, 4);
                translucent += ((v >> 24) - 1u) < 254u;  // alpha 1...254
            }
            if (translucent == 0) {
                continue;
            }
            for (int x = 0; x < width; ++x) {
                const std::uint32_t a = from[x] >> 24;
                if (a != 0 && a != 255) {
                    straightPixel(from[x], to + 4 * x);
                }
            }
        } else {
            for (int x = 0; x < width; ++x) {
                straightPixel(from[x], to + 4 * x);
            }
        }
    }
}

}  // namespace

struct OverlaySurface::State {
    State(std::shared_ptr<kit::Window> w, std::function<void(kit::Size, double)> resized)
        : window(std::move(w)), onResize(std::move(resized)), input(window) {}

    std::shared_ptr<kit::Window> window;
    std::function<void(kit::Size, double)> onResize;
    OverlayInput input;
    platform::gtk::KitRenderer renderer;
    double scale = 1;
    SurfacePtr canvas{nullptr, cairo_surface_destroy};
    std::optional<std::uint64_t> drawn;  // digest of the last frame drawn
    int drawnWidth = 0;
    int drawnHeight = 0;
    bool needsDisplay = true;
    /// The kit's layout change count after this surface last laid the window out.
    std::optional<std::uint64_t> laidOutAt;

    bool consumed(bool used) {
        needsDisplay = needsDisplay || used;
        return used;
    }
};

OverlaySurface::OverlaySurface(std::shared_ptr<kit::Window> window,
                               std::function<void(kit::Size size, double scale)> onResize)
    : state_(std::make_unique<State>(std::move(window), std::move(onResize))) {}

OverlaySurface::~OverlaySurface() = default;

const std::shared_ptr<kit::Window>& OverlaySurface::window() const {
    return state_->window;
}

bool OverlaySurface::pump(int maxDispatches) {
    int dispatched = 0;
    while (dispatched < maxDispatches && g_main_context_iteration(nullptr, FALSE)) {
        ++dispatched;
    }
    return state_->consumed(dispatched > 0);
}

void OverlaySurface::resize(double width, double height, double scale) {
    scale = scale > 0 ? scale : 1;
    if (state_->onResize) {
        state_->onResize({width, height}, scale);
    }
    state_->window->setFrame({0, 0, width, height});
    state_->scale = scale;
    state_->needsDisplay = true;
}

double OverlaySurface::scale() const {
    return state_->scale;
}

bool OverlaySurface::pointerPress(kit::Point location, PointerButton button) {
    return state_->consumed(state_->input.pointerPress(location, button));
}

bool OverlaySurface::pointerMove(kit::Point location) {
    return state_->consumed(state_->input.pointerMove(location));
}

bool OverlaySurface::pointerRelease(kit::Point location, PointerButton button) {
    return state_->consumed(state_->input.pointerRelease(location, button));
}

void OverlaySurface::pointerCancel() {
    state_->input.pointerCancel();
    state_->needsDisplay = true;
}

bool OverlaySurface::scroll(kit::Point location, double dx, double dy, ScrollUnit unit) {
    return state_->consumed(state_->input.scroll(location, dx, dy, unit));
}

bool OverlaySurface::key(kit::Key key, kit::KeyModifiers modifiers) {
    return state_->consumed(state_->input.key(key, modifiers));
}

bool OverlaySurface::text(std::string_view text) {
    return state_->consumed(state_->input.text(text));
}

OverlayInput& OverlaySurface::input() {
    return state_->input;
}

void OverlaySurface::setNeedsDisplay() {
    state_->needsDisplay = true;
}

bool OverlaySurface::render(std::uint8_t* rgba, int width, int height, int stride) {
    auto& s = *state_;
    if (rgba == nullptr || width <= 0 || height <= 0 || stride < width * 4) {
        return false;
    }
    // Every change that can move a view is counted by the kit; with none since the last pass, the
    // pass would find nothing to do, and on a big tree even finding that costs more than the frame.
    if (s.laidOutAt != kit::LayoutEngine::changeCount()) {
        s.window->layoutIfNeeded();
        s.laidOutAt = kit::LayoutEngine::changeCount();
    }
    const double time = platform::current()->mainQueue->now();
    const std::uint64_t digest = platform::gtk::PresentationDigest::of(*s.window, time);
    const bool sameSize = width == s.drawnWidth && height == s.drawnHeight;
    if (!s.needsDisplay && sameSize && s.drawn == digest) {
        return false;
    }
    if (!s.canvas || !sameSize) {
        s.canvas.reset(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height));
    }
    cairo_t* cr = cairo_create(s.canvas.get());
    cairo_set_operator(cr, CAIRO_OPERATOR_CLEAR);
    cairo_paint(cr);
    cairo_set_operator(cr, CAIRO_OPERATOR_OVER);
    cairo_scale(cr, s.scale, s.scale);
    s.renderer.draw(cr, *s.window, time);
    cairo_destroy(cr);
    cairo_surface_flush(s.canvas.get());
    copyStraightRgba(s.canvas.get(), rgba, width, height, stride);
    s.drawn = digest;
    s.drawnWidth = width;
    s.drawnHeight = height;
    s.needsDisplay = false;
    return true;
}

}  // namespace ovix::desktop
