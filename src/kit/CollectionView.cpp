#include "ovix/kit/CollectionView.h"

#include <algorithm>

namespace ovix::kit {

std::shared_ptr<CollectionView> CollectionView::create(Rect frame,
                                                       std::shared_ptr<CollectionViewFlowLayout> layout) {
    auto view = std::make_shared<CollectionView>(frame, std::move(layout));
    view->setUpScrolling();
    return view;
}

CollectionView::CollectionView(Rect frame, std::shared_ptr<CollectionViewFlowLayout> layout)
    : ScrollView(frame), layout_(layout ? std::move(layout) : CollectionViewFlowLayout::create()) {}

void CollectionView::registerCell(std::string reuseIdentifier, CellFactory factory) {
    pool_.registerFactory(std::move(reuseIdentifier), std::move(factory));
}

std::shared_ptr<CollectionViewCell> CollectionView::dequeueReusableCell(const std::string& reuseIdentifier,
                                                                        const IndexPath&) {
    return pool_.dequeue(reuseIdentifier);
}

void CollectionView::reloadData() {
    for (auto& section : cells_) {
        for (auto& cell : section) {
            pool_.release(cell);
        }
    }
    cells_.clear();
    auto source = dataSource();
    int sections = source ? std::max(0, source->numberOfSections(*this)) : 0;
    cells_.resize(static_cast<std::size_t>(sections));
    for (int s = 0; s < sections; ++s) {
        int count = std::max(0, source->numberOfItemsInSection(*this, s));
        for (int i = 0; i < count; ++i) {
            auto cell = source->cellForItemAt(*this, {s, i});
            cells_[static_cast<std::size_t>(s)].push_back(cell ? cell : CollectionViewCell::create());
        }
    }
    arrange();
}

void CollectionView::invalidateLayout() {
    arrange();
}

void CollectionView::arrange() {
    auto delegate = this->delegate();
    std::vector<std::vector<Size>> sizes(cells_.size());
    for (std::size_t s = 0; s < cells_.size(); ++s) {
        for (std::size_t i = 0; i < cells_[s].size(); ++i) {
            std::optional<Size> size;
            if (delegate) {
                size = delegate->sizeForItemAt(*this, *layout_, {static_cast<int>(s), static_cast<int>(i)});
            }
            sizes[s].push_back(size.value_or(layout_->itemSize));
        }
    }
    auto result = layout_->layout(bounds().size, sizes);
    for (std::size_t s = 0; s < cells_.size(); ++s) {
        for (std::size_t i = 0; i < cells_[s].size(); ++i) {
            auto& cell = cells_[s][i];
            cell->setFrame(result.frames[s][i]);
            if (cell->superview().get() != this) {
                addSubview(cell);
            }
        }
    }
    arrangedFor_ = bounds().size;
    setContentSize(result.contentSize);
}

void CollectionView::layoutSubviews() {
    if (bounds().size != arrangedFor_) {
        arrange();
    }
}

int CollectionView::numberOfItems(int section) const {
    return section >= 0 && section < numberOfSections()
               ? static_cast<int>(cells_[static_cast<std::size_t>(section)].size())
               : 0;
}

std::shared_ptr<CollectionViewCell> CollectionView::cellForItem(const IndexPath& p) const {
    if (p.row < 0 || p.row >= numberOfItems(p.section)) {
        return nullptr;
    }
    return cells_[static_cast<std::size_t>(p.section)][static_cast<std::size_t>(p.row)];
}

std::vector<std::shared_ptr<CollectionViewCell>> CollectionView::visibleCells() const {
    std::vector<std::shared_ptr<CollectionViewCell>> visible;
    for (auto& section : cells_) {
        for (auto& cell : section) {
            if (cell->frame().intersects(bounds())) {
                visible.push_back(cell);
            }
        }
    }
    return visible;
}

std::optional<IndexPath> CollectionView::indexPathForItem(Point point) const {
    for (std::size_t s = 0; s < cells_.size(); ++s) {
        for (std::size_t i = 0; i < cells_[s].size(); ++i) {
            if (cells_[s][i]->frame().contains(point)) {
                return IndexPath{static_cast<int>(s), static_cast<int>(i)};
            }
        }
    }
    return std::nullopt;
}

void CollectionView::touchesEnded(const Touch& touch) {
    auto p = indexPathForItem(touch.location(this));
    if (!p) {
        return;
    }
    for (auto& section : cells_) {
        for (auto& cell : section) {
            cell->setSelected(false);
        }
    }
    cellForItem(*p)->setSelected(true);
    if (auto delegate = this->delegate()) {
        delegate->didSelectItemAt(*this, *p);
    }
}

}  // namespace ovix::kit
