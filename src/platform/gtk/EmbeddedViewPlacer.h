#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <memory>
#include <vector>

#include "ovix/kit/Geometry.h"
#include "ovix/kit/View.h"

namespace ovix::platform::gtk {

/// Keeps the widgets of a kit tree's embedded views (web pages) in a GTK container, each over its
/// view's frame as shown at a moment (animations included), hidden with its view. Hosts differ only
/// in their container, so they hand in how to add, move and remove a widget.
///
/// A widget is added when its view enters the tree and removed when the view leaves it or the placer
/// goes. Threading: GTK's thread.
class EmbeddedViewPlacer {
  public:
    struct Container {
        /// Puts a widget that has no parent yet into the container.
        std::function<void(GtkWidget*)> add;
        /// Gives the widget its window-coordinate rectangle (whole points).
        std::function<void(GtkWidget*, int x, int y, int width, int height)> place;
        /// Takes the widget back out of the container.
        std::function<void(GtkWidget*)> remove;
    };

    explicit EmbeddedViewPlacer(Container container) : container_(std::move(container)) {}
    ~EmbeddedViewPlacer();
    EmbeddedViewPlacer(const EmbeddedViewPlacer&) = delete;
    EmbeddedViewPlacer& operator=(const EmbeddedViewPlacer&) = delete;

    /// Brings the container in line with `root`'s tree at main-queue time `time`.
    void sync(const std::shared_ptr<kit::View>& root, double time);
    /// Where `view` shows at `time`, in the coordinates its root is painted in (the root's own frame
    /// origin included, as the renderer paints it).
    static kit::Rect shownInRoot(const kit::View& view, double time);
    /// Whether `view` or one of its ancestors is an embedded view (its widget takes the input).
    static bool insideEmbedded(std::shared_ptr<kit::View> view);
    std::size_t placedCount() const { return placed_.size(); }

  private:
    struct Placed {
        GtkWidget* widget;
        std::weak_ptr<kit::View> view;
    };

    Container container_;
    std::vector<Placed> placed_;
};

}  // namespace ovix::platform::gtk
