#pragma once

#include <curl/curl.h>

#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace ovix::bench {

/// The least an asynchronous libcurl client can do for one GET: a multi handle driven by a worker
/// thread of its own, woken by `curl_multi_wakeup`, with one easy handle configured once and reused
/// (so its connection stays alive). The body is handed over by a completion on the worker, the way
/// the SDK's HTTP client hands its results.
///
/// Threading: `get` from one thread at a time, with at most one GET outstanding. The completion runs
/// on the worker. The destructor stops the worker; a GET still in flight then never completes.
class MultiOnWorker {
  public:
    /// `status` is 0 when the transfer failed.
    using Completion = std::function<void(long status, std::string body)>;

    MultiOnWorker(const std::string& url, const std::vector<std::string>& headers);
    ~MultiOnWorker();

    MultiOnWorker(const MultiOnWorker&) = delete;
    MultiOnWorker& operator=(const MultiOnWorker&) = delete;

    void get(Completion completion);

  private:
    void run();
    void finish();

    CURLM* multi_;
    CURL* easy_;
    curl_slist* headers_ = nullptr;
    std::string body_;  // worker only, while a GET is in flight

    std::mutex mutex_;  // guards `pending_` and `requested_`
    Completion pending_;
    bool requested_ = false;
    Completion inFlight_;  // worker only
    std::atomic<bool> stopping_{false};
    std::thread worker_;
};

}  // namespace ovix::bench
