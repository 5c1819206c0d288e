#pragma once

#include <string_view>

namespace ovix::platform {

/// Where the SDK's diagnostic lines go (standard output on real platforms).
///
/// Threading: any thread. Each call writes one whole line followed by a newline; lines from
/// different threads never interleave. `line` must not contain the trailing newline.
class Console {
  public:
    virtual ~Console() = default;
    virtual void printLine(std::string_view line) = 0;
};

}  // namespace ovix::platform
