#pragma once

#include <compare>
#include <ostream>

namespace ovix::kit {

/// A row (table) or item (collection) in a section.
struct IndexPath {
    int section = 0;
    int row = 0;

    int item() const { return row; }
    static IndexPath forRow(int row, int section = 0) { return {section, row}; }
    static IndexPath forItem(int item, int section = 0) { return {section, item}; }

    friend auto operator<=>(const IndexPath&, const IndexPath&) = default;
    friend std::ostream& operator<<(std::ostream& out, const IndexPath& p) {
        return out << "[" << p.section << ", " << p.row << "]";
    }
};

}  // namespace ovix::kit
