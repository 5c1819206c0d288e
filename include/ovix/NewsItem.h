#pragma once

#include <cstdint>
#include <string>

#include "ovix/Value.h"
#include "ovix/platform/TimeZone.h"

namespace ovix {

/// One article of the news and events feed. A plain value; build it from a feed element with
/// `fromDictionary`.
struct NewsItem {
    std::int64_t id = 0;
    std::string gameId;
    std::string gameName;
    std::string title;
    std::string newsUrl;
    std::int64_t isNews = 0;      ///< 0 or 1
    std::int64_t isEvent = 0;     ///< 0 or 1
    std::int64_t isTutorial = 0;  ///< 0 or 1
    std::int64_t createdAt = 0;   ///< milliseconds since 1970-01-01 UTC
    std::int64_t updatedAt = 0;   ///< milliseconds since 1970-01-01 UTC

    /// Never fails. Keys match exactly ("Id", "GameId", "GameName", "Title", "NewsUrl", "IsNews",
    /// "IsEvent", "IsTutorial", "CreatedAt", "UpdatedAt"). A member takes its value only when it
    /// already has the member's kind: a JSON string for the strings; for the integers a JSON number
    /// with an exact signed 64-bit value (5 and 5.0, not 5.5, "5" or true). Otherwise the default.
    static NewsItem fromDictionary(const Dictionary& dictionary);

    /// `createdAt` as "dd/MM/yyyy HH:mm" in the installed platform's time zone (24-hour clock,
    /// Western digits, Gregorian calendar). Milliseconds are dropped first, truncating toward zero.
    std::string displayDate() const;
    /// The same text for any instant and zone; "" when the zone cannot place the instant.
    static std::string formatDate(std::int64_t millisecondsSince1970, const platform::TimeZone& zone);
};

}  // namespace ovix
