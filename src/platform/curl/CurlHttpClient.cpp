#include "platform/curl/CurlHttpClient.h"

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

namespace ovix::platform {

namespace {

bool sameName(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
        return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
    });
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
            t->response.headers.reserve(16);  // a typical response's, without regrowing
            t->response.body.clear();
        } else if (auto colon = line.find(':'); colon != std::string_view::npos) {
            t->response.headers.emplace_back(std::string(trim(line.substr(0, colon))),
                                             std::string(trim(line.substr(colon + 1))));
        }
        return line.size();
    }

    // Sets what every request of this client shares, once per handle: a handle is reused as it is,
    // without a reset, and `prepare` sets everything else each time. CURLE_OK or why libcurl refused.
    static CURLcode configureOnce(CURL* handle, const CurlHttpClient::Options& options) {
        CURLcode code = CURLE_OK;
        auto set = [&](CURLoption option, auto value) {
            if (code == CURLE_OK) {
                code = curl_easy_setopt(handle, option, value);
            }
        };
        set(CURLOPT_NOSIGNAL, 1L);
        set(CURLOPT_PROTOCOLS_STR, "http,https");
        set(CURLOPT_FOLLOWLOCATION, 0L);  // followed by the engine, within the origin only
        set(CURLOPT_SSL_VERIFYPEER, 1L);
        set(CURLOPT_SSL_VERIFYHOST, 2L);
        if (!options.caBundlePath.empty()) {
            set(CURLOPT_CAINFO, options.caBundlePath.c_str());
            set(CURLOPT_CAPATH, static_cast<const char*>(nullptr));
        }
        set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_2TLS));
        set(CURLOPT_WRITEFUNCTION, &Transfer::onBody);
        set(CURLOPT_HEADERFUNCTION, &Transfer::onHeader);
        return code;
    }

    // Sets every option that differs between requests on a handle from `configureOnce`, including
    // each one a previous request on the same handle may have changed (method, body, headers); false,
    // with the reason in `done`, when libcurl refuses one.
    bool prepare(CURL* handle, const CurlHttpClient::Options& options) {
        easy = handle;
        const auto& r = request;
        const bool noBody = (r.method == "GET" && r.body.empty()) || r.method == "HEAD";
        buildHeaderList(noBody);

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
        set(CURLOPT_URL, r.url.c_str());
        set(CURLOPT_TIMEOUT_MS, timeoutMs);
        set(CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(r.maxResponseBytes));
        set(CURLOPT_HTTPHEADER, headerList);
        set(CURLOPT_WRITEDATA, static_cast<void*>(this));
        set(CURLOPT_HEADERDATA, static_cast<void*>(this));
        // The method last: setting a body makes libcurl switch to POST, and HTTPGET, NOBODY and POST
        // each undo part of what the previous request on this handle chose.
        set(CURLOPT_CUSTOMREQUEST, static_cast<const char*>(nullptr));
        if (noBody) {
            set(CURLOPT_POSTFIELDS, static_cast<const char*>(nullptr));
            set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(-1));
            set(CURLOPT_HTTPGET, 1L);
            set(CURLOPT_NOBODY, r.method == "HEAD" ? 1L : 0L);
        } else {
            set(CURLOPT_NOBODY, 0L);
            set(CURLOPT_POST, 1L);
            if (r.method != "POST") {
                set(CURLOPT_CUSTOMREQUEST, r.method.c_str());
            }
            // The body stays in the request, which outlives the transfer: libcurl reads it in place.
            set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(r.body.size()));
            set(CURLOPT_POSTFIELDS, r.body.data());
        }
        return done == CURLE_OK;
    }

    // The caller's headers, in order, then an empty "Name:" for each default libcurl would add that
    // the caller did not set, which removes it: only what the caller asked for is sent. Without a
    // body libcurl adds only "Accept", and every entry here costs a scan on each of its own checks.
    void buildHeaderList(bool noBody) {
        static constexpr std::string_view kDefaults[3] = {"Accept", "Expect", "Content-Type"};
        const int defaults = noBody ? 1 : 3;
        bool has[3] = {false, false, false};
        std::string line;
        for (const auto& [name, value] : request.headers) {
            for (int i = 0; i < defaults; ++i) {
                has[i] = has[i] || sameName(name, kDefaults[i]);
            }
            // "Name;" is how libcurl sends a header with an empty value ("Name:" would remove it).
            line.assign(name).append(value.empty() ? ";" : ": ").append(value);
            headerList = curl_slist_append(headerList, line.c_str());
        }
        for (int i = 0; i < defaults; ++i) {
            if (!has[i]) {
                line.assign(kDefaults[i]).append(":");
                headerList = curl_slist_append(headerList, line.c_str());
            }
        }
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

struct CurlHttpClient::Engine {
    Options options;
    CURLM* multi = nullptr;

    std::mutex mutex;                               // guards `queued` only
    std::vector<std::unique_ptr<Transfer>> queued;  // sent, not yet handed to libcurl
    std::atomic<bool> stopping{false};

    // Worker thread only.
    std::map<CURL*, std::unique_ptr<Transfer>> running;
    static constexpr std::size_t kSpareHandles = 16;
    std::vector<CURL*> spare;  // finished handles, still configured, for reuse
    // What `start` took from `queued`; emptied, not freed, so that the two vectors trade their
    // storage instead of allocating for each request.
    std::vector<std::unique_ptr<Transfer>> batch;

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

    // Keeps the transfer's handle, still configured, for the next request (`prepare` sets what
    // differs), having dropped its pointers into the transfer, which is about to go.
    void recycle(Transfer& transfer) {
        if (transfer.easy != nullptr && spare.size() < kSpareHandles) {
            CURL* easy = std::exchange(transfer.easy, nullptr);
            curl_easy_setopt(easy, CURLOPT_HTTPHEADER, static_cast<curl_slist*>(nullptr));
            curl_easy_setopt(easy, CURLOPT_POSTFIELDS, static_cast<const char*>(nullptr));
            curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, static_cast<char*>(nullptr));
            spare.push_back(easy);
        }
    }

    // A handle for the next request: a kept one, or a new one configured for this client.
    CURL* takeHandle(CURLcode& why) {
        if (!spare.empty()) {
            CURL* handle = spare.back();
            spare.pop_back();
            return handle;
        }
        CURL* handle = curl_easy_init();
        if (handle == nullptr) {
            why = CURLE_OUT_OF_MEMORY;
            return nullptr;
        }
        why = Transfer::configureOnce(handle, options);
        if (why != CURLE_OK) {
            curl_easy_cleanup(handle);
            return nullptr;
        }
        return handle;
    }

    void start(std::vector<std::unique_ptr<Transfer>>& finished) {
        {
            std::lock_guard lock(mutex);
            batch.swap(queued);
        }
        for (auto& transfer : batch) {
            CURLcode why = CURLE_OK;
            CURL* handle = takeHandle(why);
            if (handle == nullptr) {
                transfer->done = why;
                finished.push_back(std::move(transfer));
                continue;
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
        batch.clear();
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

    // The request's body is released before the completion runs, and the handle is kept for the
    // next request; the rest of the transfer (small) goes after, off the caller's wait. The client
    // stays alive until the completion has returned: it may be the last holder, and the client's
    // destructor then runs here, on the worker.
    void deliver(std::unique_ptr<Transfer> transfer) {
        auto completion = std::move(transfer->completion);
        auto keepAlive = std::move(transfer->keepAlive);
        auto result = transfer->result(transfer->done);
        recycle(*transfer);
        std::string().swap(transfer->request.body);
        completion(std::move(result));
        transfer.reset();
    }
};

CurlHttpClient::CurlHttpClient() : CurlHttpClient(Options{}) {}

CurlHttpClient::CurlHttpClient(Options options) {
    initialiseCurlOnce();
    engine_ = std::make_shared<Engine>(std::move(options));
    worker_ = std::thread([engine = engine_] { engine->run(); });
}

CurlHttpClient::~CurlHttpClient() {
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

void CurlHttpClient::send(HttpRequest request, Completion completion) {
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

}  // namespace ovix::platform
