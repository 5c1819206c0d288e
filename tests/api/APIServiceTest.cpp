#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "api/APIService.h"
#include "api/ApiTest.h"

namespace {

using ovix::Dictionary;
using ovix::Value;
using ovix::platform::HttpRequest;
using ovix::platform::HttpResult;
using ovix::test::LoopbackServer;
using ::testing::ElementsAre;
using ::testing::UnorderedElementsAre;

using Result = std::optional<Dictionary>;

class SendAndParse : public ovix::test::ApiTest {
  protected:
    Result send(const std::string& path) {
        HttpRequest request;
        request.url = server.baseUrl() + path;
        return ovix::test::Outcome<Result>().run(
            [&](auto done) { ovix::APIService::sendAndParse(request, done); });
    }
};

TEST_F(SendAndParse, AnObjectWithA2xxStatusIsTheResultAndEveryUtf8BodyIsPrinted) {
    const std::pair<const char*, LoopbackServer::Reply> replies[] = {
        {"/200", {200, R"({"a":1})"}},
        {"/299", {299, R"({"b":"Nguyễn"})"}},
        {"/300", {300, R"({"c":true})"}},
        {"/404", {404, "{}"}},
        {"/text", {200, "not json", "text/plain"}},
        {"/array", {200, "[1,2]"}},
        {"/empty", {200, ""}},
        {"/latin1", {200, "{\"n\":\"Nguy\xe1n\"}"}},
    };
    for (const auto& [path, reply] : replies) {
        server.on(path, reply);
    }
    EXPECT_EQ(send("/200"), (Dictionary{{"a", Value(1u)}}));
    EXPECT_EQ(send("/299"), (Dictionary{{"b", Value("Nguyễn")}}));
    for (const char* path : {"/300", "/404", "/text", "/array", "/empty", "/latin1"}) {
        EXPECT_EQ(send(path), std::nullopt) << path;
    }
    EXPECT_THAT(headless.console->lines(),
                ElementsAre(R"({"a":1})", R"({"b":"Nguyễn"})", R"({"c":true})", "❌ HTTP error: 300", "{}",
                            "❌ HTTP error: 404", "not json", "[1,2]", ""))
        << "the body that is not UTF-8 is not printed";
}

// A final status below 200 cannot come over the wire (1xx are interim there); a transport may still
// report one.
class Status199 : public ovix::platform::HttpClient {
  public:
    void send(HttpRequest request, Completion completion) override {
        maxResponseBytes = request.maxResponseBytes;
        std::thread([completion] {
            completion(HttpResult{ovix::platform::HttpResponse{199, {}, "{}"}, {}});
        }).join();
    }
    std::size_t maxResponseBytes = 0;
};

TEST_F(SendAndParse, BelowTwoHundredAndTransportFailuresAreNil) {
    server.on("/stall", LoopbackServer::Reply{200, "", "text/plain", true});
    EXPECT_EQ(send("/stall"), std::nullopt);
    EXPECT_THAT(headless.console->lines(), ::testing::IsEmpty()) << "a transport failure prints nothing";

    auto scripted = std::make_shared<Status199>();
    headless.platform->http = scripted;
    EXPECT_EQ(send("/any"), std::nullopt);
    EXPECT_TRUE(headless.console->hasLine("❌ HTTP error: 199"));
    EXPECT_EQ(scripted->maxResponseBytes, std::size_t{32} << 20) << "the stated body cap";
}

class UserInfo : public ovix::test::ApiTest {
  protected:
    static constexpr const char* kPath = "/auth-connect/api/v2.0/oauth2/auth/userinfo";
    Result get(ovix::test::Outcome<Result>& outcome) {
        return outcome.run([](auto done) { ovix::OvixCore::shared().getUserInfo(done); });
    }
    Result get() {
        ovix::test::Outcome<Result> outcome;
        return get(outcome);
    }
};

TEST_F(UserInfo, SendsTokenAndClientIdAndHandsBackDataOnTheTransportThread) {
    server.on(kPath,
              LoopbackServer::Reply{200, R"({"Code":0,"Data":{"username":"an","gender":1,"dob":null}})"});
    store("ovix_token", "tok-123");
    store("ovix_client_id", "game-7");
    ovix::test::Outcome<Result> outcome;
    EXPECT_EQ(get(outcome), (Dictionary{{"username", Value("an")}, {"gender", Value(1u)}, {"dob", Value()}}));
    EXPECT_FALSE(outcome.ranInline);
    EXPECT_NE(outcome.thread, std::this_thread::get_id());

    auto seen = server.requests();
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0].method, "GET");
    EXPECT_EQ(seen[0].target, std::string(kPath) + "?fields=avatar,frame,gender,username,address,dob");
    EXPECT_THAT(seen[0].headerNames(), UnorderedElementsAre("content-type", "authorization", "clientid"));
    EXPECT_EQ(seen[0].header("Content-Type"), "application/json");
    EXPECT_EQ(seen[0].header("Authorization"), "Bearer tok-123");
    EXPECT_EQ(seen[0].header("ClientID"), "game-7");
}

TEST_F(UserInfo, WithoutATokenIsNilAtOnceAndAnEmptyOrMissingClientIdSendsNoHeader) {
    ovix::test::Outcome<Result> missing;
    EXPECT_EQ(get(missing), std::nullopt);
    store("ovix_token", "");
    ovix::test::Outcome<Result> empty;
    EXPECT_EQ(get(empty), std::nullopt);
    EXPECT_TRUE(missing.ranInline && empty.ranInline);
    EXPECT_EQ(http->sent, 0);

    server.on(kPath, LoopbackServer::Reply{200, R"({"Data":{}})"});
    store("ovix_token", "tok");
    store("ovix_client_id", "");
    EXPECT_EQ(get(), Dictionary{});
    headless.store->remove("ovix_client_id");
    EXPECT_EQ(get(), Dictionary{});
    ASSERT_EQ(server.requests().size(), 2u);
    for (const auto& request : server.requests()) {
        EXPECT_THAT(request.headerNames(), UnorderedElementsAre("content-type", "authorization"));
    }
}

TEST_F(UserInfo, AnythingButAnObjectUnderDataIsNil) {
    store("ovix_token", "tok");
    for (auto [status, body] : {std::pair<int, const char*>{200, R"({"Data":null})"},
                                {200, R"({"Data":[{"a":1}]})"},
                                {200, R"({"data":{}})"},
                                {200, "[]"},
                                {401, R"({"Data":{"username":"an"}})"}}) {
        server.on(kPath, LoopbackServer::Reply{status, body});
        EXPECT_EQ(get(), std::nullopt) << body;
    }
}

}  // namespace
