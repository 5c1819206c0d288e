#include <gtest/gtest.h>

#include <future>
#include <optional>
#include <string>
#include <vector>

#include "ovix/kit/Application.h"
#include "ui/overlay/NewsEventCell.h"
#include "ui/overlay/OverlayTestSupport.h"
#include "ui/overlay/PopupTabEvents.h"

namespace ovix::test {
namespace {

struct FeedItem {
    std::string title;
    int isEvent = 0;
    int isNews = 0;
    std::string url = "https://game.example/news";
    long long createdAt = 0;
};

std::string feedJson(const std::vector<FeedItem>& items) {
    std::string data;
    for (const auto& item : items) {
        data += (data.empty() ? "" : ",") + std::string(R"({"Title":")") + item.title + R"(","NewsUrl":")" +
                item.url + R"(","IsEvent":)" + std::to_string(item.isEvent) + R"(,"IsNews":)" +
                std::to_string(item.isNews) + R"(,"CreatedAt":)" + std::to_string(item.createdAt) + "}";
    }
    return R"({"Data":[)" + data + "]}";
}

std::vector<std::string> titles(const std::vector<NewsItem>& items) {
    std::vector<std::string> out;
    for (const auto& item : items) {
        out.push_back(item.title);
    }
    return out;
}

class PopupTabEventsTest : public OverlayTest {
  protected:
    void serveFeed(const std::vector<FeedItem>& items) {
        server.on(feedPath, LoopbackServer::Reply{200, feedJson(items)});
    }

    /// A tab in the key window, 390 x 600, laid out, with its feed applied.
    std::shared_ptr<PopupTabEvents> shownTab() {
        const auto before = countLines().size();
        auto tab = PopupTabEvents::create({0, 0, 390, 600});
        window()->addSubview(tab);
        EXPECT_TRUE(h.mainQueue->runUntil([&] { return countLines().size() >= before + 2; }));
        window()->layoutIfNeeded();
        return tab;
    }

    /// The tab's own console lines (the transport also prints the bodies it receives).
    std::vector<std::string> countLines() const {
        std::vector<std::string> out;
        for (const auto& line : h.console->lines()) {
            if (line.rfind("✅", 0) == 0) {
                out.push_back(line);
            }
        }
        return out;
    }

