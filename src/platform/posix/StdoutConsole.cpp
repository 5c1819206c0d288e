#include "platform/posix/StdoutConsole.h"

#include <cstdio>
#include <string>

namespace ovix::platform {

void StdoutConsole::printLine(std::string_view line) {
    // One write per line so that lines stay whole even next to other writers of stdout.
    std::string whole;
    whole.reserve(line.size() + 1);
    whole.append(line).push_back('\n');
    std::lock_guard lock(mutex_);
    std::fwrite(whole.data(), 1, whole.size(), stdout);
    std::fflush(stdout);
}

}  // namespace ovix::platform
