#pragma once

#include <functional>
#include <set>
#include <vector>

#include "ovix/kit/host/WebsiteDataStore.h"

namespace ovix::testing {

/// A website data store that records each removal. Removals complete on the main queue, or, while
/// the test holds them, when it releases them. Main thread only.
class ScriptedWebsiteDataStore : public kit::host::WebsiteDataStore {
  public:
    struct Removal {
        std::set<kit::host::WebsiteDataType> types;
        Date modifiedSince;
    };

    void removeData(const std::set<kit::host::WebsiteDataType>& types, Date modifiedSince,
                    std::function<void()> completion) override;

    const std::vector<Removal>& removals() const { return removals_; }
    /// While holding, completions wait for `releaseHeld`.
    void setHolding(bool holding) { holding_ = holding; }
    /// Posts the held completions to the main queue, in order; returns how many.
    std::size_t releaseHeld();

  private:
    std::vector<Removal> removals_;
    bool holding_ = false;
    std::vector<std::function<void()>> held_;
};

}  // namespace ovix::testing
