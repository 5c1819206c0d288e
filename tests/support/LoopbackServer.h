#pragma once

#include <httplib.h>

#include <algorithm>
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
#include <vector>

namespace ovix::test {

/// A cpp-httplib server on an ephemeral loopback port that answers by path and records every
/// request as it arrived on the wire: the backend for the HTTP client and API tests, the web site
/// for the web engine tests. Link `ovix_loopback_server`.
///
/// `OvixCore` copies the backend address once per process, so a test binary that goes through the
/// facade uses one server for the whole process (`LoopbackServer::shared()`, or a static of its own)
/// and installs a platform pointing at it before anything touches `OvixCore` (see `ApiTest` in
/// tests/api/ApiTest.h). Another instance is another origin (its own port).
class LoopbackServer {
  public:
    using Headers = std::multimap<std::string, std::string>;

    struct Request {
        std::string method;
        std::string target;  ///< path and query exactly as sent
        std::string path;    ///< decoded, without the query
        Headers headers;
        std::string body;    ///< raw bytes, multipart bodies included
        int remotePort = 0;  ///< equal ports mean a reused connection

        /// The value of header `name` (any case); empty when absent.
        std::string header(const std::string& name) const {
            for (const auto& [key, value] : headers) {
                if (lower(key) == lower(name)) {
                    return value;
                }
            }
            return {};
        }
        /// Lower-cased names, without the protocol's own "host" and "content-length".
        std::vector<std::string> headerNames() const {
            std::vector<std::string> names;
            for (const auto& [key, value] : headers) {
                if (lower(key) != "host" && lower(key) != "content-length") {
                    names.push_back(lower(key));
                }
            }
            return names;
        }
    };

    struct Reply {
        int status = 200;
        std::string body = {};
        std::string contentType = "application/json";
        bool stall = false;    ///< hold the answer until `releaseStalled()` (a server that hangs)
        Headers headers = {};  ///< extra headers, such as Set-Cookie
    };
    using Handler = std::function<Reply(const Request&)>;

    /// Whether a connection carries further requests. Stopping waits for idle connections, which a
    /// browser keeps open: a server that a browser talks to closes each after one answer.
    enum class Connections { Reused, OnePerRequest };

    explicit LoopbackServer(Connections connections = Connections::Reused)
        : LoopbackServer(std::make_unique<httplib::Server>(), "http", connections) {}
    /// HTTPS with this certificate and key.
    LoopbackServer(X509* cert, EVP_PKEY* key)
        : LoopbackServer(std::make_unique<httplib::SSLServer>(cert, key), "https", Connections::Reused) {}
    ~LoopbackServer() {
        releaseStalled();
        server_->stop();
        thread_.join();
    }

    /// The process's plain HTTP server, started on first use.
    static LoopbackServer& shared() {
        static LoopbackServer server;
        return server;
    }

    std::string baseUrl() const { return scheme_ + "://127.0.0.1:" + std::to_string(port_); }
    std::string url(const std::string& path) const { return baseUrl() + path; }
    int port() const { return port_; }

    /// Answers `path` (no query); other paths get 404.
    void on(const std::string& path, Handler handler) {
        std::lock_guard lock(mutex_);
        handlers_[path] = std::move(handler);
    }
    void on(const std::string& path, Reply reply) {
        on(path, [reply](const Request&) { return reply; });
    }
    /// Serves `html` at `path` as a web page.
    void page(const std::string& path, std::string html, Headers headers = {}) {
        on(path, Reply{200, std::move(html), "text/html; charset=utf-8", false, std::move(headers)});
    }
    /// Forgets answers and records; releases stalled answers.
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
    std::size_t countFor(const std::string& path) const {
        std::lock_guard lock(mutex_);
        return static_cast<std::size_t>(std::count_if(requests_.begin(), requests_.end(),
                                                      [&](const Request& r) { return r.path == path; }));
    }
    /// The last request for `path`; an empty record when there was none.
    Request lastFor(const std::string& path) const {
        std::lock_guard lock(mutex_);
        auto it = std::find_if(requests_.rbegin(), requests_.rend(),
                               [&](const Request& r) { return r.path == path; });
        return it == requests_.rend() ? Request{} : *it;
    }
    /// Waits (real time, bounded) until `count` requests have arrived.
    bool waitForRequests(std::size_t count) const {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, std::chrono::seconds(10), [&] { return requests_.size() >= count; });
    }
    /// Stalled answers end now, with status 503.
    void releaseStalled() {
        std::lock_guard lock(mutex_);
        ++releases_;
        changed_.notify_all();
    }

