#pragma once

#include <cairo.h>

#include <filesystem>
#include <map>
#include <memory>
#include <string>

#include "ovix/kit/View.h"

namespace ovix::platform::gtk {

/// Draws a kit view tree with Cairo and Pango as it shows at a moment of the main queue's clock
/// (animations interpolated): backgrounds with rounded corners, borders and shadows, alpha and
/// clipping, images, labels (so button titles too) and progress bars. Symbol images, which have no
/// artwork, are left out.
///
/// Views that an engine draws itself (a web view) are not painted: the tree is split into what lies
/// under the first such view (`Layer::below`) and what lies over it (`Layer::above`), so a host can
/// put the engine's widget between the two. `Layer::all` paints everything (snapshots).
///
/// Threading: main thread (it reads the views). Decoded image files are cached by path.
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
    void drawProgress(cairo_t* cr, const kit::View& view, const kit::Rect& bounds, double time);
    cairo_surface_t* surfaceFor(const std::filesystem::path& path);

    std::map<std::string, std::shared_ptr<cairo_surface_t>> images_;
};

}  // namespace ovix::platform::gtk
