// Faults, the admin endpoint, the sign-in page and the upload's checks, as a client meets them.
#include <chrono>
#include <filesystem>
#include <optional>
#include <tuple>

#include "EmulatorTestSupport.h"

namespace ovix::test {
namespace {

using emulator::Fault;

const std::string kUserInfo = "/auth-connect/api/v2.0/oauth2/auth/userinfo?fields=username";
const httplib::Headers kBearer{{"Authorization", "Bearer demo-token-player1"}};

std::optional<Dictionary> userInfo() {
    return Outcome<std::optional<Dictionary>>().run([](auto done) { OvixCore::shared().getUserInfo(done); });
}

// What a raw client saw: whether the answer's head arrived, its status and the body bytes received.
struct Wire {
    bool head = false;
    int status = 0;
    std::string body;
    bool complete = false;
};

Wire fetch(httplib::Client& client, const std::string& path, const httplib::Headers& headers) {
    Wire wire;
    auto result = client.Get(
        path.c_str(), headers,
        [&](const httplib::Response& response) {
            wire.head = true;
            wire.status = response.status;
            return true;
        },
        [&](const char* data, size_t length) {
            wire.body.append(data, length);
            return true;
        });
    wire.complete = static_cast<bool>(result);
    return wire;
}

TEST_F(EmulatorTest, EachFaultKindReachesTheSdkAndTheWireAsItSays) {
    signInAs("demo-token-player1");
    const std::string intact = R"({"Data":{"username":"player1"},"Message":"Success"})";
    // fault, whether the SDK still gets the profile, and what a raw client sees.
    const std::tuple<std::string, bool, Wire> cases[] = {
        {"status:503", false, {true, 503, R"({"Message":"Injected fault"})", true}},
        {"malformed", false, {true, 200, "{\"Data\": <this is not JSON", true}},
        {"truncated", false, {true, 200, intact.substr(0, intact.size() / 2), false}},
        {"drop", false, {false, 0, "", false}},
        {"latency:300", true, {true, 200, intact, true}},
    };
    for (const auto& [text, sdkSucceeds, expected] : cases) {
        SCOPED_TRACE(text);
        emu.faults().set("userinfo", Fault::parse(text));
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(userInfo().has_value(), sdkSucceeds);
        auto client = raw();
        const auto wire = fetch(client, kUserInfo, kBearer);
        const auto elapsed = std::chrono::steady_clock::now() - start;
        EXPECT_EQ(std::tie(wire.head, wire.status, wire.body, wire.complete),
                  std::tie(expected.head, expected.status, expected.body, expected.complete));
        const auto entries = emu.log().entries("userinfo");
        ASSERT_EQ(entries.size(), 2u);
        EXPECT_EQ(entries.back().fault, text);
        EXPECT_EQ(entries.back().status, wire.head ? wire.status : 0);
        if (text.starts_with("latency")) {
            EXPECT_GE(elapsed, std::chrono::milliseconds(600)) << "both requests waited";
        }
        emu.log().clear();
    }
}

TEST_F(EmulatorTest, AFaultWithACountEndsAfterThatManyRequestsAndOthersRoutesAreUntouched) {
    signInAs("demo-token-player1");
    emu.faults().setFromText("userinfo=status:500,times:2");
    auto news = [] {
        return Outcome<std::optional<std::vector<NewsItem>>>().run(
            [](auto done) { OvixCore::shared().getAllNews(done); });
    };
    EXPECT_TRUE(news().has_value());
    std::vector<bool> answered;
    for (int i = 0; i < 3; ++i) {
        answered.push_back(userInfo().has_value());
    }
    EXPECT_EQ(answered, (std::vector<bool>{false, false, true}));
    EXPECT_TRUE(emu.faults().snapshot().empty());
}

TEST_F(EmulatorTest, TheAdminEndpointSetsListsAndClearsFaultsAndServesTheLog) {
    signInAs("demo-token-player1");
    auto admin = raw();
    auto put = admin.Put("/_emulator/faults/userinfo", "status:502", "text/plain");
    ASSERT_TRUE(put);
    EXPECT_EQ(put->status, 200);
    EXPECT_FALSE(userInfo().has_value());
    auto listed = admin.Get("/_emulator/faults");
    ASSERT_TRUE(listed);
    EXPECT_EQ(nlohmann::json::parse(listed->body).at("userinfo").at("status"), 502);

    const std::tuple<std::string, std::string, int> refused[] = {
        {"/_emulator/faults/nosuchroute", "drop", 400},
        {"/_emulator/faults/userinfo", "status:9000", 400},
        {"/_emulator/faults/userinfo", R"({"drop": "yes"})", 400},
    };
    for (const auto& [path, body, status] : refused) {
        SCOPED_TRACE(path + " " + body);
        auto answer = admin.Put(path.c_str(), body, "text/plain");
        ASSERT_TRUE(answer);
        EXPECT_EQ(answer->status, status);
    }
    EXPECT_EQ(emu.faults().snapshot().at("userinfo").status, 502) << "a refused change leaves the fault";

    auto cleared = admin.Delete("/_emulator/faults/userinfo");
    ASSERT_TRUE(cleared);
    EXPECT_EQ(cleared->status, 204);
    EXPECT_TRUE(userInfo().has_value());

    auto log = admin.Get("/_emulator/log?route=userinfo");
    ASSERT_TRUE(log);
    const auto entries = nlohmann::json::parse(log->body).at("entries");
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].at("status"), 502);
    EXPECT_EQ(entries[0].at("fault"), "status:502");
    EXPECT_EQ(entries[1].at("status"), 200);
    const auto headers = entries[1].at("headers");
    EXPECT_NE(std::find(headers.begin(), headers.end(),
                        nlohmann::json{{"name", "ClientID"}, {"value", "demo-game"}}),
              headers.end());
}

