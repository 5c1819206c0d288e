#pragma once

#include <memory>
#include <string_view>

#include "ovix/kit/Font.h"
#include "ovix/kit/Geometry.h"

namespace ovix::kit {

/// Measures text for labels, buttons and text views (their intrinsic sizes).
///
/// The default measurer is deterministic and needs no font files: every character advances a fixed
/// fraction of the point size and lines break at spaces. A renderer with real fonts may install its
/// own. Threading: main thread.
class TextMeasurer {
  public:
    virtual ~TextMeasurer() = default;
    /// Size of `text` set in `font`, wrapped at `maxWidth` (0: no wrapping; explicit line feeds
    /// always break) and cut to `maxLines` lines (0: no limit). Empty text measures 0 x 0.
    virtual Size measure(std::string_view text, const Font& font, double maxWidth, int maxLines) const = 0;

    /// The measurer in use.
    static const TextMeasurer& current();
    /// Replaces the measurer; null restores the default.
    static void install(std::shared_ptr<const TextMeasurer> measurer);
};

}  // namespace ovix::kit
