#pragma once

#include <functional>

namespace ovix::test {

/// Runs the default GLib main context until `done` holds or `seconds` of real time have passed;
/// returns the final `done()`. For tests that wait on a real engine's events, never on a delay.
bool pumpUntil(const std::function<bool()>& done, double seconds = 20.0);

/// Runs the default GLib main context for whatever is ready now, without blocking.
void pumpPending();

}  // namespace ovix::test
