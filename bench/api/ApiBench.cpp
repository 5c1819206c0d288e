// Round trips and uploads through the SDK's HTTP path, each beside a raw libcurl baseline doing
// the same exchange in the same run, against a loopback server in a child process (so that its
// memory stays out of ours).
//
//   build/<dir>/bench/api/ovix_api_bench
//
// Each upload benchmark runs the SDK and its raw baseline alternately and reports both medians and
// their ratio, "sdk_over_raw". The user-info one runs the SDK beside three baselines and its HTTP
// client alone, in a shuffled order, and reports "sdk_over_easy", "sdk_over_multi",
// "sdk_over_cpprest" and "client_over_multi" (ratios are medians of per-iteration ratios; the "*_us" are
// medians). The "*_peak_per_body_byte" counters are the highest rise of resident memory during one run of
// that side, over the bytes of the five bodies.
#include <benchmark/benchmark.h>
#include <curl/curl.h>
#include <httplib.h>
#include <malloc.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <fstream>
#include <future>
#include <mutex>
#include <numeric>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "api/APIService.h"
#include "api/CpprestGet.h"
#include "api/MultiOnWorker.h"
#include "ovix/OvixCore.h"
#include "ovix/platform/Platform.h"
#include "ovix/testing/HeadlessPlatform.h"
#include "platform/curl/CurlHttpClient.h"
#include "platform/jpeg/JpegImageCodec.h"
#include "support/PeakMeter.h"

