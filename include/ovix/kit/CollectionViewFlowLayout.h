#pragma once

#include <memory>
#include <vector>

#include "ovix/kit/Geometry.h"
#include "ovix/kit/IndexPath.h"

namespace ovix::kit {

class CollectionView;

enum class ScrollDirection { vertical, horizontal };

/// Places items in lines: rows that wrap downwards (vertical scrolling) or columns that wrap to the
/// right (horizontal). Each section starts after the previous one, inside its insets. A line takes
/// items while they fit with at least `minimumInteritemSpacing` between them; the space left over
/// is spread evenly between the items of the line (a line of one item is centred), and items are
/// centred across the line. Lines are `minimumLineSpacing` apart. Sizes come from the delegate's
/// `sizeForItemAt` where it gives one, else `itemSize`.
class CollectionViewFlowLayout {
  public:
    static std::shared_ptr<CollectionViewFlowLayout> create() {
        return std::make_shared<CollectionViewFlowLayout>();
    }

    ScrollDirection scrollDirection = ScrollDirection::vertical;
    Size itemSize{50, 50};
    double minimumLineSpacing = 10;
    double minimumInteritemSpacing = 10;
    EdgeInsets sectionInset;

    struct Result {
        std::vector<std::vector<Rect>> frames;  ///< per section, per item
        Size contentSize;
    };
    /// Frames for `sizes` (per section, per item) inside a collection of `bounds` size.
    Result layout(Size bounds, const std::vector<std::vector<Size>>& sizes) const;
};

}  // namespace ovix::kit
