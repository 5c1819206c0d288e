#pragma once

#include <memory>

#include "ovix/OvixSdkListener.h"

namespace demo {

class DemoGame;

/// The game's SDK listener: logs each event at once on the thread that raised it, then hands it to
/// the game on GTK's thread (the default GLib main context). Holds the game weakly: an event that
/// arrives after the game is gone is only logged.
class DemoListener : public ovix::OvixSdkListener {
  public:
    explicit DemoListener(std::weak_ptr<DemoGame> game) : game_(std::move(game)) {}
    void onEventReceived(const std::string& event, const ovix::Value& data) override;

  private:
    std::weak_ptr<DemoGame> game_;
};

}  // namespace demo
