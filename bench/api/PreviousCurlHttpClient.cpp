#include "api/PreviousCurlHttpClient.h"

#include <curl/curl.h>

#include <algorithm>
#include <atomic>
#include <cctype>
#include <cmath>
#include <iterator>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

#include "core/UrlSyntax.h"

namespace ovix::bench {

using platform::HttpClient;
using platform::HttpHeaders;
using platform::HttpRequest;
using platform::HttpResponse;
using platform::HttpResult;

namespace {

bool sameName(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
        return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
    });
}

bool hasHeader(const HttpHeaders& headers, std::string_view name) {
    return std::any_of(headers.begin(), headers.end(),
                       [&](const auto& h) { return sameName(h.first, name); });
}

std::string_view trim(std::string_view text) {
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.front()))) {
        text.remove_prefix(1);
    }
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.back()))) {
        text.remove_suffix(1);
    }
    return text;
}

constexpr int kMaxRedirects = 16;

void initialiseCurlOnce() {
    static const CURLcode code = curl_global_init(CURL_GLOBAL_DEFAULT);
    (void)code;
}

// One request from the moment it is queued until its completion has been handed over.
struct Transfer {
    HttpRequest request;
    HttpClient::Completion completion;
    std::shared_ptr<HttpClient> keepAlive;  ///< the client, while this request is in flight
    int redirects = 0;
    std::string refusal;  ///< why the request was ended without an answer, when it was
    CURL* easy = nullptr;
    curl_slist* headerList = nullptr;
    HttpResponse response;
    bool tooLarge = false;
    CURLcode done = CURLE_OK;  ///< the outcome, once finished
    char errorText[CURL_ERROR_SIZE] = {};

    ~Transfer() {
        if (easy != nullptr) {
            curl_easy_cleanup(easy);
        }
        curl_slist_free_all(headerList);
    }

    static size_t onBody(char* data, size_t size, size_t count, void* self) {
        auto* t = static_cast<Transfer*>(self);
        const size_t length = size * count;
        auto& body = t->response.body;
        if (body.size() + length > t->request.maxResponseBytes) {
            t->tooLarge = true;
            return 0;  // aborts the transfer
        }
        if (body.empty()) {
            curl_off_t expected = -1;
            if (curl_easy_getinfo(t->easy, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &expected) == CURLE_OK &&
                expected > 0 && static_cast<size_t>(expected) <= t->request.maxResponseBytes) {
                body.reserve(static_cast<size_t>(expected));
            }
        }
        body.append(data, length);
        return length;
    }

    static size_t onHeader(char* data, size_t size, size_t count, void* self) {
        auto* t = static_cast<Transfer*>(self);
        const std::string_view line(data, size * count);
        if (line.rfind("HTTP/", 0) == 0) {
            // A new response begins (after a redirect or an interim 1xx): forget the previous one.
            t->response.headers.clear();
            t->response.body.clear();
        } else if (auto colon = line.find(':'); colon != std::string_view::npos) {
            t->response.headers.emplace_back(std::string(trim(line.substr(0, colon))),
                                             std::string(trim(line.substr(colon + 1))));
        }
        return line.size();
    }

