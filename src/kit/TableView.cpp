#include "ovix/kit/TableView.h"

#include <algorithm>

namespace ovix::kit {

namespace {

constexpr double kSectionGap = 35;
constexpr double kInset = 20;

}  // namespace

double TableViewDelegate::heightForRowAt(TableView& tableView, const IndexPath&) {
    return tableView.rowHeight();
}

std::shared_ptr<TableView> TableView::create(Rect frame, TableViewStyle style) {
    auto table = std::make_shared<TableView>(frame, style);
    table->setUpScrolling();
    return table;
}

TableView::TableView(Rect frame, TableViewStyle style) : ScrollView(frame), style_(style) {
    setBackgroundColor(style == TableViewStyle::plain ? Color::white() : Color::rgb255(242, 242, 247));
}

void TableView::registerCell(std::string reuseIdentifier, CellFactory factory) {
    pool_.registerFactory(std::move(reuseIdentifier), std::move(factory));
}

std::shared_ptr<TableViewCell> TableView::dequeueReusableCell(const std::string& reuseIdentifier,
                                                              const IndexPath&) {
    return pool_.dequeue(reuseIdentifier);
}

std::shared_ptr<TableViewCell> TableView::makeCell(const IndexPath& indexPath) {
    auto source = dataSource();
    auto cell = source ? source->cellForRowAt(*this, indexPath) : nullptr;
    return cell ? cell : TableViewCell::create();
}

void TableView::reloadData() {
    for (auto& section : rows_) {
        for (auto& row : section) {
            pool_.release(row.cell);
        }
    }
    rows_.clear();
    selected_.reset();
    auto source = dataSource();
    int sections = source ? std::max(0, source->numberOfSections(*this)) : 0;
    rows_.resize(static_cast<std::size_t>(sections));
    for (int s = 0; s < sections; ++s) {
        int count = std::max(0, source->numberOfRowsInSection(*this, s));
        for (int r = 0; r < count; ++r) {
            rows_[static_cast<std::size_t>(s)].push_back({makeCell({s, r}), defaultRowHeight});
        }
    }
    arrange(true);
}

void TableView::reloadRows(const std::vector<IndexPath>& indexPaths, TableViewRowAnimation) {
    for (const auto& p : indexPaths) {
        if (p.section < 0 || p.section >= numberOfSections() || p.row < 0 ||
            p.row >= numberOfRows(p.section)) {
            continue;
        }
        Row& row = rows_[static_cast<std::size_t>(p.section)][static_cast<std::size_t>(p.row)];
        bool wasSelected = row.cell && row.cell->isSelected();
        pool_.release(row.cell);
        row.cell = makeCell(p);
        row.cell->setSelected(wasSelected);
    }
    arrange(true);
}

int TableView::numberOfRows(int section) const {
    return section >= 0 && section < numberOfSections()
               ? static_cast<int>(rows_[static_cast<std::size_t>(section)].size())
               : 0;
}

std::shared_ptr<TableViewCell> TableView::cellForRow(const IndexPath& p) const {
    if (p.row < 0 || p.row >= numberOfRows(p.section)) {
        return nullptr;
    }
    return rows_[static_cast<std::size_t>(p.section)][static_cast<std::size_t>(p.row)].cell;
}

Rect TableView::rowArea() const {
    if (style_ != TableViewStyle::insetGrouped) {
        return {0, 0, bounds().size.width, 0};
    }
    // Inset cards keep clear of what covers the sides (a landscape phone's notch).
    const EdgeInsets safe = safeAreaInsets();
    const double left = kInset + safe.left;
    return {left, 0, std::max(0.0, bounds().size.width - left - kInset - safe.right), 0};
}

double TableView::measure(const IndexPath& p, TableViewCell& cell) {
    auto delegate = this->delegate();
    double height = delegate ? delegate->heightForRowAt(*this, p) : rowHeight_;
    if (height != automaticDimension) {
        return height;
    }
    double width = rowArea().width();
    Size fitted =
        cell.systemLayoutSizeFitting({width, 0}, LayoutPriority::required, LayoutPriority::fittingSizeLevel);
    return fitted.height > 0 ? fitted.height : defaultRowHeight;
}

void TableView::arrange(bool remeasure) {
    Rect area = rowArea();
    double y = 0;
    for (std::size_t s = 0; s < rows_.size(); ++s) {
        if (style_ != TableViewStyle::plain) {
            y += kSectionGap;
        }
        for (std::size_t r = 0; r < rows_[s].size(); ++r) {
            Row& row = rows_[s][r];
            if (remeasure) {
                row.height = measure({static_cast<int>(s), static_cast<int>(r)}, *row.cell);
            }
            row.cell->setFrame({area.x(), y, area.width(), row.height});
            if (row.cell->superview().get() != this) {
                addSubview(row.cell);
            }
            y += row.height;
        }
    }
    measuredArea_ = area;
    setContentSize({bounds().size.width, y});
}

void TableView::layoutSubviews() {
    // A new width, or new sides kept clear (the device turned), lays the rows out again.
    if (rowArea() != measuredArea_) {
        arrange(true);
    }
}

void TableView::setRowHeight(double height) {
    rowHeight_ = height;
    if (!rows_.empty()) {
        arrange(true);
    }
}

std::vector<std::shared_ptr<TableViewCell>> TableView::visibleCells() const {
    std::vector<std::shared_ptr<TableViewCell>> cells;
    for (auto& section : rows_) {
        for (auto& row : section) {
            if (row.cell->frame().intersects(bounds())) {
                cells.push_back(row.cell);
            }
        }
    }
    return cells;
}

std::optional<Rect> TableView::rectForRow(const IndexPath& p) const {
    auto cell = cellForRow(p);
    return cell ? std::optional<Rect>(cell->frame()) : std::nullopt;
}

std::optional<IndexPath> TableView::indexPathForRow(Point point) const {
    for (std::size_t s = 0; s < rows_.size(); ++s) {
        for (std::size_t r = 0; r < rows_[s].size(); ++r) {
            Rect f = rows_[s][r].cell->frame();
            if (point.y >= f.minY() && point.y < f.maxY()) {
                return IndexPath{static_cast<int>(s), static_cast<int>(r)};
            }
        }
    }
    return std::nullopt;
}

std::optional<IndexPath> TableView::indexPathForCell(const TableViewCell& cell) const {
    for (std::size_t s = 0; s < rows_.size(); ++s) {
        for (std::size_t r = 0; r < rows_[s].size(); ++r) {
            if (rows_[s][r].cell.get() == &cell) {
                return IndexPath{static_cast<int>(s), static_cast<int>(r)};
            }
        }
    }
    return std::nullopt;
}

void TableView::selectRow(const IndexPath& p, bool) {
    if (selected_) {
        deselectRow(*selected_, false);
    }
    if (auto cell = cellForRow(p)) {
        cell->setSelected(true);
        selected_ = p;
    }
}

void TableView::deselectRow(const IndexPath& p, bool) {
    if (auto cell = cellForRow(p)) {
        cell->setSelected(false);
    }
    if (selected_ == p) {
        selected_.reset();
    }
}

void TableView::touchesEnded(const Touch& touch) {
    auto p = indexPathForRow(touch.location(this));
    if (!p) {
        return;
    }
    selectRow(*p, false);
    if (auto delegate = this->delegate()) {
        delegate->didSelectRowAt(*this, *p);
    }
}

}  // namespace ovix::kit
