#include "platform/posix/StdoutConsole.h"

#include <string>

namespace ovix::platform {

namespace {

// Above this a line is written in place rather than copied to add its newline: a logged response
// body may be tens of megabytes.
constexpr std::size_t kCopyLimit = 64 * 1024;

}  // namespace

void StdoutConsole::printLine(std::string_view line) {
    if (line.size() > kCopyLimit) {
        std::lock_guard lock(mutex_);
        std::fwrite(line.data(), 1, line.size(), out_);
        std::fputc('\n', out_);
        std::fflush(out_);
        return;
    }
    // One write per line so that lines stay whole even next to other writers of the stream.
    std::string whole;
    whole.reserve(line.size() + 1);
    whole.append(line).push_back('\n');
    std::lock_guard lock(mutex_);
    std::fwrite(whole.data(), 1, whole.size(), out_);
    std::fflush(out_);
}

}  // namespace ovix::platform