    // Configures the easy handle; false, with the reason in `done`, when libcurl refuses an option.
    bool prepare(CURL* handle, const PreviousCurlHttpClient::Options& options) {
        easy = handle;
        if (easy == nullptr) {
            done = CURLE_OUT_OF_MEMORY;
            return false;
        }
        const auto& r = request;
        for (const auto& [name, value] : r.headers) {
            // "Name;" is how libcurl sends a header with an empty value ("Name:" would remove it).
            headerList =
                curl_slist_append(headerList, (value.empty() ? name + ";" : name + ": " + value).c_str());
        }
        // Only what the caller asked for: drop libcurl's own defaults.
        for (const char* name : {"Accept", "Expect", "Content-Type"}) {
            if (!hasHeader(r.headers, name)) {
                headerList = curl_slist_append(headerList, (std::string(name) + ":").c_str());
            }
        }

        double timeout = r.timeoutSeconds;
        if (options.timeoutCeilingSeconds > 0 &&
            (!(timeout > 0) || timeout > options.timeoutCeilingSeconds)) {
            timeout = options.timeoutCeilingSeconds;
        }
        const long timeoutMs = timeout > 0 ? std::max(1L, std::lround(timeout * 1000)) : 0L;

        auto set = [&](CURLoption option, auto value) {
            if (done == CURLE_OK) {
                done = curl_easy_setopt(easy, option, value);
            }
        };
        set(CURLOPT_PRIVATE, static_cast<void*>(this));
        set(CURLOPT_ERRORBUFFER, errorText);
        set(CURLOPT_NOSIGNAL, 1L);
        set(CURLOPT_URL, r.url.c_str());
        set(CURLOPT_PROTOCOLS_STR, "http,https");
        set(CURLOPT_FOLLOWLOCATION, 0L);  // followed by the engine, within the origin only
        set(CURLOPT_SSL_VERIFYPEER, 1L);
        set(CURLOPT_SSL_VERIFYHOST, 2L);
        if (!options.caBundlePath.empty()) {
            set(CURLOPT_CAINFO, options.caBundlePath.c_str());
            set(CURLOPT_CAPATH, static_cast<const char*>(nullptr));
        }
        set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_2TLS));
        set(CURLOPT_TIMEOUT_MS, timeoutMs);
        set(CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(r.maxResponseBytes));
        set(CURLOPT_HTTPHEADER, headerList);
        set(CURLOPT_WRITEFUNCTION, &Transfer::onBody);
        set(CURLOPT_WRITEDATA, static_cast<void*>(this));
        set(CURLOPT_HEADERFUNCTION, &Transfer::onHeader);
        set(CURLOPT_HEADERDATA, static_cast<void*>(this));
        if (r.method == "GET" && r.body.empty()) {
            set(CURLOPT_HTTPGET, 1L);
        } else if (r.method == "HEAD") {
            set(CURLOPT_NOBODY, 1L);
        } else {
            if (r.method == "POST") {
                set(CURLOPT_POST, 1L);
            } else {
                set(CURLOPT_CUSTOMREQUEST, r.method.c_str());
            }
            // The body stays in the request, which outlives the transfer: libcurl reads it in place.
            set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(r.body.size()));
            set(CURLOPT_POSTFIELDS, r.body.data());
        }
        return done == CURLE_OK;
    }

    HttpResult result(CURLcode code) {
        HttpResult out;
        if (!refusal.empty()) {
            out.error = refusal;
        } else if (code == CURLE_OK) {
            long status = 0;
            curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &status);
            response.status = status;
            out.response = std::move(response);
        } else if (tooLarge || code == CURLE_FILESIZE_EXCEEDED) {
            out.error = "The response is larger than " + std::to_string(request.maxResponseBytes) + " bytes";
        } else {
            std::string text = curl_easy_strerror(code);
            if (errorText[0] != '\0') {
                text += ": ";
                text += errorText;
            }
            out.error = std::move(text);
        }
        return out;
    }
};

}  // namespace

struct PreviousCurlHttpClient::Engine {
    Options options;
    CURLM* multi = nullptr;

    std::mutex mutex;                               // guards `queued` only
    std::vector<std::unique_ptr<Transfer>> queued;  // sent, not yet handed to libcurl
    std::atomic<bool> stopping{false};

    // Worker thread only.
    std::map<CURL*, std::unique_ptr<Transfer>> running;
    static constexpr std::size_t kSpareHandles = 16;
    std::vector<CURL*> spare;  // finished handles, reset, for reuse

    explicit Engine(Options o) : options(std::move(o)), multi(curl_multi_init()) {}

    ~Engine() {
        for (auto& [easy, transfer] : running) {
            curl_multi_remove_handle(multi, easy);
        }
        running.clear();
        for (CURL* easy : spare) {
            curl_easy_cleanup(easy);
        }
        curl_multi_cleanup(multi);
    }

    void wake() { curl_multi_wakeup(multi); }

    void run() {
        std::vector<std::unique_ptr<Transfer>> finished;
        while (!stopping.load()) {
            start(finished);
            int active = 0;
            curl_multi_perform(multi, &active);
            collect(finished);
            for (auto& transfer : finished) {
                if (!follow(transfer)) {
                    deliver(std::move(transfer));
                }
            }
            finished.clear();
            if (!stopping.load()) {
                curl_multi_poll(multi, nullptr, 0, 10000, nullptr);
            }
        }
        cancelPending();
    }

  private:
    // The client is going away: whatever is left ends with an error, here on the worker, including
    // requests those completions send.
    void cancelPending() {
        for (;;) {
            std::vector<std::unique_ptr<Transfer>> left;
            for (auto& [easy, transfer] : running) {
                curl_multi_remove_handle(multi, easy);
                left.push_back(std::move(transfer));
            }
            running.clear();
            {
                std::lock_guard lock(mutex);
                std::move(queued.begin(), queued.end(), std::back_inserter(left));
                queued.clear();
            }
            if (left.empty()) {
                return;
            }
            for (auto& transfer : left) {
                transfer->refusal = "The HTTP client was destroyed before the request finished";
                deliver(std::move(transfer));
            }
        }
    }

