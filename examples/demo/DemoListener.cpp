#include "DemoListener.h"

#include <glib.h>

#include "DemoGame.h"

namespace demo {

namespace {

struct Delivery {
    std::weak_ptr<DemoGame> game;
    std::string event;
    ovix::Value data;
};

}  // namespace

void DemoListener::onEventReceived(const std::string& event, const ovix::Value& data) {
    auto game = game_.lock();
    if (!game) {
        return;
    }
    game->log().addEvent(event, data);
    // Always later, even on GTK's thread: the SDK raises some events from inside its own screen code.
    g_idle_add_full(
        G_PRIORITY_DEFAULT,
        [](gpointer pointer) -> gboolean {
            const auto* delivery = static_cast<Delivery*>(pointer);
            if (auto target = delivery->game.lock()) {
                target->handle(delivery->event, delivery->data);
            }
            return G_SOURCE_REMOVE;
        },
        new Delivery{game_, event, data}, [](gpointer pointer) { delete static_cast<Delivery*>(pointer); });
}

}  // namespace demo
