#include "platform/cairo/KitRenderer.h"

#include <pango/pangocairo.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>

#include "kit/Utf8.h"
#include "ovix/kit/ImageView.h"
#include "ovix/kit/Label.h"
#include "ovix/kit/ProgressView.h"
#include "ovix/kit/TableViewCell.h"
#include "ovix/kit/TextField.h"
#include "ovix/kit/TextView.h"
#include "ovix/kit/host/WebView.h"
#include "platform/cairo/SymbolPainter.h"

namespace ovix::platform::gtk {

namespace {

void setColor(cairo_t* cr, const kit::Color& color, double alpha = 1) {
    cairo_set_source_rgba(cr, color.r(), color.g(), color.b(), color.a() * alpha);
}

void roundedRect(cairo_t* cr, const kit::Rect& r, double radius) {
    radius = std::min({radius, r.size.width / 2, r.size.height / 2});
    if (radius <= 0) {
        cairo_rectangle(cr, r.origin.x, r.origin.y, r.size.width, r.size.height);
        return;
    }
    const double x = r.origin.x, y = r.origin.y, w = r.size.width, h = r.size.height;
    cairo_new_sub_path(cr);
    cairo_arc(cr, x + w - radius, y + radius, radius, -M_PI / 2, 0);
    cairo_arc(cr, x + w - radius, y + h - radius, radius, 0, M_PI / 2);
    cairo_arc(cr, x + radius, y + h - radius, radius, M_PI / 2, M_PI);
    cairo_arc(cr, x + radius, y + radius, radius, M_PI, 3 * M_PI / 2);
    cairo_close_path(cr);
}

/// A Pango layout of `text` in the kit's font, `width` points wide (wrapping unless one line).
PangoLayout* textLayout(cairo_t* cr, const std::string& text, const kit::Font& font, double width, int lines,
                        kit::TextAlignment alignment) {
    PangoLayout* layout = pango_cairo_create_layout(cr);
    PangoFontDescription* description = pango_font_description_new();
    // The kit measures text at about 0.55 em a character; the condensed face matches that best.
    pango_font_description_set_family(description, "DejaVu Sans Condensed,Sans");
    pango_font_description_set_absolute_size(description, font.pointSize() * PANGO_SCALE);
    pango_font_description_set_weight(description, font.isBold() ? PANGO_WEIGHT_BOLD : PANGO_WEIGHT_NORMAL);
    pango_layout_set_font_description(layout, description);
    pango_font_description_free(description);
    pango_layout_set_text(layout, text.c_str(), -1);
    pango_layout_set_width(layout, static_cast<int>(std::max(0.0, width) * PANGO_SCALE));
    pango_layout_set_wrap(layout, PANGO_WRAP_WORD_CHAR);
    if (lines == 1) {
        pango_layout_set_ellipsize(layout, PANGO_ELLIPSIZE_END);
    }
    switch (alignment) {
        case kit::TextAlignment::center:
            pango_layout_set_alignment(layout, PANGO_ALIGN_CENTER);
            break;
        case kit::TextAlignment::right:
            pango_layout_set_alignment(layout, PANGO_ALIGN_RIGHT);
            break;
        default:
            pango_layout_set_alignment(layout, PANGO_ALIGN_LEFT);
            break;
    }
    return layout;
}

double layoutHeight(PangoLayout* layout) {
    int width = 0;
    int height = 0;
    pango_layout_get_pixel_size(layout, &width, &height);
    return height;
}

/// The width of `layout`'s text on one unbroken line.
double naturalWidth(PangoLayout* layout) {
    PangoLayout* copy = pango_layout_copy(layout);
    pango_layout_set_width(copy, -1);
    pango_layout_set_ellipsize(copy, PANGO_ELLIPSIZE_NONE);
    int width = 0;
    int height = 0;
    pango_layout_get_pixel_size(copy, &width, &height);
    g_object_unref(copy);
    return width;
}

/// The insertion point at byte `index` of the layout's text, drawn at `origin` (the layout's top
/// left).
void drawCaret(cairo_t* cr, PangoLayout* layout, kit::Point origin, std::size_t index,
               const kit::Color& tint) {
    PangoRectangle strong;
    pango_layout_get_cursor_pos(layout, static_cast<int>(index), &strong, nullptr);
    cairo_rectangle(cr, origin.x + pango_units_to_double(strong.x),
                    origin.y + pango_units_to_double(strong.y), 2, pango_units_to_double(strong.height));
    setColor(cr, tint);
    cairo_fill(cr);
}

/// The highlight behind bytes [start, end) of the layout's text, line by line.
void drawHighlight(cairo_t* cr, PangoLayout* layout, kit::Point origin, std::size_t start, std::size_t end,
                   const kit::Color& tint) {
    PangoLayoutIter* iter = pango_layout_get_iter(layout);
    do {
        PangoLayoutLine* line = pango_layout_iter_get_line_readonly(iter);
        int top = 0;
        int bottom = 0;
        pango_layout_iter_get_line_yrange(iter, &top, &bottom);
        int* ranges = nullptr;
        int count = 0;
        pango_layout_line_get_x_ranges(line, static_cast<int>(start), static_cast<int>(end), &ranges, &count);
        for (int i = 0; i < count; ++i) {
            cairo_rectangle(cr, origin.x + pango_units_to_double(ranges[2 * i]),
                            origin.y + pango_units_to_double(top),
                            pango_units_to_double(ranges[2 * i + 1] - ranges[2 * i]),
                            pango_units_to_double(bottom - top));
        }
        g_free(ranges);
    } while (pango_layout_iter_next_line(iter));
    pango_layout_iter_free(iter);
    setColor(cr, tint, 0.3);
    cairo_fill(cr);
}

/// The caret, or the selection's highlight, of a focused text; offsets into the layout's text.
void drawSelection(cairo_t* cr, PangoLayout* layout, kit::Point origin, std::size_t start, std::size_t caret,
                   std::size_t end, const kit::Color& tint) {
    if (start == end) {
        drawCaret(cr, layout, origin, caret, tint);
    } else {
        drawHighlight(cr, layout, origin, start, end, tint);
    }
}

/// Where byte `offset` of `text` falls in its bullets (three bytes each).
std::size_t bulletOffset(const std::string& text, std::size_t offset) {
    return 3 * kit::utf8::countCodePoints(std::string_view(text).substr(0, offset));
}

/// One bullet per character: what a secure field shows.
std::string bullets(const std::string& text) {
    std::string shown;
    for (unsigned char c : text) {
        if ((c & 0xC0) != 0x80) {
            shown += "\xE2\x80\xA2";  // U+2022 BULLET
        }
    }
    return shown;
}

}  // namespace

bool KitRenderer::drawsItself(const kit::View& view) {
    return dynamic_cast<const kit::host::WebView*>(&view) != nullptr;
}

void KitRenderer::draw(cairo_t* cr, const kit::View& root, double time, Layer layer) {
    Pass pass{layer, time};
    cairo_save(cr);
    drawView(cr, root, nullptr, pass);
    cairo_restore(cr);
}

bool KitRenderer::writePng(const kit::View& root, double time, double scale,
                           const std::filesystem::path& path) {
    const auto size = root.presentation(time).bounds.size;
    cairo_surface_t* surface =
        cairo_image_surface_create(CAIRO_FORMAT_ARGB32, static_cast<int>(std::ceil(size.width * scale)),
                                   static_cast<int>(std::ceil(size.height * scale)));
    cairo_t* cr = cairo_create(surface);
    cairo_scale(cr, scale, scale);
    const auto frame = root.presentation(time).frame();
    cairo_translate(cr, -frame.origin.x, -frame.origin.y);
    draw(cr, root, time, Layer::all);
    cairo_destroy(cr);
    const bool written = cairo_surface_write_to_png(surface, path.c_str()) == CAIRO_STATUS_SUCCESS;
    cairo_surface_destroy(surface);
    return written;
}

void KitRenderer::drawView(cairo_t* cr, const kit::View& view, const kit::View* parent, Pass& pass) {
    const auto shown = view.presentation(pass.time);
    if (view.isHidden() || shown.alpha < 0.01) {
        return;
    }
    if (drawsItself(view)) {
        pass.passedEngineView = true;  // its subtree belongs to the engine too
        return;
    }
    const bool paint = pass.layer == Layer::all || (pass.layer == Layer::below) != pass.passedEngineView;
    if (pass.layer == Layer::below && pass.passedEngineView) {
        return;  // everything from here on lies over the engine's view
    }

    cairo_save(cr);
    const auto frame = shown.frame();
    const kit::Point origin = parent ? parent->presentation(pass.time).bounds.origin : kit::Point{};
    cairo_translate(cr, frame.origin.x - origin.x, frame.origin.y - origin.y);
    const bool translucent = shown.alpha < 1 && paint;
    if (translucent) {
        cairo_push_group(cr);
    }
    const kit::Rect bounds{{0, 0}, shown.bounds.size};
    // Clipping masks the view's own content too: an aspect-filled picture stays inside its rounded
    // frame.
    if (view.clipsToBounds()) {
        roundedRect(cr, bounds, view.layer().cornerRadius());
        cairo_clip(cr);
    }
    if (paint) {
        drawContent(cr, view, shown, pass.time);
    }
    for (const auto& subview : view.subviews()) {
        drawView(cr, *subview, &view, pass);
    }
    if (translucent) {
        cairo_pop_group_to_source(cr);
        cairo_paint_with_alpha(cr, shown.alpha);
    }
    cairo_restore(cr);
}

void KitRenderer::drawContent(cairo_t* cr, const kit::View& view, const kit::ViewPresentation& shown,
                              double time) {
    const kit::Rect bounds{{0, 0}, shown.bounds.size};
    const auto& layer = view.layer();
    const double radius = layer.cornerRadius();
    if (layer.shadowOpacity() > 0 && layer.shadowColor() && shown.backgroundColor) {
        // A soft shadow: the shape, offset, in a few widening steps of falling strength.
        const int steps = std::max(1, static_cast<int>(std::ceil(layer.shadowRadius())));
        for (int i = steps; i >= 1; --i) {
            const double spread = i;
            kit::Rect r{{layer.shadowOffset().width - spread, layer.shadowOffset().height - spread},
                        {bounds.size.width + 2 * spread, bounds.size.height + 2 * spread}};
            roundedRect(cr, r, radius + spread);
            setColor(cr, *layer.shadowColor(), layer.shadowOpacity() / (steps + 1));
            cairo_fill(cr);
        }
    }
    if (shown.backgroundColor) {
        roundedRect(cr, bounds, radius);
        setColor(cr, *shown.backgroundColor);
        cairo_fill(cr);
    }
    if (dynamic_cast<const kit::ImageView*>(&view)) {
        drawImage(cr, view, time);
    } else if (dynamic_cast<const kit::Label*>(&view)) {
        drawLabel(cr, view);
    } else if (dynamic_cast<const kit::ProgressView*>(&view)) {
        drawProgress(cr, view, bounds, time);
    } else if (const auto* field = dynamic_cast<const kit::TextField*>(&view)) {
        drawTextField(cr, *field);
    } else if (const auto* text = dynamic_cast<const kit::TextView*>(&view)) {
        drawTextView(cr, *text, shown.bounds.origin);
    } else if (const auto* cell = dynamic_cast<const kit::TableViewCell*>(&view)) {
        drawAccessory(cr, *cell, bounds);
    }
    if (layer.borderWidth() > 0) {
        const double inset = layer.borderWidth() / 2;
        roundedRect(cr, {{inset, inset}, {bounds.size.width - 2 * inset, bounds.size.height - 2 * inset}},
                    std::max(0.0, radius - inset));
        setColor(cr, layer.borderColor());
        cairo_set_line_width(cr, layer.borderWidth());
        cairo_stroke(cr);
    }
}

cairo_surface_t* KitRenderer::surfaceFor(const std::filesystem::path& path) {
    auto& slot = images_[path.string()];
    if (!slot) {
        cairo_surface_t* surface = cairo_image_surface_create_from_png(path.c_str());
        slot = std::shared_ptr<cairo_surface_t>(surface, cairo_surface_destroy);
    }
    return cairo_surface_status(slot.get()) == CAIRO_STATUS_SUCCESS ? slot.get() : nullptr;
}

const std::filesystem::path& KitRenderer::variantFor(const kit::Image& image, double scale) {
    // Only a few scales occur (screen and snapshot), so whole hundredths make a stable key.
    const std::string key = image.path()->string() + "|" + std::to_string(std::lround(scale * 100));
    auto it = variants_.find(key);
    if (it == variants_.end()) {
        const auto found = platform::Bundle(image.path()->parent_path()).imagePath(image.name(), scale);
        it = variants_.emplace(key, found.value_or(*image.path())).first;
    }
    return it->second;
}

cairo_surface_t* KitRenderer::scaledFor(const std::filesystem::path& path, cairo_surface_t* source, int width,
                                        int height) {
    if (cairo_image_surface_get_width(source) == width && cairo_image_surface_get_height(source) == height) {
        return source;
    }
    if (scaled_.size() > 256) {
        scaled_.clear();  // sizes that come and go (an image view being resized) do not pile up
    }
    auto& slot = scaled_[path.string() + "|" + std::to_string(width) + "x" + std::to_string(height)];
    if (!slot) {
        cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height);
        cairo_t* cr = cairo_create(surface);
        cairo_scale(cr, static_cast<double>(width) / cairo_image_surface_get_width(source),
                    static_cast<double>(height) / cairo_image_surface_get_height(source));
        cairo_set_source_surface(cr, source, 0, 0);
        cairo_pattern_set_filter(cairo_get_source(cr), CAIRO_FILTER_GOOD);
        cairo_paint(cr);
        cairo_destroy(cr);
        slot = std::shared_ptr<cairo_surface_t>(surface, cairo_surface_destroy);
    }
    return slot.get();
}

