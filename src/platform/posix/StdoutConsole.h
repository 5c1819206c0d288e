#pragma once

#include <mutex>

#include "ovix/platform/Console.h"

namespace ovix::platform {

/// Diagnostic lines on standard output, one whole line per call, flushed at once.
class StdoutConsole : public Console {
  public:
    void printLine(std::string_view line) override;

  private:
    std::mutex mutex_;
};

}  // namespace ovix::platform