TEST_F(EmulatorTest, TheSignInPageChecksTheClientAndKeepsTheDeviceRecordItIsGiven) {
    auto client = raw();
    const std::string page =
        "/auth-connect/api/v2.0/oauth2/auth?scope=account&response_type=token&client_id=";
    const std::tuple<std::string, int, std::string, std::string> cases[] = {
        {"demo-game", 200, "window.webkit.messageHandlers", "window.onReceiveDeviceInfo"},
        {"unknown", 400, "Unknown client_id &quot;unknown&quot;", "Cannot sign in"},
        {"", 400, "No client_id was given", "Cannot sign in"},
        {"%3Cscript%3Ex", 400, "&lt;script&gt;x", "Cannot sign in"},  // reflected, never as markup
    };
    for (const auto& [id, status, first, second] : cases) {
        SCOPED_TRACE(id);
        auto answer = client.Get((page + id).c_str());
        ASSERT_TRUE(answer);
        EXPECT_EQ(answer->status, status);
        EXPECT_NE(answer->body.find(first), std::string::npos);
        EXPECT_NE(answer->body.find(second), std::string::npos);
        EXPECT_EQ(answer->body.find("<script>x"), std::string::npos);
    }

    const std::string record = R"({"device_id":"abc","os":{"name":"Linux"}})";
    const std::string device = "/auth-connect/api/v2.0/oauth2/auth/device?client_id=";
    auto refused = client.Post((device + "unknown").c_str(), record, "application/json");
    ASSERT_TRUE(refused);
    EXPECT_EQ(refused->status, 400);
    auto kept = client.Post((device + "demo-game").c_str(), record, "application/json");
    ASSERT_TRUE(kept);
    EXPECT_EQ(kept->status, 204);
    EXPECT_EQ(emu.deviceRecords().at("demo-game"), nlohmann::json::parse(record));
    EXPECT_FALSE(emu.deviceRecords().contains("unknown"));
    auto listed = client.Get("/_emulator/devices");
    ASSERT_TRUE(listed);
    EXPECT_EQ(nlohmann::json::parse(listed->body).at("demo-game").at("device_id"), "abc");
}

