#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>

#include "api/APIService.h"
#include "api/ApiTest.h"
#include "platform/jpeg/JpegImageCodec.h"

namespace ovix::test {
namespace {

using platform::RgbaImage;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;
using ::testing::UnorderedElementsAre;
using Result = std::optional<Dictionary>;

class SendAndParse : public ApiTest {
  protected:
    Result send(const std::string& path) {
        platform::HttpRequest request;
        request.url = server.baseUrl() + path;
        return Outcome<Result>().run([&](auto done) { APIService::sendAndParse(request, done); });
    }
};

TEST_F(SendAndParse, AnObjectWithA2xxStatusIsTheResultAndEveryUtf8BodyIsPrinted) {
    const std::tuple<const char*, LoopbackServer::Reply, Result> cases[] = {
        {"/200", {200, R"({"a":1})"}, Dictionary{{"a", Value(1u)}}},
        {"/299", {299, R"({"b":"Nguyễn"})"}, Dictionary{{"b", Value("Nguyễn")}}},
        {"/300", {300, R"({"c":true})"}, std::nullopt},
        {"/text", {200, "not json", "text/plain"}, std::nullopt},
        {"/array", {200, "[1,2]"}, std::nullopt},
        {"/latin1", {200, "{\"n\":\"Nguy\xe1n\"}"}, std::nullopt},
        {"/huge", {200, "{" + std::string(APIService::maxResponseBytes, ' ') + "}"}, std::nullopt},
    };
    for (const auto& [path, reply, expected] : cases) {
        server.on(path, reply);
        EXPECT_EQ(send(path), expected) << path;
    }
    EXPECT_THAT(headless.console->lines(), ElementsAre(R"({"a":1})", R"({"b":"Nguyễn"})", R"({"c":true})",
                                                       "❌ HTTP error: 300", "not json", "[1,2]"))
        << "neither the body that is not UTF-8 nor the one over the cap is printed";
}

// A transport may report a final status below 200; over the wire it cannot come (1xx are interim).
class Status199 : public platform::HttpClient {
  public:
    void send(platform::HttpRequest, Completion completion) override {
        std::thread([completion] { completion({platform::HttpResponse{199, {}, "{}"}, {}}); }).join();
    }
};

TEST_F(SendAndParse, BelowTwoHundredIsNilToo) {
    headless.platform->http = std::make_shared<Status199>();
    EXPECT_EQ(send("/any"), std::nullopt);
    EXPECT_EQ(headless.console->lines(), (std::vector<std::string>{"{}", "❌ HTTP error: 199"}));
}

class UserInfo : public ApiTest {
  protected:
    static constexpr const char* kPath = "/auth-connect/api/v2.0/oauth2/auth/userinfo";
    Result get(Outcome<Result>&& outcome = {}) {
        return outcome.run([](auto done) { OvixCore::shared().getUserInfo(done); });
    }
};

TEST_F(UserInfo, SendsTokenAndClientIdAndHandsBackData) {
    server.on(kPath, {200, R"({"Code":0,"Data":{"username":"an","gender":1,"dob":null}})"});
    store("ovix_token", "tok-123");
    store("ovix_client_id", "game-7");
    EXPECT_EQ(get(), (Dictionary{{"username", Value("an")}, {"gender", Value(1u)}, {"dob", Value()}}));

    auto seen = onlyRequest();
    EXPECT_EQ(seen.method, "GET");
    EXPECT_EQ(seen.target, std::string(kPath) + "?fields=avatar,frame,gender,username,address,dob");
    EXPECT_THAT(seen.headerNames(), UnorderedElementsAre("content-type", "authorization", "clientid"));
    EXPECT_EQ(seen.header("Content-Type"), "application/json");
    EXPECT_EQ(seen.header("Authorization"), "Bearer tok-123");
    EXPECT_EQ(seen.header("ClientID"), "game-7");
}

TEST_F(UserInfo, WithoutATokenIsNilAtOnceAndAnEmptyClientIdSendsNoHeader) {
    store("ovix_token", "");
    Outcome<Result> empty;
    EXPECT_EQ(get(std::move(empty)), std::nullopt);
    EXPECT_TRUE(empty.ranInline);
    EXPECT_TRUE(server.requests().empty());

    server.on(kPath, {200, R"({"Data":{}})"});
    store("ovix_token", "tok");
    store("ovix_client_id", "");
    EXPECT_EQ(get(), Dictionary{});
    EXPECT_THAT(onlyRequest().headerNames(), UnorderedElementsAre("content-type", "authorization"));
}

class NewsFeed : public ApiTest {
  protected:
    static constexpr const char* kPath = "/game/online/api/v2.0/client/all-news";
    using Items = std::optional<std::vector<Dictionary>>;
    Items load() {
        return Outcome<Items>().run([](auto done) { APIService::loadNews(done); });
    }
};

TEST_F(NewsFeed, AsksForTheFirstHundredNewsWithTheClientId) {
    server.on(kPath, {200, R"({"Data":[{"Id":1,"Title":"a"},{"Id":2}]})"});
    store("ovix_token", "tok");
    store("ovix_client_id", "game-7");
    EXPECT_EQ(load(),
              (std::vector<Dictionary>{{{"Id", Value(1u)}, {"Title", Value("a")}}, {{"Id", Value(2u)}}}));
    store("ovix_client_id", "");
    EXPECT_TRUE(load());

    auto seen = server.requests();
    ASSERT_EQ(seen.size(), 2u);
    const std::string query = "&isNews=1&isEvent=0&isTutorial=0&pageSize=100&pageIndex=1";
    EXPECT_EQ(seen[0].target, std::string(kPath) + "?clientId=game-7" + query);
    EXPECT_THAT(seen[0].headerNames(), UnorderedElementsAre("content-type", "clientid"))
        << "no Authorization";
    EXPECT_EQ(seen[0].header("ClientID"), "game-7");
    EXPECT_EQ(seen[1].target, std::string(kPath) + "?clientId=" + query);
}

// The user info takes an object from under "Data", the news feed an array of objects; nothing else.
TEST_F(NewsFeed, EachEndpointTakesOnlyItsOwnShapeFromUnderData) {
    store("ovix_token", "tok");
    auto userInfo = [] { return Outcome<Result>().run([](auto done) { APIService::getUserInfo(done); }); };
    for (const char* body : {R"({"Data":[{"a":1}]})", R"({"data":{}})"}) {
        server.on("/auth-connect/api/v2.0/oauth2/auth/userinfo", {200, body});
        EXPECT_EQ(userInfo(), std::nullopt) << body;
    }
    for (const char* body : {R"({"Data":{"Id":1}})", R"({"Data":[{"Id":1},2]})"}) {
        server.on(kPath, {200, body});
        EXPECT_EQ(load(), std::nullopt) << body;
    }
}

class Eligibility : public ApiTest {
  protected:
    using Answer = std::optional<UserEligibilityResponse>;
    Answer check(const std::string& productId, Outcome<Answer>&& outcome = {}) {
        return outcome.run([&](auto done) { APIService::checkEligibility(productId, done); });
    }
};

TEST_F(Eligibility, SendsNoHeaderAtAllAndTheIdAsItIs) {
    server.on("/billing/check", {200, R"({"eligible":true,"reason":"x"})"});
    store("ovix_token", "tok");
    store("ovix_client_id", "game-7");
    EXPECT_TRUE(check("gem&coupon=1%20x").value().eligible);
    auto seen = onlyRequest();
    EXPECT_EQ(seen.method, "GET");
    EXPECT_EQ(seen.target, "/billing/check?productId=gem&coupon=1%20x");
    EXPECT_THAT(seen.headerNames(), IsEmpty()) << "no ClientID, Authorization or Content-Type";
    EXPECT_TRUE(headless.console->lines().empty());
}

TEST_F(Eligibility, EachFailureIsNilWithOneLineSayingWhy) {
    const std::pair<LoopbackServer::Reply, const char*> cases[] = {
        {{200, "{}"}, "eligible"},
        {{200, R"({"eligible":1})"}, "eligible"},
        {{200, R"({"eligible":"true"})"}, "eligible"},
        {{200, R"({"Eligible":true})"}, "eligible"},
        {{200, "<html>"}, "JSON"},
        {{403, R"({"eligible":true})"}, "403"},
        {{200, "", "text/plain", true}, "Timeout"},
    };
    for (const auto& [reply, cause] : cases) {
        headless.console->clear();
        server.on("/billing/check", reply);
        EXPECT_FALSE(check("gem")) << reply.body;
        EXPECT_THAT(headless.console->lines(),
                    ElementsAre(::testing::AllOf(StartsWith("❌ API error: "), HasSubstr(cause))));
    }
}

TEST_F(Eligibility, AnIdThatBreaksTheUrlFailsAtOnceWithoutTraffic) {
    for (const char* id : {"gem 100", "gém", "gem%zz", "gem%4", "gem{1}", "gem[1]", "gem#a#b", "gem\nx"}) {
        headless.console->clear();
        Outcome<Answer> outcome;
        EXPECT_FALSE(check(id, std::move(outcome))) << id;
        EXPECT_TRUE(outcome.ranInline) << id;
        EXPECT_THAT(headless.console->lines(), ElementsAre(StartsWith("❌ API error: bad URL")));
    }
    EXPECT_TRUE(server.requests().empty());
}

RgbaImage picture(int width, int height) {
    RgbaImage image{width, height, std::vector<std::uint8_t>(static_cast<std::size_t>(width) * height * 4)};
    for (std::size_t i = 0; i < image.pixels.size(); ++i) {
        image.pixels[i] = static_cast<std::uint8_t>((i * 7) ^ (i >> 5));
    }
    return image;
}

class ImageUpload : public ApiTest {
  protected:
    static constexpr const char* kPath = "/inside/image/api/v2.0/upload";

