#pragma once

#include <memory>

#include "ovix/kit/IndexPath.h"

namespace ovix::kit {

class TableView;

/// Row heights and selection. Held weakly by the table. Every method is optional.
class TableViewDelegate {
  public:
    virtual ~TableViewDelegate() = default;
    /// `TableView::automaticDimension` sizes the row by its cell's constraints.
    virtual double heightForRowAt(TableView& tableView, const IndexPath& indexPath);
    virtual void didSelectRowAt(TableView& tableView, const IndexPath& indexPath) {
        (void)tableView;
        (void)indexPath;
    }
};

}  // namespace ovix::kit
