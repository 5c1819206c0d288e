#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <filesystem>
#include <random>

#include "api/ApiTest.h"

namespace ovix::test {
namespace {

using platform::CurlHttpClient;
using platform::HttpRequest;
using platform::HttpResponse;
using platform::HttpResult;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class CurlClient : public ::testing::Test {
  protected:
    void SetUp() override { server.reset(); }

    HttpRequest request(const std::string& path, const std::string& method = "GET", std::string body = "") {
        return HttpRequest{method, server.baseUrl() + path, {}, std::move(body)};
    }
    HttpResult exchange(HttpRequest r, platform::HttpClient* via = nullptr) {
        return Outcome<HttpResult>().run(
            [&](auto done) { (via != nullptr ? *via : *client).send(std::move(r), done); });
    }

    LoopbackServer& server = LoopbackServer::shared();
    std::shared_ptr<CurlHttpClient> client =
        std::make_shared<CurlHttpClient>(CurlHttpClient::Options{"", 0.5});
};

// What the SDK's own requests show (exact headers, binary bodies, statuses) is in the API tests.
TEST_F(CurlClient, AddsNoHeaderOfItsOwnReusesTheConnectionAndReturnsTheResponseHeaders) {
    server.on("/echo", [](const LoopbackServer::Request& r) {
        return LoopbackServer::Reply{201, std::to_string(r.body.size()), "text/plain"};
    });
    for (int i = 0; i < 2; ++i) {
        // A large body without a type: libcurl would add "Expect: 100-continue" and a form type.
        HttpResult result = exchange(request("/echo", "POST", std::string(2 << 20, 'x')));
        ASSERT_TRUE(result.response) << result.error.value_or("");
        EXPECT_EQ(std::tuple(result.response->status, result.response->body), std::tuple(201, "2097152"));
        EXPECT_THAT(result.response->headers,
                    ::testing::Contains(std::pair<std::string, std::string>("Content-Type", "text/plain")));
    }
    auto seen = server.requests();
    ASSERT_EQ(seen.size(), 2u);
    EXPECT_THAT(seen[0].headerNames(), IsEmpty());
    EXPECT_EQ(seen[0].remotePort, seen[1].remotePort) << "the connection is reused";
}

TEST_F(CurlClient, CompletesOnOneWorkerThreadThatMaySendAgain) {
    server.on("/a", LoopbackServer::Reply{200, "first"});
    server.on("/b", LoopbackServer::Reply{200, "second"});
    Outcome<HttpResult> first;
    std::promise<std::pair<std::thread::id, std::string>> second;
    first.run([&](auto done) {
        client->send(request("/a"), [&, done](HttpResult r) {
            client->send(request("/b"), [&](HttpResult again) {
                second.set_value({std::this_thread::get_id(), again.response.value_or(HttpResponse{}).body});
            });
            done(std::move(r));
        });
    });
    EXPECT_FALSE(first.ranInline);
    EXPECT_NE(first.thread, std::this_thread::get_id());
    EXPECT_EQ(second.get_future().get(), std::pair(first.thread, std::string("second")));
}

// Handles are kept configured between requests, not reset: nothing of one request's method, body
// or headers may reach the next one sent on the same handle.
TEST_F(CurlClient, AKeptHandleCarriesNothingOverFromThePreviousRequest) {
    server.on("/m", [](const LoopbackServer::Request& r) {
        return LoopbackServer::Reply{200, r.method + " " + r.body + " " + r.header("Accept"), "text/plain"};
    });
    struct Step {
        const char* method;
        std::string body;
        platform::HttpHeaders headers;
        std::string answer;  // what the server saw, as it echoes it
    };
    const std::vector<Step> steps = {
        {"POST", "first", {{"Accept", "x/y"}}, "POST first x/y"},
        {"GET", "", {}, "GET  "},  // neither the POST, its body nor its header again
        {"PUT", "second", {}, "PUT second "},
        {"GET", "", {}, "GET  "},  // not a PUT
        {"HEAD", "", {}, ""},
        {"GET", "", {}, "GET  "},  // with a body again
        {"DELETE", "", {}, "DELETE  "},
        {"POST", "third", {}, "POST third "},
    };
    for (const auto& step : steps) {
        SCOPED_TRACE(std::string(step.method) + " after the previous step");
        auto r = request("/m", step.method, step.body);
        r.headers = step.headers;
        HttpResult result = exchange(std::move(r));
        ASSERT_TRUE(result.response) << result.error.value_or("");
        EXPECT_EQ(result.response->status, 200);
        EXPECT_EQ(result.response->body, step.answer);
    }
}

// A transport failure is an error with libcurl's text (the eligibility check's time-out shows it); the
// body cap holds to the byte.
TEST_F(CurlClient, ABodyOverTheCapIsAnError) {
    server.on("/big", LoopbackServer::Reply{200, std::string(5000, 'b'), "text/plain"});
    auto over = request("/big");
    over.maxResponseBytes = 4999;
    EXPECT_THAT(exchange(over).error.value_or(""), HasSubstr("4999"));
    over.maxResponseBytes = 5000;
    EXPECT_EQ(exchange(over).response.value().body.size(), 5000u);
}

TEST_F(CurlClient, EveryCompletionRunsOnceWhateverHappensToTheClient) {
    server.on("/stall", LoopbackServer::Reply{200, "", "text/plain", true});
    // A client the caller owns outright ends what is pending with an error before it is gone.
    auto owned = std::make_unique<CurlHttpClient>();
    std::atomic<int> failed{0};
    for (int i = 0; i < 3; ++i) {
        owned->send(request("/stall"), [&failed](HttpResult r) { failed += r.error ? 1 : 100; });
    }
    ASSERT_TRUE(server.waitForRequests(3));
    owned.reset();
    EXPECT_EQ(failed.load(), 3);

    // A shared client lives on while its requests are in flight (a replaced platform loses no answer).
    server.reset();
    server.on("/stall", LoopbackServer::Reply{200, "", "text/plain", true});
    auto shared = std::make_shared<CurlHttpClient>();
    std::weak_ptr<CurlHttpClient> watch = shared;
    std::atomic<int> answered{0};
    std::promise<void> all;
    for (int i = 0; i < 3; ++i) {
        shared->send(request("/stall"), [&answered, &all](HttpResult r) {
            if (r.response && r.response->status == 503 && ++answered == 3) {  // how stalls end
                all.set_value();
            }
        });
    }
    ASSERT_TRUE(server.waitForRequests(3));
    shared.reset();
    EXPECT_FALSE(watch.expired());
    server.releaseStalled();
    ASSERT_EQ(all.get_future().wait_for(std::chrono::seconds(20)), std::future_status::ready);
}

TEST_F(CurlClient, RedirectsAreFollowedOnlyWithinTheOrigin) {
    LoopbackServer other;
    other.on("/steal", LoopbackServer::Reply{200, R"({"eligible":true})"});
    auto to = [](std::string location) {
        return LoopbackServer::Reply{307, "", "text/plain", false, {{"Location", std::move(location)}}};
    };
    server.on("/here", to("/target"));
    server.on("/target", [](const LoopbackServer::Request& r) { return LoopbackServer::Reply{200, r.body}; });
    server.on("/away", to(other.baseUrl() + "/steal"));
    server.on("/port", to("http://127.0.0.1:" + std::to_string(other.port()) + "/steal"));

    auto within = exchange(request("/here", "POST", "picture"));
    ASSERT_TRUE(within.response) << within.error.value_or("");
    EXPECT_EQ(within.response->body, "picture") << "a 307 within the origin sends the body again";
    for (const char* path : {"/away", "/port"}) {
        SCOPED_TRACE(path);
        auto away = exchange(request(path, "POST", "picture"));
        EXPECT_FALSE(away.response);
        EXPECT_THAT(away.error.value_or(""), HasSubstr("another origin"));
    }
    EXPECT_TRUE(other.requests().empty()) << "nothing reaches the other origin";
}

// A self-signed certificate made for the test, valid for the addresses in `altNames`.
struct Certificate {
    std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key{EVP_EC_gen("P-256"), &EVP_PKEY_free};
    std::unique_ptr<X509, decltype(&X509_free)> cert{X509_new(), &X509_free};