TEST_F(EmulatorTest, TheNewsFeedPagesBySizeAndIndexAndIgnoresNumbersItCannotRead) {
    const std::tuple<std::string, std::vector<int>> cases[] = {
        {"pageSize=100&pageIndex=1", {1001, 1002, 1003, 1004}},
        {"pageSize=2&pageIndex=2", {1003, 1004}},
        {"pageSize=3&pageIndex=2", {1004}},
        {"pageSize=2&pageIndex=3", {}},
        {"pageSize=x&pageIndex=0", {1001, 1002, 1003, 1004}},  // defaults, and the first page
        {"pageSize=1", {1001}},
    };
    auto client = raw();
    for (const auto& [query, ids] : cases) {
        SCOPED_TRACE(query);
        auto answer =
            client.Get(("/game/online/api/v2.0/client/all-news?clientId=demo-game&" + query).c_str());
        ASSERT_TRUE(answer);
        const auto feed = nlohmann::json::parse(answer->body);
        std::vector<int> seen;
        for (const auto& item : feed.at("Data")) {
            seen.push_back(item.at("Id").get<int>());
        }
        EXPECT_EQ(seen, ids);
    }
}

// One multipart part as the SDK writes it, with the parts of its header and its bytes replaceable.
std::string part(const std::string& name, const std::string& filename, const std::string& type,
                 const std::string& bytes) {
    return "--B\r\nContent-Disposition: form-data; name=\"" + name + "\"; filename=\"" + filename +
           "\"\r\nContent-Type: " + type + "\r\n\r\n" + bytes + "\r\n";
}

TEST_F(EmulatorTest, AnUploadThatIsNotOneJpegPartNamedImageIsRefusedAndNotStored) {
    const std::string jpeg = "\xFF\xD8\xFF\xE0 pretend \xFF\xD9";
    const auto good = part("image", "image", "image/jpeg", jpeg);
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {"two parts", good + good + "--B--\r\n", "exactly one part"},
        {"field name", part("file", "image", "image/jpeg", jpeg) + "--B--\r\n", "named \"image\""},
        {"file name", part("image", "photo.jpg", "image/jpeg", jpeg) + "--B--\r\n", "named \"image\""},
        {"part type", part("image", "image", "image/png", jpeg) + "--B--\r\n", "image/jpeg"},
        {"bytes", part("image", "image", "image/jpeg", "GIF89a") + "--B--\r\n", "not JPEG"},
    };
    auto client = raw();
    const auto images = SharedEmulator::instance().data() / "images";
    const auto stored = [&] {
        return std::distance(std::filesystem::directory_iterator(images),
                             std::filesystem::directory_iterator{});
    };
    const auto before = stored();
    for (const auto& [what, body, message] : cases) {
        SCOPED_TRACE(what);
        auto answer = client.Post("/inside/image/api/v2.0/upload", body, "multipart/form-data; boundary=B");
        ASSERT_TRUE(answer);
        EXPECT_EQ(answer->status, 400);
        EXPECT_NE(nlohmann::json::parse(answer->body).at("Message").get<std::string>().find(message),
                  std::string::npos);
    }
    // Larger than the emulator reads at all: refused before the body is stored, and it still serves.
    const std::string oversized =
        part("image", "image", "image/jpeg", std::string(65u << 20, 'x')) + "--B--\r\n";
    auto huge = client.Post("/inside/image/api/v2.0/upload", oversized, "multipart/form-data; boundary=B");
    ASSERT_TRUE(huge) << httplib::to_string(huge.error());
    EXPECT_EQ(huge->status, 413);
    auto json = client.Post("/inside/image/api/v2.0/upload", jpeg, "application/json");
    ASSERT_TRUE(json);
    EXPECT_EQ(json->status, 400);
    EXPECT_EQ(stored(), before);
    auto accepted =
        client.Post("/inside/image/api/v2.0/upload", good + "--B--\r\n", "multipart/form-data; boundary=B");
    ASSERT_TRUE(accepted);
    EXPECT_EQ(accepted->status, 200);
    EXPECT_EQ(stored(), before + 1);
}

}  // namespace
}  // namespace ovix::test
