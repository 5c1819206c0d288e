#pragma once

#include <httplib.h>

#include <cctype>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace ovix::test {

/// A cpp-httplib server on an ephemeral loopback port, programmable per path, that records every
/// request as it arrived on the wire.
///
/// Link `ovix_loopback_server` (defined in tests/api/CMakeLists.txt) to use it.
///
/// The SDK copies its backend addresses once per process, when `OvixCore::shared()` is first
/// created. A test binary therefore uses ONE server for all its tests, `LoopbackServer::shared()`,
/// and installs a platform pointing at it before anything touches `OvixCore`:
///
///     auto& server = ovix::test::LoopbackServer::shared();
///     server.reset();                                   // forget handlers and records of other tests
///     ovix::testing::HeadlessPlatform::Options options;
///     options.environment = ovix::platform::Environment::emulator(server.baseUrl());
///     auto h = ovix::testing::HeadlessPlatform::create(options);
///     h.platform->http = std::make_shared<ovix::platform::CurlHttpClient>();
///     h.install();
///     server.on("/billing/check", [](const auto&) { return LoopbackServer::Reply{200,
///     R"({"eligible":true})"}; });
///
/// (tests/api/ApiTest.h wraps exactly this in a fixture.) Handlers run on the server's threads.
class LoopbackServer {
  public:
    struct Request {
        std::string method;
        std::string target;                               ///< path and query exactly as sent
        std::string path;                                 ///< decoded path, without the query
        std::multimap<std::string, std::string> headers;  ///< names as sent; lookup with `header`
        std::string body;                                 ///< raw bytes, multipart bodies included
        int remotePort = 0;  ///< the client's port: equal ports mean a reused connection

        bool hasHeader(const std::string& name) const { return findHeader(name) != headers.end(); }
        std::string header(const std::string& name) const {
            auto it = findHeader(name);
            return it == headers.end() ? std::string() : it->second;
        }
        /// Header names, lower-cased, without those the protocol itself needs ("host",
        /// "content-length").
        std::vector<std::string> headerNames() const {
            std::vector<std::string> names;
            for (const auto& [name, value] : headers) {
                auto lower = toLower(name);
                if (lower != "host" && lower != "content-length") {
                    names.push_back(lower);
                }
            }
            return names;
        }

      private:
        std::multimap<std::string, std::string>::const_iterator findHeader(const std::string& name) const {
            for (auto it = headers.begin(); it != headers.end(); ++it) {
                if (toLower(it->first) == toLower(name)) {
                    return it;
                }
            }
            return headers.end();
        }
    };

    struct Reply {
        int status = 200;
        std::string body;
        std::string contentType = "application/json";
        /// Holds the answer until `releaseStalled()` or the server's end (a server that hangs).
        bool stall = false;
    };

    using Handler = std::function<Reply(const Request&)>;

    /// Plain HTTP.
    LoopbackServer() : LoopbackServer(std::make_unique<httplib::Server>()) {}
    /// HTTPS with the given certificate and key (the server keeps no reference to them).
    LoopbackServer(X509* certificate, EVP_PKEY* key)
        : LoopbackServer(std::make_unique<httplib::SSLServer>(certificate, key)) {}

    ~LoopbackServer() {
        releaseStalled();
        server_->stop();
        thread_.join();
    }

    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;

    /// The process's plain HTTP server, started on first use and kept until exit.
    static LoopbackServer& shared() {
        static LoopbackServer server;
        return server;
    }

    /// "http://127.0.0.1:<port>" (or https).
    std::string baseUrl() const { return scheme_ + "://127.0.0.1:" + std::to_string(port_); }
    int port() const { return port_; }

    /// Answers requests for `path` (without query) with `handler`; unknown paths get 404.
    void on(const std::string& path, Handler handler) {
        std::lock_guard lock(mutex_);
        handlers_[path] = std::move(handler);
    }
    /// Answers `path` always with `reply`.
    void on(const std::string& path, Reply reply) {
        on(path, [reply](const Request&) { return reply; });
    }

    /// Forgets handlers and recorded requests; releases stalled answers.
    void reset() {
        releaseStalled();
        std::lock_guard lock(mutex_);
        handlers_.clear();
        requests_.clear();
    }

