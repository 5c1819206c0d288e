#pragma once

#include <cstdio>
#include <mutex>

#include "ovix/platform/Console.h"

namespace ovix::platform {

/// Diagnostic lines on standard output (or another stream), one whole line per call, flushed at once.
class StdoutConsole : public Console {
  public:
    /// `out` must outlive the console; standard output by default.
    explicit StdoutConsole(std::FILE* out = stdout) : out_(out) {}

    void printLine(std::string_view line) override;

  private:
    std::FILE* out_;
    std::mutex mutex_;
};

}  // namespace ovix::platform
