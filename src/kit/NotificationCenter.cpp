#include "ovix/kit/NotificationCenter.h"

#include <algorithm>

namespace ovix::kit {

NotificationCenter& NotificationCenter::defaultCenter() {
    static NotificationCenter center;
    return center;
}

NotificationCenter::Token NotificationCenter::addObserver(std::string name, std::weak_ptr<const void> owner,
                                                          std::function<void()> block) {
    prune();
    Token token = next_++;
    observers_.push_back({token, std::move(name), true, std::move(owner), std::move(block)});
    return token;
}

NotificationCenter::Token NotificationCenter::addObserver(std::string name, std::function<void()> block) {
    prune();
    Token token = next_++;
    observers_.push_back({token, std::move(name), false, {}, std::move(block)});
    return token;
}

void NotificationCenter::removeObserver(Token token) {
    std::erase_if(observers_, [token](const Observer& o) { return o.token == token; });
}

void NotificationCenter::prune() {
    std::erase_if(observers_, [](const Observer& o) { return o.owned && o.owner.expired(); });
}

void NotificationCenter::post(std::string_view name) {
    prune();
    // Observers may register or unregister while being notified: deliver to a snapshot, skipping
    // any removed meanwhile.
    std::vector<Token> tokens;
    for (auto& o : observers_) {
        if (o.name == name) {
            tokens.push_back(o.token);
        }
    }
    for (Token token : tokens) {
        auto it = std::find_if(observers_.begin(), observers_.end(),
                               [&](const Observer& o) { return o.token == token; });
        if (it == observers_.end()) {
            continue;
        }
        std::shared_ptr<const void> alive = it->owner.lock();
        if (it->owned && !alive) {
            continue;
        }
        auto block = it->block;
        if (block) {
            block();
        }
    }
}

std::size_t NotificationCenter::observerCount(std::string_view name) {
    prune();
    return static_cast<std::size_t>(std::count_if(observers_.begin(), observers_.end(),
                                                  [&](const Observer& o) { return o.name == name; }));
}

}  // namespace ovix::kit
