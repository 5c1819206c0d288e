#include "ovix/testing/ScriptedWebsiteDataStore.h"

#include "ovix/platform/Platform.h"

namespace ovix::testing {

void ScriptedWebsiteDataStore::removeData(const std::set<kit::host::WebsiteDataType>& types,
                                          Date modifiedSince, std::function<void()> completion) {
    removals_.push_back({types, modifiedSince});
    if (holding_) {
        held_.push_back(std::move(completion));
    } else {
        platform::current()->mainQueue->async(std::move(completion));
    }
}

std::size_t ScriptedWebsiteDataStore::releaseHeld() {
    auto held = std::move(held_);
    held_.clear();
    for (auto& completion : held) {
        platform::current()->mainQueue->async(std::move(completion));
    }
    return held.size();
}

}  // namespace ovix::testing
