#pragma once

#include <cstdint>
#include <optional>

namespace ovix::platform {

/// A wall-clock reading on the proleptic Gregorian calendar.
struct LocalDateTime {
    std::int64_t year = 1970;
    int month = 1;  ///< 1...12
    int day = 1;    ///< 1...31
    int hour = 0;   ///< 0...23
    int minute = 0;
    int second = 0;
};

/// The device's current time zone, for showing instants as local dates.
/// Threading: any thread; calls are independent. A change of the device's zone is seen by the next
/// call.
class TimeZone {
  public:
    virtual ~TimeZone() = default;
    /// The local reading of the instant `secondsSince1970` seconds after 1970-01-01 00:00:00 UTC
    /// (negative before it); nullopt when the instant is out of the platform's range.
    virtual std::optional<LocalDateTime> localDateTime(std::int64_t secondsSince1970) const = 0;
};

}  // namespace ovix::platform
