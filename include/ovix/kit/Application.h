#pragma once

#include <memory>

#include "ovix/kit/host/Application.h"

namespace ovix::kit {

class Window;

/// The UI side's view of the host application (`platform::current()->application`).
class Application {
  public:
    /// The installed platform's application service.
    static kit::host::Application& shared();
    /// The key window: the connected scenes' windows in order (scene order, then each scene's
    /// window order), first one that is key; null when none is.
    static std::shared_ptr<Window> keyWindow();
};

}  // namespace ovix::kit
