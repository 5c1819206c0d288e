#include "ui/overlay/PopupTabEvents.h"

#include <cstdlib>

#include "api/APIService.h"
#include "ovix/platform/Platform.h"
#include "ui/overlay/NewsEventCell.h"

namespace ovix {

std::shared_ptr<PopupTabEvents> PopupTabEvents::create(kit::Rect frame) {
    auto tab = std::make_shared<PopupTabEvents>(frame);
    tab->setupLayout();
    tab->loadFeed();
    tab->updateIndicators();
    return tab;
}

PopupTabEvents::PopupTabEvents(kit::Rect frame) : kit::View(frame), contentView_(kit::View::create()) {}

std::int64_t PopupTabEvents::storedIndex() {
    return platform::current()->keyValueStore->integer(lastIndexKey).value_or(0);
}

const std::vector<NewsItem>& PopupTabEvents::selectedList() const {
    return storedIndex() == 0 ? events_ : news_;
}

void PopupTabEvents::setupLayout() {
    setBackgroundColor(kit::Color::black().withAlphaComponent(0.9));

    auto strip = kit::StackView::create();
    strip->setAxis(kit::LayoutAxis::horizontal);
    strip->setDistribution(kit::StackViewDistribution::fillEqually);
    strip->setTranslatesAutoresizingMaskIntoConstraints(false);
    addSubview(strip);
    for (std::size_t i = 0; i < tabs_.size(); ++i) {
        strip->addArrangedSubview(makeTabColumn(i));
    }

    contentView_->setTranslatesAutoresizingMaskIntoConstraints(false);
    addSubview(contentView_);

    tableView_ = kit::TableView::create();
    tableView_->setBackgroundColor(kit::Color::clear());
    tableView_->setSeparatorStyle(kit::TableViewCellSeparatorStyle::none);
    tableView_->setDataSource(self<PopupTabEvents>());
    tableView_->setDelegate(self<PopupTabEvents>());
    tableView_->registerCell<NewsEventCell>(NewsEventCell::cellIdentifier);
    tableView_->setTranslatesAutoresizingMaskIntoConstraints(false);
    contentView_->addSubview(tableView_);

    kit::LayoutConstraint::activate({
        strip->topAnchor().constraintEqualTo(topAnchor()),
        strip->leadingAnchor().constraintEqualTo(leadingAnchor()),
        strip->trailingAnchor().constraintEqualTo(trailingAnchor()),
        strip->heightAnchor().constraintEqualToConstant(stripHeight),
        contentView_->topAnchor().constraintEqualTo(strip->bottomAnchor()),
        contentView_->leadingAnchor().constraintEqualTo(leadingAnchor()),
        contentView_->trailingAnchor().constraintEqualTo(trailingAnchor()),
        contentView_->bottomAnchor().constraintEqualTo(bottomAnchor()),
        tableView_->topAnchor().constraintEqualTo(contentView_->topAnchor()),
        tableView_->leadingAnchor().constraintEqualTo(contentView_->leadingAnchor()),
        tableView_->trailingAnchor().constraintEqualTo(contentView_->trailingAnchor()),
        tableView_->bottomAnchor().constraintEqualTo(contentView_->bottomAnchor()),
    });
}

std::shared_ptr<kit::StackView> PopupTabEvents::makeTabColumn(std::size_t index) {
    auto button = kit::Button::create(kit::ButtonType::system);
    button->setTitle(tabs_[index]);
    button->setTitleColor(kit::Color::white());
    button->titleLabel()->setFont(kit::Font::boldSystemFont(18));
    button->setTag(static_cast<int>(index));
    std::weak_ptr<PopupTabEvents> weak = self<PopupTabEvents>();
    button->addTarget(
        [weak](kit::Control& sender) {
            if (auto tab = weak.lock()) {
                tab->tabTapped(static_cast<kit::Button&>(sender));
            }
        },
        kit::ControlEvent::touchUpInside);
    tabButtons_.push_back(button);

    // Until the stored index is applied the first underline shows, as a fresh strip does.
    auto underline = kit::View::create();
    underline->setBackgroundColor(kit::Color::red());
    underline->setHidden(index != 0);
    underline->setTranslatesAutoresizingMaskIntoConstraints(false);
    underline->heightAnchor().constraintEqualToConstant(underlineHeight)->setActive(true);
    indicators_.push_back(underline);

    auto column = kit::StackView::create({button, underline});
    column->setAxis(kit::LayoutAxis::vertical);
    column->setAlignment(kit::StackViewAlignment::fill);
    column->setDistribution(kit::StackViewDistribution::fill);
    return column;
}

void PopupTabEvents::loadFeed() {
    std::weak_ptr<PopupTabEvents> weak = self<PopupTabEvents>();
    APIService::loadNews([weak](std::optional<std::vector<Dictionary>> list) {
        // Transport thread: touch nothing of the tab here but its liveness.
        if (weak.expired()) {
            return;
        }
        std::optional<std::vector<NewsItem>> items;
        if (list) {
            items.emplace();
            items->reserve(list->size());
            for (const auto& element : *list) {
                items->push_back(NewsItem::fromDictionary(element));
            }
        }
        platform::current()->mainQueue->async([weak, items = std::move(items)] {
            auto tab = weak.lock();
            if (tab && items) {
                tab->applyFeed(*items);
            }
        });
    });
}

void PopupTabEvents::applyFeed(const std::vector<NewsItem>& items) {
    // The two lists are independent: an item may be in both, or in neither.
    events_.clear();
    news_.clear();
    for (const auto& item : items) {
        if (item.isEvent == 1) {
            events_.push_back(item);
        }
        if (item.isNews == 1) {
            news_.push_back(item);
        }
    }
    auto& console = *platform::current()->console;
    console.printLine("✅ Events count: " + std::to_string(events_.size()));
    console.printLine("✅ News count: " + std::to_string(news_.size()));
    tableView_->reloadData();
}

void PopupTabEvents::tabTapped(const kit::Button& sender) {
    platform::current()->keyValueStore->setInteger(lastIndexKey, sender.tag());
    updateIndicators();
    tableView_->reloadData();
}

void PopupTabEvents::updateIndicators() {
    // A stored value other than 0 or 1 hides both underlines while the news list shows; kept so.
    const auto index = storedIndex();
    for (std::size_t i = 0; i < indicators_.size(); ++i) {
        indicators_[i]->setHidden(static_cast<std::int64_t>(i) != index);
    }
}

int PopupTabEvents::numberOfRowsInSection(kit::TableView&, int) {
    return static_cast<int>(selectedList().size());
}

std::shared_ptr<kit::TableViewCell> PopupTabEvents::cellForRowAt(kit::TableView& tableView,
                                                                 const kit::IndexPath& indexPath) {
    auto cell = std::dynamic_pointer_cast<NewsEventCell>(
        tableView.dequeueReusableCell(NewsEventCell::cellIdentifier, indexPath));
    if (!cell) {
        std::abort();  // the tab registers this identifier itself: anything else is a broken build
    }
    const auto& list = selectedList();
    const auto& item = list.at(static_cast<std::size_t>(indexPath.row));
    cell->titleLabel()->setText(item.title);
    cell->timeLabel()->setText(item.displayDate());
    cell->setUrlString(item.newsUrl);
    return cell;
}

}  // namespace ovix
