// A GTK game on an installed SDK's desktop library: the desktop platform installed over a window it
// never shows, the SDK's window layered over the game's content, and the SDK's images found.
// Exits 77 when there is no display to open, non-zero when the overlay or the images are missing.
#include <gtk/gtk.h>

#include <iostream>

#include "ovix/desktop/DesktopPlatform.h"
#include "ovix/desktop/GameWindowOverlay.h"
#include "ovix/platform/Platform.h"

int main() {
    if (!gtk_init_check()) {
        std::cerr << "desktop: no display" << std::endl;
        return 77;
    }
    GtkWidget* window = gtk_window_new();
    gtk_window_set_child(GTK_WINDOW(window), gtk_drawing_area_new());
    int status = 0;
    {
        auto overlay = ovix::desktop::DesktopPlatform::install(GTK_WINDOW(window));
        const auto image = ovix::platform::current()->sdkBundle().imagePath("ic_sdk_float");
        std::cout << "desktop: overlay " << (overlay ? "attached" : "missing") << ", images "
                  << (image ? image->string() : "missing") << std::endl;
        status = overlay && image ? 0 : 1;
    }
    gtk_window_destroy(GTK_WINDOW(window));
    return status;
}
