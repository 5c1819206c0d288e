#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>

#include "api/APIService.h"
#include "api/ApiTest.h"
#include "api/NewsItem.h"
#include "ovix/testing/FixedTimeZone.h"
#include "platform/posix/PosixTimeZone.h"

namespace {

using ovix::Array;
using ovix::Dictionary;
using ovix::NewsItem;
using ovix::Value;
using ovix::test::LoopbackServer;
using ovix::test::Outcome;
using ovix::testing::FixedTimeZone;
using ::testing::UnorderedElementsAre;

using Items = std::optional<std::vector<Dictionary>>;

TEST(NewsItemFromDictionary, TakesOnlyValuesThatAlreadyHaveTheMembersKind) {
    auto item = NewsItem::fromDictionary(Dictionary{
        {"Id", Value(42u)},
        {"GameId", Value("g1")},
        {"GameName", Value("Rồng Vàng")},
        {"Title", Value("Sự kiện")},
        {"NewsUrl", Value("https://x/y")},
        {"IsNews", Value(1u)},
        {"IsEvent", Value(0u)},
        {"IsTutorial", Value(1.0)},
        {"CreatedAt", Value(1700000000123u)},
        {"UpdatedAt", Value(-5)},
    });
    EXPECT_EQ(item.id, 42);
    EXPECT_EQ(item.gameId, "g1");
    EXPECT_EQ(item.gameName, "Rồng Vàng");
    EXPECT_EQ(item.title, "Sự kiện");
    EXPECT_EQ(item.newsUrl, "https://x/y");
    EXPECT_EQ(item.isNews, 1);
    EXPECT_EQ(item.isEvent, 0);
    EXPECT_EQ(item.isTutorial, 1) << "a whole double is a number with an exact integer value";
    EXPECT_EQ(item.createdAt, 1700000000123);
    EXPECT_EQ(item.updatedAt, -5);

    auto wrong = NewsItem::fromDictionary(Dictionary{
        {"Id", Value("5")},
        {"GameId", Value(7u)},
        {"Title", Value()},
        {"NewsUrl", Value(Array{Value("u")})},
        {"IsNews", Value(true)},
        {"IsEvent", Value(0.5)},
        {"IsTutorial", Value(std::numeric_limits<std::uint64_t>::max())},
        {"createdAt", Value(5u)},  // keys are case-sensitive
        {"UpdatedAt", Value(1e19)},
    });
    EXPECT_EQ(wrong.id, 0);
    EXPECT_EQ(wrong.gameId, "");
    EXPECT_EQ(wrong.title, "");
    EXPECT_EQ(wrong.newsUrl, "");
    EXPECT_EQ(wrong.isNews, 0);
    EXPECT_EQ(wrong.isEvent, 0);
    EXPECT_EQ(wrong.isTutorial, 0);
    EXPECT_EQ(wrong.createdAt, 0);
    EXPECT_EQ(wrong.updatedAt, 0);
}

TEST(NewsItemDate, ShowsDayMonthYearHourMinuteInTheZone) {
    const FixedTimeZone utc(0);
    const FixedTimeZone hanoi(7 * 3600);
    const FixedTimeZone newYork(-5 * 3600);
    EXPECT_EQ(NewsItem::formatDate(0, utc), "01/01/1970 00:00");
    EXPECT_EQ(NewsItem::formatDate(0, hanoi), "01/01/1970 07:00");
    EXPECT_EQ(NewsItem::formatDate(0, newYork), "31/12/1969 19:00");
    EXPECT_EQ(NewsItem::formatDate(1709251199000, hanoi), "01/03/2024 06:59")
        << "leap-year February ends on the 29th";
    EXPECT_EQ(NewsItem::formatDate(1709251199000, utc), "29/02/2024 23:59");
}

TEST(NewsItemDate, DropsMillisecondsTowardZeroBeforeConverting) {
    const FixedTimeZone utc(0);
    EXPECT_EQ(NewsItem::formatDate(1700000000000, utc), NewsItem::formatDate(1700000000999, utc));
    EXPECT_EQ(NewsItem::formatDate(1700000000999, utc), "14/11/2023 22:13");
    // -999 ms truncates to 0 s, not down to -1 s (which would be 23:59 the day before).
    EXPECT_EQ(NewsItem::formatDate(-999, utc), "01/01/1970 00:00");
    EXPECT_EQ(NewsItem::formatDate(-60001, utc), "31/12/1969 23:59");
}

TEST(NewsItemDate, DisplayUsesTheDevicesZone) {
    auto h = ovix::testing::HeadlessPlatform::create();
    h.platform->timeZone = std::make_shared<FixedTimeZone>(7 * 3600);
    h.install();
    NewsItem item;
    item.createdAt = 86400000;
    EXPECT_EQ(item.displayDate(), "02/01/1970 07:00");
}

TEST(PosixTimeZoneReading, FollowsTheSystemZoneAsItChanges) {
    const char* previous = std::getenv("TZ");
    const std::string saved = previous != nullptr ? previous : "";
    ovix::platform::PosixTimeZone zone;
    setenv("TZ", "Asia/Ho_Chi_Minh", 1);
    EXPECT_EQ(NewsItem::formatDate(1700000000000, zone), "15/11/2023 05:13");
    EXPECT_EQ(NewsItem::formatDate(0, zone), "01/01/1970 08:00") << "the zone's own history: UTC+8 then";
    setenv("TZ", "America/New_York", 1);
    EXPECT_EQ(NewsItem::formatDate(0, zone), "31/12/1969 19:00");
    EXPECT_EQ(NewsItem::formatDate(1719835200000, zone), "01/07/2024 08:00") << "daylight saving time";
    if (previous != nullptr) {
        setenv("TZ", saved.c_str(), 1);
    } else {
        unsetenv("TZ");
    }
}

class NewsFeed : public ovix::test::ApiTest {
  protected:
    static constexpr const char* kPath = "/game/online/api/v2.0/client/all-news";

