#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "api/APIService.h"
#include "api/ApiTest.h"

namespace {

using ovix::Dictionary;
using ovix::OvixCore;
using ovix::Value;
using ovix::platform::HttpRequest;
using ovix::platform::HttpResponse;
using ovix::platform::HttpResult;
using ovix::test::LoopbackServer;
using ovix::test::Outcome;
using ::testing::UnorderedElementsAre;

using Result = std::optional<Dictionary>;

class SendAndParse : public ovix::test::ApiTest {
  protected:
    Result sendAndParse(const std::string& path) {
        HttpRequest request;
        request.url = server.baseUrl() + path;
        Outcome<Result> outcome;
        ovix::APIService::sendAndParse(std::move(request), outcome.completion());
        outcome.markReturned();
        return outcome.get();
    }
};

TEST_F(SendAndParse, SuccessIsTwoHundredThroughTwoNinetyNine) {
    server.on("/200", LoopbackServer::Reply{200, R"({"a":1})"});
    server.on("/299", LoopbackServer::Reply{299, R"({"b":"x"})"});
    server.on("/300", LoopbackServer::Reply{300, R"({"c":true})"});
    server.on("/404", LoopbackServer::Reply{404, R"({"d":null})"});

    EXPECT_EQ(sendAndParse("/200"), (Dictionary{{"a", Value(1u)}}));
    EXPECT_EQ(sendAndParse("/299"), (Dictionary{{"b", Value("x")}}));
    EXPECT_EQ(sendAndParse("/300"), std::nullopt);
    EXPECT_EQ(sendAndParse("/404"), std::nullopt);

    // Every body is printed; failures add the status line after it.
    EXPECT_EQ(headless.console->lines(),
              (std::vector<std::string>{R"({"a":1})", R"({"b":"x"})", R"({"c":true})", "❌ HTTP error: 300",
                                        R"({"d":null})", "❌ HTTP error: 404"}));
}

TEST_F(SendAndParse, StatusBelowTwoHundredIsAFailure) {
    // On the wire a 1xx status is never final, so a transport that reports one is scripted.
    auto scripted = std::make_shared<ovix::test::ScriptedHttpClient>(
        HttpResult{HttpResponse{199, {}, R"({"a":1})"}, std::nullopt});
    headless.platform->http = scripted;
    EXPECT_EQ(sendAndParse("/any"), std::nullopt);
    EXPECT_TRUE(headless.console->hasLine("❌ HTTP error: 199"));
    ASSERT_EQ(scripted->requests().size(), 1u);
    EXPECT_EQ(scripted->requests()[0].maxResponseBytes, std::size_t{32} << 20) << "the stated body cap";
}

TEST_F(SendAndParse, OnlyAJsonObjectIsAResult) {
    server.on("/text", LoopbackServer::Reply{200, "not json", "text/plain"});
    server.on("/array", LoopbackServer::Reply{200, "[1,2]"});
    server.on("/number", LoopbackServer::Reply{200, "42"});
    server.on("/empty", LoopbackServer::Reply{200, ""});
    server.on("/latin1", LoopbackServer::Reply{200, "{\"name\":\"Nguy\xe1n\"}"});
    server.on("/utf8", LoopbackServer::Reply{200, R"({"name":"Nguyễn"})"});

    EXPECT_EQ(sendAndParse("/text"), std::nullopt);
    EXPECT_EQ(sendAndParse("/array"), std::nullopt);
    EXPECT_EQ(sendAndParse("/number"), std::nullopt);
    EXPECT_EQ(sendAndParse("/empty"), std::nullopt);
    EXPECT_EQ(sendAndParse("/latin1"), std::nullopt);
    EXPECT_EQ(sendAndParse("/utf8"), (Dictionary{{"name", Value("Nguyễn")}}));

    // The body that is not UTF-8 is the one not printed.
    EXPECT_EQ(headless.console->lines(),
              (std::vector<std::string>{"not json", "[1,2]", "42", "", R"({"name":"Nguyễn"})"}));
}

TEST_F(SendAndParse, TransportFailuresAreNilWithoutALine) {
    server.on("/stall", LoopbackServer::Reply{200, "", "text/plain", true});
    EXPECT_EQ(sendAndParse("/stall"), std::nullopt);
    EXPECT_TRUE(headless.console->lines().empty());
}

class UserInfo : public ovix::test::ApiTest {
  protected:
    static constexpr const char* kPath = "/auth-connect/api/v2.0/oauth2/auth/userinfo";

