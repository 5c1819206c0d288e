// Memory of a large response: a 31 MiB body (under the 32 MiB cap) fetched through the SDK's HTTP
// path from a loopback server in a child process, logged to a console (the real one, writing to
// /dev/null) and parsed into values, as every backend answer is.
//
//   build/<dir>/bench/api/ovix_body_memory_bench
//
// "peak_over_body" is the highest rise of resident memory during one request over the body's size.
// The "document" baseline, in the same run, parses the same text (already in memory) into a JSON
// document, as a parse that builds a document before converting it does.
#include <benchmark/benchmark.h>
#include <httplib.h>
#include <malloc.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <future>
#include <nlohmann/json.hpp>
#include <string>

#include "api/APIService.h"
#include "ovix/OvixCore.h"
#include "ovix/testing/HeadlessPlatform.h"
#include "platform/curl/CurlHttpClient.h"
#include "platform/posix/StdoutConsole.h"
#include "support/PeakMeter.h"

namespace {

using ovix::bench::PeakMeter;

constexpr std::size_t kBodyBytes = std::size_t{31} << 20;
const char* const kShapes[] = {"/feed", "/numbers", "/strings"};

// Objects of strings and numbers, as the news feed sends; bare small numbers, the worst case for any
// tree of values; or long strings, where the tree costs little and the text itself dominates.
std::string makeBody(const std::string& shape) {
    std::string body = R"({"Code":0,"Data":[)";
    for (int i = 0; body.size() < kBodyBytes - 300; ++i) {
        if (i > 0) {
            body += ',';
        }
        if (shape == "/feed") {
            body += R"({"Id":)" + std::to_string(i) + R"(,"Title":"Sự kiện mùa đông số )" +
                    std::to_string(i) + R"(","Link":"https://news.example/events/)" + std::to_string(i) +
                    R"(","isEvent":1,"isNews":0,"CreatedAt":1700000000999})";
        } else if (shape == "/numbers") {
            body += std::to_string(i % 10);
        } else {
            body += '"' + std::string(1000, static_cast<char>('a' + i % 26)) + '"';
        }
    }
    return body + "]}";
}

pid_t gServer = -1;
std::string gBase;

void startServer() {
    int ports[2];
    if (pipe(ports) != 0) {
        std::exit(1);
    }
    gServer = fork();
    if (gServer == 0) {
        close(ports[0]);
        httplib::Server server;
        for (const char* shape : kShapes) {
            server.Get(shape, [body = makeBody(shape)](const httplib::Request&, httplib::Response& res) {
                res.set_content(body, "application/json");
            });
        }
        const int port = server.bind_to_any_port("127.0.0.1");
        if (write(ports[1], &port, sizeof port) != sizeof port) {
            _exit(1);
        }
        server.listen_after_bind();
        _exit(0);
    }
    close(ports[1]);
    int port = 0;
    if (read(ports[0], &port, sizeof port) != sizeof port) {
        std::exit(1);
    }
    gBase = "http://127.0.0.1:" + std::to_string(port);
}

ovix::platform::HttpRequest requestFor(int shape) {
    ovix::platform::HttpRequest request;
    request.url = gBase + kShapes[shape];
    return request;
}

void LargeBodyThroughTheSdk(benchmark::State& state) {
    const int shape = static_cast<int>(state.range(0));
    double peak = 0;
    for (auto _ : state) {
        PeakMeter meter;
        meter.start();
        std::promise<bool> parsed;
        ovix::APIService::sendAndParse(
            requestFor(shape),
            [&parsed](std::optional<ovix::Dictionary> envelope) { parsed.set_value(envelope.has_value()); });
        if (!parsed.get_future().get()) {
            state.SkipWithError("the body did not parse");
            return;
        }
        peak = std::max(peak, static_cast<double>(meter.riseBytes()));
    }
    state.counters["body_mib"] = static_cast<double>(kBodyBytes) / (1 << 20);
    state.counters["peak_over_body"] = peak / static_cast<double>(kBodyBytes);
}

void DocumentParseBaseline(benchmark::State& state) {
    const int shape = static_cast<int>(state.range(0));
    std::promise<std::string> fetched;
    ovix::platform::current()->http->send(requestFor(shape), [&fetched](ovix::platform::HttpResult r) {
        fetched.set_value(r.response ? std::move(r.response->body) : std::string());
    });
    const std::string body = fetched.get_future().get();
    double peak = 0;
    for (auto _ : state) {
        PeakMeter meter;
        meter.start();
        auto document = nlohmann::json::parse(body, nullptr, false);
        benchmark::DoNotOptimize(document);
        peak = std::max(peak, static_cast<double>(meter.riseBytes()));
    }
    state.counters["peak_over_body"] = peak / static_cast<double>(body.size());
}

}  // namespace

BENCHMARK(LargeBodyThroughTheSdk)->DenseRange(0, 2)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(DocumentParseBaseline)->DenseRange(0, 2)->Unit(benchmark::kMillisecond)->Iterations(3);

int main(int argc, char** argv) {
    // Large blocks come from and go back to the system, so resident memory follows what is live.
    mallopt(M_MMAP_THRESHOLD, 128 * 1024);
    startServer();  // before any thread exists

    ovix::testing::HeadlessPlatform::Options options;
    options.environment = ovix::platform::Environment::emulator(gBase);
    auto h = ovix::testing::HeadlessPlatform::create(options);
    static std::FILE* devNull = std::fopen("/dev/null", "w");
    h.platform->console = std::make_shared<ovix::platform::StdoutConsole>(devNull);
    h.platform->http = std::make_shared<ovix::platform::CurlHttpClient>();
    h.install();

    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    h.platform->http.reset();
    kill(gServer, SIGTERM);
    waitpid(gServer, nullptr, 0);
    return 0;
}