    Items load() {
        Outcome<Items> outcome;
        ovix::APIService::loadNews(outcome.completion());
        outcome.markReturned();
        return outcome.get();
    }
};

TEST_F(NewsFeed, AsksForTheFirstHundredNewsWithTheClientId) {
    server.on(kPath, LoopbackServer::Reply{200, R"({"Data":[{"Id":1,"Title":"a"},{"Id":2,"Title":"b"}]})"});
    signIn("tok", "game-7");

    auto items = load();

    ASSERT_TRUE(items);
    ASSERT_EQ(items->size(), 2u);
    EXPECT_EQ(NewsItem::fromDictionary((*items)[0]).title, "a");
    EXPECT_EQ(NewsItem::fromDictionary((*items)[1]).id, 2);
    auto seen = server.requests();
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0].method, "GET");
    EXPECT_EQ(
        seen[0].target,
        std::string(kPath) + "?clientId=game-7&isNews=1&isEvent=0&isTutorial=0&pageSize=100&pageIndex=1");
    EXPECT_THAT(seen[0].headerNames(), UnorderedElementsAre("content-type", "clientid"))
        << "no Authorization";
    EXPECT_EQ(seen[0].header("ClientID"), "game-7");
}

TEST_F(NewsFeed, WithoutAClientIdTheQueryValueIsEmptyAndTheHeaderAbsent) {
    server.on(kPath, LoopbackServer::Reply{200, R"({"Data":[]})"});
    EXPECT_EQ(load(), std::vector<Dictionary>{});
    auto seen = server.requests();
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0].target,
              std::string(kPath) + "?clientId=&isNews=1&isEvent=0&isTutorial=0&pageSize=100&pageIndex=1");
    EXPECT_THAT(seen[0].headerNames(), UnorderedElementsAre("content-type"));
}

TEST_F(NewsFeed, OnlyAnArrayOfObjectsUnderDataIsAList) {
    for (const char* body :
         {R"({"Data":null})", R"({"Data":{"Id":1}})", R"({"Data":[{"Id":1},2]})", R"({"Items":[]})", "[]"}) {
        server.on(kPath, LoopbackServer::Reply{200, body});
        EXPECT_EQ(load(), std::nullopt) << body;
    }
    server.on(kPath, LoopbackServer::Reply{500, R"({"Data":[]})"});
    EXPECT_EQ(load(), std::nullopt);
}

}  // namespace
