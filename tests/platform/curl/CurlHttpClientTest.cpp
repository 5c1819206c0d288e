#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <filesystem>
#include <random>

#include "api/ApiTest.h"

namespace {

using ovix::platform::CurlHttpClient;
using ovix::platform::HttpRequest;
using ovix::platform::HttpResponse;
using ovix::platform::HttpResult;
using ovix::test::LoopbackServer;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

class CurlClient : public ::testing::Test {
  protected:
    void SetUp() override { server.reset(); }

    HttpRequest request(const std::string& path, const std::string& method = "GET", std::string body = "") {
        return HttpRequest{method, server.baseUrl() + path, {}, std::move(body)};
    }
    HttpResult exchange(HttpRequest r, ovix::platform::HttpClient* via = nullptr) {
        return ovix::test::Outcome<HttpResult>().run(
            [&](auto done) { (via != nullptr ? *via : *client).send(std::move(r), done); });
    }

    LoopbackServer& server = LoopbackServer::shared();
    std::shared_ptr<CurlHttpClient> client =
        std::make_shared<CurlHttpClient>(CurlHttpClient::Options{"", 0.5});
};

TEST_F(CurlClient, SendsExactlyTheCallersHeadersAndBodyAndReturnsTheResponse) {
    server.on("/echo", [](const LoopbackServer::Request& r) {
        return LoopbackServer::Reply{201, "got " + r.body, "text/plain"};
    });
    auto post = request("/echo?a=1&b=%20x", "POST", std::string("bin\0ary", 7));
    post.headers = {{"X-One", "1"}, {"Content-Type", "text/plain"}};
    HttpResult result = exchange(std::move(post));
    // A large body without a type: libcurl would add "Expect: 100-continue" and a form type.
    ASSERT_TRUE(exchange(request("/echo", "POST", std::string(2 << 20, 'x'))).response);
    ASSERT_TRUE(exchange(request("/echo")).response);

    ASSERT_TRUE(result.response) << result.error.value_or("");
    EXPECT_FALSE(result.error);
    EXPECT_EQ(result.response->status, 201);
    EXPECT_EQ(result.response->body, "got " + std::string("bin\0ary", 7));
    EXPECT_THAT(result.response->headers,
                ::testing::Contains(std::pair<std::string, std::string>("Content-Type", "text/plain")));
    auto seen = server.requests();
    ASSERT_EQ(seen.size(), 3u);
    EXPECT_EQ(seen[0].method, "POST");
    EXPECT_EQ(seen[0].target, "/echo?a=1&b=%20x");
    EXPECT_EQ(seen[0].body, std::string("bin\0ary", 7));
    EXPECT_THAT(seen[0].headerNames(), UnorderedElementsAre("x-one", "content-type"))
        << "no Accept or User-Agent";
    EXPECT_EQ(seen[1].body.size(), std::size_t{2} << 20);
    EXPECT_THAT(seen[1].headerNames(), IsEmpty());
    EXPECT_EQ(seen[2].method, "GET");
    EXPECT_THAT(seen[2].headerNames(), IsEmpty());
    EXPECT_EQ(seen[0].remotePort, seen[2].remotePort) << "the connection is reused";
}

TEST_F(CurlClient, CompletesOnOneWorkerThreadThatMaySendAgain) {
    server.on("/a", LoopbackServer::Reply{200, "first"});
    server.on("/b", LoopbackServer::Reply{200, "second"});
    ovix::test::Outcome<HttpResult> first;
    std::promise<std::pair<std::thread::id, std::string>> second;
    auto result = first.run([&](auto done) {
        client->send(request("/a"), [&, done](HttpResult r) {
            client->send(request("/b"), [&](HttpResult again) {
                second.set_value({std::this_thread::get_id(), again.response.value_or(HttpResponse{}).body});
            });
            done(std::move(r));
        });
    });
    auto [secondThread, secondBody] = second.get_future().get();
    EXPECT_EQ(result.response.value().body, "first");
    EXPECT_EQ(secondBody, "second");
    EXPECT_FALSE(first.ranInline);
    EXPECT_NE(first.thread, std::this_thread::get_id());
    EXPECT_EQ(secondThread, first.thread);
}

TEST_F(CurlClient, FailuresAreErrors) {
    int closedPort = 0;
    {
        LoopbackServer gone;
        closedPort = gone.port();
    }
    HttpResult result =
        exchange(HttpRequest{"GET", "http://127.0.0.1:" + std::to_string(closedPort) + "/", {}, ""});
    EXPECT_FALSE(result.response);
    EXPECT_THAT(result.error.value_or(""), HasSubstr("connect"));

    server.on("/stall", LoopbackServer::Reply{200, "", "text/plain", true});
    result = exchange(request("/stall"));  // asks for 60 s; the client's ceiling is 0.5 s
    EXPECT_FALSE(result.response);
    EXPECT_THAT(result.error.value_or(""), HasSubstr("Timeout"));

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

    // The last request dropped the last reference, on the client's own worker: it goes, cleanly.
    for (int i = 0; i < 2000 && !watch.expired(); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_TRUE(watch.expired());
}

// A certification authority made for the test, and a server certificate it signs for 127.0.0.1.
struct Authority {
    using Key = std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)>;
    using Cert = std::unique_ptr<X509, decltype(&X509_free)>;
    explicit Authority(const char* name)
        : key(EVP_EC_gen("P-256"), &EVP_PKEY_free),
          cert(make(name, key.get(), nullptr, nullptr, "critical,CA:TRUE")),
          serverKey(EVP_EC_gen("P-256"), &EVP_PKEY_free),
          serverCert(make("127.0.0.1", serverKey.get(), cert.get(), key.get(), "critical,CA:FALSE")) {}
    Key key;
    Cert cert;
    Key serverKey;
    Cert serverCert;

    static Cert make(const char* name, EVP_PKEY* key, X509* issuer, EVP_PKEY* issuerKey,
                     const char* constraints) {
        static long serial = 1;
        Cert cert(X509_new(), &X509_free);
        X509_set_version(cert.get(), 2);
        ASN1_INTEGER_set(X509_get_serialNumber(cert.get()), serial++);
        X509_gmtime_adj(X509_getm_notBefore(cert.get()), -3600);
        X509_gmtime_adj(X509_getm_notAfter(cert.get()), 86400);
        X509_set_pubkey(cert.get(), key);
        X509_NAME_add_entry_by_txt(X509_get_subject_name(cert.get()), "CN", MBSTRING_ASC,
                                   reinterpret_cast<const unsigned char*>(name), -1, -1, 0);
        X509_set_issuer_name(cert.get(), X509_get_subject_name(issuer != nullptr ? issuer : cert.get()));
        X509V3_CTX context;
        X509V3_set_ctx_nodb(&context);
        X509V3_set_ctx(&context, issuer != nullptr ? issuer : cert.get(), cert.get(), nullptr, nullptr, 0);
        for (auto [nid, value] :
             {std::pair{NID_basic_constraints, constraints},
              std::pair{NID_subject_alt_name, issuer != nullptr ? "IP:127.0.0.1" : nullptr}}) {
            if (value != nullptr) {
                X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, &context, nid, value);
                X509_add_ext(cert.get(), extension, -1);
                X509_EXTENSION_free(extension);
            }
        }
        X509_sign(cert.get(), issuerKey != nullptr ? issuerKey : key, EVP_sha256());
        return cert;
    }
};

