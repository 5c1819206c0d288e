#pragma once

#include <string>

namespace ovix::kit::host {

/// A page load request. It is cached as the protocol's own rules say (the only policy web engines
/// share).
struct URLRequest {
    std::string url;
    /// Seconds without an answer after which the load fails with `WebError::Kind::TimedOut`.
    double timeoutInterval = 60.0;
};

}  // namespace ovix::kit::host
