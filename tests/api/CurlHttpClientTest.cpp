#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "api/ApiTest.h"
#include "api/TestCertificates.h"

namespace {

using ovix::platform::CurlHttpClient;
using ovix::platform::HttpRequest;
using ovix::platform::HttpResult;
using ovix::test::LoopbackServer;
using ovix::test::Outcome;
using ::testing::HasSubstr;
using ::testing::UnorderedElementsAre;

class CurlClient : public ::testing::Test {
  protected:
    void SetUp() override { server.reset(); }

    HttpRequest get(const std::string& path) {
        HttpRequest request;
        request.url = server.baseUrl() + path;
        return request;
    }

    HttpResult exchange(HttpRequest request) {
        Outcome<HttpResult> outcome;
        client->send(std::move(request), outcome.completion());
        outcome.markReturned();
        return outcome.get();
    }

    LoopbackServer& server = LoopbackServer::shared();
    std::shared_ptr<CurlHttpClient> client = std::make_shared<CurlHttpClient>(shortCeiling());

    static CurlHttpClient::Options shortCeiling() {
        CurlHttpClient::Options options;
        options.timeoutCeilingSeconds = 0.5;
        return options;
    }
};

TEST_F(CurlClient, SendsOnlyTheCallersHeadersAndReturnsTheWholeResponse) {
    server.on("/echo", [](const LoopbackServer::Request& r) {
        return LoopbackServer::Reply{201, "got " + r.body, "text/plain"};
    });
    HttpRequest request = get("/echo?a=1&b=%20x");
    request.method = "POST";
    request.body = std::string("line\0binary", 11);
    request.headers = {{"X-One", "1"}, {"Content-Type", "text/plain"}};

    HttpResult result = exchange(std::move(request));

    ASSERT_TRUE(result.response) << result.error.value_or("");
    EXPECT_FALSE(result.error);
    EXPECT_EQ(result.response->status, 201);
    EXPECT_EQ(result.response->body, "got " + std::string("line\0binary", 11));
    EXPECT_THAT(result.response->headers,
                ::testing::Contains(std::pair<std::string, std::string>("Content-Type", "text/plain")));

    auto seen = server.requests();
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0].method, "POST");
    EXPECT_EQ(seen[0].target, "/echo?a=1&b=%20x");
    EXPECT_EQ(seen[0].body, std::string("line\0binary", 11));
    // No Accept, Expect, User-Agent or form type of libcurl's own.
    EXPECT_THAT(seen[0].headerNames(), UnorderedElementsAre("x-one", "content-type"));
    EXPECT_EQ(seen[0].header("Content-Type"), "text/plain");
    EXPECT_EQ(seen[0].header("Content-Length"), "11");
}

TEST_F(CurlClient, PostWithoutATypeGetsNoneAndGetCarriesNothingExtra) {
    server.on("/p", LoopbackServer::Reply{200, "{}"});
    HttpRequest post = get("/p");
    post.method = "POST";
    post.body = std::string(2 << 20, 'x');  // large enough for libcurl to want "Expect: 100-continue"
    ASSERT_TRUE(exchange(std::move(post)).response);
    ASSERT_TRUE(exchange(get("/p")).response);

    auto seen = server.requests();
    ASSERT_EQ(seen.size(), 2u);
    EXPECT_THAT(seen[0].headerNames(), ::testing::IsEmpty());
    EXPECT_EQ(seen[0].body.size(), std::size_t{2} << 20);
    EXPECT_EQ(seen[1].method, "GET");
    EXPECT_THAT(seen[1].headerNames(), ::testing::IsEmpty());
}

TEST_F(CurlClient, CompletesLaterOnItsOwnThreadAndMaySendFromACompletion) {
    server.on("/a", LoopbackServer::Reply{200, "first"});
    server.on("/b", LoopbackServer::Reply{200, "second"});
    Outcome<HttpResult> second;
    Outcome<HttpResult> first;
    std::thread::id firstThread;
    client->send(get("/a"), [&, completion = first.completion()](HttpResult result) {
        firstThread = std::this_thread::get_id();
        client->send(get("/b"), second.completion());
        second.markReturned();
        completion(std::move(result));
    });
    first.markReturned();

    EXPECT_EQ(first.get().response->body, "first");
    EXPECT_EQ(second.get().response->body, "second");
    EXPECT_FALSE(first.ranInline());
    EXPECT_FALSE(second.ranInline());
    EXPECT_NE(first.thread(), std::this_thread::get_id());
    EXPECT_EQ(second.thread(), firstThread) << "one worker thread";
}

TEST_F(CurlClient, ReusesTheConnection) {
    server.on("/r", LoopbackServer::Reply{200, "ok"});
    ASSERT_TRUE(exchange(get("/r")).response);
    ASSERT_TRUE(exchange(get("/r")).response);
    ASSERT_TRUE(exchange(get("/r")).response);
    auto seen = server.requests();
    ASSERT_EQ(seen.size(), 3u);
    EXPECT_EQ(seen[0].remotePort, seen[1].remotePort);
    EXPECT_EQ(seen[1].remotePort, seen[2].remotePort);
}

TEST_F(CurlClient, FailuresAreErrorsNotResponses) {
    int closedPort = 0;
    {
        LoopbackServer gone;
        closedPort = gone.port();
    }
    HttpRequest refused;
    refused.url = "http://127.0.0.1:" + std::to_string(closedPort) + "/";
    HttpResult result = exchange(std::move(refused));
    EXPECT_FALSE(result.response);
    ASSERT_TRUE(result.error);
    EXPECT_THAT(*result.error, HasSubstr("connect"));

    HttpRequest otherScheme;
    otherScheme.url = "ftp://127.0.0.1:" + std::to_string(server.port()) + "/";
    result = exchange(std::move(otherScheme));
    EXPECT_FALSE(result.response);
    EXPECT_TRUE(result.error);
}

