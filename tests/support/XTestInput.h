#pragma once

typedef struct _GtkWindow GtkWindow;

namespace ovix::test {

/// A person's mouse and keyboard on an X display, through the server's test extension: events that
/// take the whole path a real device's would (server, toolkit, controllers). Positions are in the
/// window's widget coordinates. Each call waits until GTK has handled what it sent.
class XTestInput {
  public:
    explicit XTestInput(GtkWindow* window);

    void moveTo(double x, double y);
    void button(bool down, int number = 1);
    /// A key by its X keysym name ("a", "space", "BackSpace", "Escape"), pressed and released.
    void key(const char* keysym);
    /// Gives the window the keyboard focus, as a window manager would; false when GTK never saw it.
    bool focus();
    /// Resizes the window, as a window manager would.
    void resize(int width, int height);
    /// Lets the server deliver what was sent and GTK handle it.
    void settle();

  private:
    GtkWindow* window_;
};

}  // namespace ovix::test