cairo_surface_t* KitRenderer::pixelSurface(const platform::RgbaImage& pixels) {
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, pixels.width, pixels.height);
    unsigned char* data = cairo_image_surface_get_data(surface);
    const int stride = cairo_image_surface_get_stride(surface);
    for (int y = 0; y < pixels.height; ++y) {
        auto* row = reinterpret_cast<std::uint32_t*>(data + y * stride);
        for (int x = 0; x < pixels.width; ++x) {
            const auto* p = &pixels.pixels[static_cast<std::size_t>((y * pixels.width + x) * 4)];
            const unsigned a = p[3];
            // Cairo wants premultiplied native-endian ARGB.
            row[x] = (a << 24) | ((p[0] * a / 255) << 16) | ((p[1] * a / 255) << 8) | (p[2] * a / 255);
        }
    }
    cairo_surface_mark_dirty(surface);
    return surface;
}

void KitRenderer::drawImage(cairo_t* cr, const kit::View& view, double) {
    const auto& imageView = static_cast<const kit::ImageView&>(view);
    const auto& image = imageView.image();
    const kit::Rect target = imageView.imageRect();
    if (!image || target.size.width <= 0 || target.size.height <= 0) {
        return;
    }
    const kit::Color ink = image->isTemplate() ? view.tintColor() : kit::Color::label();
    if (image->isSymbol()) {
        setColor(cr, ink);
        SymbolPainter::paint(cr, image->name(), target);
        return;
    }
    cairo_surface_t* surface = nullptr;
    std::shared_ptr<cairo_surface_t> owned;
    if (image->path()) {
        // The file drawn is the one made for the output's pixels per point (a 3x snapshot of a 1x
        // screen takes the @3x file), whatever variant the image was created from.
        double dx = 1, dy = 0;
        cairo_user_to_device_distance(cr, &dx, &dy);
        const double scale = std::hypot(dx, dy);
        const auto& file = image->name().empty() ? *image->path() : variantFor(*image, scale);
        surface = surfaceFor(file);
        // Filtering a large file down to a small rectangle every frame is most of a frame's cost:
        // the file is scaled once per drawn size and kept.
        const int deviceWidth = static_cast<int>(std::lround(target.size.width * scale));
        const int deviceHeight = static_cast<int>(std::lround(target.size.height * scale));
        if (surface != nullptr && deviceWidth > 0 && deviceHeight > 0) {
            surface = scaledFor(file, surface, deviceWidth, deviceHeight);
        }
    } else if (const auto* pixels = image->pixels()) {
        owned.reset(pixelSurface(*pixels), cairo_surface_destroy);
        surface = owned.get();
    }
    if (surface == nullptr) {
        return;
    }
    const double width = cairo_image_surface_get_width(surface);
    const double height = cairo_image_surface_get_height(surface);
    if (width <= 0 || height <= 0) {
        return;
    }
    cairo_save(cr);
    cairo_translate(cr, target.origin.x, target.origin.y);
    cairo_scale(cr, target.size.width / width, target.size.height / height);
    cairo_set_source_surface(cr, surface, 0, 0);
    cairo_pattern_set_filter(cairo_get_source(cr), CAIRO_FILTER_GOOD);
    if (image->isTemplate()) {
        setColor(cr, ink);
        cairo_mask_surface(cr, surface, 0, 0);
    } else {
        cairo_paint(cr);
    }
    cairo_restore(cr);
}