namespace {

using ovix::bench::PeakMeter;

using ovix::platform::RgbaImage;

constexpr const char* kUserInfoPath = "/auth-connect/api/v2.0/oauth2/auth/userinfo";
constexpr const char* kUploadPath = "/inside/image/api/v2.0/upload";
constexpr std::size_t kBodyTarget = std::size_t{4} << 20;
constexpr int kUploads = 5;

std::string gBase;

class NullConsole : public ovix::platform::Console {
  public:
    void printLine(std::string_view) override {}
};

// ---- the server, in a child process ----

pid_t gServer = -1;

void startServer() {
    int ports[2];
    if (pipe(ports) != 0) {
        std::perror("pipe");
        std::exit(1);
    }
    gServer = fork();
    if (gServer == 0) {
        close(ports[0]);
        httplib::Server server;
        // Idle keep-alive connections hold a thread each until they time out.
        server.new_task_queue = [] { return new httplib::ThreadPool(64); };
        server.set_keep_alive_max_count(1000000);
        server.set_tcp_nodelay(true);  // no 40 ms wait between a response's header and body writes
        server.Get(kUserInfoPath, [](const httplib::Request&, httplib::Response& res) {
            res.set_content(
                R"({"Code":0,"Data":{"avatar":"https://cdn/a.png","frame":"","gender":1,"username":"player01","address":"Hà Nội","dob":"2000-01-01"}})",
                "application/json");
        });
        server.Post(kUploadPath, [](const httplib::Request& req, httplib::Response& res) {
            const bool ok = req.has_file("image") && !req.get_file_value("image").content.empty();
            res.status = ok ? 200 : 400;
            res.set_content(R"({"Data":{"ImageUrl":"https://cdn/i.jpg"}})", "application/json");
        });
        const int port = server.bind_to_any_port("127.0.0.1");
        if (write(ports[1], &port, sizeof port) != sizeof port) {
            _exit(1);
        }
        close(ports[1]);
        server.listen_after_bind();
        _exit(0);
    }
    close(ports[1]);
    int port = 0;
    if (read(ports[0], &port, sizeof port) != sizeof port) {
        std::fprintf(stderr, "server did not start\n");
        std::exit(1);
    }
    close(ports[0]);
    gBase = "http://127.0.0.1:" + std::to_string(port);
}

void stopServer() {
    if (gServer > 0) {
        kill(gServer, SIGTERM);
        waitpid(gServer, nullptr, 0);
    }
}

// ---- the pictures: noise sized so that each JPEG at quality 0.8 is about 4 MiB ----

RgbaImage noise(int width, int height, unsigned seed) {
    RgbaImage image{width, height, std::vector<std::uint8_t>(static_cast<std::size_t>(width) * height * 4)};
    std::mt19937 random(seed);
    for (auto& byte : image.pixels) {
        byte = static_cast<std::uint8_t>(random());
    }
    return image;
}

const std::vector<RgbaImage>& pictures() {
    static const std::vector<RgbaImage> all = [] {
        ovix::platform::JpegImageCodec codec;
        int side = 1024;
        const auto size = codec.encodeJpeg(noise(side, side, 1), 0.8)->size();
        side =
            static_cast<int>(side * std::sqrt(static_cast<double>(kBodyTarget) / static_cast<double>(size)));
        std::vector<RgbaImage> out;
        for (int i = 0; i < kUploads; ++i) {
            out.push_back(noise(side, side, 10 + i));
        }
        return out;
    }();
    return all;
}

std::string boundaryFor(int i) {
    return "Boundary-00000000-0000-4000-8000-00000000000" + std::to_string(i);
}

// The body the straightforward way: encode, then concatenate.
std::string plainBody(const RgbaImage& picture, int i) {
    const std::string boundary = boundaryFor(i);
    auto jpeg = ovix::platform::JpegImageCodec().encodeJpeg(picture, 0.8);
    return "--" + boundary + "\r\nContent-Disposition: form-data; name=\"image\"; filename=\"image\"\r\n" +
           "Content-Type: image/jpeg\r\n\r\n" + *jpeg + "\r\n--" + boundary + "--\r\n";
}

const std::vector<std::string>& prebuiltBodies() {
    static const std::vector<std::string> bodies = [] {
        std::vector<std::string> out;
        for (int i = 0; i < kUploads; ++i) {
            out.push_back(plainBody(pictures()[i], i));
        }
        return out;
    }();
    return bodies;
}

std::size_t totalBodyBytes() {
    std::size_t total = 0;
    for (const auto& body : prebuiltBodies()) {
        total += body.size();
    }
    return total;
}

// ---- raw libcurl ----

size_t collect(char* data, size_t size, size_t count, void* out) {
    static_cast<std::string*>(out)->append(data, size * count);
    return size * count;
}

struct RawMulti {
    CURLM* multi = curl_multi_init();
    std::vector<CURL*> easies;
    std::vector<std::string> responses = std::vector<std::string>(kUploads);
    std::vector<curl_slist*> headers = std::vector<curl_slist*>(kUploads, nullptr);

    RawMulti() {
        for (int i = 0; i < kUploads; ++i) {
            easies.push_back(curl_easy_init());
            headers[i] = curl_slist_append(
                nullptr, ("Content-Type: multipart/form-data; boundary=" + boundaryFor(i)).c_str());
            headers[i] = curl_slist_append(headers[i], "ClientID: game-1");
        }
    }
    ~RawMulti() {
        for (int i = 0; i < kUploads; ++i) {
            curl_easy_cleanup(easies[i]);
            curl_slist_free_all(headers[i]);
        }
        curl_multi_cleanup(multi);
    }

    void upload(const std::vector<std::string>& bodies) {
        const std::string url = gBase + kUploadPath;
        for (int i = 0; i < kUploads; ++i) {
            CURL* e = easies[i];
            responses[i].clear();
            curl_easy_setopt(e, CURLOPT_URL, url.c_str());
            curl_easy_setopt(e, CURLOPT_HTTPHEADER, headers[i]);
            curl_easy_setopt(e, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(bodies[i].size()));
            curl_easy_setopt(e, CURLOPT_POSTFIELDS, bodies[i].data());
            curl_easy_setopt(e, CURLOPT_WRITEFUNCTION, &collect);
            curl_easy_setopt(e, CURLOPT_WRITEDATA, &responses[i]);
            curl_multi_add_handle(multi, e);
        }
        int running = 0;
        do {
            curl_multi_perform(multi, &running);
            if (running > 0) {
                curl_multi_poll(multi, nullptr, 0, 1000, nullptr);
            }
        } while (running > 0);
        int left = 0;
        while (CURLMsg* m = curl_multi_info_read(multi, &left)) {
            long status = 0;
            curl_easy_getinfo(m->easy_handle, CURLINFO_RESPONSE_CODE, &status);
            if (m->data.result != CURLE_OK || status != 200) {
                std::fprintf(stderr, "raw upload failed\n");
                std::exit(1);
            }
        }
        for (CURL* e : easies) {
            curl_multi_remove_handle(multi, e);
        }
    }
};

// ---- pairing ----

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start, Clock::time_point end = Clock::now()) {
    return std::chrono::duration<double>(end - start).count();
}

double median(std::vector<double> samples) {
    if (samples.empty()) {
        return 0;
    }
    std::nth_element(samples.begin(), samples.begin() + samples.size() / 2, samples.end());
    return samples[samples.size() / 2];
}

// Runs both sides once per iteration, in alternating order, so that both see the same machine load
// (this machine is shared, and load drifts between separately run benchmarks). Reports each side's
// median, which a compiler taking the processor for a moment does not move, and their ratio.
template <typename Raw, typename Sdk>
void paired(benchmark::State& state, Raw raw, Sdk sdk, double scale, const std::string& unit) {
    std::vector<double> raws;
    std::vector<double> sdks;
    bool sdkFirst = false;
    for (auto _ : state) {
        double r = 0;
        double s = 0;
        if (sdkFirst) {
            s = sdk();
            r = raw();
        } else {
            r = raw();
            s = sdk();
        }
        sdkFirst = !sdkFirst;
        raws.push_back(r);
        sdks.push_back(s);
        state.SetIterationTime(r + s);
    }
    const double rawMedian = median(raws);
    const double sdkMedian = median(sdks);
    state.counters["raw_" + unit] = rawMedian * scale;
    state.counters["sdk_" + unit] = sdkMedian * scale;
    state.counters["sdk_over_raw"] = sdkMedian / rawMedian;
}

// Waits for `count` completions and answers when the last one started.
class LastCompletion {
  public:
    explicit LastCompletion(int count) : left_(count) {}
    std::function<void(std::optional<ovix::Dictionary>)> completion() {
        return [this](std::optional<ovix::Dictionary> result) { finish(result.has_value()); };
    }
    void finish(bool ok) {
        std::lock_guard lock(mutex_);
        ok_ = ok_ && ok;
        last_ = Clock::now();
        if (--left_ == 0) {
            done_.notify_all();
        }
    }
    Clock::time_point wait() {
        std::unique_lock lock(mutex_);
        done_.wait(lock, [&] { return left_ == 0; });
        if (!ok_) {
            std::fprintf(stderr, "an SDK request failed\n");
            std::exit(1);
        }
        return last_;
    }

