#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "api/APIRequest.h"
#include "api/APIService.h"
#include "api/ApiTest.h"
#include "api/UserEligibilityResponse.h"

namespace {

using ovix::APIRequest;
using ovix::UserEligibilityResponse;
using ovix::Value;
using ovix::test::LoopbackServer;
using ::testing::HasSubstr;
using ::testing::StartsWith;

TEST(EligibilityDecoding, NeedsABooleanEligible) {
    auto decode = [](const char* json) { return UserEligibilityResponse::decode(*Value::fromJson(json)); };
    ASSERT_TRUE(decode(R"({"eligible":true,"reason":"x"})"));
    EXPECT_TRUE(decode(R"({"eligible":true})")->eligible);
    EXPECT_FALSE(decode(R"({"eligible":false})")->eligible);
    EXPECT_FALSE(decode("{}"));
    EXPECT_FALSE(decode(R"({"eligible":1})"));
    EXPECT_FALSE(decode(R"({"eligible":"true"})"));
    EXPECT_FALSE(decode(R"({"eligible":null})"));
    EXPECT_FALSE(decode(R"({"Eligible":true})"));
    EXPECT_FALSE(decode(R"([{"eligible":true}])"));
    EXPECT_EQ(UserEligibilityResponse{true}.encode().toJson(), R"({"eligible":true})");
}

TEST(UrlValidity, AcceptsWhatAUrlMayCarryAndNothingElse) {
    for (const char* good : {"https://id.ovix.vn/billing/check?productId=com.game.gem_100",
                             "http://127.0.0.1:8080/a?x=1&y=%2F#frag", "http://[::1]:80/",
                             "https://u@host/p;q=1", "https://h/check?productId=a&b=c?d"}) {
        EXPECT_TRUE(APIRequest::isValidUrl(good)) << good;
    }
    for (const char* bad :
         {"", "/billing/check?productId=x", "https:///x", "http://", "https://h/a b", "https://h/%zz",
          "https://h/%4", "https://h/é", "https://h/a#b#c", "https://h/{x}", "https://h/a|b",
          "https://h/a\"b", "https://h/a\nb", "https://h/[x]", "1http://h/"}) {
        EXPECT_FALSE(APIRequest::isValidUrl(bad)) << bad;
    }
}

class Eligibility : public ovix::test::ApiTest {
  protected:
    static constexpr const char* kPath = "/billing/check";

    std::optional<UserEligibilityResponse> check(const std::string& productId) {
        auto future = ovix::APIService::checkEligibility(productId);
        if (future.wait_for(std::chrono::seconds(20)) != std::future_status::ready) {
            ADD_FAILURE() << "never answered";
            return std::nullopt;
        }
        return future.get();
    }

    std::vector<std::string> apiErrors() const {
        std::vector<std::string> out;
        for (const auto& line : headless.console->lines()) {
            if (line.rfind("❌ API error: ", 0) == 0) {
                out.push_back(line);
            }
        }
        return out;
    }
};

TEST_F(Eligibility, SendsNoHeaderAtAllAndTheIdUnchanged) {
    server.on(kPath, LoopbackServer::Reply{200, R"({"eligible":true})"});
    signIn("tok", "game-7");

    auto answer = check("com.game.gem_100");

    ASSERT_TRUE(answer);
    EXPECT_TRUE(answer->eligible);
    auto seen = server.requests();
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0].method, "GET");
    EXPECT_EQ(seen[0].target, "/billing/check?productId=com.game.gem_100");
    EXPECT_THAT(seen[0].headerNames(), ::testing::IsEmpty()) << "no ClientID, Authorization or Content-Type";
    EXPECT_TRUE(apiErrors().empty());
}

TEST_F(Eligibility, ARefusalIsAnAnswerNotAnError) {
    server.on(kPath, LoopbackServer::Reply{200, R"({"eligible":false})"});
    auto answer = check("gem");
    ASSERT_TRUE(answer);
    EXPECT_FALSE(answer->eligible);
    EXPECT_TRUE(apiErrors().empty());
}

TEST_F(Eligibility, EachFailureIsNilWithOneReadableLine) {
    struct Case {
        LoopbackServer::Reply reply;
        const char* cause;
    };
    const Case cases[] = {
        {{200, "{}"}, "eligible"},
        {{200, R"({"eligible":"yes"})"}, "eligible"},
        {{200, "<html>", "text/html"}, "JSON"},
        {{403, R"({"eligible":true})"}, "403"},
        {{500, ""}, "500"},
    };
    for (const auto& c : cases) {
        headless.console->clear();
        server.on(kPath, c.reply);
        EXPECT_FALSE(check("gem")) << c.reply.body;
        auto errors = apiErrors();
        ASSERT_EQ(errors.size(), 1u) << c.reply.body;
        EXPECT_THAT(errors[0], HasSubstr(c.cause));
    }
}

TEST_F(Eligibility, ATransportFailureIsDescribed) {
    server.on(kPath, LoopbackServer::Reply{200, "", "text/plain", true});
    EXPECT_FALSE(check("gem"));
    auto errors = apiErrors();
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_THAT(errors[0], HasSubstr("Timeout"));
}

TEST_F(Eligibility, QueryCharactersInTheIdGoOutAsTheyAre) {
    server.on(kPath, LoopbackServer::Reply{200, R"({"eligible":true})"});
    EXPECT_TRUE(check("gem&coupon=1"));
    EXPECT_TRUE(check("gem%20pack"));
    auto seen = server.requests();
    ASSERT_EQ(seen.size(), 2u);
    EXPECT_EQ(seen[0].target, "/billing/check?productId=gem&coupon=1");
    EXPECT_EQ(seen[1].target, "/billing/check?productId=gem%20pack");
}

TEST_F(Eligibility, AnIdThatBreaksTheUrlFailsAtOnceWithoutTraffic) {
    for (const char* id : {"gem 100", "gém", "gem%zz", "gem{1}"}) {
        headless.console->clear();
        auto future = ovix::APIService::checkEligibility(id);
        ASSERT_EQ(future.wait_for(std::chrono::seconds(0)), std::future_status::ready) << id;
        EXPECT_FALSE(future.get()) << id;
        auto errors = apiErrors();
        ASSERT_EQ(errors.size(), 1u);
        EXPECT_THAT(errors[0], StartsWith("❌ API error: bad URL"));
    }
    EXPECT_EQ(http->sent(), 0);
}

}  // namespace