TEST_F(CurlClient, AStalledServerEndsInATimeoutError) {
    server.on("/stall", LoopbackServer::Reply{200, "", "text/plain", true});
    HttpResult result = exchange(get("/stall"));  // asks for 60 s, the client's ceiling is 0.5 s
    EXPECT_FALSE(result.response);
    ASSERT_TRUE(result.error);
    EXPECT_THAT(*result.error, HasSubstr("Timeout"));
}

TEST_F(CurlClient, ABodyOverTheLimitFailsAndOneAtTheLimitPasses) {
    server.on("/big", LoopbackServer::Reply{200, std::string(5000, 'b'), "text/plain"});
    HttpRequest over = get("/big");
    over.maxResponseBytes = 4999;
    HttpResult result = exchange(std::move(over));
    EXPECT_FALSE(result.response);
    ASSERT_TRUE(result.error);
    EXPECT_THAT(*result.error, HasSubstr("4999"));

    HttpRequest exact = get("/big");
    exact.maxResponseBytes = 5000;
    result = exchange(std::move(exact));
    ASSERT_TRUE(result.response);
    EXPECT_EQ(result.response->body.size(), 5000u);
}

TEST_F(CurlClient, TeardownWithRequestsInFlightRunsNoCompletion) {
    server.on("/stall", LoopbackServer::Reply{200, "", "text/plain", true});
    auto client = std::make_unique<CurlHttpClient>();
    std::atomic<int> completed{0};
    auto token = std::make_shared<int>(0);
    std::weak_ptr<int> watch = token;
    for (int i = 0; i < 3; ++i) {
        client->send(get("/stall"), [&completed, token](HttpResult) { ++completed; });
    }
    token.reset();
    ASSERT_TRUE(server.waitForRequests(3));
    client.reset();  // returns although three answers are outstanding

    server.releaseStalled();
    EXPECT_EQ(completed.load(), 0);
    EXPECT_TRUE(watch.expired()) << "the unrun completions were destroyed with the client";
}

TEST_F(CurlClient, MayBeDroppedFromInsideItsOwnCompletion) {
    server.on("/x", LoopbackServer::Reply{200, "x"});
    auto owned = std::make_shared<CurlHttpClient>();
    std::weak_ptr<CurlHttpClient> watch = owned;
    std::promise<void> done;
    auto* raw = owned.get();
    raw->send(
        get("/x"),
        [&done, holder = std::make_shared<std::shared_ptr<CurlHttpClient>>(std::move(owned))](HttpResult) {
            holder->reset();  // the last reference: the destructor runs on the worker
            done.set_value();
        });
    ASSERT_EQ(done.get_future().wait_for(std::chrono::seconds(20)), std::future_status::ready);
    EXPECT_TRUE(watch.expired());
}

class CurlClientTls : public ::testing::Test {
  protected:
    void SetUp() override {
        directory = std::filesystem::temp_directory_path() /
                    ("ovix-tls-" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) + "-" +
                     std::to_string(reinterpret_cast<std::uintptr_t>(this)));
        std::filesystem::create_directories(directory);
        trusted.writePem(directory / "trusted.pem");
    }
    void TearDown() override { std::filesystem::remove_all(directory); }

    HttpResult fetch(LoopbackServer& tls, CurlHttpClient::Options options) {
        tls.on("/secure", LoopbackServer::Reply{200, R"({"Data":{"ok":true}})"});
        CurlHttpClient client(std::move(options));
        Outcome<HttpResult> outcome;
        HttpRequest request;
        request.url = tls.baseUrl() + "/secure";
        client.send(std::move(request), outcome.completion());
        return outcome.get();
    }

    std::filesystem::path directory;
    ovix::test::TestAuthority trusted{"Ovix Test Root"};
    ovix::test::TestAuthority stranger{"Somebody Else"};
};

TEST_F(CurlClientTls, ExchangesWithAServerTheGivenAuthoritySigned) {
    auto issued = trusted.issueServer();
    LoopbackServer tls(issued.cert.get(), issued.key.get());
    ASSERT_EQ(tls.baseUrl().rfind("https://", 0), 0u);
    CurlHttpClient::Options options;
    options.caBundlePath = (directory / "trusted.pem").string();
    HttpResult result = fetch(tls, options);
    ASSERT_TRUE(result.response) << result.error.value_or("");
    EXPECT_EQ(result.response->status, 200);
    EXPECT_EQ(result.response->body, R"({"Data":{"ok":true}})");
}

TEST_F(CurlClientTls, RefusesACertificateNoTrustedAuthoritySigned) {
    auto issued = stranger.issueServer();
    LoopbackServer tls(issued.cert.get(), issued.key.get());
    CurlHttpClient::Options options;
    options.caBundlePath = (directory / "trusted.pem").string();
    HttpResult result = fetch(tls, options);
    EXPECT_FALSE(result.response);
    ASSERT_TRUE(result.error);
    EXPECT_THAT(*result.error, HasSubstr("certificate"));
    EXPECT_EQ(tls.requestCount(), 0u) << "no request reached the untrusted server";

    // Nor does the system's store trust it.
    result = fetch(tls, CurlHttpClient::Options{});
    EXPECT_FALSE(result.response);
}

}  // namespace
