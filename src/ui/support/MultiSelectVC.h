#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "ovix/kit/TableView.h"
#include "ovix/kit/ViewController.h"

namespace ovix {

/// A list on which the player ticks any number of entries, then confirms with "OK" or leaves with
/// "Hủy". Shown inside a navigation controller, whose bar carries the title and both buttons.
///
/// The caller sets `items`, `selected` (one flag per item) and `onDone` before presenting. A row tap
/// inverts that row's flag only. "OK" hands `onDone` the ticked items in list order (walking both
/// lists together up to the shorter one) and dismisses; "Hủy" dismisses and calls nothing, so the
/// caller's own flags stay as they were. Every row gets a fresh cell; a row past the end of
/// `selected` shows no tick. Main thread only.
class MultiSelectVC : public kit::ViewController,
                      public kit::TableViewDataSource,
                      public kit::TableViewDelegate {
  public:
    static constexpr std::string_view listTitle = "Chọn loại lỗi";

    static std::shared_ptr<MultiSelectVC> create() { return std::make_shared<MultiSelectVC>(); }
    MultiSelectVC();

    std::vector<std::string> items;
    std::vector<bool> selected;
    std::function<void(std::vector<std::string>)> onDone;

    const std::shared_ptr<kit::TableView>& tableView() const { return tableView_; }

    /// Actions of the bar's "OK" and "Hủy".
    void doneTapped();
    void cancelTapped();
    /// The ticked items, in list order.
    std::vector<std::string> chosenItems() const;

    int numberOfRowsInSection(kit::TableView& tableView, int section) override;
    std::shared_ptr<kit::TableViewCell> cellForRowAt(kit::TableView& tableView,
                                                     const kit::IndexPath& indexPath) override;
    void didSelectRowAt(kit::TableView& tableView, const kit::IndexPath& indexPath) override;

    std::string className() const override { return "MultiSelectVC"; }

  protected:
    void viewDidLoad() override;
    /// Starts the rows below the navigation bar, which lies over the top of the table.
    void viewWillAppear(bool animated) override;

  private:
    std::shared_ptr<kit::TableView> tableView_;
};

}  // namespace ovix
