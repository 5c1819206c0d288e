#include "support/XTestInput.h"

#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <gdk/x11/gdkx.h>
#include <gtk/gtk.h>

#include "support/GtkTestEnvironment.h"

namespace ovix::test {

namespace {

Display* displayOf(GtkWindow* window) {
    return gdk_x11_display_get_xdisplay(gtk_widget_get_display(GTK_WIDGET(window)));
}

::Window xidOf(GtkWindow* window) {
    return gdk_x11_surface_get_xid(gtk_native_get_surface(GTK_NATIVE(window)));
}

}  // namespace

XTestInput::XTestInput(GtkWindow* window) : window_(window) {}

void XTestInput::settle() {
    // GDK hands pointer motion over once per frame: wait for the next frame (when one is due).
    GdkFrameClock* clock = gtk_widget_get_frame_clock(GTK_WIDGET(window_));
    const gint64 before = clock ? gdk_frame_clock_get_frame_counter(clock) : 0;
    XSync(displayOf(window_), False);
    pumpPending();
    if (clock) {
        pumpUntil([&] { return gdk_frame_clock_get_frame_counter(clock) > before + 1; }, 0.1);
    }
    pumpPending();
}

void XTestInput::moveTo(double x, double y) {
    double tx = 0;
    double ty = 0;
    gtk_native_get_surface_transform(GTK_NATIVE(window_), &tx, &ty);
    Display* display = displayOf(window_);
    int rx = 0;
    int ry = 0;
    ::Window child = 0;
    XTranslateCoordinates(display, xidOf(window_), DefaultRootWindow(display), static_cast<int>(x + tx),
                          static_cast<int>(y + ty), &rx, &ry, &child);
    XTestFakeMotionEvent(display, -1, rx, ry, CurrentTime);
    settle();
}

void XTestInput::button(bool down, int number) {
    XTestFakeButtonEvent(displayOf(window_), static_cast<unsigned>(number), down ? True : False, CurrentTime);
    settle();
}

void XTestInput::key(const char* keysym) {
    Display* display = displayOf(window_);
    const KeyCode code = XKeysymToKeycode(display, XStringToKeysym(keysym));
    XTestFakeKeyEvent(display, code, True, CurrentTime);
    XTestFakeKeyEvent(display, code, False, CurrentTime);
    settle();
}

bool XTestInput::focus() {
    XSetInputFocus(displayOf(window_), xidOf(window_), RevertToParent, CurrentTime);
    return pumpUntil([&] { return gtk_window_is_active(window_); }, 5);
}

void XTestInput::resize(int width, int height) {
    XResizeWindow(displayOf(window_), xidOf(window_), static_cast<unsigned>(width),
                  static_cast<unsigned>(height));
    settle();
}

}  // namespace ovix::test