  private:
    std::mutex mutex_;
    std::condition_variable done_;
    int left_;
    bool ok_ = true;
    Clock::time_point last_;
};

// ---- user info: from the call until the caller has the result ----

// One way of getting the user info: answers the seconds from its call until the caller has the
// result.
struct Side {
    const char* name;
    std::function<double()> run;
};

// Runs every side once per iteration, in an order shuffled each time, so that all see the same
// machine load and each follows every other equally often: a side whose library leaves work running
// on its own threads after handing its result over (cpprest) would otherwise always slow the same
// next side. Reports each side's median and answers every side's samples, in iteration order.
std::vector<std::vector<double>> shuffled(benchmark::State& state, const std::vector<Side>& sides) {
    std::vector<std::vector<double>> samples(sides.size());
    std::vector<std::size_t> order(sides.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::mt19937 random(7);
    for (auto _ : state) {
        std::shuffle(order.begin(), order.end(), random);
        double total = 0;
        for (const std::size_t i : order) {
            const double seconds = sides[i].run();
            samples[i].push_back(seconds);
            total += seconds;
        }
        state.SetIterationTime(total);
    }
    for (std::size_t i = 0; i < sides.size(); ++i) {
        state.counters[std::string(sides[i].name) + "_us"] = median(samples[i]) * 1e6;
    }
    return samples;
}

// The median over iterations of a's time over b's in the same iteration: the load of a shared
// machine drifts over a run, but hardly within one iteration, so this moves less than the ratio of
// the two medians.
double pairedRatio(const std::vector<double>& a, const std::vector<double>& b) {
    std::vector<double> ratios;
    for (std::size_t i = 0; i < a.size() && i < b.size(); ++i) {
        ratios.push_back(a[i] / b[i]);
    }
    return median(std::move(ratios));
}

const std::vector<std::pair<std::string, std::string>> kUserInfoHeaders = {
    {"Content-Type", "application/json"}, {"Authorization", "Bearer token-123"}, {"ClientID", "game-1"}};

std::string userInfoPathAndQuery() {
    return std::string(kUserInfoPath) + "?fields=avatar,frame,gender,username,address,dob";
}

std::vector<std::string> headerLines() {
    std::vector<std::string> lines;
    for (const auto& [name, value] : kUserInfoHeaders) {
        lines.push_back(name + ": " + value);
    }
    return lines;
}

void failed(const char* what) {
    std::fprintf(stderr, "%s failed\n", what);
    std::exit(1);
}

// The SDK beside three baselines: a raw easy handle on the caller's thread (curl_easy_perform
// returns), a raw multi handle on its own worker handing the body over as the SDK does (a completion
// on the worker waking the caller), and the C++ REST SDK's asynchronous GET (its task's get()
// returns). The SDK's completion runs on its transport thread and wakes the caller the same way;
// its time includes building the request and parsing the answer, which the baselines do not do.
// Beside them, the SDK with its previous HTTP client, and its HTTP client alone.
void UserInfo(benchmark::State& state) {
    const std::string url = gBase + userInfoPathAndQuery();
    const auto lines = headerLines();

    CURL* easy = curl_easy_init();
    curl_slist* headers = nullptr;
    for (const auto& line : lines) {
        headers = curl_slist_append(headers, line.c_str());
    }
    std::string body;
    curl_easy_setopt(easy, CURLOPT_URL, url.c_str());
    curl_easy_setopt(easy, CURLOPT_HTTPHEADER, headers);
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, &collect);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, &body);
    auto rawEasy = [&] {
        body.clear();
        const auto start = Clock::now();
        if (curl_easy_perform(easy) != CURLE_OK) {
            failed("raw easy GET");
        }
        return secondsSince(start);
    };