TEST_F(CurlClient, TlsTrustsTheGivenAuthorityAndRefusesOthers) {
    Authority trusted("Ovix Test Root");
    Authority stranger("Somebody Else");
    const auto pem = std::filesystem::temp_directory_path() /
                     ("ovix-ca-" + std::to_string(std::random_device{}()) + ".pem");
    FILE* file = std::fopen(pem.c_str(), "w");
    ASSERT_NE(file, nullptr);
    PEM_write_X509(file, trusted.cert.get());
    std::fclose(file);

    auto fetch = [&](Authority& signer) {
        LoopbackServer tls(signer.serverCert.get(), signer.serverKey.get());
        tls.on("/secure", LoopbackServer::Reply{200, R"({"ok":true})"});
        CurlHttpClient trusting(CurlHttpClient::Options{pem.string(), 10});
        auto result = exchange(HttpRequest{"GET", tls.baseUrl() + "/secure", {}, ""}, &trusting);
        EXPECT_EQ(result.response.has_value(), !tls.requests().empty())
            << "no request reaches a refused server";
        return result;
    };
    HttpResult good = fetch(trusted);
    HttpResult untrusted = fetch(stranger);
    std::filesystem::remove(pem);

    ASSERT_TRUE(good.response) << good.error.value_or("");
    EXPECT_EQ(good.response->body, R"({"ok":true})");
    EXPECT_FALSE(untrusted.response);
    EXPECT_THAT(untrusted.error.value_or(""), HasSubstr("certificate"));
}

}  // namespace
