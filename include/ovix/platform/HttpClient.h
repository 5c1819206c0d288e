#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace ovix::platform {

using HttpHeaders = std::vector<std::pair<std::string, std::string>>;

struct HttpRequest {
    std::string method = "GET";
    std::string url;  ///< absolute http or https URL; other schemes fail
    /// Sent in this order, exactly these: the transport adds only what the protocol needs ("Host",
    /// "Content-Length"). An empty value is sent as an empty header.
    HttpHeaders headers;
    std::string body;  ///< moved into the transport; never copied again
    /// Whole exchange, connection included. A transport may be configured with a shorter ceiling.
    double timeoutSeconds = 60.0;
    /// A response body larger than this fails the request instead of growing without bound.
    std::size_t maxResponseBytes = std::size_t{32} << 20;
};

struct HttpResponse {
    long status = 0;
    HttpHeaders headers;
    std::string body;
};

/// Exactly one of `response` or `error` is set. Any status is a response. Redirects are followed
/// only within the request's origin (scheme, host and port); a redirect to another origin, or from
/// HTTPS to HTTP, ends the request with an error and nothing is sent there.
struct HttpResult {
    std::optional<HttpResponse> response;
    std::optional<std::string> error;  ///< a readable description of the transport failure
};

/// Sends HTTP requests.
///
/// Threading: `send` may be called from any thread and returns at once. The completion runs exactly
/// once, on the transport's callback thread: never inline inside `send`, never while the transport
/// holds a lock. A request in flight keeps a client held by `std::shared_ptr` alive until its
/// completion has run, so replacing the platform loses no answer. A client destroyed anyway
/// completes whatever is pending with an error before its destructor returns: no completion is
/// dropped, none runs after. TLS certificates are always verified.
class HttpClient {
  public:
    using Completion = std::function<void(HttpResult)>;
    virtual ~HttpClient() = default;
    virtual void send(HttpRequest request, Completion completion) = 0;
};

}  // namespace ovix::platform
