#include <gtest/gtest.h>

#include <cstdlib>
#include <tuple>

#include "ovix/NewsItem.h"
#include "ovix/testing/FixedTimeZone.h"
#include "ovix/testing/HeadlessPlatform.h"
#include "platform/posix/PosixTimeZone.h"

namespace ovix {
namespace {

using ovix::testing::FixedTimeZone;

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
        {0, 7 * 3600, "01/01/1970 07:00"},
        {0, -5 * 3600, "31/12/1969 19:00"},
        {1700000039999, 0, "14/11/2023 22:13"},  // 22:13:59.999
        {-999, 0, "01/01/1970 00:00"},           // truncated to 0 s, not floored to -1 s
    };
    for (const auto& [ms, offset, expected] : cases) {
        EXPECT_EQ(NewsItem::formatDate(ms, FixedTimeZone(offset)), expected) << ms;
    }
    auto h = ovix::testing::HeadlessPlatform::create();
    h.platform->timeZone = std::make_shared<FixedTimeZone>(7 * 3600);
    h.install();
    NewsItem item;
    item.createdAt = 86400000;
    EXPECT_EQ(item.displayDate(), "02/01/1970 07:00") << "in the installed platform's zone";
}

TEST(NewsItemDate, FollowsTheSystemZoneAsItChanges) {
    const char* previous = std::getenv("TZ");
    const std::string saved = previous != nullptr ? previous : "";
    platform::PosixTimeZone zone;
    setenv("TZ", "Asia/Ho_Chi_Minh", 1);
    const auto hoChiMinh = NewsItem::formatDate(1700000000000, zone);
    setenv("TZ", "America/New_York", 1);
    const auto newYorkSummer = NewsItem::formatDate(1719835200000, zone);
    previous != nullptr ? setenv("TZ", saved.c_str(), 1) : unsetenv("TZ");
    EXPECT_EQ(hoChiMinh, "15/11/2023 05:13");
    EXPECT_EQ(newYorkSummer, "01/07/2024 08:00") << "daylight saving time";
}

}  // namespace
}  // namespace ovix
