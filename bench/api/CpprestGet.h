#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace ovix::bench {

/// A GET through the C++ REST SDK's `http_client` (its asynchronous task, waited for with `get()`),
/// as a peer of the SDK's own client. One client for all calls, so that its connection pool keeps
/// the connection alive between them.
///
/// Threading: `get` blocks the calling thread until the whole body has arrived; the work itself runs
/// on the library's thread pool. Failures throw the library's exceptions.
class CpprestGet {
  public:
    /// `base` is scheme, host and port; `pathAndQuery` starts with "/".
    CpprestGet(const std::string& base, std::string pathAndQuery,
               std::vector<std::pair<std::string, std::string>> headers);
    ~CpprestGet();

    CpprestGet(const CpprestGet&) = delete;
    CpprestGet& operator=(const CpprestGet&) = delete;

    /// The status; `body` receives the response body.
    long get(std::string& body);

  private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace ovix::bench
