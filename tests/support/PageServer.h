#pragma once

#include <httplib.h>

#include <condition_variable>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace ovix::test {

/// A loopback HTTP server for web engine tests: serves fixed pages by path, remembers each request's
/// path and headers, and can hold a path unanswered until released.
class PageServer {
  public:
    struct Seen {
        std::string path;
        std::string target;  ///< path and query as sent
        std::string userAgent;
        std::string cookie;
        std::string body;
    };

    PageServer() {
        server_.set_keep_alive_max_count(1);
        auto serve = [this](const httplib::Request& request, httplib::Response& response) {
            this->serve(request, response);
        };
        server_.Get(".*", serve);
        server_.Post(".*", serve);
        port_ = server_.bind_to_any_port("127.0.0.1");
        thread_ = std::thread([this] { server_.listen_after_bind(); });
        // stop() before the loop runs would be lost and the join below would never return.
        while (!server_.is_running()) {
            std::this_thread::yield();
        }
    }

    ~PageServer() {
        releaseHeld();
        server_.stop();
        thread_.join();
    }

    /// Serves `html` at `path`, with optional extra headers.
    void page(const std::string& path, std::string html,
              std::multimap<std::string, std::string> headers = {}) {
        std::lock_guard lock(mutex_);
        pages_[path] = {std::move(html), std::move(headers)};
    }

    /// Requests for `path` get no answer until `releaseHeld`.
    void hold(const std::string& path) {
        std::lock_guard lock(mutex_);
        held_.push_back(path);
    }

    void releaseHeld() {
        std::lock_guard lock(mutex_);
        released_ = true;
        wake_.notify_all();
    }

    std::string url(const std::string& path) const {
        return "http://127.0.0.1:" + std::to_string(port_) + path;
    }
    int port() const { return port_; }

    std::vector<Seen> seen() const {
        std::lock_guard lock(mutex_);
        return seen_;
    }

    std::size_t countFor(const std::string& path) const {
        std::size_t count = 0;
        for (const auto& s : seen()) {
            count += s.path == path ? 1 : 0;
        }
        return count;
    }

    /// The last request for `path`; an empty record when there was none.
    Seen lastFor(const std::string& path) const {
        Seen last;
        for (const auto& s : seen()) {
            if (s.path == path) {
                last = s;
            }
        }
        return last;
    }

  private:
    struct Page {
        std::string html;
        std::multimap<std::string, std::string> headers;
    };

    void serve(const httplib::Request& request, httplib::Response& response) {
        std::unique_lock lock(mutex_);
        seen_.push_back({request.path, request.target, request.get_header_value("User-Agent"),
                         request.get_header_value("Cookie"), request.body});
        for (const auto& path : held_) {
            if (path == request.path) {
                wake_.wait(lock, [this] { return released_; });
                response.status = 503;
                return;
            }
        }
        auto found = pages_.find(request.path);
        if (request.method == "POST") {
            response.set_content("{}", "application/json");
            return;
        }
        if (found == pages_.end()) {
            response.status = 404;
            response.set_content("<html><body>missing</body></html>", "text/html");
            return;
        }
        for (const auto& [name, value] : found->second.headers) {
            response.set_header(name.c_str(), value);
        }
        response.set_content(found->second.html, "text/html; charset=utf-8");
    }

    httplib::Server server_;
    int port_ = 0;
    std::thread thread_;
    mutable std::mutex mutex_;
    std::condition_variable wake_;
    std::map<std::string, Page> pages_;
    std::vector<std::string> held_;
    bool released_ = false;
    std::vector<Seen> seen_;
};

}  // namespace ovix::test
