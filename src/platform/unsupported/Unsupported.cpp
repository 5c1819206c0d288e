#include "platform/unsupported/Unsupported.h"

namespace ovix::platform::unsupported {

std::string message(std::string_view service) {
    return "⚠️ " + std::string(service) + " is unsupported on this platform";
}

void report(std::string_view service) {
    auto platform = current();
    if (platform && platform->console) {
        platform->console->printLine(message(service));
    }
}

void later(std::function<void()> work) {
    std::thread(std::move(work)).detach();
}

}  // namespace ovix::platform::unsupported
