#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "ovix/platform/Platform.h"

namespace ovix::kit {

/// Cells by reuse identifier for tables and collections: a factory per identifier, and the cells a
/// reload released, handed out again (after `prepareForReuse`) before new ones are made.
template <class Cell>
class ReusePool {
  public:
    using Factory = std::function<std::shared_ptr<Cell>(const std::string& reuseIdentifier)>;

    void registerFactory(std::string reuseIdentifier, Factory factory) {
        factories_[std::move(reuseIdentifier)] = std::move(factory);
    }
    /// A released cell, else a new one; null, with a console warning, when nothing is registered
    /// for the identifier.
    std::shared_ptr<Cell> dequeue(const std::string& reuseIdentifier) {
        auto& pool = released_[reuseIdentifier];
        if (!pool.empty()) {
            auto cell = pool.back();
            pool.pop_back();
            cell->prepareForReuse();
            return cell;
        }
        auto it = factories_.find(reuseIdentifier);
        if (it == factories_.end() || !it->second) {
            platform::current()->console->printLine("⚠️ No cell registered for reuse identifier " +
                                                    reuseIdentifier);
            return nullptr;
        }
        return it->second(reuseIdentifier);
    }
    /// Takes a cell out of its table and keeps it for reuse (cells without an identifier are dropped).
    void release(const std::shared_ptr<Cell>& cell) {
        if (!cell) {
            return;
        }
        cell->removeFromSuperview();
        cell->setSelected(false);
        if (!cell->reuseIdentifier().empty()) {
            released_[cell->reuseIdentifier()].push_back(cell);
        }
    }

  private:
    std::map<std::string, Factory> factories_;
    std::map<std::string, std::vector<std::shared_ptr<Cell>>> released_;
};

}  // namespace ovix::kit
