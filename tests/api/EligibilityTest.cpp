#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "api/APIService.h"
#include "api/ApiTest.h"

namespace {

using ovix::UserEligibilityResponse;
using ovix::Value;
using ovix::test::LoopbackServer;
using ::testing::HasSubstr;

TEST(EligibilityDecoding, NeedsABooleanEligible) {
    auto decode = [](const char* json) { return UserEligibilityResponse::decode(*Value::fromJson(json)); };
    EXPECT_TRUE(decode(R"({"eligible":true,"reason":"x"})").value().eligible);
    EXPECT_FALSE(decode(R"({"eligible":false})").value().eligible);
    for (const char* bad : {"{}", R"({"eligible":1})", R"({"eligible":"true"})", R"({"eligible":null})",
                            R"({"Eligible":true})", R"([{"eligible":true}])"}) {
        EXPECT_FALSE(decode(bad)) << bad;
    }
}

class Eligibility : public ovix::test::ApiTest {
  protected:
    using Answer = std::optional<UserEligibilityResponse>;
    Answer check(const std::string& productId, ovix::test::Outcome<Answer>&& outcome = {}) {
        return outcome.run([&](auto done) { ovix::APIService::checkEligibility(productId, done); });
    }
    std::vector<std::string> errors() const {
        std::vector<std::string> out;
        for (const auto& line : headless.console->lines()) {
            if (line.rfind("❌ API error: ", 0) == 0) {
                out.push_back(line);
            }
        }
        return out;
    }
};

TEST_F(Eligibility, SendsNoHeaderAtAllAndTheIdAsItIs) {
    server.on("/billing/check", LoopbackServer::Reply{200, R"({"eligible":true})"});
    store("ovix_token", "tok");
    store("ovix_client_id", "game-7");
    EXPECT_TRUE(check("com.game.gem_100").value().eligible);
    EXPECT_TRUE(check("gem&coupon=1").value().eligible);
    EXPECT_TRUE(check("gem%20pack").value().eligible);
    server.on("/billing/check", LoopbackServer::Reply{200, R"({"eligible":false})"});
    EXPECT_FALSE(check("gem").value().eligible) << "a refusal is an answer";

    auto seen = server.requests();
    ASSERT_EQ(seen.size(), 4u);
    EXPECT_EQ(seen[0].method, "GET");
    EXPECT_EQ(seen[0].target, "/billing/check?productId=com.game.gem_100");
    EXPECT_THAT(seen[0].headerNames(), ::testing::IsEmpty()) << "no ClientID, Authorization or Content-Type";
    EXPECT_EQ(seen[1].target, "/billing/check?productId=gem&coupon=1");
    EXPECT_EQ(seen[2].target, "/billing/check?productId=gem%20pack");
    EXPECT_TRUE(errors().empty());
}

TEST_F(Eligibility, EachFailureIsNilWithOneLineSayingWhy) {
    const std::pair<LoopbackServer::Reply, const char*> cases[] = {
        {{200, "{}"}, "eligible"},
        {{200, R"({"eligible":"yes"})"}, "eligible"},
        {{200, "<html>"}, "JSON"},
        {{403, R"({"eligible":true})"}, "403"},
        {{200, "", "text/plain", true}, "Timeout"},
    };
    for (const auto& [reply, cause] : cases) {
        headless.console->clear();
        server.on("/billing/check", reply);
        EXPECT_FALSE(check("gem")) << reply.body;
        EXPECT_THAT(errors(), ::testing::ElementsAre(HasSubstr(cause)));
    }
}

TEST_F(Eligibility, AnIdThatBreaksTheUrlFailsAtOnceWithoutTraffic) {
    for (const char* id : {"gem 100", "gém", "gem%zz", "gem%4", "gem{1}", "gem[1]", "gem#a#b", "gem\nx"}) {
        headless.console->clear();
        ovix::test::Outcome<Answer> outcome;
        EXPECT_FALSE(check(id, std::move(outcome)));
        EXPECT_TRUE(outcome.ranInline) << id;
        EXPECT_THAT(errors(), ::testing::ElementsAre(::testing::StartsWith("❌ API error: bad URL")));
    }
    EXPECT_EQ(http->sent, 0);
}

}  // namespace
