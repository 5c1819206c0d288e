#include "platform/posix/PosixTimeZone.h"

#include <time.h>

#include <limits>

namespace ovix::platform {

std::optional<LocalDateTime> PosixTimeZone::localDateTime(std::int64_t secondsSince1970) const {
    if (secondsSince1970 < std::numeric_limits<time_t>::min() ||
        secondsSince1970 > std::numeric_limits<time_t>::max()) {
        return std::nullopt;
    }
    // localtime_r need not notice a changed zone by itself.
    tzset();
    const time_t instant = static_cast<time_t>(secondsSince1970);
    struct tm parts {};
    if (localtime_r(&instant, &parts) == nullptr) {
        return std::nullopt;
    }
    LocalDateTime local;
    local.year = static_cast<std::int64_t>(parts.tm_year) + 1900;
    local.month = parts.tm_mon + 1;
    local.day = parts.tm_mday;
    local.hour = parts.tm_hour;
    local.minute = parts.tm_min;
    local.second = parts.tm_sec;
    return local;
}

}  // namespace ovix::platform
