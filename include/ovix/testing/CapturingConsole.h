#pragma once

#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "ovix/platform/Console.h"

namespace ovix::testing {

/// Keeps every console line, whole, for assertions. Safe from any thread.
class CapturingConsole : public platform::Console {
  public:
    /// With `echo`, lines also go to standard output.
    explicit CapturingConsole(bool echo = false) : echo_(echo) {}

    void printLine(std::string_view line) override;

    std::vector<std::string> lines() const;
    /// Whether some line equals `line` exactly.
    bool hasLine(std::string_view line) const;
    /// How many lines equal `line` exactly.
    std::size_t count(std::string_view line) const;
    void clear();

  private:
    bool echo_;
    mutable std::mutex mutex_;
    std::vector<std::string> lines_;
};

}  // namespace ovix::testing
