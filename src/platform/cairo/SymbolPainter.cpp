#include "platform/cairo/SymbolPainter.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace ovix::platform::gtk {

namespace {

// Glyphs are designed on a 20-point grid (the symbols' default size); thinner boxes keep the grid
// horizontally and squeeze nothing.
constexpr double kStroke = 1.8;

void line(cairo_t* cr, std::initializer_list<std::array<double, 2>> points, double width = kStroke) {
    bool first = true;
    for (const auto& p : points) {
        first ? cairo_move_to(cr, p[0], p[1]) : cairo_line_to(cr, p[0], p[1]);
        first = false;
    }
    cairo_set_line_width(cr, width);
    cairo_set_line_cap(cr, CAIRO_LINE_CAP_ROUND);
    cairo_set_line_join(cr, CAIRO_LINE_JOIN_ROUND);
    cairo_stroke(cr);
}

void ring(cairo_t* cr) {
    cairo_new_sub_path(cr);
    cairo_arc(cr, 10, 10, 8.8, 0, 2 * M_PI);
    cairo_set_line_width(cr, kStroke);
    cairo_stroke(cr);
}

void disc(cairo_t* cr, double x, double y, double r) {
    cairo_new_sub_path(cr);
    cairo_arc(cr, x, y, r, 0, 2 * M_PI);
    cairo_fill(cr);
}

/// A seal: a disc with twelve round scallops on its rim.
void seal(cairo_t* cr) {
    disc(cr, 10, 10, 8.5);
    for (int i = 0; i < 12; ++i) {
        const double angle = i * M_PI / 6;
        disc(cr, 10 + 7.8 * std::cos(angle), 10 + 7.8 * std::sin(angle), 2.0);
    }
}

/// Switches to erasing: what is drawn next cuts a hole into the glyph.
void erase(cairo_t* cr) {
    cairo_set_operator(cr, CAIRO_OPERATOR_CLEAR);
}

void cross(cairo_t* cr, double from, double to, double width = kStroke) {
    line(cr, {{from, from}, {to, to}}, width);
    line(cr, {{to, from}, {from, to}}, width);
}

void calendar(cairo_t* cr) {  // 20 x 18
    cairo_new_sub_path(cr);
    cairo_arc(cr, 4, 4.2, 3, M_PI, 1.5 * M_PI);
    cairo_arc(cr, 16, 4.2, 3, 1.5 * M_PI, 2 * M_PI);
    cairo_line_to(cr, 19, 6.6);
    cairo_line_to(cr, 1, 6.6);
    cairo_close_path(cr);
    cairo_fill(cr);  // the header band
    cairo_new_sub_path(cr);
    cairo_arc(cr, 4, 4.2, 3, M_PI, 1.5 * M_PI);
    cairo_arc(cr, 16, 4.2, 3, 1.5 * M_PI, 2 * M_PI);
    cairo_arc(cr, 16, 14, 3, 0, 0.5 * M_PI);
    cairo_arc(cr, 4, 14, 3, 0.5 * M_PI, M_PI);
    cairo_close_path(cr);
    cairo_set_line_width(cr, 1.6);
    cairo_stroke(cr);
    for (double y : {9.4, 13.2}) {
        for (double x : {5.0, 9.0, 13.0}) {
            cairo_rectangle(cr, x, y, 2, 2);
        }
    }
    cairo_fill(cr);
}

void phone(cairo_t* cr) {
    // A handset: earpiece top left, mouthpiece bottom right, the grip bowing towards the lower left.
    constexpr double cx = 16.4, cy = 3.6, r = 11.8;
    cairo_new_sub_path(cr);
    cairo_arc(cr, cx, cy, r, 0.5 * M_PI, M_PI);
    cairo_set_line_width(cr, 5.0);
    cairo_set_line_cap(cr, CAIRO_LINE_CAP_BUTT);
    cairo_stroke(cr);
    for (double angle : {0.5 * M_PI, M_PI}) {
        const double ux = std::cos(angle), uy = std::sin(angle);
        line(cr, {{cx + (r + 0.2) * ux, cy + (r + 0.2) * uy}, {cx + (r - 3.6) * ux, cy + (r - 3.6) * uy}},
             6.0);
    }
}

struct Entry {
    std::string_view name;
    void (*draw)(cairo_t*);
    kit::Size box{20, 20};  // the design grid the drawing fills
};

const std::array<Entry, 11> kGlyphs{{
    {"calendar", calendar, {20, 18}},
    {"checkmark.seal.fill",
     [](cairo_t* cr) {
         seal(cr);
         erase(cr);
         line(cr, {{6.3, 10.2}, {8.9, 12.8}, {13.8, 7.4}}, 2.1);
     }},
    {"clock",
     [](cairo_t* cr) {
         ring(cr);
         line(cr, {{10, 4.8}, {10, 10}, {13.6, 12.2}});
     }},
    {"exclamationmark.circle",
     [](cairo_t* cr) {
         ring(cr);
         line(cr, {{10, 5.2}, {10, 11}}, 2.1);
         disc(cr, 10, 14.4, 1.3);
     }},
    {"list.dash",  // 20 x 14
     [](cairo_t* cr) {
         for (double y : {1.6, 7.0, 12.4}) {
             line(cr, {{1.4, y}, {3.4, y}}, 2.2);
             line(cr, {{7.0, y}, {18.8, y}}, 2.2);
         }
     },
     {20, 14}},
    {"multiply.circle",
     [](cairo_t* cr) {
         ring(cr);
         cross(cr, 6.8, 13.2);
     }},
    {"phone.fill", phone},
    {"xmark.circle.fill",
     [](cairo_t* cr) {
         disc(cr, 10, 10, 9.6);
         erase(cr);
         cross(cr, 6.6, 13.4, 2.1);
     }},
    {"xmark.seal.fill",
     [](cairo_t* cr) {
         seal(cr);
         erase(cr);
         cross(cr, 7.0, 13.0, 2.1);
     }},
    {"checkmark",
     [](cairo_t* cr) {
         line(cr, {{1.5, 7.6}, {5.4, 11.4}, {12.6, 2.6}}, 2);
     },
     SymbolPainter::accessorySize},
    {"chevron.right",
     [](cairo_t* cr) {
         line(cr, {{4.6, 1.8}, {9.4, 7}, {4.6, 12.2}}, 2);
     },
     SymbolPainter::accessorySize},
}};

}  // namespace

