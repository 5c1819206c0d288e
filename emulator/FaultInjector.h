#pragma once

#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "emulator/Fault.h"

namespace ovix::emulator {

/// The faults in force, one per route name. Filled from the config file, the command line and the
/// admin endpoint; consulted once per request.
///
/// Threading: every member may be called from any thread (the servers' worker threads, the admin
/// endpoint, a test); a mutex guards the table and nothing calls out while holding it.
class FaultInjector {
  public:
    /// The route names faults may be set on.
    explicit FaultInjector(std::set<std::string> routes);

    /// Puts `fault` on `route`, replacing any fault already there. Throws std::invalid_argument for a
    /// route name that is not known.
    void set(const std::string& route, const Fault& fault);
    /// "route=fault" as on the command line, e.g. "news=status:503" (see `Fault::parse`). Throws
    /// std::invalid_argument.
    void setFromText(std::string_view routeAndFault);
    /// Removes the fault of `route`; false when there was none.
    bool clear(const std::string& route);
    void clearAll();

    /// The fault to apply to one request on `route`, counting it against the fault's `times`: the
    /// last counted request removes it.
    std::optional<Fault> take(const std::string& route);
    /// The faults in force, without counting anything.
    std::map<std::string, Fault> snapshot() const;
    const std::set<std::string>& routes() const { return routes_; }

  private:
    const std::set<std::string> routes_;
    mutable std::mutex mutex_;
    std::map<std::string, Fault> faults_;
};

}  // namespace ovix::emulator