void KitRenderer::drawLabel(cairo_t* cr, const kit::View& view) {
    const auto& label = static_cast<const kit::Label&>(view);
    if (label.text().empty()) {
        return;
    }
    const auto size = label.bounds().size;
    PangoLayout* layout =
        textLayout(cr, label.text(), label.font(), size.width, label.numberOfLines(), label.textAlignment());
    // Labels centre their text vertically.
    cairo_move_to(cr, 0, std::max(0.0, (size.height - layoutHeight(layout)) / 2));
    setColor(cr, label.textColor());
    // The kit sizes labels with its fixed metrics, which a short bold word ("Xong") can outgrow in the
    // real face; a line that misses by a little is narrowed to fit rather than cut to "Xo…".
    const double natural = label.numberOfLines() == 1 ? naturalWidth(layout) : 0;
    if (natural > size.width * 1.3 && g_utf8_strlen(label.text().c_str(), -1) == 1) {
        // One symbol ("✕") the face draws far wider than the kit's estimate: shown whole, centred on
        // the label, as a label sized by the real face would show it.
        pango_layout_set_width(layout, -1);
        cairo_rel_move_to(cr, (size.width - natural) / 2, 0);
        pango_cairo_show_layout(cr, layout);
    } else if (natural > size.width && natural <= size.width * 1.3) {
        pango_layout_set_width(layout, -1);
        cairo_save(cr);
        cairo_scale(cr, size.width / natural, 1);
        pango_cairo_show_layout(cr, layout);
        cairo_restore(cr);
    } else {
        pango_cairo_show_layout(cr, layout);
    }
    g_object_unref(layout);
}

