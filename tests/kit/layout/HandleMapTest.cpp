#include <gtest/gtest.h>

#include <random>
#include <unordered_map>
#include <vector>

#include "kit/layout/HandleMap.h"
#include "kit/layout/Variable.h"

namespace ovix::kit::layout {
namespace {

// Against std::unordered_map over random adds and removes, every key checked after each step: an
// erase that leaves a hole in a probe run hides the keys after it, and one that shifts an entry in
// front of its home slot loses it; growing must carry every entry over.
TEST(HandleMap, AgreesWithAReferenceMapThroughAddsAndRemoves) {
    for (unsigned seed : {1u, 2u, 3u}) {
        SCOPED_TRACE(seed);
        std::mt19937 rng(seed);
        std::vector<Variable> keys(300);
        HandleMap<Variable, int> map;
        std::unordered_map<Variable, int> reference;
        for (int step = 0; step < 3000; ++step) {
            const Variable& key = keys[rng() % keys.size()];
            if (rng() % 3 != 0) {
                auto [value, inserted] = map.tryEmplace(key, step);
                auto [it, refInserted] = reference.try_emplace(key, step);
                ASSERT_EQ(inserted, refInserted);
                ASSERT_EQ(*value, it->second);
            } else {
                ASSERT_EQ(map.erase(key), reference.erase(key) == 1);
            }
            ASSERT_EQ(map.size(), reference.size());
            if (step % 50 == 0 || step > 2900) {
                for (const Variable& k : keys) {
                    auto it = reference.find(k);
                    const int* found = map.find(k);
                    ASSERT_EQ(found != nullptr, it != reference.end());
                    if (found) {
                        ASSERT_EQ(*found, it->second);
                    }
                }
            }
        }
        map.clear();
        EXPECT_EQ(map.size(), 0u);
        EXPECT_FALSE(map.contains(keys.front()));
    }
}

}  // namespace
}  // namespace ovix::kit::layout
