#pragma once

#include <memory>

#include "ovix/kit/ViewController.h"

namespace ovix {

/// How a full screen of the SDK takes over the game's window.
class ScreenRoot {
  public:
    /// Makes `screen` the root of a new navigation controller in the application's first window (not
    /// the key window), then makes that window key and visible. Nothing when there is no window.
    /// Main thread only.
    static void install(std::shared_ptr<kit::ViewController> screen);
};

}  // namespace ovix
