#pragma once

#include <optional>

#include "ovix/kit/Geometry.h"
#include "ovix/kit/IndexPath.h"

namespace ovix::kit {

class CollectionView;
class CollectionViewFlowLayout;

/// Selection and, for a flow layout, per-item sizes. Held weakly by the collection view. Every
/// method is optional.
class CollectionViewDelegate {
  public:
    virtual ~CollectionViewDelegate() = default;
    virtual void didSelectItemAt(CollectionView& collectionView, const IndexPath& indexPath) {
        (void)collectionView;
        (void)indexPath;
    }
    /// nullopt: the layout's `itemSize`.
    virtual std::optional<Size> sizeForItemAt(CollectionView& collectionView,
                                              CollectionViewFlowLayout& layout, const IndexPath& indexPath) {
        (void)collectionView;
        (void)layout;
        (void)indexPath;
        return std::nullopt;
    }
};

}  // namespace ovix::kit