    Result upload(const RgbaImage& image, Outcome<Result>&& outcome = {}) {
        return outcome.run([&](auto done) { APIService::uploadImage(image, done); });
    }
    static std::string boundaryOf(const LoopbackServer::Request& request) {
        const std::string type = request.header("Content-Type");
        const std::string prefix = "multipart/form-data; boundary=";
        return type.rfind(prefix, 0) == 0 ? type.substr(prefix.size()) : "";
    }
};

TEST_F(ImageUpload, PostsOneJpegPartByteForByte) {
    server.on(kPath, {200, R"({"Data":{"ImageUrl":"https://cdn/x.jpg"}})"});
    store("ovix_token", "tok");
    store("ovix_client_id", "game-7");
    const auto image = picture(64, 48);

    EXPECT_EQ(upload(image),
              (Dictionary{{"Data", Value(Dictionary{{"ImageUrl", Value("https://cdn/x.jpg")}})}}));

    auto seen = onlyRequest();
    EXPECT_EQ(seen.method, "POST");
    EXPECT_EQ(seen.target, kPath);
    EXPECT_THAT(seen.headerNames(), UnorderedElementsAre("content-type", "clientid")) << "no Authorization";
    EXPECT_EQ(seen.header("ClientID"), "game-7");
    const std::string b = boundaryOf(seen);
    EXPECT_TRUE(std::regex_match(
        b, std::regex("Boundary-[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}")))
        << b;

    // One part holding the JPEG at quality 0.8, then the closing delimiter.
    EXPECT_EQ(seen.body, "--" + b +
                             "\r\nContent-Disposition: form-data; name=\"image\"; filename=\"image\"\r\n"
                             "Content-Type: image/jpeg\r\n\r\n" +
                             platform::JpegImageCodec().encodeJpeg(image, 0.8).value() + "\r\n--" + b +
                             "--\r\n");
    EXPECT_EQ(seen.header("Content-Length"), std::to_string(seen.body.size()));
}

TEST_F(ImageUpload, EachUploadHasItsOwnBoundaryAndAPictureThatCannotBeEncodedSendsNothing) {
    RgbaImage truncated = picture(4, 4);
    truncated.pixels.resize(10);
    Outcome<Result> cut;
    EXPECT_EQ(upload(truncated, std::move(cut)), std::nullopt);
    EXPECT_TRUE(cut.ranInline);
    EXPECT_TRUE(server.requests().empty());

    server.on(kPath, {200, R"({"Data":{"ImageUrl":"u"}})"});
    EXPECT_TRUE(upload(picture(8, 8)));
    EXPECT_TRUE(upload(picture(8, 8)));
    auto seen = server.requests();
    ASSERT_EQ(seen.size(), 2u);
    EXPECT_NE(boundaryOf(seen[0]), boundaryOf(seen[1]));
}

}  // namespace
}  // namespace ovix::test
