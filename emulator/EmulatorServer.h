#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "emulator/EmulatorConfig.h"
#include "emulator/FaultInjector.h"
#include "emulator/RequestLog.h"

namespace httplib {
class Server;
struct Request;
struct Response;
}  // namespace httplib

namespace ovix::emulator {

class AdminRoutes;
class BackendRoutes;

/// The local backend: a loopback server for the accounts host and one for the graph host (or one
/// server for both), answering the SDK's requests and its login page, with per-route faults, a
/// request log and an admin endpoint (see `AdminRoutes`).
///
/// Route names (for faults and the log): "login" (the sign-in page), "signin" (its form), "device"
/// (the page's device record), "userinfo", "eligibility" on the accounts host; "news", "upload",
/// "image" (stored uploads) on the graph host.
///
/// The constructor binds and starts serving; it throws std::runtime_error when a port cannot be
/// bound or the data directory or TLS identity cannot be set up. Each server runs on a thread of its
/// own plus a pool of workers; handlers for one request run on one worker. The destructor stops the
/// servers and joins their threads; a request still waiting out an injected latency delays it by
/// at most that latency.
class EmulatorServer {
  public:
    struct Options {
        std::string host = "127.0.0.1";  ///< address to bind; the admin endpoint still answers loopback only
        int port = 0;                    ///< accounts host (and graph host when shared); 0 for any free port
        int graphPort = -1;              ///< -1: graph routes on the accounts server; 0: any free port
        std::filesystem::path dataDirectory;  ///< uploads ("images/") and the TLS authority ("tls/")
        EmulatorConfig config;
        bool tls = false;  ///< HTTPS with a certificate from the emulator's own authority
        /// Receives each logged request as one line (see `RequestLog`); null for silence.
        RequestLog::Printer printer;
    };

    explicit EmulatorServer(Options options);
    ~EmulatorServer();
    EmulatorServer(const EmulatorServer&) = delete;
    EmulatorServer& operator=(const EmulatorServer&) = delete;

    /// "http(s)://127.0.0.1:<port>" (the bound address instead when it is not a wildcard).
    std::string accountsUrl() const;
    std::string graphUrl() const;
    FaultInjector& faults() { return faults_; }
    RequestLog& log() { return log_; }
    /// The last device record the login page posted for each client id.
    std::map<std::string, nlohmann::json> deviceRecords() const;
    /// The authority a client must trust; empty without TLS.
    std::filesystem::path caPath() const { return caPath_; }

    static const std::set<std::string>& routeNames();

  private:
    struct Listener;
    using Handler = void (BackendRoutes::*)(const httplib::Request&, httplib::Response&);

    std::unique_ptr<httplib::Server> makeServer(const std::string& certificateDirectory);
    void addRoute(Listener& listener, const std::string& method, const std::string& pattern,
                  const std::string& name, Handler handler);
    void serve(const Listener& listener, const std::string& name, Handler handler,
               const httplib::Request& request, httplib::Response& response);
    void bind(Listener& listener, int port);

    Options options_;
    FaultInjector faults_;
    RequestLog log_;
    std::unique_ptr<BackendRoutes> backend_;
    std::unique_ptr<AdminRoutes> admin_;
    std::filesystem::path caPath_;
    std::vector<std::unique_ptr<Listener>> listeners_;  // accounts first
};

}  // namespace ovix::emulator