    explicit Certificate(const char* altNames) {
        X509_set_version(cert.get(), 2);
        ASN1_INTEGER_set(X509_get_serialNumber(cert.get()), std::random_device{}() & 0x7fffffff);
        X509_gmtime_adj(X509_getm_notBefore(cert.get()), -3600);
        X509_gmtime_adj(X509_getm_notAfter(cert.get()), 86400);
        X509_set_pubkey(cert.get(), key.get());
        X509_NAME_add_entry_by_txt(X509_get_subject_name(cert.get()), "CN", MBSTRING_ASC,
                                   reinterpret_cast<const unsigned char*>(altNames), -1, -1, 0);
        X509_set_issuer_name(cert.get(), X509_get_subject_name(cert.get()));
        X509V3_CTX context;
        X509V3_set_ctx_nodb(&context);
        X509V3_set_ctx(&context, cert.get(), cert.get(), nullptr, nullptr, 0);
        X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, &context, NID_subject_alt_name, altNames);
        X509_add_ext(cert.get(), extension, -1);
        X509_EXTENSION_free(extension);
        X509_sign(cert.get(), key.get(), EVP_sha256());
    }
};

TEST_F(CurlClient, TlsTrustsTheGivenAuthoritiesForTheirHostsOnly) {
    Certificate trusted("IP:127.0.0.1"), otherHost("IP:10.0.0.1"), stranger("IP:127.0.0.1");
    const auto pem = std::filesystem::temp_directory_path() /
                     ("ovix-ca-" + std::to_string(std::random_device{}()) + ".pem");
    FILE* file = std::fopen(pem.c_str(), "w");
    ASSERT_NE(file, nullptr);
    PEM_write_X509(file, trusted.cert.get());
    PEM_write_X509(file, otherHost.cert.get());
    std::fclose(file);

    auto fetch = [&](Certificate& served) {
        LoopbackServer tls(served.cert.get(), served.key.get());
        tls.on("/secure", LoopbackServer::Reply{200, R"({"ok":true})"});
        CurlHttpClient trusting(CurlHttpClient::Options{pem.string(), 10});
        auto result = exchange(HttpRequest{"GET", tls.baseUrl() + "/secure", {}, ""}, &trusting);
        EXPECT_EQ(result.response.has_value(), !tls.requests().empty())
            << "no request reaches a refused server";
        return result;
    };
    HttpResult good = fetch(trusted);
    {
        LoopbackServer tls(trusted.cert.get(), trusted.key.get());
        tls.on("/downgrade",
               LoopbackServer::Reply{
                   302,
                   "",
                   "text/plain",
                   false,
                   {{"Location", "http://127.0.0.1:" + std::to_string(tls.port()) + "/secure"}}});
        CurlHttpClient trusting(CurlHttpClient::Options{pem.string(), 10});
        auto downgraded = exchange(HttpRequest{"GET", tls.baseUrl() + "/downgrade", {}, ""}, &trusting);
        EXPECT_THAT(downgraded.error.value_or(""), HasSubstr("another origin")) << "HTTPS to HTTP";
    }
    HttpResult wrongHost = fetch(otherHost);
    HttpResult untrusted = fetch(stranger);
    std::filesystem::remove(pem);

    ASSERT_TRUE(good.response) << good.error.value_or("");
    EXPECT_EQ(good.response->body, R"({"ok":true})");
    EXPECT_FALSE(wrongHost.response);
    EXPECT_THAT(wrongHost.error.value_or(""), HasSubstr("name"));
    EXPECT_FALSE(untrusted.response);
    EXPECT_THAT(untrusted.error.value_or(""), HasSubstr("certificate"));
}

}  // namespace
}  // namespace ovix::test