    ovix::bench::MultiOnWorker multi(url, lines);
    auto rawMulti = [&] {
        LastCompletion done(1);
        const auto start = Clock::now();
        multi.get([&done](long status, std::string) { done.finish(status == 200); });
        return secondsSince(start, done.wait());
    };

    ovix::bench::CpprestGet cpprest(gBase, userInfoPathAndQuery(), kUserInfoHeaders);
    auto peer = [&] {
        std::string text;
        const auto start = Clock::now();
        if (cpprest.get(text) != 200) {
            failed("cpprest GET");
        }
        return secondsSince(start);
    };

    auto sdk = [] {
        LastCompletion done(1);
        const auto start = Clock::now();
        ovix::APIService::getUserInfo(done.completion());
        return secondsSince(start, done.wait());
    };

    // The client new for each run, like the baselines' workers: a worker thread that has run since
    // the start is placed differently by the scheduler from one started just now.
    auto platform = ovix::platform::current();
    platform->http = std::make_shared<ovix::platform::CurlHttpClient>();

    // The SDK's HTTP client alone, given the request the SDK would build: what the SDK adds to the
    // transport (building the request, parsing the answer) shows as the difference from "sdk".
    auto client = [&] {
        LastCompletion done(1);
        ovix::platform::HttpRequest request;
        request.url = url;
        request.headers = kUserInfoHeaders;
        const auto start = Clock::now();
        platform->http->send(std::move(request), [&done](ovix::platform::HttpResult result) {
            done.finish(result.response && result.response->status == 200);
        });
        return secondsSince(start, done.wait());
    };

    const auto t = shuffled(
        state, {{"easy", rawEasy}, {"multi", rawMulti}, {"cpprest", peer}, {"sdk", sdk}, {"client", client}});
    state.counters["sdk_over_easy"] = pairedRatio(t[3], t[0]);
    state.counters["sdk_over_multi"] = pairedRatio(t[3], t[1]);
    state.counters["sdk_over_cpprest"] = pairedRatio(t[3], t[2]);
    state.counters["client_over_multi"] = pairedRatio(t[4], t[1]);
    curl_slist_free_all(headers);
    curl_easy_cleanup(easy);
}

// ---- five concurrent uploads ----

