#include "ovix/kit/CollectionViewFlowLayout.h"

#include <algorithm>

namespace ovix::kit {

CollectionViewFlowLayout::Result CollectionViewFlowLayout::layout(
    Size bounds, const std::vector<std::vector<Size>>& sizes) const {
    // Worked in "line" coordinates: `along` runs inside a line, `across` from line to line.
    const bool vertical = scrollDirection == ScrollDirection::vertical;
    auto along = [&](Size s) { return vertical ? s.width : s.height; };
    auto across = [&](Size s) { return vertical ? s.height : s.width; };
    const double alongStart = vertical ? sectionInset.left : sectionInset.top;
    const double alongEnd = vertical ? sectionInset.right : sectionInset.bottom;
    const double acrossStart = vertical ? sectionInset.top : sectionInset.left;
    const double acrossEnd = vertical ? sectionInset.bottom : sectionInset.right;
    const double available = along(bounds) - alongStart - alongEnd;

    Result result;
    double cursor = 0;  // across position of the next section
    for (const auto& section : sizes) {
        std::vector<Rect> frames(section.size());
        double lineStart = cursor + acrossStart;
        std::size_t i = 0;
        bool firstLine = true;
        while (i < section.size()) {
            // Fill a line.
            std::size_t end = i;
            double used = 0;
            double thickness = 0;
            while (end < section.size()) {
                double next = used + (end > i ? minimumInteritemSpacing : 0) + along(section[end]);
                if (end > i && next > available + 1e-9) {
                    break;
                }
                used = next;
                thickness = std::max(thickness, across(section[end]));
                ++end;
            }
            if (!firstLine) {
                lineStart += minimumLineSpacing;
            }
            firstLine = false;
            std::size_t count = end - i;
            double itemsLength = used - minimumInteritemSpacing * static_cast<double>(count - 1);
            double gap = count > 1 ? (available - itemsLength) / static_cast<double>(count - 1) : 0;
            double position = alongStart + (count == 1 ? (available - itemsLength) / 2 : 0);
            for (std::size_t k = i; k < end; ++k) {
                Size s = section[k];
                double acrossPos = lineStart + (thickness - across(s)) / 2;
                frames[k] = vertical ? Rect{position, acrossPos, s.width, s.height}
                                     : Rect{acrossPos, position, s.width, s.height};
                position += along(s) + gap;
            }
            lineStart += thickness;
            i = end;
        }
        cursor = lineStart + acrossEnd;
        result.frames.push_back(std::move(frames));
    }
    result.contentSize = vertical ? Size{bounds.width, cursor} : Size{cursor, bounds.height};
    return result;
}

}  // namespace ovix::kit
