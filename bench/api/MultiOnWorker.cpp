#include "api/MultiOnWorker.h"

#include <utility>

namespace ovix::bench {

namespace {

size_t append(char* data, size_t size, size_t count, void* out) {
    static_cast<std::string*>(out)->append(data, size * count);
    return size * count;
}

}  // namespace

MultiOnWorker::MultiOnWorker(const std::string& url, const std::vector<std::string>& headers)
    : multi_(curl_multi_init()), easy_(curl_easy_init()) {
    for (const auto& header : headers) {
        headers_ = curl_slist_append(headers_, header.c_str());
    }
    curl_easy_setopt(easy_, CURLOPT_URL, url.c_str());
    curl_easy_setopt(easy_, CURLOPT_HTTPHEADER, headers_);
    curl_easy_setopt(easy_, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(easy_, CURLOPT_WRITEFUNCTION, &append);
    curl_easy_setopt(easy_, CURLOPT_WRITEDATA, &body_);
    worker_ = std::thread([this] { run(); });
}

MultiOnWorker::~MultiOnWorker() {
    stopping_.store(true);
    curl_multi_wakeup(multi_);
    worker_.join();
    curl_multi_remove_handle(multi_, easy_);
    curl_easy_cleanup(easy_);
    curl_multi_cleanup(multi_);
    curl_slist_free_all(headers_);
}

void MultiOnWorker::get(Completion completion) {
    {
        std::lock_guard lock(mutex_);
        pending_ = std::move(completion);
        requested_ = true;
    }
    curl_multi_wakeup(multi_);
}

void MultiOnWorker::run() {
    while (!stopping_.load()) {
        {
            std::lock_guard lock(mutex_);
            if (requested_) {
                requested_ = false;
                inFlight_ = std::move(pending_);
                body_.clear();
                curl_multi_add_handle(multi_, easy_);
            }
        }
        int running = 0;
        curl_multi_perform(multi_, &running);
        finish();
        curl_multi_poll(multi_, nullptr, 0, 10000, nullptr);
    }
}

void MultiOnWorker::finish() {
    int left = 0;
    while (CURLMsg* message = curl_multi_info_read(multi_, &left)) {
        if (message->msg != CURLMSG_DONE) {
            continue;
        }
        long status = 0;
        if (message->data.result == CURLE_OK) {
            curl_easy_getinfo(easy_, CURLINFO_RESPONSE_CODE, &status);
        }
        curl_multi_remove_handle(multi_, easy_);  // `message` is gone from here on
        auto completion = std::move(inFlight_);
        completion(status, std::move(body_));
    }
}

}  // namespace ovix::bench
