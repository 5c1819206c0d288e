#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <tuple>

#include "api/APIService.h"
#include "api/ApiTest.h"
#include "api/NewsItem.h"
#include "ovix/testing/FixedTimeZone.h"
#include "platform/posix/PosixTimeZone.h"

namespace {

using ovix::Dictionary;
using ovix::NewsItem;
using ovix::Value;
using ovix::test::LoopbackServer;
using ovix::testing::FixedTimeZone;
using ::testing::UnorderedElementsAre;

// Every member in declaration order, so that one comparison checks them all.
auto members(const NewsItem& i) {
    return std::tuple(i.id, i.gameId, i.gameName, i.title, i.newsUrl, i.isNews, i.isEvent, i.isTutorial,
                      i.createdAt, i.updatedAt);
}
NewsItem itemFrom(const char* json) {
    return NewsItem::fromDictionary(*Value::fromJson(json)->asObject());
}

TEST(NewsItemFromDictionary, TakesOnlyValuesThatAlreadyHaveTheMembersKind) {
    // A whole double is a number with an exact integer value.
    EXPECT_EQ(members(itemFrom(R"({"Id":42,"GameId":"g1","GameName":"Rồng","Title":"T","NewsUrl":"https://x",
        "IsNews":1,"IsEvent":0,"IsTutorial":1.0,"CreatedAt":1700000000123,"UpdatedAt":-5})")),
              std::tuple(42, "g1", "Rồng", "T", "https://x", 1, 0, 1, 1700000000123, -5));
    // Text is not converted, a boolean is not a number, out of the signed range is nothing, keys are
    // case-sensitive.
    EXPECT_EQ(
        members(itemFrom(R"({"Id":"5","GameId":7,"Title":null,"NewsUrl":["u"],"IsNews":true,"IsEvent":0.5,
        "IsTutorial":18446744073709551615,"createdAt":5,"UpdatedAt":1e19})")),
        members(NewsItem{}));
}

TEST(NewsItemDate, IsDayMonthYearHourMinuteInTheZoneWithMillisecondsDroppedTowardZero) {
    const std::tuple<std::int64_t, int, const char*> cases[] = {
        {0, 0, "01/01/1970 00:00"},
        {0, 7 * 3600, "01/01/1970 07:00"},
        {0, -5 * 3600, "31/12/1969 19:00"},
        {1709251199000, 0, "29/02/2024 23:59"},
        {1700000039999, 0, "14/11/2023 22:13"},  // 22:13:59.999
        {-999, 0, "01/01/1970 00:00"},           // truncated to 0 s, not floored to -1 s
        {-60001, 0, "31/12/1969 23:59"},
    };
    for (const auto& [ms, offset, expected] : cases) {
        EXPECT_EQ(NewsItem::formatDate(ms, FixedTimeZone(offset)), expected) << ms;
    }
    auto h = ovix::testing::HeadlessPlatform::create();
    h.platform->timeZone = std::make_shared<FixedTimeZone>(7 * 3600);
    h.install();
    NewsItem item;
    item.createdAt = 86400000;
    EXPECT_EQ(item.displayDate(), "02/01/1970 07:00");
}

TEST(NewsItemDate, FollowsTheSystemZoneAsItChanges) {
    const char* previous = std::getenv("TZ");
    const std::string saved = previous != nullptr ? previous : "";
    ovix::platform::PosixTimeZone zone;
    setenv("TZ", "Asia/Ho_Chi_Minh", 1);
    const auto hoChiMinh = NewsItem::formatDate(1700000000000, zone);
    setenv("TZ", "America/New_York", 1);
    const auto newYorkSummer = NewsItem::formatDate(1719835200000, zone);
    previous != nullptr ? setenv("TZ", saved.c_str(), 1) : unsetenv("TZ");
    EXPECT_EQ(hoChiMinh, "15/11/2023 05:13");
    EXPECT_EQ(newYorkSummer, "01/07/2024 08:00") << "daylight saving time";
}

class NewsFeed : public ovix::test::ApiTest {
  protected:
    static constexpr const char* kPath = "/game/online/api/v2.0/client/all-news";
    using Items = std::optional<std::vector<Dictionary>>;
    Items load() {
        return ovix::test::Outcome<Items>().run([](auto done) { ovix::APIService::loadNews(done); });
    }
};

TEST_F(NewsFeed, AsksForTheFirstHundredNewsWithTheClientId) {
    server.on(kPath, LoopbackServer::Reply{200, R"({"Data":[{"Id":1,"Title":"a"},{"Id":2}]})"});
    store("ovix_token", "tok");
    store("ovix_client_id", "game-7");
    auto items = load();
    ASSERT_TRUE(items);
    ASSERT_EQ(items->size(), 2u);
    EXPECT_EQ(NewsItem::fromDictionary((*items)[0]).title, "a");
    EXPECT_EQ(NewsItem::fromDictionary((*items)[1]).id, 2);

    store("ovix_client_id", "");
    EXPECT_TRUE(load());
    auto seen = server.requests();
    ASSERT_EQ(seen.size(), 2u);
    const std::string query = "&isNews=1&isEvent=0&isTutorial=0&pageSize=100&pageIndex=1";
    EXPECT_EQ(seen[0].target, std::string(kPath) + "?clientId=game-7" + query);
    EXPECT_THAT(seen[0].headerNames(), UnorderedElementsAre("content-type", "clientid"))
        << "no Authorization";
    EXPECT_EQ(seen[0].header("ClientID"), "game-7");
    EXPECT_EQ(seen[1].target, std::string(kPath) + "?clientId=" + query);
    EXPECT_THAT(seen[1].headerNames(), UnorderedElementsAre("content-type"));
}

TEST_F(NewsFeed, OnlyAnArrayOfObjectsUnderDataIsAList) {
    for (auto [status, body] : {std::pair<int, const char*>{200, R"({"Data":null})"},
                                {200, R"({"Data":{"Id":1}})"},
                                {200, R"({"Data":[{"Id":1},2]})"},
                                {200, "[]"},
                                {500, R"({"Data":[]})"}}) {
        server.on(kPath, LoopbackServer::Reply{status, body});
        EXPECT_EQ(load(), std::nullopt) << body;
    }
}

}  // namespace
