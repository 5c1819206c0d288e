#include "ui/support/MultiSelectVC.h"

#include <algorithm>

#include "ovix/kit/BarButtonItem.h"

namespace ovix {

MultiSelectVC::MultiSelectVC() : tableView_(kit::TableView::create({}, kit::TableViewStyle::insetGrouped)) {}

void MultiSelectVC::viewDidLoad() {
    setTitle(std::string(listTitle));
    auto root = view();
    root->setBackgroundColor(kit::Color::systemBackground());
    tableView_->setDataSource(self<MultiSelectVC>());
    tableView_->setDelegate(self<MultiSelectVC>());
    tableView_->setFrame(root->bounds());
    tableView_->setAutoresizingMask(kit::AutoresizingMask::flexibleWidth |
                                    kit::AutoresizingMask::flexibleHeight);
    root->addSubview(tableView_);

    const std::weak_ptr<MultiSelectVC> weak = self<MultiSelectVC>();
    navigationItem().setRightBarButtonItem(
        kit::BarButtonItem::create("OK", kit::BarButtonItemStyle::done, [weak] {
            if (auto list = weak.lock()) {
                list->doneTapped();
            }
        }));
    navigationItem().setLeftBarButtonItem(
        kit::BarButtonItem::create("Hủy", kit::BarButtonItemStyle::plain, [weak] {
            if (auto list = weak.lock()) {
                list->cancelTapped();
            }
        }));
    tableView_->reloadData();
}

void MultiSelectVC::viewWillAppear(bool animated) {
    ViewController::viewWillAppear(animated);
    // The table fills the view, under the bar; its content is inset by what covers it, as a system
    // list's is, so the first row is not hidden and the list rests at its top.
    const kit::EdgeInsets covered = tableView_->safeAreaInsets();
    tableView_->setContentInset({covered.top, 0, covered.bottom, 0});
    tableView_->setContentOffset({0, -covered.top});
}

int MultiSelectVC::numberOfRowsInSection(kit::TableView&, int) {
    return static_cast<int>(items.size());
}

std::shared_ptr<kit::TableViewCell> MultiSelectVC::cellForRowAt(kit::TableView&,
                                                                const kit::IndexPath& indexPath) {
    // A short fixed list: a fresh cell per row keeps no tick from another row's past.
    auto cell = kit::TableViewCell::create(kit::TableViewCellStyle::defaultStyle);
    const auto row = static_cast<std::size_t>(indexPath.row);
    cell->textLabel()->setText(row < items.size() ? items[row] : std::string());
    const bool ticked = row < selected.size() && selected[row];
    cell->setAccessoryType(ticked ? kit::TableViewCellAccessoryType::checkmark
                                  : kit::TableViewCellAccessoryType::none);
    return cell;
}

void MultiSelectVC::didSelectRowAt(kit::TableView& tableView, const kit::IndexPath& indexPath) {
    const auto row = static_cast<std::size_t>(indexPath.row);
    if (row >= selected.size()) {
        return;  // no flag to flip: the caller gave fewer flags than items
    }
    selected[row] = !selected[row];
    tableView.reloadRows({indexPath}, kit::TableViewRowAnimation::automatic);
}

std::vector<std::string> MultiSelectVC::chosenItems() const {
    std::vector<std::string> chosen;
    const auto count = std::min(items.size(), selected.size());
    for (std::size_t i = 0; i < count; ++i) {
        if (selected[i]) {
            chosen.push_back(items[i]);
        }
    }
    return chosen;
}

void MultiSelectVC::doneTapped() {
    if (onDone) {
        onDone(chosenItems());
    }
    dismiss(true);
}

void MultiSelectVC::cancelTapped() {
    dismiss(true);
}

}  // namespace ovix
