#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <thread>

#include "ovix/platform/Platform.h"

namespace ovix::platform::unsupported {

/// The line every unsupported service prints when used.
std::string message(std::string_view service);
/// Prints `message(service)` on the installed platform's console.
void report(std::string_view service);
/// Runs `work` on a fresh thread: completions of unsupported services are never inline either.
void later(std::function<void()> work);

}  // namespace ovix::platform::unsupported