void KitRenderer::drawTextField(cairo_t* cr, const kit::TextField& field) {
    const auto size = field.bounds().size;
    if (field.borderStyle() != kit::TextBorderStyle::none) {
        const bool rounded = field.borderStyle() == kit::TextBorderStyle::roundedRect;
        roundedRect(cr, {{0.25, 0.25}, {size.width - 0.5, size.height - 0.5}}, rounded ? 5 : 0);
        setColor(cr, rounded ? kit::Color::separator() : kit::Color::darkGray());
        cairo_set_line_width(cr, 0.5);
        cairo_stroke(cr);
    }
    const bool empty = field.text().empty();
    const bool secure = field.isSecureTextEntry() && !empty;
    const kit::Rect area = field.textRect();
    const std::string& shown = empty ? field.placeholder() : field.text();
    PangoLayout* layout = textLayout(cr, secure ? bullets(shown) : shown, field.font(), area.size.width, 1,
                                     field.textAlignment());
    // Height of a line even when empty, so the caret sits where the text will.
    kit::Point origin{area.origin.x, area.origin.y + (area.size.height - field.font().lineHeight()) / 2};
    const bool caret = field.isEditing() && field.tintColor().a() > 0;
    cairo_save(cr);
    if (field.isEditing() && !empty) {
        origin.x += editingShift(layout, field, area.size.width, secure);
        cairo_rectangle(cr, area.origin.x, area.origin.y, area.size.width, area.size.height);
        cairo_clip(cr);
    }
    if (!shown.empty()) {
        cairo_move_to(cr, origin.x, origin.y);
        setColor(cr, empty ? kit::Color::placeholderText() : field.textColor());
        pango_cairo_show_layout(cr, layout);
    }
    if (caret) {
        if (empty) {
            pango_layout_set_text(layout, "", -1);
        }
        auto selection = field.selection();
        auto map = [&](std::size_t offset) {
            return empty ? 0 : secure ? bulletOffset(shown, offset) : offset;
        };
        drawSelection(cr, layout, origin, map(selection.start()), map(selection.caret), map(selection.end()),
                      field.tintColor());
    }
    cairo_restore(cr);
    g_object_unref(layout);
}

