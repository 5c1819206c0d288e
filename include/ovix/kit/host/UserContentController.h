#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "ovix/kit/host/ScriptMessageHandler.h"

namespace ovix::kit::host {

/// The named message channels that pages of the web views sharing this controller may post to.
///
/// Handlers are held weakly: a handler that has gone is skipped and its messages are dropped, so a
/// screen can register itself without a retain cycle through its own web view. Main thread only.
class UserContentController : public std::enable_shared_from_this<UserContentController> {
  public:
    /// Told when a channel is added, so engines can offer the new name to pages already shown.
    class Observer {
      public:
        virtual ~Observer() = default;
        virtual void userContentControllerDidAddScriptMessageHandler(const std::string& name) = 0;
    };

    static std::shared_ptr<UserContentController> create() {
        return std::make_shared<UserContentController>();
    }

    /// Opens the channel `name` for pages, with `handler` receiving its messages. A name can be taken
    /// once: false (and nothing changes) when it already is.
    bool addScriptMessageHandler(std::weak_ptr<ScriptMessageHandler> handler, const std::string& name);
    void removeScriptMessageHandler(const std::string& name);
    /// The open channels, sorted by name.
    std::vector<std::string> scriptMessageHandlerNames() const;

    /// For engines: hands a page's message to the handler of its channel. False when the channel is
    /// not open or its handler has gone.
    bool didReceiveScriptMessage(const ScriptMessage& message);
    /// For engines: `observer` (held weakly) hears of channels added from now on.
    void addObserver(std::weak_ptr<Observer> observer);

  private:
    std::map<std::string, std::weak_ptr<ScriptMessageHandler>> handlers_;
    std::vector<std::weak_ptr<Observer>> observers_;
};

}  // namespace ovix::kit::host
