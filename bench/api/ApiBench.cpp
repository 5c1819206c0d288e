// Round trips and uploads through the SDK's HTTP path, each beside a raw libcurl baseline doing
// the same exchange in the same run, against a loopback server in a child process (so that its
// memory stays out of ours).
//
//   build/<dir>/bench/api/ovix_api_bench
//
// Ratios to read: UserInfo/sdk over UserInfo/raw_easy; FiveUploads*/sdk* over FiveUploads*/raw*.
// The "peak_per_body_byte" counter is the highest resident-memory rise during one iteration divided by
// the bytes of the five bodies.
#include <benchmark/benchmark.h>
#include <curl/curl.h>
#include <httplib.h>
#include <malloc.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <future>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "api/APIService.h"
#include "ovix/OvixCore.h"
#include "ovix/testing/HeadlessPlatform.h"
#include "platform/curl/CurlHttpClient.h"
#include "platform/jpeg/JpegImageCodec.h"

namespace {

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

// ---- memory: resident high-water mark, reset before each measured iteration ----

long statusKb(const char* field) {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.rfind(field, 0) == 0) {
            return std::stol(line.substr(std::string(field).size()));
        }
    }
    return 0;
}

struct PeakMeter {
    long before = 0;
    void start() {
        std::ofstream("/proc/self/clear_refs") << "5";
        before = statusKb("VmRSS:");
    }
    long riseBytes() const { return (statusKb("VmHWM:") - before) * 1024; }
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

// ---- user info ----

// Both user-info benchmarks time from the call to the moment the caller has the result: when
// curl_easy_perform returns, and when the SDK's completion starts on the transport thread. How the
// benchmark's own thread then learns of it is left out of the time.
using Clock = std::chrono::steady_clock;

void UserInfo_sdk(benchmark::State& state) {
    for (auto _ : state) {
        std::promise<std::pair<Clock::time_point, bool>> promise;
        const auto start = Clock::now();
        ovix::APIService::getUserInfo([&](std::optional<ovix::Dictionary> user) {
            promise.set_value({Clock::now(), user.has_value()});
        });
        const auto [end, ok] = promise.get_future().get();
        if (!ok) {
            state.SkipWithError("user info failed");
            break;
        }
        state.SetIterationTime(std::chrono::duration<double>(end - start).count());
    }
}

void UserInfo_raw_easy(benchmark::State& state) {
    CURL* easy = curl_easy_init();
    curl_slist* headers = curl_slist_append(nullptr, "Content-Type: application/json");
    headers = curl_slist_append(headers, "Authorization: Bearer token-123");
    headers = curl_slist_append(headers, "ClientID: game-1");
    const std::string url = gBase + kUserInfoPath + "?fields=avatar,frame,gender,username,address,dob";
    std::string body;
    curl_easy_setopt(easy, CURLOPT_URL, url.c_str());
    curl_easy_setopt(easy, CURLOPT_HTTPHEADER, headers);
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, &collect);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, &body);
    for (auto _ : state) {
        body.clear();
        const auto start = Clock::now();
        if (curl_easy_perform(easy) != CURLE_OK) {
            state.SkipWithError("raw GET failed");
            break;
        }
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
        benchmark::DoNotOptimize(body.data());
    }
    curl_slist_free_all(headers);
    curl_easy_cleanup(easy);
}

// ---- five concurrent uploads, pictures encoded as part of the work ----

void reportPeak(benchmark::State& state, long peak) {
    state.counters["peak_per_body_byte"] = static_cast<double>(peak) / static_cast<double>(totalBodyBytes());
    state.counters["body_MiB"] = static_cast<double>(totalBodyBytes()) / (1 << 20);
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * totalBodyBytes()));
}

void FiveUploads_sdk(benchmark::State& state) {
    const auto& images = pictures();
    long peak = 0;
    for (auto _ : state) {
        PeakMeter meter;
        meter.start();
        std::vector<std::promise<bool>> done(kUploads);
        for (int i = 0; i < kUploads; ++i) {
            ovix::APIService::uploadImage(images[i], [&done, i](std::optional<ovix::Dictionary> r) {
                done[i].set_value(r.has_value());
            });
        }
        for (auto& d : done) {
            if (!d.get_future().get()) {
                state.SkipWithError("upload failed");
            }
        }
        peak = std::max(peak, meter.riseBytes());
    }
    reportPeak(state, peak);
}

void FiveUploads_raw_encode_then_multi(benchmark::State& state) {
    const auto& images = pictures();
    RawMulti raw;
    long peak = 0;
    for (auto _ : state) {
        PeakMeter meter;
        meter.start();
        std::vector<std::string> bodies;
        for (int i = 0; i < kUploads; ++i) {
            bodies.push_back(plainBody(images[i], i));
        }
        raw.upload(bodies);
        peak = std::max(peak, meter.riseBytes());
    }
    reportPeak(state, peak);
}

// ---- five concurrent uploads of bodies built beforehand: the transports alone ----

void FiveUploadsPrebuilt_sdk_transport(benchmark::State& state) {
    long peak = 0;
    for (auto _ : state) {
        state.PauseTiming();
        std::vector<ovix::platform::HttpRequest> requests(kUploads);
        for (int i = 0; i < kUploads; ++i) {
            requests[i].method = "POST";
            requests[i].url = gBase + kUploadPath;
            requests[i].headers = {{"Content-Type", "multipart/form-data; boundary=" + boundaryFor(i)},
                                   {"ClientID", "game-1"}};
            requests[i].body = prebuiltBodies()[i];
        }
        PeakMeter meter;
        meter.start();
        state.ResumeTiming();
        std::vector<std::promise<bool>> done(kUploads);
        for (int i = 0; i < kUploads; ++i) {
            ovix::APIService::sendAndParse(
                std::move(requests[i]),
                [&done, i](std::optional<ovix::Dictionary> r) { done[i].set_value(r.has_value()); });
        }
        for (auto& d : done) {
            if (!d.get_future().get()) {
                state.SkipWithError("upload failed");
            }
        }
        peak = std::max(peak, meter.riseBytes());
    }
    reportPeak(state, peak);
}

void FiveUploadsPrebuilt_raw_multi(benchmark::State& state) {
    RawMulti raw;
    long peak = 0;
    for (auto _ : state) {
        PeakMeter meter;
        meter.start();
        raw.upload(prebuiltBodies());
        peak = std::max(peak, meter.riseBytes());
    }
    reportPeak(state, peak);
}

}  // namespace

// Pairs are interleaved so that both sides of a ratio see the same machine load.
BENCHMARK(UserInfo_raw_easy)->Unit(benchmark::kMicrosecond)->MinTime(1.0)->UseManualTime();
BENCHMARK(UserInfo_sdk)->Unit(benchmark::kMicrosecond)->MinTime(1.0)->UseManualTime();
BENCHMARK(FiveUploadsPrebuilt_raw_multi)->Unit(benchmark::kMillisecond)->MinTime(2.0)->UseRealTime();
BENCHMARK(FiveUploadsPrebuilt_sdk_transport)->Unit(benchmark::kMillisecond)->MinTime(2.0)->UseRealTime();
BENCHMARK(FiveUploads_raw_encode_then_multi)->Unit(benchmark::kMillisecond)->MinTime(2.0)->UseRealTime();
BENCHMARK(FiveUploads_sdk)->Unit(benchmark::kMillisecond)->MinTime(2.0)->UseRealTime();

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
