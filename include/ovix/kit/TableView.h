#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ovix/kit/IndexPath.h"
#include "ovix/kit/ReusePool.h"
#include "ovix/kit/ScrollView.h"
#include "ovix/kit/TableViewCell.h"
#include "ovix/kit/TableViewDataSource.h"
#include "ovix/kit/TableViewDelegate.h"

namespace ovix::kit {

enum class TableViewStyle { plain, grouped, insetGrouped };
enum class TableViewCellSeparatorStyle { none, singleLine };
enum class TableViewRowAnimation { fade, right, left, top, bottom, none, middle, automatic };

/// A vertical list of rows in sections.
///
/// `reloadData` asks the data source for every row's cell (the headless table keeps all rows'
/// cells; the SDK's lists are short), measures each row (the delegate's height, else `rowHeight`,
/// else — automatic — the cell's constraints at the table's width, 44 when they give nothing) and
/// stacks the rows; `contentSize` follows. Cells come from `dequeueReusableCell`: a cell the last
/// reload released, or a new one from the factory registered for the identifier. A tap on a row
/// (not taken by a control or gesture inside it) selects it and tells the delegate. Rows are
/// re-measured when the width changes. Grouped styles start sections 35 points down; the inset
/// style also insets rows by 20 points on each side.
class TableView : public ScrollView {
  public:
    static constexpr double automaticDimension = -1;
    static constexpr double defaultRowHeight = 44;
    using CellFactory = ReusePool<TableViewCell>::Factory;

    static std::shared_ptr<TableView> create(Rect frame = {}, TableViewStyle style = TableViewStyle::plain);
    TableView(Rect frame, TableViewStyle style);

    TableViewStyle style() const { return style_; }
    void setDataSource(const std::shared_ptr<TableViewDataSource>& dataSource) { dataSource_ = dataSource; }
    std::shared_ptr<TableViewDataSource> dataSource() const { return dataSource_.lock(); }
    void setDelegate(const std::shared_ptr<TableViewDelegate>& delegate) { delegate_ = delegate; }
    std::shared_ptr<TableViewDelegate> delegate() const { return delegate_.lock(); }

    void registerCell(std::string reuseIdentifier, CellFactory factory);
    /// Registers `Cell::create(TableViewCellStyle::defaultStyle, reuseIdentifier)`.
    template <class Cell>
    void registerCell(std::string reuseIdentifier) {
        registerCell(std::move(reuseIdentifier), [](const std::string& id) {
            return Cell::create(TableViewCellStyle::defaultStyle, id);
        });
    }
    /// A released cell or a new registered one; null (with a warning) for an unknown identifier.
    std::shared_ptr<TableViewCell> dequeueReusableCell(const std::string& reuseIdentifier,
                                                       const IndexPath& indexPath);

    void reloadData();
    /// Asks the data source again for these rows only.
    void reloadRows(const std::vector<IndexPath>& indexPaths, TableViewRowAnimation animation);

    int numberOfSections() const { return static_cast<int>(rows_.size()); }
    int numberOfRows(int section) const;
    std::shared_ptr<TableViewCell> cellForRow(const IndexPath& indexPath) const;
    /// Cells whose rows intersect the visible bounds, top to bottom.
    std::vector<std::shared_ptr<TableViewCell>> visibleCells() const;
    /// Row frame in the table's content coordinates.
    std::optional<Rect> rectForRow(const IndexPath& indexPath) const;
    std::optional<IndexPath> indexPathForRow(Point point) const;
    std::optional<IndexPath> indexPathForCell(const TableViewCell& cell) const;
    std::optional<IndexPath> indexPathForSelectedRow() const { return selected_; }
    /// Selects a row as a tap does, without telling the delegate.
    void selectRow(const IndexPath& indexPath, bool animated);
    void deselectRow(const IndexPath& indexPath, bool animated);

    double rowHeight() const { return rowHeight_; }
    void setRowHeight(double height);
    TableViewCellSeparatorStyle separatorStyle() const { return separatorStyle_; }
    void setSeparatorStyle(TableViewCellSeparatorStyle style) { separatorStyle_ = style; }

    void layoutSubviews() override;
    void touchesEnded(const Touch& touch) override;
    std::string className() const override { return "TableView"; }

  private:
    struct Row {
        std::shared_ptr<TableViewCell> cell;
        double height = defaultRowHeight;
    };

    std::shared_ptr<TableViewCell> makeCell(const IndexPath& indexPath);
    double measure(const IndexPath& indexPath, TableViewCell& cell);
    void arrange(bool remeasure);
    Rect rowArea() const;

    TableViewStyle style_;
    std::weak_ptr<TableViewDataSource> dataSource_;
    std::weak_ptr<TableViewDelegate> delegate_;
    ReusePool<TableViewCell> pool_;
    std::vector<std::vector<Row>> rows_;
    std::optional<IndexPath> selected_;
    double rowHeight_ = automaticDimension;
    TableViewCellSeparatorStyle separatorStyle_ = TableViewCellSeparatorStyle::singleLine;
    Rect measuredArea_{{-1, -1}, {-1, -1}};  ///< the row area the rows were last laid out in
};

}  // namespace ovix::kit
