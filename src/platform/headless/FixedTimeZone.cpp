#include "ovix/testing/FixedTimeZone.h"

#include <chrono>
#include <limits>

namespace ovix::testing {

std::optional<platform::LocalDateTime> FixedTimeZone::localDateTime(std::int64_t secondsSince1970) const {
    using namespace std::chrono;
    // Keep well inside what the calendar types hold (years -32767...32767).
    constexpr std::int64_t range = std::int64_t{365} * 86400 * 30000;
    if (secondsSince1970 < -range || secondsSince1970 > range) {
        return std::nullopt;
    }
    const sys_seconds instant{seconds{secondsSince1970 + offsetSeconds_}};
    const auto day = floor<days>(instant);
    const year_month_day date{day};
    const hh_mm_ss time{instant - day};
    platform::LocalDateTime local;
    local.year = static_cast<int>(date.year());
    local.month = static_cast<int>(static_cast<unsigned>(date.month()));
    local.day = static_cast<int>(static_cast<unsigned>(date.day()));
    local.hour = static_cast<int>(time.hours().count());
    local.minute = static_cast<int>(time.minutes().count());
    local.second = static_cast<int>(time.seconds().count());
    return local;
}

}  // namespace ovix::testing