void reportPeaks(benchmark::State& state, long rawPeak, long sdkPeak) {
    const auto bodies = static_cast<double>(totalBodyBytes());
    state.counters["raw_peak_per_body_byte"] = static_cast<double>(rawPeak) / bodies;
    state.counters["sdk_peak_per_body_byte"] = static_cast<double>(sdkPeak) / bodies;
    state.counters["body_MiB"] = bodies / (1 << 20);
}

// Seconds from now until the moment `work` returns (when it finished), raising `peak` to the rise of
// resident memory meanwhile.
template <typename Work>
double measured(long& peak, Work work) {
    PeakMeter meter;
    meter.start();
    const auto start = Clock::now();
    const Clock::time_point end = work();
    peak = std::max(peak, meter.riseBytes());
    return secondsSince(start, end);
}

// Bodies built beforehand: the transports alone.
void FiveUploadsPrebuilt(benchmark::State& state) {
    RawMulti multi;
    long rawPeak = 0;
    long sdkPeak = 0;
    auto raw = [&] {
        return measured(rawPeak, [&] {
            multi.upload(prebuiltBodies());
            return Clock::now();
        });
    };
    auto sdk = [&] {
        std::vector<ovix::platform::HttpRequest> requests(kUploads);
        for (int i = 0; i < kUploads; ++i) {
            requests[i].method = "POST";
            requests[i].url = gBase + kUploadPath;
            requests[i].headers = {{"Content-Type", "multipart/form-data; boundary=" + boundaryFor(i)},
                                   {"ClientID", "game-1"}};
            requests[i].body = prebuiltBodies()[i];  // the copy is made before the clock starts
        }
        return measured(sdkPeak, [&] {
            LastCompletion done(kUploads);
            for (auto& request : requests) {
                ovix::APIService::sendAndParse(std::move(request), done.completion());
            }
            return done.wait();
        });
    };
    paired(state, raw, sdk, 1e3, "ms");
    reportPeaks(state, rawPeak, sdkPeak);
}

// Pictures encoded as part of the work: the raw side encodes each picture, then concatenates the
// body around it and uploads all five; the SDK uploads each picture as it is encoded.
void FiveUploads(benchmark::State& state) {
    const auto& images = pictures();
    RawMulti multi;
    long rawPeak = 0;
    long sdkPeak = 0;
    auto raw = [&] {
        return measured(rawPeak, [&] {
            std::vector<std::string> bodies;
            for (int i = 0; i < kUploads; ++i) {
                bodies.push_back(plainBody(images[i], i));
            }
            multi.upload(bodies);
            return Clock::now();
        });
    };
    auto sdk = [&] {
        return measured(sdkPeak, [&] {
            LastCompletion done(kUploads);
            for (const auto& image : images) {
                ovix::APIService::uploadImage(image, done.completion());
            }
            return done.wait();
        });
    };
    paired(state, raw, sdk, 1e3, "ms");
    reportPeaks(state, rawPeak, sdkPeak);
}

}  // namespace

BENCHMARK(UserInfo)->Unit(benchmark::kMicrosecond)->MinTime(2.0)->UseManualTime();
BENCHMARK(FiveUploadsPrebuilt)->Unit(benchmark::kMillisecond)->MinTime(4.0)->UseManualTime();
BENCHMARK(FiveUploads)->Unit(benchmark::kMillisecond)->MinTime(4.0)->UseManualTime();

int main(int argc, char** argv) {
    // Large blocks always come from and go back to the system, so that resident memory follows
    // what is live rather than what the allocator keeps for later.
    mallopt(M_MMAP_THRESHOLD, 128 * 1024);
    startServer();  // before any thread exists
    curl_global_init(CURL_GLOBAL_DEFAULT);

    ovix::testing::HeadlessPlatform::Options options;
    options.environment = ovix::platform::Environment::emulator(gBase);
    auto h = ovix::testing::HeadlessPlatform::create(options);
    h.platform->console = std::make_shared<NullConsole>();
    h.platform->http = std::make_shared<ovix::platform::CurlHttpClient>();
    h.install();
    h.store->setString("ovix_token", "token-123");
    h.store->setString("ovix_client_id", "game-1");
    (void)ovix::OvixCore::shared();
    pictures();
    prebuiltBodies();

    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    h.platform->http.reset();
    stopServer();
    return 0;
}
