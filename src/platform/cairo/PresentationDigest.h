#pragma once

#include <cstdint>
#include <string_view>

#include "ovix/kit/Color.h"
#include "ovix/kit/Geometry.h"
#include "ovix/kit/View.h"

namespace ovix::platform::gtk {

/// A 64-bit digest of everything `KitRenderer` paints of a tree at a moment: each view's identity
/// and class, visibility, shown geometry, alpha and background (animations interpolated at `time`),
/// layer styling and tint, and the content the renderer reads per kind (texts, fonts, colours,
/// images, carets and selections, progress, control state, accessories). Equal digests mean an
/// equal picture, so a host that paints on demand can skip a frame whose digest did not move; a
/// property the renderer starts to read must be added here too.
///
/// Walking a few hundred views costs microseconds, far less than painting them. Main thread.
class PresentationDigest {
  public:
    static std::uint64_t of(const kit::View& root, double time);

  private:
    explicit PresentationDigest(double time) : time_(time) {}
    /// `tint` is the tint the view inherits (its own, if it has one, wins).
    void add(const kit::View& view, const kit::Color& tint);
    void addContent(const kit::View& view);
    void mix(std::uint64_t value);
    void mix(double value);
    void mix(std::string_view text);
    void mix(const kit::Color& color);
    void mix(const kit::Rect& rect);
    void mix(const void* pointer);

    double time_;
    std::uint64_t hash_ = 14695981039346656037ull;
};

}  // namespace ovix::platform::gtk
