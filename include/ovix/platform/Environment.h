#pragma once

#include <string>

namespace ovix::platform {

/// The two backend base addresses the SDK talks to (no trailing slash).
///
/// Production by default. A game or a test chooses a local emulator or test server by installing a
/// platform whose environment points there *before* first use of `OvixCore::shared()`, which copies
/// the addresses once, at creation.
struct Environment {
    std::string accountsBaseUrl;  ///< login page, user info, eligibility check
    std::string graphBaseUrl;     ///< news feed, image upload

    static Environment production();
    /// Both hosts served by one local server, e.g. "http://127.0.0.1:8080" (a trailing slash is
    /// dropped).
    static Environment emulator(std::string baseUrl);
};

}  // namespace ovix::platform