double KitRenderer::editingShift(PangoLayout* layout, const kit::TextField& field, double width,
                                 bool secure) {
    // While editing the text is one unbroken line that slides left to keep the caret in view.
    pango_layout_set_width(layout, -1);
    pango_layout_set_ellipsize(layout, PANGO_ELLIPSIZE_NONE);
    int natural = 0;
    int height = 0;
    pango_layout_get_pixel_size(layout, &natural, &height);
    if (natural <= width) {
        switch (field.textAlignment()) {
            case kit::TextAlignment::center:
                return (width - natural) / 2;
            case kit::TextAlignment::right:
                return width - natural;
            default:
                return 0;
        }
    }
    const std::size_t caret = field.selection().caret;
    PangoRectangle strong;
    pango_layout_get_cursor_pos(layout, static_cast<int>(secure ? bulletOffset(field.text(), caret) : caret),
                                &strong, nullptr);
    return std::min(0.0, width - 2 - pango_units_to_double(strong.x));
}

void KitRenderer::drawTextView(cairo_t* cr, const kit::TextView& view, kit::Point offset) {
    const auto size = view.bounds().size;
    const auto inset = view.textContainerInset();
    const double pad = kit::TextView::linePadding;
    PangoLayout* layout =
        textLayout(cr, view.text(), view.font(), size.width - inset.left - inset.right - 2 * pad, 0,
                   view.textAlignment());
    // The text is content: it scrolls with the offset, which is this view's bounds origin.
    const kit::Point origin{inset.left + pad - offset.x, inset.top - offset.y};
    cairo_save(cr);
    if (view.clipsToBounds()) {  // subviews are clipped later; scrolled text must be now
        cairo_rectangle(cr, 0, 0, size.width, size.height);
        cairo_clip(cr);
    }
    cairo_move_to(cr, origin.x, origin.y);
    setColor(cr, view.textColor());
    pango_cairo_show_layout(cr, layout);
    if (view.isEditing() && view.tintColor().a() > 0) {
        const auto selection = view.selection();
        drawSelection(cr, layout, origin, selection.start(), selection.caret, selection.end(),
                      view.tintColor());
    }
    cairo_restore(cr);
    g_object_unref(layout);
}

