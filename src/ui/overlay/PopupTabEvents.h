#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ovix/NewsItem.h"
#include "ovix/kit/Button.h"
#include "ovix/kit/StackView.h"
#include "ovix/kit/TableView.h"
#include "ovix/kit/View.h"

namespace ovix {

/// The overlay's events and news tab: a two-button strip ("Sự kiện", "Tin tức") with a red underline
/// under the chosen one, over a list of `NewsEventCell` rows.
///
/// Each instance asks for the feed once, at creation; both lists stay empty until it answers, and a
/// failed request leaves them empty without a word. The answer may come on any thread: it holds the
/// tab weakly and does its work on the main queue, so a tab released before then is left alone.
/// The chosen list is the integer "PopupTabEventsLastIndex" of the platform's key-value store
/// (absent reads as 0): 0 shows the events, any other value the news; an underline shows only for a
/// stored 0 or 1. Main thread only.
class PopupTabEvents : public kit::View, public kit::TableViewDataSource, public kit::TableViewDelegate {
  public:
    static constexpr const char* lastIndexKey = "PopupTabEventsLastIndex";
    static constexpr double stripHeight = 60;
    static constexpr double underlineHeight = 5;

    /// Builds the layout, starts the feed request, then shows the stored index's underline.
    static std::shared_ptr<PopupTabEvents> create(kit::Rect frame = {});
    explicit PopupTabEvents(kit::Rect frame);

    const std::array<std::string, 2>& tabs() const { return tabs_; }
    const std::vector<std::shared_ptr<kit::Button>>& tabButtons() const { return tabButtons_; }
    const std::vector<std::shared_ptr<kit::View>>& indicators() const { return indicators_; }
    const std::shared_ptr<kit::View>& contentView() const { return contentView_; }
    const std::shared_ptr<kit::TableView>& tableView() const { return tableView_; }
    const std::vector<NewsItem>& events() const { return events_; }
    const std::vector<NewsItem>& news() const { return news_; }

    /// A tab button's action: stores its tag (even when unchanged), moves the underline, reloads.
    void tabTapped(const kit::Button& sender);

    int numberOfRowsInSection(kit::TableView& tableView, int section) override;
    std::shared_ptr<kit::TableViewCell> cellForRowAt(kit::TableView& tableView,
                                                     const kit::IndexPath& indexPath) override;

    std::string className() const override { return "PopupTabEvents"; }

  private:
    static std::int64_t storedIndex();
    const std::vector<NewsItem>& selectedList() const;
    void setupLayout();
    std::shared_ptr<kit::StackView> makeTabColumn(std::size_t index);
    void loadFeed();
    void applyFeed(const std::vector<NewsItem>& items);
    void updateIndicators();

    std::array<std::string, 2> tabs_{"Sự kiện", "Tin tức"};
    std::vector<std::shared_ptr<kit::Button>> tabButtons_;
    std::vector<std::shared_ptr<kit::View>> indicators_;
    std::shared_ptr<kit::View> contentView_;
    std::vector<NewsItem> events_;
    std::vector<NewsItem> news_;
    std::shared_ptr<kit::TableView> tableView_;
};

}  // namespace ovix
