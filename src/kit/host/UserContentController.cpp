#include "ovix/kit/host/UserContentController.h"

#include <algorithm>

namespace ovix::kit::host {

bool UserContentController::addScriptMessageHandler(std::weak_ptr<ScriptMessageHandler> handler,
                                                    const std::string& name) {
    if (!handlers_.emplace(name, std::move(handler)).second) {
        return false;
    }
    std::erase_if(observers_, [](const auto& observer) { return observer.expired(); });
    // Copy first: an observer may add channels of its own.
    const auto observers = observers_;
    for (const auto& weak : observers) {
        if (auto observer = weak.lock()) {
            observer->userContentControllerDidAddScriptMessageHandler(name);
        }
    }
    return true;
}

void UserContentController::removeScriptMessageHandler(const std::string& name) {
    handlers_.erase(name);
}

std::vector<std::string> UserContentController::scriptMessageHandlerNames() const {
    std::vector<std::string> names;
    for (const auto& [name, handler] : handlers_) {
        names.push_back(name);
    }
    return names;
}

bool UserContentController::didReceiveScriptMessage(const ScriptMessage& message) {
    auto found = handlers_.find(message.name);
    if (found == handlers_.end()) {
        return false;
    }
    auto handler = found->second.lock();
    if (!handler) {
        return false;
    }
    // Keep this controller alive while the handler runs: it may drop the web view that owns us.
    auto keep = weak_from_this().lock();
    handler->userContentControllerDidReceiveScriptMessage(*this, message);
    return true;
}

void UserContentController::addObserver(std::weak_ptr<Observer> observer) {
    observers_.push_back(std::move(observer));
}

}  // namespace ovix::kit::host