void KitRenderer::drawAccessory(cairo_t* cr, const kit::TableViewCell& cell, const kit::Rect& bounds) {
    const char* glyph = nullptr;
    kit::Color color = cell.tintColor();
    switch (cell.accessoryType()) {
        case kit::TableViewCellAccessoryType::checkmark:
            glyph = "checkmark";
            break;
        case kit::TableViewCellAccessoryType::disclosureIndicator:
            glyph = "chevron.right";
            color = kit::Color::systemGray().withAlphaComponent(0.7);
            break;
        default:
            return;  // detail buttons are not used by any screen
    }
    // Centred in the strip the content view leaves free at the right edge.
    const auto glyphSize = SymbolPainter::accessorySize;
    const double stripX = bounds.size.width - kit::TableViewCell::accessoryWidth;
    const kit::Rect rect{{stripX + (kit::TableViewCell::accessoryWidth - glyphSize.width) / 2,
                          (bounds.size.height - glyphSize.height) / 2},
                         glyphSize};
    setColor(cr, color);
    SymbolPainter::paint(cr, glyph, rect);
}

void KitRenderer::drawProgress(cairo_t* cr, const kit::View& view, const kit::Rect& bounds, double time) {
    const auto& bar = static_cast<const kit::ProgressView&>(view);
    const double radius = std::min(bar.layer().cornerRadius(), bounds.size.height / 2);
    roundedRect(cr, bounds, radius);
    setColor(cr, bar.trackTintColor().value_or(kit::Color::systemGray().withAlphaComponent(0.3)));
    cairo_fill(cr);
    const double fill = std::clamp(bar.presentationProgress(time), 0.0, 1.0) * bounds.size.width;
    if (fill > 0) {
        roundedRect(cr, {{0, 0}, {fill, bounds.size.height}}, radius);
        setColor(cr, bar.progressTintColor().value_or(view.tintColor()));
        cairo_fill(cr);
    }
}

}  // namespace ovix::platform::gtk
