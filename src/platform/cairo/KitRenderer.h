#pragma once

#include <cairo.h>
#include <pango/pangocairo.h>

#include <filesystem>
#include <map>
#include <memory>
#include <string>

#include "ovix/kit/Image.h"
#include "ovix/kit/TableViewCell.h"
#include "ovix/kit/TextField.h"
#include "ovix/kit/TextView.h"
#include "ovix/kit/View.h"

namespace ovix::platform::gtk {

/// Draws a kit view tree with Cairo and Pango as it shows at a moment of the main queue's clock
/// (animations interpolated): backgrounds with rounded corners, borders and shadows, alpha and
/// clipping, bundle and pixel images (bundle files in the variant for the output's scale), system
/// symbols (our own drawings), labels (so button, bar and cell titles too), text fields with their
/// placeholder, text views, the caret or selection highlight of the focused text, table cell
/// accessories and progress bars. Scroll views show their content at the content offset, clipped.
/// The caret does not blink: a frame changes only when the tree does.
///
/// Views that an engine draws itself (a web view) are not painted: the tree is split into what lies
/// under the first such view (`Layer::below`) and what lies over it (`Layer::above`), so a host can
/// put the engine's widget between the two. `Layer::all` paints everything (snapshots).
///
/// Threading: main thread (it reads the views). Decoded image files are cached by path; a file
/// that cannot be decoded draws nothing.
class KitRenderer {
  public:
    enum class Layer { all, below, above };

    /// Paints `root` at its frame's origin in `cr`'s current coordinates.
    void draw(cairo_t* cr, const kit::View& root, double time, Layer layer = Layer::all);
    /// Writes `root` as a PNG, `scale` pixels per point; false when the file could not be written.
    bool writePng(const kit::View& root, double time, double scale, const std::filesystem::path& path);
    /// Whether a view is drawn by an engine of its own (a web view) rather than by this renderer.
    static bool drawsItself(const kit::View& view);

  private:
    struct Pass {
        Layer layer;
        double time;
        bool passedEngineView = false;
    };

    void drawView(cairo_t* cr, const kit::View& view, const kit::View* parent, Pass& pass);
    void drawContent(cairo_t* cr, const kit::View& view, const kit::ViewPresentation& shown, double time);
    void drawImage(cairo_t* cr, const kit::View& view, double time);
    void drawLabel(cairo_t* cr, const kit::View& view);
    void drawTextField(cairo_t* cr, const kit::TextField& field);
    /// How far a focused field's text moves sideways: its alignment when it fits, else to the caret.
    static double editingShift(PangoLayout* layout, const kit::TextField& field, double width, bool secure);
    void drawTextView(cairo_t* cr, const kit::TextView& view, kit::Point offset);
    void drawAccessory(cairo_t* cr, const kit::TableViewCell& cell, const kit::Rect& bounds);
    void drawProgress(cairo_t* cr, const kit::View& view, const kit::Rect& bounds, double time);
    cairo_surface_t* surfaceFor(const std::filesystem::path& path);
    /// `source` (the file at `path`) resampled to `width` x `height` pixels, made once and kept.
    cairo_surface_t* scaledFor(const std::filesystem::path& path, cairo_surface_t* source, int width,
                               int height);
    /// The file of a bundle image's variant nearest `scale` pixels per point.
    const std::filesystem::path& variantFor(const kit::Image& image, double scale);
    static cairo_surface_t* pixelSurface(const platform::RgbaImage& pixels);

    std::map<std::string, std::shared_ptr<cairo_surface_t>> images_;
    std::map<std::string, std::filesystem::path> variants_;
    std::map<std::string, std::shared_ptr<cairo_surface_t>> scaled_;
};

}  // namespace ovix::platform::gtk