bool SymbolPainter::paint(cairo_t* cr, std::string_view name, const kit::Rect& rect) {
    auto it = std::find_if(kGlyphs.begin(), kGlyphs.end(), [&](const Entry& e) { return e.name == name; });
    if (it == kGlyphs.end() || rect.size.width <= 0 || rect.size.height <= 0) {
        return false;
    }
    cairo_save(cr);
    cairo_translate(cr, rect.origin.x, rect.origin.y);
    cairo_scale(cr, rect.size.width / it->box.width, rect.size.height / it->box.height);
    // The glyph goes into a group as pure coverage so that cut-outs erase only the glyph, then the
    // caller's source is painted through it.
    cairo_pattern_t* source = cairo_pattern_reference(cairo_get_source(cr));
    // A group is as large as the clip: without one around the glyph (strokes may stand a little
    // past its box), each glyph would mask the whole target.
    constexpr double margin = 4;
    cairo_rectangle(cr, -margin, -margin, it->box.width + 2 * margin, it->box.height + 2 * margin);
    cairo_clip(cr);
    cairo_push_group_with_content(cr, CAIRO_CONTENT_ALPHA);
    cairo_set_source_rgba(cr, 0, 0, 0, 1);
    it->draw(cr);
    cairo_pattern_t* coverage = cairo_pop_group(cr);
    cairo_set_source(cr, source);
    cairo_mask(cr, coverage);
    cairo_pattern_destroy(coverage);
    cairo_pattern_destroy(source);
    cairo_restore(cr);
    return true;
}

}  // namespace ovix::platform::gtk
