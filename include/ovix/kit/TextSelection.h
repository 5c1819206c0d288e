#pragma once

#include <algorithm>
#include <cstddef>

namespace ovix::kit {

/// A caret or a selection in UTF-8 text, as byte offsets on character boundaries: `anchor` stays
/// where the selection began, `caret` is the end that moves. Empty (a plain caret) when they meet.
struct TextSelection {
    std::size_t anchor = 0;
    std::size_t caret = 0;

    static TextSelection at(std::size_t offset) { return {offset, offset}; }
    std::size_t start() const { return std::min(anchor, caret); }
    std::size_t end() const { return std::max(anchor, caret); }
    bool isEmpty() const { return anchor == caret; }
    bool operator==(const TextSelection&) const = default;
};

}  // namespace ovix::kit
