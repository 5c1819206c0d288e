#pragma once

#include "ovix/platform/TimeZone.h"

namespace ovix::platform {

/// The system's local time zone (TZ, else /etc/localtime), read again on every call.
class PosixTimeZone : public TimeZone {
  public:
    std::optional<LocalDateTime> localDateTime(std::int64_t secondsSince1970) const override;
};

}  // namespace ovix::platform
