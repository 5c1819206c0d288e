#pragma once

#include <nlohmann/json.hpp>

#include <string>
#include <string_view>

namespace ovix::emulator {

/// What to do wrong on one route. Any combination: the latency comes first, then the connection is
/// dropped, or the answer gets `status`, then its body is spoiled.
struct Fault {
    enum class Body { Intact, Malformed, Truncated };

    int latencyMs = 0;  ///< wait this long before answering
    int status = 0;     ///< answer this HTTP status instead of the route's own (0: the route's)
    Body body = Body::Intact;
    /// Malformed: the body is replaced by text that is not JSON (complete response, right length).
    /// Truncated: the full length is announced, half the body is sent, then the connection closes.
    bool drop = false;  ///< close the connection without sending a byte of the answer
    int times = 0;      ///< applies to this many requests, then is removed (0: until cleared)

    bool operator==(const Fault&) const = default;

    /// Comma-separated items: "latency:<ms>", "status:<code>", "malformed", "truncated", "drop",
    /// "times:<n>". Throws std::invalid_argument naming the item it cannot read; an empty text is an
    /// error too (a fault that does nothing is a typo).
    static Fault parse(std::string_view text);
    /// The same items, in the order above.
    std::string describe() const;

    /// {"latencyMs", "status", "body": "intact"|"malformed"|"truncated", "drop", "times"}; every
    /// member optional. Throws std::invalid_argument for an unknown member or a value of a wrong type.
    static Fault fromJson(const nlohmann::json& json);
    nlohmann::json toJson() const;
};

}  // namespace ovix::emulator