  private:
    static std::string lower(std::string text) {
        std::transform(text.begin(), text.end(), text.begin(),
                       [](unsigned char c) { return std::tolower(c); });
        return text;
    }

    LoopbackServer(std::unique_ptr<httplib::Server> server, std::string scheme, Connections connections)
        : server_(std::move(server)), scheme_(std::move(scheme)) {
        server_->new_task_queue = [] { return new httplib::ThreadPool(16); };  // room for stalled answers
        if (connections == Connections::Reused) {
            server_->set_keep_alive_max_count(1000000);
        } else {
            // Browsers also open connections ahead of need; one still idle after a second is dropped.
            server_->set_keep_alive_max_count(1);
            server_->set_keep_alive_timeout(1);
        }
        server_->set_tcp_nodelay(true);
        // cpp-httplib would parse a multipart body into parts and drop the raw bytes: hide the type
        // while the body is read; `handle` puts it back.
        server_->set_pre_routing_handler([](const httplib::Request& request, httplib::Response&) {
            auto& editable = const_cast<httplib::Request&>(request);
            auto it = editable.headers.find("Content-Type");
            if (it != editable.headers.end() && it->second.rfind("multipart/", 0) == 0) {
                editable.headers.emplace("X-Hidden-Type", it->second);
                it->second = "application/octet-stream";
            }
            return httplib::Server::HandlerResponse::Unhandled;
        });
        auto serve = [this](const httplib::Request& in, httplib::Response& out) { handle(in, out); };
        server_->Get(".*", serve).Post(".*", serve).Put(".*", serve).Delete(".*", serve);
        port_ = server_->bind_to_any_port("127.0.0.1");
        thread_ = std::thread([this] { server_->listen_after_bind(); });
        // stop() before the loop runs would be lost and the join in the destructor would never return.
        while (!server_->is_running()) {
            std::this_thread::yield();
        }
    }

    void handle(const httplib::Request& in, httplib::Response& out) {
        Request seen{in.method, in.target, in.path, {}, in.body, in.remote_port};
        const std::string hidden = in.get_header_value("X-Hidden-Type");
        for (const auto& [name, value] : in.headers) {
            // cpp-httplib files the peer's addresses among the headers; the client never sent them.
            if (name == "X-Hidden-Type" || name.find("_ADDR") != std::string::npos ||
                name.find("_PORT") != std::string::npos) {
                continue;
            }
            seen.headers.emplace(name, lower(name) == "content-type" && !hidden.empty() ? hidden : value);
        }
        Handler handler;
        std::uint64_t releases = 0;
        {
            std::lock_guard lock(mutex_);
            requests_.push_back(seen);
            changed_.notify_all();
            releases = releases_;
            if (auto it = handlers_.find(seen.path); it != handlers_.end()) {
                handler = it->second;
            }
        }
        const Reply reply = handler ? handler(seen) : Reply{404, ""};
        if (reply.stall) {
            std::unique_lock lock(mutex_);
            changed_.wait(lock, [&] { return releases_ != releases; });
            out.status = 503;
            return;
        }
        out.status = reply.status;
        for (const auto& [name, value] : reply.headers) {
            out.set_header(name.c_str(), value);
        }
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
    std::uint64_t releases_ = 0;
};

}  // namespace ovix::test
