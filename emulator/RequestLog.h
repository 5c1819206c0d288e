#pragma once

#include <nlohmann/json.hpp>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace ovix::emulator {

/// What the SDK sent and what it got, request by request: the record a game developer reads to see
/// what their integration sends.
///
/// Keeps the latest `capacity` entries. Each recorded entry is also handed, as one line, to the
/// printer given at construction (if any), in the order recorded. Threading: any thread; the printer
/// runs on the recording thread under the log's lock, so lines never interleave (it must not call
/// back into the log).
class RequestLog {
  public:
    struct Entry {
        std::int64_t timeMs = 0;  ///< when the answer was decided, milliseconds since 1970
        std::string server;       ///< "accounts" or "graph" (one name when they share a port)
        std::string route;        ///< the route's name, "" for a path the emulator does not serve
        std::string method;
        std::string target;                                        ///< path and query as sent
        std::vector<std::pair<std::string, std::string>> headers;  ///< as sent, in arrival order
        std::size_t bodyBytes = 0;
        int status = 0;     ///< 0 when the connection was dropped
        std::string fault;  ///< the fault applied ("" for none)

        /// The first value of header `name` (any case); "" when absent.
        std::string header(const std::string& name) const;
        nlohmann::json toJson() const;
        /// "GET /path?query -> 200 [fault] | Name: value; Name: value".
        std::string line() const;
    };
    using Printer = std::function<void(const std::string& line)>;

    explicit RequestLog(std::size_t capacity = 1000, Printer printer = nullptr);

    void record(Entry entry);
    /// Oldest first; only entries whose route equals `route` when it is not empty.
    std::vector<Entry> entries(const std::string& route = {}) const;
    void clear();

  private:
    const std::size_t capacity_;
    const Printer printer_;
    mutable std::mutex mutex_;
    std::deque<Entry> entries_;
};

}  // namespace ovix::emulator
