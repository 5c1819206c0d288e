#pragma once

#include <memory>

#include "ovix/kit/CollectionViewCell.h"
#include "ovix/kit/IndexPath.h"

namespace ovix::kit {

class CollectionView;

/// Supplies a collection's items. Held weakly by the collection view.
class CollectionViewDataSource {
  public:
    virtual ~CollectionViewDataSource() = default;
    virtual int numberOfSections(CollectionView& collectionView) {
        (void)collectionView;
        return 1;
    }
    virtual int numberOfItemsInSection(CollectionView& collectionView, int section) = 0;
    virtual std::shared_ptr<CollectionViewCell> cellForItemAt(CollectionView& collectionView,
                                                              const IndexPath& indexPath) = 0;
};

}  // namespace ovix::kit