    Result getUserInfo(Outcome<Result>& outcome) {
        OvixCore::shared().getUserInfo(outcome.completion());
        outcome.markReturned();
        return outcome.get();
    }
};

TEST_F(UserInfo, SendsTheTokenAndClientIdAndHandsBackData) {
    server.on(kPath,
              LoopbackServer::Reply{200, R"({"Code":0,"Data":{"username":"an","gender":1,"dob":null}})"});
    signIn("tok-123", "game-7");

    Outcome<Result> outcome;
    auto user = getUserInfo(outcome);

    EXPECT_EQ(user, (Dictionary{{"username", Value("an")}, {"gender", Value(1u)}, {"dob", Value()}}));
    EXPECT_FALSE(outcome.ranInline());
    EXPECT_NE(outcome.thread(), std::this_thread::get_id()) << "the transport's thread, not the caller's";
    auto seen = server.requests();
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0].method, "GET");
    EXPECT_EQ(seen[0].target, std::string(kPath) + "?fields=avatar,frame,gender,username,address,dob");
    EXPECT_THAT(seen[0].headerNames(), UnorderedElementsAre("content-type", "authorization", "clientid"));
    EXPECT_EQ(seen[0].header("Content-Type"), "application/json");
    EXPECT_EQ(seen[0].header("Authorization"), "Bearer tok-123");
    EXPECT_EQ(seen[0].header("ClientID"), "game-7");
}

TEST_F(UserInfo, LeavesClientIdOutWhenNoneIsStored) {
    server.on(kPath, LoopbackServer::Reply{200, R"({"Data":{}})"});
    signIn("tok", "");
    Outcome<Result> stored;
    EXPECT_EQ(getUserInfo(stored), Dictionary{});
    headless.store->remove("ovix_client_id");
    Outcome<Result> missing;
    EXPECT_EQ(getUserInfo(missing), Dictionary{});

    auto seen = server.requests();
    ASSERT_EQ(seen.size(), 2u);
    for (const auto& request : seen) {
        EXPECT_THAT(request.headerNames(), UnorderedElementsAre("content-type", "authorization"));
    }
}

TEST_F(UserInfo, WithoutATokenIsNilAtOnceAndSendsNothing) {
    headless.store->setString("ovix_client_id", "game-7");
    Outcome<Result> missing;
    EXPECT_EQ(getUserInfo(missing), std::nullopt);
    EXPECT_TRUE(missing.ranInline());
    headless.store->setString("ovix_token", "");
    Outcome<Result> empty;
    EXPECT_EQ(getUserInfo(empty), std::nullopt);
    EXPECT_TRUE(empty.ranInline());
    EXPECT_EQ(http->sent(), 0);
}

TEST_F(UserInfo, AnythingButAnObjectUnderDataIsNil) {
    signIn("tok", "game");
    for (const char* body :
         {R"({"Data":null})", R"({"Data":[{"a":1}]})", R"({"Data":"x"})", R"({"data":{}})", "{}"}) {
        server.on(kPath, LoopbackServer::Reply{200, body});
        Outcome<Result> outcome;
        EXPECT_EQ(getUserInfo(outcome), std::nullopt) << body;
    }
    server.on(kPath, LoopbackServer::Reply{401, R"({"Data":{"username":"an"}})"});
    Outcome<Result> rejected;
    EXPECT_EQ(getUserInfo(rejected), std::nullopt);
    EXPECT_TRUE(headless.console->hasLine("❌ HTTP error: 401"));
}

}  // namespace
