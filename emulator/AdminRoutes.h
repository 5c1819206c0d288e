#pragma once

#include <string>
#include <string_view>

namespace httplib {
class Server;
}

namespace ovix::emulator {

class BackendRoutes;
class FaultInjector;
class RequestLog;

/// The emulator's own control endpoint, under `prefix` on the accounts server: the request log,
/// the faults in force, the device records the login page received and the TLS authority.
///
///   GET    /_emulator/log[?route=<name>]   {"entries": [...]} oldest first
///   DELETE /_emulator/log                  forgets the log
///   GET    /_emulator/faults               {"<route>": {...}, ...}
///   PUT    /_emulator/faults/<route>       body: a fault as JSON, or a text such as "status:503"
///   DELETE /_emulator/faults[/<route>]     removes one fault, or all
///   GET    /_emulator/devices              {"<client id>": <last device record>, ...}
///   GET    /_emulator/ca.pem               the authority to trust (404 without TLS)
///
/// Only clients on the loopback interface are answered; others get 403, whatever address the
/// server is bound to. Requests here are not logged. Threading: the servers' worker threads.
class AdminRoutes {
  public:
    static constexpr std::string_view prefix = "/_emulator";

    AdminRoutes(FaultInjector& faults, RequestLog& log, BackendRoutes& backend, std::string caPem);

    /// Registers the endpoints on `server`; all referenced objects must outlive it.
    void install(httplib::Server& server);

    static bool isLoopback(const std::string& address);

  private:
    FaultInjector& faults_;
    RequestLog& log_;
    BackendRoutes& backend_;
    const std::string caPem_;
};

}  // namespace ovix::emulator
