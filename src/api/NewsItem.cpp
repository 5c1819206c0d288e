#include "ovix/NewsItem.h"

#include <cmath>
#include <cstdio>
#include <limits>

#include "ovix/platform/Platform.h"

namespace ovix {

namespace {

std::int64_t integerAt(const Dictionary& dictionary, std::string_view key) {
    auto it = dictionary.find(key);
    if (it == dictionary.end()) {
        return 0;
    }
    const Value& value = it->second;
    if (auto i = value.asInt()) {
        return *i;
    }
    if (auto u = value.asUInt()) {
        return *u <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())
                   ? static_cast<std::int64_t>(*u)
                   : 0;
    }
    if (auto d = value.asDouble()) {
        // 2^63 itself is not representable, hence the strict upper bound.
        constexpr double limit = 9223372036854775808.0;
        if (std::trunc(*d) == *d && *d >= -limit && *d < limit) {
            return static_cast<std::int64_t>(*d);
        }
    }
    return 0;
}

std::string stringAt(const Dictionary& dictionary, std::string_view key) {
    auto it = dictionary.find(key);
    if (it == dictionary.end() || it->second.asString() == nullptr) {
        return {};
    }
    return *it->second.asString();
}

}  // namespace

NewsItem NewsItem::fromDictionary(const Dictionary& dictionary) {
    NewsItem item;
    item.id = integerAt(dictionary, "Id");
    item.gameId = stringAt(dictionary, "GameId");
    item.gameName = stringAt(dictionary, "GameName");
    item.title = stringAt(dictionary, "Title");
    item.newsUrl = stringAt(dictionary, "NewsUrl");
    item.isNews = integerAt(dictionary, "IsNews");
    item.isEvent = integerAt(dictionary, "IsEvent");
    item.isTutorial = integerAt(dictionary, "IsTutorial");
    item.createdAt = integerAt(dictionary, "CreatedAt");
    item.updatedAt = integerAt(dictionary, "UpdatedAt");
    return item;
}

std::string NewsItem::displayDate() const {
    return formatDate(createdAt, *platform::current()->timeZone);
}

std::string NewsItem::formatDate(std::int64_t millisecondsSince1970, const platform::TimeZone& zone) {
    auto local = zone.localDateTime(millisecondsSince1970 / 1000);
    if (!local) {
        return {};
    }
    char text[64];
    const int length =
        std::snprintf(text, sizeof text, "%02d/%02d/%04lld %02d:%02d", local->day, local->month,
                      static_cast<long long>(local->year), local->hour, local->minute);
    return length > 0 ? std::string(text, static_cast<std::size_t>(length)) : std::string();
}

}  // namespace ovix
