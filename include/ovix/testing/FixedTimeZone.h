#pragma once

#include "ovix/platform/TimeZone.h"

namespace ovix::testing {

/// A time zone at a fixed offset from UTC, without daylight saving: deterministic local dates for
/// tests. The headless platform uses UTC.
class FixedTimeZone : public platform::TimeZone {
  public:
    explicit FixedTimeZone(int offsetSeconds = 0) : offsetSeconds_(offsetSeconds) {}
    std::optional<platform::LocalDateTime> localDateTime(std::int64_t secondsSince1970) const override;

  private:
    int offsetSeconds_;
};

}  // namespace ovix::testing
