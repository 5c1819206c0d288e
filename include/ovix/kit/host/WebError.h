#pragma once

#include <string>

namespace ovix::kit::host {

/// Why a page load or a script evaluation did not succeed.
struct WebError {
    enum class Kind {
        Cancelled,   ///< another load replaced this one, or the load was stopped
        TimedOut,    ///< no answer within the request's timeout
        Network,     ///< the host could not be reached or the transfer broke
        Page,        ///< the page or its content could not be shown (bad URL, unsupported content...)
        JavaScript,  ///< the script threw or could not be run
        Unsupported  ///< this platform has no web engine
    };

    Kind kind = Kind::Page;
    /// The engine's own readable description.
    std::string message;

    /// "<kind>: <message>", the form diagnostics print.
    std::string description() const {
        static constexpr const char* names[] = {"Cancelled",  "Timed out",        "Network error",
                                                "Page error", "JavaScript error", "Unsupported"};
        return std::string(names[static_cast<int>(kind)]) + ": " + message;
    }
};

}  // namespace ovix::kit::host
