#pragma once

#include <cairo.h>

#include <string_view>

#include "ovix/kit/Geometry.h"

namespace ovix::platform::gtk {

/// Our own vector drawings of the kit's system symbols and of the table cells' accessory glyphs.
///
/// Each glyph is designed in a box of its default size (the symbol table's, or `accessorySize`) and
/// stretched onto the rectangle it is given, in the caller's current source, so a template takes
/// the tint the caller set. Cut-outs (the cross in a filled circle) are transparent, never painted
/// in a background colour. Threading: any thread, one `cairo_t` each.
class SymbolPainter {
  public:
    /// Box of the accessory glyphs: "checkmark" and "chevron.right".
    static constexpr kit::Size accessorySize{14, 14};

    /// Paints glyph `name` onto `rect`; false (and nothing drawn) for a name it lacks or an empty rect.
    static bool paint(cairo_t* cr, std::string_view name, const kit::Rect& rect);
};

}  // namespace ovix::platform::gtk
