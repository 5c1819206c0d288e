#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ovix/kit/Button.h"
#include "ovix/kit/ViewController.h"
#include "ovix/kit/Window.h"

namespace demo {

/// Finds what a player sees among the SDK's views, through the view tree every kit view exposes:
/// the tour looks for a screen by its class name or for a button by its title, then taps the centre
/// of it on the window, as a pointer would. Main thread only.
class ViewFinder {
  public:
    using Predicate = std::function<bool(const ovix::kit::View&)>;

    /// The first view under `root` (itself included, depth first, subviews in order) that is shown —
    /// neither it nor an ancestor hidden or transparent — and matches.
    static std::shared_ptr<ovix::kit::View> find(const std::shared_ptr<ovix::kit::View>& root,
                                                 const Predicate& matches);
    /// Every shown view under `root` that matches, in the same order.
    static std::vector<std::shared_ptr<ovix::kit::View>> findAll(const std::shared_ptr<ovix::kit::View>& root,
                                                                 const Predicate& matches);
    static Predicate hasClass(std::string className);
    /// A button whose current title is `title`.
    static Predicate buttonTitled(std::string title);
    /// A label showing exactly `text`.
    static Predicate labelShowing(std::string text);

    /// The centre of `view` in its window's coordinates; nothing when it is in no window.
    static std::optional<ovix::kit::Point> centreInWindow(const ovix::kit::View& view);
    /// Lays the window out, scrolls `view` into sight, then taps its centre through the window (hit testing
    /// and gestures as for a pointer); false when it is in no window.
    static bool tap(const std::shared_ptr<ovix::kit::View>& view);

    /// One line per shown view under `root`, indented by depth: class, frame in window coordinates,
    /// and a button's title or a label's text. For a failed tour step's report.
    static std::string describe(const std::shared_ptr<ovix::kit::View>& root);

    /// Scrolls the nearest scroll view around `view` (vertically) just enough to show all of it.
    static void scrollIntoView(const std::shared_ptr<ovix::kit::View>& view);

    /// The controller on top: the window's root, then what each one presents.
    static std::shared_ptr<ovix::kit::ViewController> topController(const ovix::kit::Window& window);
};

}  // namespace demo