    // A redirect within the request's origin is sent again from here; one that leaves the origin
    // (another host or port, or HTTPS to HTTP) ends the request, so nothing reaches the other origin.
    // True when the transfer was sent on.
    bool follow(std::unique_ptr<Transfer>& transfer) {
        long status = 0;
        char* target = nullptr;
        if (transfer->done != CURLE_OK || transfer->easy == nullptr ||
            curl_easy_getinfo(transfer->easy, CURLINFO_RESPONSE_CODE, &status) != CURLE_OK || status < 300 ||
            status > 399 || curl_easy_getinfo(transfer->easy, CURLINFO_REDIRECT_URL, &target) != CURLE_OK ||
            target == nullptr) {
            return false;
        }
        const std::string origin = UrlSyntax::origin(transfer->request.url);
        if (origin.empty() || origin != UrlSyntax::origin(target)) {
            transfer->refusal = "Refused a redirect to another origin: " + std::string(target);
            return false;
        }
        if (++transfer->redirects > kMaxRedirects) {
            transfer->refusal = "More than " + std::to_string(kMaxRedirects) + " redirects";
            return false;
        }
        auto next = std::make_unique<Transfer>();
        next->request = std::move(transfer->request);
        next->request.url = target;
        // As browsers do: 303, and 301/302 after a POST, continue as a GET without the body.
        if (status == 303 || ((status == 301 || status == 302) && next->request.method == "POST")) {
            next->request.method = "GET";
            next->request.body.clear();
        }
        next->completion = std::move(transfer->completion);
        next->keepAlive = std::move(transfer->keepAlive);
        next->redirects = transfer->redirects;
        recycle(*transfer);
        {
            std::lock_guard lock(mutex);
            queued.push_back(std::move(next));
        }
        wake();  // the loop is about to wait for sockets: start the next hop first
        return true;
    }

    void recycle(Transfer& transfer) {
        if (transfer.easy != nullptr && spare.size() < kSpareHandles) {
            curl_easy_reset(transfer.easy);
            spare.push_back(std::exchange(transfer.easy, nullptr));
        }
    }

    void start(std::vector<std::unique_ptr<Transfer>>& finished) {
        std::vector<std::unique_ptr<Transfer>> batch;
        {
            std::lock_guard lock(mutex);
            batch.swap(queued);
        }
        for (auto& transfer : batch) {
            CURL* handle = nullptr;
            if (spare.empty()) {
                handle = curl_easy_init();
            } else {
                handle = spare.back();
                spare.pop_back();
            }
            if (!transfer->prepare(handle, options)) {
                finished.push_back(std::move(transfer));
                continue;
            }
            CURL* easy = transfer->easy;
            if (curl_multi_add_handle(multi, easy) != CURLM_OK) {
                transfer->done = CURLE_FAILED_INIT;
                finished.push_back(std::move(transfer));
                continue;
            }
            running.emplace(easy, std::move(transfer));
        }
    }

    void collect(std::vector<std::unique_ptr<Transfer>>& finished) {
        int left = 0;
        while (CURLMsg* message = curl_multi_info_read(multi, &left)) {
            if (message->msg != CURLMSG_DONE) {
                continue;
            }
            auto it = running.find(message->easy_handle);
            if (it == running.end()) {
                continue;
            }
            auto transfer = std::move(it->second);
            running.erase(it);
            curl_multi_remove_handle(multi, transfer->easy);
            transfer->done = message->data.result;
            finished.push_back(std::move(transfer));
        }
    }

    // The transfer (its body) is released before the completion runs; its handle is kept for the
    // next request. The client stays alive until the completion has returned: it may be the last
    // holder, and the client's destructor then runs here, on the worker.
    void deliver(std::unique_ptr<Transfer> transfer) {
        auto completion = std::move(transfer->completion);
        auto keepAlive = std::move(transfer->keepAlive);
        auto result = transfer->result(transfer->done);
        recycle(*transfer);
        transfer.reset();
        completion(std::move(result));
    }
};

PreviousCurlHttpClient::PreviousCurlHttpClient() : PreviousCurlHttpClient(Options{}) {}

PreviousCurlHttpClient::PreviousCurlHttpClient(Options options) {
    initialiseCurlOnce();
    engine_ = std::make_shared<Engine>(std::move(options));
    worker_ = std::thread([engine = engine_] { engine->run(); });
}

PreviousCurlHttpClient::~PreviousCurlHttpClient() {
    engine_->stopping.store(true);
    engine_->wake();
    if (worker_.get_id() == std::this_thread::get_id()) {
        // Dropped from inside one of our own completions: the worker stops once that returns, and
        // its reference keeps the engine alive until then.
        worker_.detach();
    } else {
        worker_.join();
    }
}

void PreviousCurlHttpClient::send(HttpRequest request, Completion completion) {
    auto transfer = std::make_unique<Transfer>();
    transfer->request = std::move(request);
    transfer->completion = std::move(completion);
    transfer->keepAlive = weak_from_this().lock();
    {
        std::lock_guard lock(engine_->mutex);
        engine_->queued.push_back(std::move(transfer));
    }
    engine_->wake();
}

}  // namespace ovix::bench
