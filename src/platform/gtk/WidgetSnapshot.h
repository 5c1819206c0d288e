#pragma once

#include <gtk/gtk.h>

#include <filesystem>

namespace ovix::platform::gtk {

/// Writes what a realised GTK window shows (every widget, embedded pages included) as a PNG,
/// through the window's own renderer. False when the window has not been drawn yet or the file
/// could not be written. GTK's thread.
bool writeWidgetSnapshot(GtkWidget* window, const std::filesystem::path& path);

}  // namespace ovix::platform::gtk