    std::size_t storeWrites() const {
        std::size_t n = 0;
        for (const auto& entry : h.store->journal()) {
            n += entry == std::string("set ") + PopupTabEvents::lastIndexKey;
        }
        return n;
    }
};

TEST_F(PopupTabEventsTest, TheFeedFillsEachListByItsOwnFlagAndCountsThem) {
    struct Case {
        const char* name;
        std::vector<FeedItem> feed;
        std::vector<std::string> events;
        std::vector<std::string> news;
    };
    const std::vector<Case> cases{
        {"both flags: in both lists", {{"a", 1, 1}}, {"a"}, {"a"}},
        {"neither flag, or flags of 2: in no list", {{"zero", 0, 0}, {"two", 2, 2}}, {}, {}},
        {"feed order kept",
         {{"e1", 1, 0},
          {"n1", 0, 1},
          {"e2", 1, 0},
          {"n2", 0, 1},
          {"n3", 0, 1},
          {"e3", 1, 0},
          {"n4", 0, 1},
          {"n5", 0, 1}},
         {"e1", "e2", "e3"},
         {"n1", "n2", "n3", "n4", "n5"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        h.console->clear();
        serveFeed(c.feed);
        auto tab = shownTab();
        EXPECT_EQ(titles(tab->events()), c.events);
        EXPECT_EQ(titles(tab->news()), c.news);
        EXPECT_EQ(countLines(),
                  (std::vector<std::string>{"✅ Events count: " + std::to_string(c.events.size()),
                                            "✅ News count: " + std::to_string(c.news.size())}));
        EXPECT_EQ(tab->tableView()->numberOfRows(0), static_cast<int>(c.events.size()))
            << "events shown by default";
        tab->removeFromSuperview();
    }
}

TEST_F(PopupTabEventsTest, TheStoredIndexPicksTheListAndTheUnderline) {
    struct Case {
        std::optional<std::int64_t> stored;
        bool firstUnderline;
        bool secondUnderline;
        int rows;
    };
    // Two events and three news items; any non-zero index shows the news, only 0 or 1 an underline.
    const std::vector<Case> cases{{std::nullopt, true, false, 2},
                                  {0, true, false, 2},
                                  {1, false, true, 3},
                                  {7, false, false, 3},
                                  {-1, false, false, 3}};
    serveFeed({{"e1", 1, 0}, {"e2", 1, 0}, {"n1", 0, 1}, {"n2", 0, 1}, {"n3", 0, 1}});
    for (const auto& c : cases) {
        SCOPED_TRACE(c.stored ? std::to_string(*c.stored) : "absent");
        if (c.stored) {
            h.store->setInteger(PopupTabEvents::lastIndexKey, *c.stored);
        } else {
            h.store->remove(PopupTabEvents::lastIndexKey);
        }
        auto tab = shownTab();
        EXPECT_EQ(!tab->indicators()[0]->isHidden(), c.firstUnderline);
        EXPECT_EQ(!tab->indicators()[1]->isHidden(), c.secondUnderline);
        EXPECT_EQ(tab->tableView()->numberOfRows(0), c.rows);
        // A shown underline sits under its button, 5 high, across the strip's half.
        for (int i = 0; i < 2; ++i) {
            const auto& line = tab->indicators()[static_cast<std::size_t>(i)];
            if (!line->isHidden()) {
                EXPECT_EQ(line->convertTo(line->bounds(), nullptr), (kit::Rect{i * 195.0, 55, 195, 5}));
            }
        }
        tab->removeFromSuperview();
    }
}

TEST_F(PopupTabEventsTest, ATabTapStoresItsIndexEvenWhenUnchangedAndReloads) {
    serveFeed({{"e1", 1, 0}, {"n1", 0, 1}, {"n2", 0, 1}});
    h.store->setInteger(PopupTabEvents::lastIndexKey, 7);
    auto tab = shownTab();
    const std::size_t before = storeWrites();
    struct Step {
        int button;
        int rows;
    };
    for (const Step step : {Step{0, 1}, Step{1, 2}, Step{1, 2}, Step{0, 1}}) {
        SCOPED_TRACE(step.button);
        tab->tabButtons()[static_cast<std::size_t>(step.button)]->sendActions(
            kit::ControlEvent::touchUpInside);
        EXPECT_EQ(h.store->integer(PopupTabEvents::lastIndexKey), step.button);
        EXPECT_EQ(tab->indicators()[0]->isHidden(), step.button != 0);
        EXPECT_EQ(tab->indicators()[1]->isHidden(), step.button != 1);
        EXPECT_EQ(tab->tableView()->numberOfRows(0), step.rows);
    }
    EXPECT_EQ(storeWrites() - before, 4u) << "the repeated tap writes too";
    EXPECT_EQ(server.countFor(feedPath), 1u) << "one request per tab, whatever is tapped";
}

TEST_F(PopupTabEventsTest, ARowShowsTitleAndLocalDateAndIsSizedByItsConstraints) {
    serveFeed({{"Ra mắt máy chủ mới", 1, 0, "https://game.example/a", 1700000000999},
               {"Bảo trì", 1, 0, "https://game.example/b", 1700000000000}});
    auto tab = shownTab();
    auto cell =
        std::dynamic_pointer_cast<NewsEventCell>(tab->tableView()->cellForRow(kit::IndexPath::forRow(0)));
    ASSERT_NE(cell, nullptr);
    EXPECT_EQ(cell->titleLabel()->text(), "Ra mắt máy chủ mới");
    // 1700000000 s is 14/11/2023 22:13:20 UTC; the device is seven hours east.
    EXPECT_EQ(cell->timeLabel()->text(), "15/11/2023 05:13");
    EXPECT_EQ(cell->urlString(), "https://game.example/a");
    auto second =
        std::dynamic_pointer_cast<NewsEventCell>(tab->tableView()->cellForRow(kit::IndexPath::forRow(1)));
    EXPECT_EQ(second->timeLabel()->text(), cell->timeLabel()->text()) << "milliseconds do not show";

    // 8 + one 16-point line (19.2, rounded up to 20) + 4 + icon 16 + 16 + border 1.
    EXPECT_DOUBLE_EQ(tab->tableView()->rectForRow(kit::IndexPath::forRow(0))->size.height, 65);
    EXPECT_EQ(tab->tableView()->frame(), (kit::Rect{0, 0, 390, 540})) << "the table fills below the strip";
}

TEST_F(PopupTabEventsTest, ARowTapOpensOnlyAValidLink) {
    struct Case {
        const char* url;
        bool opened;
    };
    const std::vector<Case> cases{{"https://game.example/su-kien?id=5", true},
                                  {"", false},
                                  {"not a link", false},
                                  {"https://game.example/a b", false},
                                  {"https://game.example/%zz", false},
                                  {"https:", false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string("\"") + c.url + "\"");
        serveFeed({{"item", 1, 0, c.url}});
        const auto before = h.application->openedUrls().size();
        auto tab = shownTab();
        auto cell = tab->tableView()->cellForRow(kit::IndexPath::forRow(0));
        ASSERT_NE(cell, nullptr);
        window()->tap(cell->convertTo(kit::Point{100, 20}, nullptr));
        const auto& opened = h.application->openedUrls();
        ASSERT_EQ(opened.size() - before, c.opened ? 1u : 0u);
        if (c.opened) {
            EXPECT_EQ(opened.back(), c.url);
        }
        tab->removeFromSuperview();
    }
}

TEST_F(PopupTabEventsTest, TheFeedIsAppliedOnTheMainQueueOnly) {
    serveFeed({{"e1", 1, 0}});
    auto tab = PopupTabEvents::create({0, 0, 390, 600});
    ASSERT_TRUE(waitForPostedWork());
    EXPECT_TRUE(tab->events().empty()) << "nothing changes before the main queue runs";
    EXPECT_TRUE(countLines().empty());
    h.mainQueue->runUntilIdle();
    EXPECT_EQ(tab->events().size(), 1u);
}

TEST_F(PopupTabEventsTest, AFailedFeedLeavesBothListsEmptyAndSilent) {
    server.on(feedPath, LoopbackServer::Reply{500, feedJson({{"e1", 1, 1}})});
    auto tab = PopupTabEvents::create({0, 0, 390, 600});
    ASSERT_TRUE(server.waitForRequests(1));
    h.mainQueue->runUntil([] { return false; }, std::chrono::milliseconds(300));
    EXPECT_TRUE(tab->events().empty());
    EXPECT_TRUE(tab->news().empty());
    EXPECT_EQ(tab->tableView()->numberOfRows(0), 0);
    EXPECT_TRUE(countLines().empty());
}

TEST_F(PopupTabEventsTest, ATabReleasedBeforeTheFeedArrivesIsLeftAlone) {
    std::promise<void> released;
    auto releasedFuture = released.get_future().share();
    server.on(feedPath, [releasedFuture](const LoopbackServer::Request&) {
        releasedFuture.wait_for(std::chrono::seconds(5));
        return LoopbackServer::Reply{200, feedJson({{"e1", 1, 0}, {"e2", 1, 0}, {"e3", 1, 0}})};
    });
    auto tab = PopupTabEvents::create({0, 0, 390, 600});
    std::weak_ptr<PopupTabEvents> weak = tab;
    ASSERT_TRUE(server.waitForRequests(1));
    tab.reset();
    EXPECT_TRUE(weak.expired()) << "the request must not keep the tab alive";
    released.set_value();

    // A later tab's answer comes after the first one's on the one transport thread.
    serveFeed({{"only", 1, 0}});
    auto later = shownTab();
    EXPECT_EQ(h.console->count("✅ Events count: 1"), 1u);
    EXPECT_EQ(h.console->count("✅ Events count: 3"), 0u);
}

}  // namespace
}  // namespace ovix::test
