#include "platform/gtk/EmbeddedViewPlacer.h"

#include <algorithm>
#include <cmath>

#include "platform/gtk/GtkEmbeddedView.h"

namespace ovix::platform::gtk {

namespace {

bool visibleInTree(const kit::View& view) {
    for (const kit::View* v = &view; v; v = v->superview().get()) {
        if (v->isHidden()) {
            return false;
        }
    }
    return true;
}

void collectEmbedded(const std::shared_ptr<kit::View>& view, std::vector<std::shared_ptr<kit::View>>& out) {
    if (dynamic_cast<GtkEmbeddedView*>(view.get())) {
        out.push_back(view);
        return;
    }
    for (const auto& subview : view->subviews()) {
        collectEmbedded(subview, out);
    }
}

int whole(double value) {
    return static_cast<int>(std::lround(value));
}

}  // namespace

EmbeddedViewPlacer::~EmbeddedViewPlacer() {
    for (const auto& placed : placed_) {
        container_.remove(placed.widget);
    }
}

kit::Rect EmbeddedViewPlacer::shownInRoot(const kit::View& view, double time) {
    kit::Rect rect = view.presentation(time).frame();
    for (auto parent = view.superview(); parent; parent = parent->superview()) {
        const auto parentShown = parent->presentation(time);
        rect.origin.x += parentShown.frame().origin.x - parentShown.bounds.origin.x;
        rect.origin.y += parentShown.frame().origin.y - parentShown.bounds.origin.y;
    }
    return rect;
}

bool EmbeddedViewPlacer::insideEmbedded(std::shared_ptr<kit::View> view) {
    for (; view; view = view->superview()) {
        if (dynamic_cast<GtkEmbeddedView*>(view.get())) {
            return true;
        }
    }
    return false;
}

void EmbeddedViewPlacer::sync(const std::shared_ptr<kit::View>& root, double time) {
    std::vector<std::shared_ptr<kit::View>> embedded;
    collectEmbedded(root, embedded);

    // Widgets whose views left the tree go first.
    std::erase_if(placed_, [&](const Placed& placed) {
        auto view = placed.view.lock();
        if (view && std::find(embedded.begin(), embedded.end(), view) != embedded.end()) {
            return false;
        }
        container_.remove(placed.widget);
        return true;
    });
    for (const auto& view : embedded) {
        GtkWidget* widget = dynamic_cast<GtkEmbeddedView*>(view.get())->widget();
        if (gtk_widget_get_parent(widget) == nullptr) {
            container_.add(widget);
            placed_.push_back({widget, view});
        }
        const kit::Rect rect = shownInRoot(*view, time);
        container_.place(widget, whole(rect.origin.x), whole(rect.origin.y),
                         std::max(0, whole(rect.size.width)), std::max(0, whole(rect.size.height)));
        gtk_widget_set_visible(widget, visibleInTree(*view));
    }
}

}  // namespace ovix::platform::gtk
