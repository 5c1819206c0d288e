#pragma once

#include <string>

#include "ovix/Value.h"

namespace ovix::kit::host {

class UserContentController;

/// What a page posted with `window.webkit.messageHandlers.<name>.postMessage(body)`.
struct ScriptMessage {
    std::string name;
    /// The posted value as JSON sees it: objects, arrays, strings, numbers, booleans, null.
    Value body;
};

/// Receives the messages pages post under the names it was registered for.
/// Threading: called on the main thread, by the web engine.
class ScriptMessageHandler {
  public:
    virtual ~ScriptMessageHandler() = default;
    virtual void userContentControllerDidReceiveScriptMessage(UserContentController& controller,
                                                              const ScriptMessage& message) = 0;
};

}  // namespace ovix::kit::host
