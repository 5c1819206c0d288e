#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ovix/kit/CollectionViewCell.h"
#include "ovix/kit/CollectionViewDataSource.h"
#include "ovix/kit/CollectionViewDelegate.h"
#include "ovix/kit/CollectionViewFlowLayout.h"
#include "ovix/kit/ReusePool.h"
#include "ovix/kit/ScrollView.h"

namespace ovix::kit {

/// Items placed by a flow layout.
///
/// `reloadData` asks the data source for every item's cell (all items are kept) and lays them out
/// with the sizes the delegate gives for the current bounds; the layout is redone when the bounds
/// size changes (sizes asked again). Dequeuing and selection work as in `TableView`.
class CollectionView : public ScrollView {
  public:
    using CellFactory = ReusePool<CollectionViewCell>::Factory;

    static std::shared_ptr<CollectionView> create(Rect frame,
                                                  std::shared_ptr<CollectionViewFlowLayout> layout);
    CollectionView(Rect frame, std::shared_ptr<CollectionViewFlowLayout> layout);

    const std::shared_ptr<CollectionViewFlowLayout>& collectionViewLayout() const { return layout_; }
    void setDataSource(const std::shared_ptr<CollectionViewDataSource>& dataSource) {
        dataSource_ = dataSource;
    }
    std::shared_ptr<CollectionViewDataSource> dataSource() const { return dataSource_.lock(); }
    void setDelegate(const std::shared_ptr<CollectionViewDelegate>& delegate) { delegate_ = delegate; }
    std::shared_ptr<CollectionViewDelegate> delegate() const { return delegate_.lock(); }

    void registerCell(std::string reuseIdentifier, CellFactory factory);
    /// Registers `Cell::create(Rect{}, reuseIdentifier)`.
    template <class Cell>
    void registerCell(std::string reuseIdentifier) {
        registerCell(std::move(reuseIdentifier),
                     [](const std::string& id) { return Cell::create(Rect{}, id); });
    }
    std::shared_ptr<CollectionViewCell> dequeueReusableCell(const std::string& reuseIdentifier,
                                                            const IndexPath& indexPath);

    void reloadData();
    /// Lays the items out again (sizes asked again) without new cells.
    void invalidateLayout();

    int numberOfSections() const { return static_cast<int>(cells_.size()); }
    int numberOfItems(int section) const;
    std::shared_ptr<CollectionViewCell> cellForItem(const IndexPath& indexPath) const;
    std::vector<std::shared_ptr<CollectionViewCell>> visibleCells() const;
    std::optional<IndexPath> indexPathForItem(Point point) const;

    void layoutSubviews() override;
    void touchesEnded(const Touch& touch) override;
    std::string className() const override { return "CollectionView"; }

  private:
    void arrange();

    std::shared_ptr<CollectionViewFlowLayout> layout_;
    std::weak_ptr<CollectionViewDataSource> dataSource_;
    std::weak_ptr<CollectionViewDelegate> delegate_;
    ReusePool<CollectionViewCell> pool_;
    std::vector<std::vector<std::shared_ptr<CollectionViewCell>>> cells_;
    Size arrangedFor_{-1, -1};
};

}  // namespace ovix::kit
