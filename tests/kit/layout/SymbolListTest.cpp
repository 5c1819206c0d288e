#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "kit/layout/SymbolList.h"

namespace ovix::kit::layout {
namespace {

std::vector<Symbol> contents(const SymbolList& list) {
    return {list.begin(), list.end()};
}

// Lists on both sides of the inline capacity: growing onto the heap must carry the inline entries,
// a move must take inline entries too (not only a heap buffer), and a copy must not share storage.
TEST(SymbolList, KeepsItsEntriesThroughGrowthCopiesAndMoves) {
    for (std::size_t count :
         {std::size_t{0}, SymbolList::kInline, SymbolList::kInline + 1, std::size_t{40}}) {
        SCOPED_TRACE(count);
        std::vector<Symbol> expected;
        SymbolList list;
        for (Symbol s = 0; s < count; ++s) {
            list.push_back(s * 7);
            expected.push_back(s * 7);
        }
        ASSERT_EQ(contents(list), expected);

        SymbolList copy = list;
        copy.push_back(99);
        EXPECT_EQ(contents(list), expected) << "the copy has storage of its own";

        SymbolList moved = std::move(list);
        EXPECT_EQ(contents(moved), expected);
        EXPECT_TRUE(list.empty());  // NOLINT(bugprone-use-after-move): moved-from is empty by contract

        SymbolList target;
        target.push_back(1);
        target = std::move(moved);
        EXPECT_EQ(contents(target), expected);

        target.clear();
        target.push_back(5);
        EXPECT_EQ(contents(target), std::vector<Symbol>{5}) << "clear keeps the list usable";
    }
}

}  // namespace
}  // namespace ovix::kit::layout
