#pragma once

#include <gtk/gtk.h>

namespace ovix::platform::gtk {

/// A kit view whose content is a GTK widget of its own (a web page): the GTK host places the widget
/// over the view's frame instead of painting the view.
class GtkEmbeddedView {
  public:
    virtual ~GtkEmbeddedView() = default;
    /// The widget; it stays owned by the view (the host adds its own reference while it shows it).
    virtual GtkWidget* widget() const = 0;
};

}  // namespace ovix::platform::gtk
