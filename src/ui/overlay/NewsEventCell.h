#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "ovix/kit/ImageView.h"
#include "ovix/kit/Label.h"
#include "ovix/kit/TableViewCell.h"

namespace ovix {

/// One row of the events and news lists: the item's title, a green clock with its date, and a thin
/// line under it. The row's height follows from its constraints. A tap anywhere on the row hands
/// `urlString` to the host application to open outside the SDK; an absent, empty or malformed link
/// does nothing. Main thread only.
class NewsEventCell : public kit::TableViewCell {
  public:
    static constexpr const char* cellIdentifier = "NewsEventCell";

    static std::shared_ptr<NewsEventCell> create(
        kit::TableViewCellStyle style = kit::TableViewCellStyle::defaultStyle,
        std::string reuseIdentifier = cellIdentifier);
    NewsEventCell(kit::TableViewCellStyle style, std::string reuseIdentifier);

    const std::shared_ptr<kit::Label>& titleLabel() const { return titleLabel_; }
    const std::shared_ptr<kit::ImageView>& timeIcon() const { return timeIcon_; }
    const std::shared_ptr<kit::Label>& timeLabel() const { return timeLabel_; }
    const std::shared_ptr<kit::View>& bottomBorder() const { return bottomBorder_; }

    /// The link the row opens; none until the list fills the row.
    const std::optional<std::string>& urlString() const { return urlString_; }
    void setUrlString(std::optional<std::string> url) { urlString_ = std::move(url); }

    /// The row's tap: opens the link through the platform's application when it is a URL.
    void cellTapped();
    /// Whether `text` is a URL the host can be handed: a scheme, something after it, and only URL
    /// characters (percent escapes well formed).
    static bool isOpenableLink(std::string_view text);

    std::string className() const override { return "NewsEventCell"; }

  private:
    void setupLayout();

    std::shared_ptr<kit::Label> titleLabel_;
    std::shared_ptr<kit::ImageView> timeIcon_;
    std::shared_ptr<kit::Label> timeLabel_;
    std::shared_ptr<kit::View> bottomBorder_;
    std::optional<std::string> urlString_;
};

}  // namespace ovix