    std::vector<Request> requests() const {
        std::lock_guard lock(mutex_);
        return requests_;
    }
    std::size_t requestCount() const {
        std::lock_guard lock(mutex_);
        return requests_.size();
    }
    /// Waits (in real time, up to `timeout`) until `count` requests have arrived.
    bool waitForRequests(std::size_t count,
                         std::chrono::milliseconds timeout = std::chrono::seconds(10)) const {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, timeout, [&] { return requests_.size() >= count; });
    }

    /// Lets every stalled answer go (with status 503).
    void releaseStalled() {
        std::lock_guard lock(mutex_);
        ++releases_;
        changed_.notify_all();
    }

  private:
    static constexpr const char* kMultipartCopy = "X-Loopback-Multipart-Type";

    static std::string toLower(std::string text) {
        for (auto& c : text) {
            c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        }
        return text;
    }

    explicit LoopbackServer(std::unique_ptr<httplib::Server> server) : server_(std::move(server)) {
        scheme_ = dynamic_cast<httplib::SSLServer*>(server_.get()) != nullptr ? "https" : "http";
        // Enough threads for stalled answers beside live ones; connections stay open for reuse.
        server_->new_task_queue = [] { return new httplib::ThreadPool(16); };
        server_->set_keep_alive_max_count(1000000);
        server_->set_keep_alive_timeout(30);
        // cpp-httplib parses multipart bodies into parts and drops the raw bytes; tests need the raw
        // bytes, so the type is hidden while the body is read and put back when recorded.
        server_->set_pre_routing_handler([](const httplib::Request& request, httplib::Response&) {
            auto& editable = const_cast<httplib::Request&>(request);
            auto it = editable.headers.find("Content-Type");
            if (it != editable.headers.end() && it->second.rfind("multipart/form-data", 0) == 0) {
                editable.headers.emplace(kMultipartCopy, it->second);
                it->second = "application/octet-stream";
            }
            return httplib::Server::HandlerResponse::Unhandled;
        });
        auto serve = [this](const httplib::Request& request, httplib::Response& response) {
            handle(request, response);
        };
        server_->Get(".*", serve);
        server_->Post(".*", serve);
        server_->Put(".*", serve);
        server_->Delete(".*", serve);
        server_->Patch(".*", serve);
        server_->Options(".*", serve);
        port_ = server_->bind_to_any_port("127.0.0.1");
        thread_ = std::thread([this] { server_->listen_after_bind(); });
        while (!server_->is_running()) {
            std::this_thread::yield();
        }
    }

    void handle(const httplib::Request& in, httplib::Response& out) {
        Request recorded;
        recorded.method = in.method;
        recorded.target = in.target;
        recorded.path = in.path;
        recorded.body = in.body;
        recorded.remotePort = in.remote_port;
        std::string multipartType;
        for (const auto& [name, value] : in.headers) {
            if (name == kMultipartCopy) {
                multipartType = value;
            } else if (name == "REMOTE_ADDR" || name == "REMOTE_PORT" || name == "LOCAL_ADDR" ||
                       name == "LOCAL_PORT") {
                continue;  // cpp-httplib's own notes, not sent by the client
            } else {
                recorded.headers.emplace(name, value);
            }
        }
        if (!multipartType.empty()) {
            for (auto& [name, value] : recorded.headers) {
                if (toLower(name) == "content-type") {
                    value = multipartType;
                }
            }
        }

        Handler handler;
        std::uint64_t releases = 0;
        {
            std::lock_guard lock(mutex_);
            releases = releases_;
            requests_.push_back(recorded);
            changed_.notify_all();
            auto it = handlers_.find(recorded.path);
            if (it != handlers_.end()) {
                handler = it->second;
            }
        }
        if (!handler) {
            out.status = 404;
            return;
        }
        Reply reply = handler(recorded);
        if (reply.stall) {
            std::unique_lock lock(mutex_);
            changed_.wait(lock, [&] { return releases_ != releases; });
            out.status = 503;
            return;
        }
        out.status = reply.status;
        out.set_content(reply.body, reply.contentType.c_str());
    }

    std::unique_ptr<httplib::Server> server_;
    std::string scheme_;
    int port_ = 0;
    std::thread thread_;

    mutable std::mutex mutex_;
    mutable std::condition_variable changed_;
    std::map<std::string, Handler> handlers_;
    std::vector<Request> requests_;
    std::uint64_t releases_ = 0;  // bumped by every release
};

}  // namespace ovix::test
