// The SDK's own clients against the emulator: what a game's integration sees when it develops
// against `ovix-emulator` instead of the publisher's hosts.
#include <chrono>
#include <filesystem>
#include <future>
#include <optional>
#include <tuple>

#include "EmulatorTestSupport.h"
#include "api/APIService.h"

namespace ovix::test {
namespace {

using emulator::RequestLog;

std::optional<Dictionary> userInfo() {
    return Outcome<std::optional<Dictionary>>().run([](auto done) { OvixCore::shared().getUserInfo(done); });
}

// The string under `key`, or "<absent>".
std::string text(const Dictionary& dictionary, const std::string& key) {
    auto it = dictionary.find(key);
    return it != dictionary.end() && it->second.asString() != nullptr ? *it->second.asString() : "<absent>";
}

RequestLog::Entry lastEntry(emulator::EmulatorServer& emu, const std::string& route) {
    const auto entries = emu.log().entries(route);
    EXPECT_FALSE(entries.empty()) << "nothing logged for " << route;
    return entries.empty() ? RequestLog::Entry{} : entries.back();
}

TEST_F(EmulatorTest, UserInfoAnswersTheTokensAccountAndTheLogShowsWhatTheSdkSent) {
    const std::tuple<std::string, std::string, std::optional<std::string>, int> cases[] = {
        {"demo-token-player1", "demo-game", "player1", 200},
        {"demo-token-player2", "", "player2", 200},  // no ClientID header at all
        {"not-a-token", "demo-game", std::nullopt, 401},
        {"demo-token-player1", "someone-elses-game", std::nullopt, 403},
    };
    for (const auto& [token, clientId, username, status] : cases) {
        SCOPED_TRACE(token + " / " + clientId);
        signInAs(token, clientId);
        const auto data = userInfo();
        ASSERT_EQ(data.has_value(), username.has_value());
        if (data) {
            EXPECT_EQ(text(*data, "username"), *username);
            EXPECT_EQ(data->size(), 6u) << "the six fields the SDK asks for";
            EXPECT_TRUE(data->contains("dob"));
        }
        const auto entry = lastEntry(emu, "userinfo");
        EXPECT_EQ(entry.status, status);
        EXPECT_EQ(entry.header("ClientID"), clientId);
        EXPECT_EQ(entry.header("Authorization"), "Bearer " + token);
        EXPECT_EQ(entry.header("Content-Type"), "application/json");
    }
}

TEST_F(EmulatorTest, TheSignInFormIssuesATokenThatUserInfoAccepts) {
    auto client = raw();
    const std::string path = "/auth-connect/api/v2.0/oauth2/auth/signin";
    const std::tuple<std::string, int, std::string> refusals[] = {
        {R"({"username":"player1","password":"wrong","client_id":"demo-game"})", 401,
         "Sai tên đăng nhập hoặc mật khẩu"},
        {R"({"username":"nobody","password":"ovix123","client_id":"demo-game"})", 401,
         "Sai tên đăng nhập hoặc mật khẩu"},
        {R"({"username":"player1","password":"ovix123","client_id":"other"})", 403, "Ứng dụng không hợp lệ"},
        {R"({"username":"player1"})", 400, ""},
    };
    for (const auto& [body, status, message] : refusals) {
        SCOPED_TRACE(body);
        auto answer = client.Post(path.c_str(), body, "application/json");
        ASSERT_TRUE(answer);
        EXPECT_EQ(answer->status, status);
        if (!message.empty()) {
            EXPECT_EQ(nlohmann::json::parse(answer->body).at("message"), message);
        }
    }
    auto answer =
        client.Post(path.c_str(), R"({"username":"tester","password":"test","client_id":"demo-game"})",
                    "application/json");
    ASSERT_TRUE(answer);
    ASSERT_EQ(answer->status, 200);
    const auto token = nlohmann::json::parse(answer->body).at("token").get<std::string>();
    signInAs(token);
    const auto data = userInfo();
    ASSERT_TRUE(data);
    EXPECT_EQ(text(*data, "username"), "tester");
}

// The eligibility answers the demo config's rules give the SDK's client; what the purchase does with
// each answer is the purchase flow's test.
TEST_F(EmulatorTest, PurchaseEligibilityFollowsTheConfiguredRules) {
    const std::tuple<std::string, std::optional<bool>> cases[] = {
        {"com.ovix.demo.gems100", true},
        {"com.ovix.demo.vip", false},
        {"com.ovix.demo.broken", std::nullopt},  // a 503 rule
    };
    for (const auto& [product, eligible] : cases) {
        SCOPED_TRACE(product);
        const auto answer = Outcome<std::optional<UserEligibilityResponse>>().run(
            [&product = product](auto done) { APIService::checkEligibility(product, done); });
        EXPECT_EQ(answer ? std::optional(answer->eligible) : std::nullopt, eligible);
        EXPECT_EQ(lastEntry(emu, "eligibility").target, "/billing/check?productId=" + product);
    }
}

TEST_F(EmulatorTest, TheNewsFeedReachesTheSdkInFeedOrderWithMillisecondTimes) {
    signInAs("", "demo-game");
    auto items = Outcome<std::optional<std::vector<NewsItem>>>().run(
        [](auto done) { OvixCore::shared().getAllNews(done); });
    ASSERT_TRUE(items);
    ASSERT_EQ(items->size(), 4u);
    std::vector<std::int64_t> ids;
    for (const auto& item : *items) {
        ids.push_back(item.id);
    }
    EXPECT_EQ(ids, (std::vector<std::int64_t>{1001, 1002, 1003, 1004}));
    EXPECT_EQ((*items)[1].createdAt, 1763370000123);
    EXPECT_EQ((*items)[1].title, "Cập nhật phiên bản 1.2");
    EXPECT_EQ(std::tuple((*items)[0].isEvent, (*items)[0].isNews), std::tuple(1, 0));
    EXPECT_EQ(lastEntry(emu, "news").header("ClientID"), "demo-game");
}

TEST_F(EmulatorTest, AnUploadIsAnsweredWithAnImageUrlThatServesTheSameBytes) {
    signInAs("", "demo-game");
    platform::RgbaImage picture{16, 12, {}};
    for (int i = 0; i < picture.width * picture.height; ++i) {
        picture.pixels.insert(picture.pixels.end(), {std::uint8_t(i * 7), std::uint8_t(255 - i), 40, 255});
    }
    const auto answer = Outcome<std::optional<Dictionary>>().run(
        [&](auto done) { OvixCore::shared().uploadImage(picture, done); });
    ASSERT_TRUE(answer);
    const auto* data = answer->at("Data").asObject();
    ASSERT_NE(data, nullptr);
    const auto url = text(*data, "ImageUrl");
    ASSERT_TRUE(url.starts_with(emu.graphUrl() + "/inside/image/files/")) << url;

    platform::HttpRequest get;
    get.url = url;
    const auto served =
        Outcome<platform::HttpResult>().run([&](auto done) { headless.platform->http->send(get, done); });
    ASSERT_TRUE(served.response);
    EXPECT_EQ(served.response->status, 200);
    const auto sent = headless.platform->imageCodec->encodeJpeg(picture, 0.8);
    ASSERT_TRUE(sent);
    EXPECT_EQ(served.response->body, *sent) << "the JPEG the SDK encoded, byte for byte";
    EXPECT_EQ(lastEntry(emu, "upload").status, 200);
    EXPECT_TRUE(lastEntry(emu, "upload")
                    .header("Content-Type")
                    .starts_with("multipart/form-data; boundary=Boundary-"));
}

}  // namespace
}  // namespace ovix::test
