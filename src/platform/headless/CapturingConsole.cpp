#include "ovix/testing/CapturingConsole.h"

#include <algorithm>
#include <cstdio>

namespace ovix::testing {

void CapturingConsole::printLine(std::string_view line) {
    std::lock_guard lock(mutex_);
    lines_.emplace_back(line);
    if (echo_) {
        std::fwrite(line.data(), 1, line.size(), stdout);
        std::fputc('\n', stdout);
        std::fflush(stdout);
    }
}

std::vector<std::string> CapturingConsole::lines() const {
    std::lock_guard lock(mutex_);
    return lines_;
}

bool CapturingConsole::hasLine(std::string_view line) const {
    return count(line) > 0;
}

std::size_t CapturingConsole::count(std::string_view line) const {
    std::lock_guard lock(mutex_);
    return static_cast<std::size_t>(std::count(lines_.begin(), lines_.end(), line));
}

void CapturingConsole::clear() {
    std::lock_guard lock(mutex_);
    lines_.clear();
}

}  // namespace ovix::testing
