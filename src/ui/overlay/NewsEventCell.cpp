#include "ui/overlay/NewsEventCell.h"

#include "core/UrlSyntax.h"
#include "ovix/kit/Application.h"
#include "ovix/kit/TapGestureRecognizer.h"

namespace ovix {

std::shared_ptr<NewsEventCell> NewsEventCell::create(kit::TableViewCellStyle style,
                                                     std::string reuseIdentifier) {
    auto cell = std::make_shared<NewsEventCell>(style, std::move(reuseIdentifier));
    cell->setUpCell();
    cell->setupLayout();
    std::weak_ptr<NewsEventCell> weak = cell;
    cell->contentView()->addGestureRecognizer(
        kit::TapGestureRecognizer::create([weak](kit::TapGestureRecognizer&) {
            if (auto strong = weak.lock()) {
                strong->cellTapped();
            }
        }));
    return cell;
}

NewsEventCell::NewsEventCell(kit::TableViewCellStyle style, std::string reuseIdentifier)
    : kit::TableViewCell(style, std::move(reuseIdentifier)),
      titleLabel_(kit::Label::create()),
      timeIcon_(kit::ImageView::create(kit::Image::systemNamed("clock"))),
      timeLabel_(kit::Label::create()),
      bottomBorder_(kit::View::create()) {}

void NewsEventCell::setupLayout() {
    titleLabel_->setTextColor(kit::Color::white());
    titleLabel_->setFont(kit::Font::boldSystemFont(16));
    timeIcon_->setTintColor(kit::Color::systemGreen());
    timeLabel_->setTextColor(kit::Color::systemGreen());
    timeLabel_->setFont(kit::Font::boldSystemFont(12));
    bottomBorder_->setBackgroundColor(kit::Color::gray().withAlphaComponent(0.3));
    setBackgroundColor(kit::Color::clear());

    const auto& content = contentView();
    content->setBackgroundColor(kit::Color::clear());
    for (const std::shared_ptr<kit::View>& view :
         {std::shared_ptr<kit::View>(titleLabel_), std::shared_ptr<kit::View>(timeIcon_),
          std::shared_ptr<kit::View>(timeLabel_), bottomBorder_}) {
        view->setTranslatesAutoresizingMaskIntoConstraints(false);
        content->addSubview(view);
    }
    kit::LayoutConstraint::activate({
        titleLabel_->topAnchor().constraintEqualTo(content->topAnchor(), 8),
        titleLabel_->leadingAnchor().constraintEqualTo(content->leadingAnchor(), 8),
        titleLabel_->trailingAnchor().constraintEqualTo(content->trailingAnchor(), -8),
        timeIcon_->topAnchor().constraintEqualTo(titleLabel_->bottomAnchor(), 4),
        timeIcon_->leadingAnchor().constraintEqualTo(content->leadingAnchor(), 8),
        timeIcon_->widthAnchor().constraintEqualToConstant(16),
        timeIcon_->heightAnchor().constraintEqualToConstant(16),
        timeLabel_->centerYAnchor().constraintEqualTo(timeIcon_->centerYAnchor()),
        timeLabel_->leadingAnchor().constraintEqualTo(timeIcon_->trailingAnchor(), 4),
        timeLabel_->trailingAnchor().constraintLessThanOrEqualTo(content->trailingAnchor(), -8),
        bottomBorder_->topAnchor().constraintEqualTo(timeIcon_->bottomAnchor(), 16),
        bottomBorder_->leadingAnchor().constraintEqualTo(content->leadingAnchor()),
        bottomBorder_->trailingAnchor().constraintEqualTo(content->trailingAnchor()),
        bottomBorder_->heightAnchor().constraintEqualToConstant(1),
        bottomBorder_->bottomAnchor().constraintEqualTo(content->bottomAnchor()),
    });
}

void NewsEventCell::cellTapped() {
    const std::string link = urlString_.value_or("");
    if (!isOpenableLink(link)) {
        return;
    }
    // Whether anything took it is the host's affair; the SDK has nothing to show either way.
    (void)kit::Application::shared().open(link);
}

bool NewsEventCell::isOpenableLink(std::string_view text) {
    const auto colon = UrlSyntax::schemeEnd(text);
    if (colon == std::string_view::npos || colon + 1 == text.size()) {
        return false;
    }
    for (std::size_t i = colon + 1; i < text.size(); ++i) {
        if (text[i] == '%') {
            if (!UrlSyntax::isEscapeAt(text, i)) {
                return false;
            }
            i += 2;
        } else if (!UrlSyntax::isUriCharacter(text[i])) {
            return false;
        }
    }
    return true;
}

}  // namespace ovix
