#include "emulator/EmulatorServer.h"

#include <httplib.h>

#include <chrono>
#include <stdexcept>

#include "emulator/AdminRoutes.h"
#include "emulator/BackendRoutes.h"
#include "emulator/ConnectionCloser.h"
#include "emulator/TlsIdentity.h"

namespace ovix::emulator {

struct EmulatorServer::Listener {
    std::string role;
    std::string scheme;
    std::unique_ptr<httplib::Server> server;
    int port = 0;
    std::thread thread;
};

namespace {

constexpr std::string_view kAccounts = "accounts";
constexpr std::string_view kGraph = "graph";

std::int64_t nowMs() {
    return std::chrono::duration_cast<std::chrono::milliseconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

// The library files the peer's and its own addresses among the request headers; the client never sent them.
bool sentByClient(const std::string& name) {
    return name != "REMOTE_ADDR" && name != "REMOTE_PORT" && name != "LOCAL_ADDR" && name != "LOCAL_PORT";
}

void spoil(httplib::Response& response, Fault::Body body) {
    if (body == Fault::Body::Malformed) {
        response.body = "{\"Data\": <this is not JSON";
    } else if (body == Fault::Body::Truncated) {
        auto full = std::make_shared<std::string>(std::move(response.body));
        auto type = response.get_header_value("Content-Type");
        response.body.clear();
        response.headers.erase("Content-Type");
        // The full length is announced, half is sent, then the provider fails and the library closes
        // the connection.
        response.set_content_provider(full->size(), type, [full](size_t, size_t, httplib::DataSink& sink) {
            sink.write(full->data(), full->size() / 2);
            return false;
        });
    }
}

}  // namespace

const std::set<std::string>& EmulatorServer::routeNames() {
    static const std::set<std::string> names{"login",       "signin", "device", "userinfo",
                                             "eligibility", "news",   "upload", "image"};
    return names;
}

EmulatorServer::EmulatorServer(Options options)
    : options_(std::move(options)), faults_(routeNames()), log_(1000, options_.printer) {
    try {
        for (const auto& [route, fault] : options_.config.faults) {
            faults_.set(route, fault);
        }
    } catch (const std::invalid_argument& error) {
        throw std::runtime_error(std::string("config: ") + error.what());
    }
    backend_ = std::make_unique<BackendRoutes>(options_.config, options_.dataDirectory);
    std::shared_ptr<TlsIdentity> identity;
    if (options_.tls) {
        identity = std::make_shared<TlsIdentity>(TlsIdentity::loadOrCreate(options_.dataDirectory / "tls"));
        caPath_ = identity->caPath();
    }
    admin_ =
        std::make_unique<AdminRoutes>(faults_, log_, *backend_, identity ? identity->caPem() : std::string());

    const bool shared = options_.graphPort < 0;
    auto accounts = std::make_unique<Listener>();
    accounts->role = shared ? "accounts+graph" : std::string(kAccounts);
    accounts->scheme = options_.tls ? "https" : "http";
    accounts->server = options_.tls
                           ? std::make_unique<httplib::SSLServer>(identity->certificate(), identity->key())
                           : std::make_unique<httplib::Server>();
    listeners_.push_back(std::move(accounts));
    if (!shared) {
        auto graph = std::make_unique<Listener>();
        graph->role = std::string(kGraph);
        graph->scheme = listeners_.front()->scheme;
        graph->server = options_.tls
                            ? std::make_unique<httplib::SSLServer>(identity->certificate(), identity->key())
                            : std::make_unique<httplib::Server>();
        listeners_.push_back(std::move(graph));
    }
    for (auto& listener : listeners_) {
        if (!listener->server->is_valid()) {
            throw std::runtime_error("the " + listener->role + " server could not be set up (TLS context)");
        }
    }

    auto& accountsListener = *listeners_.front();
    auto& graphListener = *listeners_.back();
    const std::string authPattern = "/auth-connect/api/v2\\.0/oauth2/auth";
    addRoute(accountsListener, "GET", authPattern, "login", &BackendRoutes::loginPage);
    addRoute(accountsListener, "POST", authPattern + "/signin", "signin", &BackendRoutes::signIn);
    addRoute(accountsListener, "POST", authPattern + "/device", "device", &BackendRoutes::deviceRecord);
    addRoute(accountsListener, "GET", authPattern + "/userinfo", "userinfo", &BackendRoutes::userInfo);
    addRoute(accountsListener, "GET", "/billing/check", "eligibility", &BackendRoutes::eligibility);
    addRoute(graphListener, "GET", "/game/online/api/v2\\.0/client/all-news", "news", &BackendRoutes::news);
    addRoute(graphListener, "POST", "/inside/image/api/v2\\.0/upload", "upload", &BackendRoutes::upload);
    addRoute(graphListener, "GET", std::string(BackendRoutes::imagePathPrefix) + "([0-9a-f]{32})\\.jpg",
             "image", &BackendRoutes::image);
    admin_->install(*accountsListener.server);
    for (auto& listener : listeners_) {
        for (const char* method : {"GET", "POST", "PUT", "DELETE"}) {
            addRoute(*listener, method, ".*", "", nullptr);  // anything else: 404, logged
        }
    }

    bind(accountsListener, options_.port);
    if (!shared) {
        bind(graphListener, options_.graphPort);
    }
    backend_->setImageBaseUrl(graphUrl());
    for (auto& listener : listeners_) {
        auto& server = *listener->server;
        listener->thread = std::thread([&server] { server.listen_after_bind(); });
        // stop() before the loop runs would be lost, and the join in the destructor would never return.
        while (!server.is_running()) {
            std::this_thread::yield();
        }
    }
}

EmulatorServer::~EmulatorServer() {
    for (auto& listener : listeners_) {
        if (listener->thread.joinable()) {
            listener->server->stop();
            listener->thread.join();
        }
    }
}

void EmulatorServer::bind(Listener& listener, int port) {
    auto& server = *listener.server;
    server.new_task_queue = [] { return new httplib::ThreadPool(16); };
    server.set_keep_alive_timeout(2);
    server.set_payload_max_length(std::size_t{64} << 20);
    if (port == 0) {
        listener.port = server.bind_to_any_port(options_.host);
    } else {
        listener.port = server.bind_to_port(options_.host, port) ? port : -1;
    }
    if (listener.port <= 0) {
        throw std::runtime_error("the " + listener.role + " server cannot listen on " + options_.host + ":" +
                                 std::to_string(port));
    }
}

void EmulatorServer::addRoute(Listener& listener, const std::string& method, const std::string& pattern,
                              const std::string& name, Handler handler) {
    auto route = [this, &listener, name, handler](const httplib::Request& request,
                                                  httplib::Response& response) {
        serve(listener, name, handler, request, response);
    };
    auto& server = *listener.server;
    if (method == "GET") {
        server.Get(pattern, route);
    } else if (method == "POST") {
        server.Post(pattern, route);
    } else if (method == "PUT") {
        server.Put(pattern, route);
    } else {
        server.Delete(pattern, route);
    }
}

void EmulatorServer::serve(const Listener& listener, const std::string& name, Handler handler,
                           const httplib::Request& request, httplib::Response& response) {
    RequestLog::Entry entry{
        0, listener.role, name, request.method, request.target, {}, request.body.size(), 0, {}};
    for (const auto& [header, value] : request.headers) {
        if (sentByClient(header)) {
            entry.headers.emplace_back(header, value);
        }
    }
    if (request.has_header("Content-Length")) {
        entry.bodyBytes = request.get_header_value<std::uint64_t>("Content-Length");
    }
    const auto fault = name.empty() ? std::nullopt : faults_.take(name);
    if (fault) {
        entry.fault = fault->describe();
        std::this_thread::sleep_for(std::chrono::milliseconds(fault->latencyMs));
    }
    if (const int socket = fault && fault->drop ? ConnectionCloser::socketOf(request) : -1; socket >= 0) {
        // Logged first: once the socket is shut, the client may look at the log at once.
        entry.timeMs = nowMs();
        log_.record(std::move(entry));
        ConnectionCloser::shutDown(socket);
        response.status = 500;  // never reaches the client: its connection is gone
        return;
    }
    if (fault && fault->status != 0) {
        response.status = fault->status;
        response.set_content(R"({"Message":"Injected fault"})", "application/json");
    } else if (handler != nullptr) {
        (backend_.get()->*handler)(request, response);
    } else {
        response.status = 404;
        response.set_content(R"({"Message":"Not found"})", "application/json");
    }
    if (fault) {
        spoil(response, fault->body);
    }
    entry.status = response.status == -1 ? 200 : response.status;
    entry.timeMs = nowMs();
    log_.record(std::move(entry));
}

std::string EmulatorServer::accountsUrl() const {
    const auto& host = options_.host;
    const bool wildcard = host.empty() || host == "0.0.0.0" || host == "::";
    const std::string shown =
        wildcard ? "127.0.0.1" : (host.find(':') != std::string::npos ? "[" + host + "]" : host);
    const auto& listener = *listeners_.front();
    return listener.scheme + "://" + shown + ":" + std::to_string(listener.port);
}

std::string EmulatorServer::graphUrl() const {
    if (listeners_.size() == 1) {
        return accountsUrl();
    }
    const auto accounts = accountsUrl();
    const auto& graph = *listeners_.back();
    return accounts.substr(0, accounts.rfind(':') + 1) + std::to_string(graph.port);
}

std::map<std::string, nlohmann::json> EmulatorServer::deviceRecords() const {
    return backend_->deviceRecords();
}

}  // namespace ovix::emulator
