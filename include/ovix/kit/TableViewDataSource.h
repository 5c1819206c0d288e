#pragma once

#include <memory>

#include "ovix/kit/IndexPath.h"
#include "ovix/kit/TableViewCell.h"

namespace ovix::kit {

class TableView;

/// Supplies a table's rows. Held weakly by the table.
class TableViewDataSource {
  public:
    virtual ~TableViewDataSource() = default;
    virtual int numberOfSections(TableView& tableView) {
        (void)tableView;
        return 1;
    }
    virtual int numberOfRowsInSection(TableView& tableView, int section) = 0;
    virtual std::shared_ptr<TableViewCell> cellForRowAt(TableView& tableView, const IndexPath& indexPath) = 0;
};

}  // namespace ovix::kit
