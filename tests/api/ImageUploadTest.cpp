#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>

#include "api/APIService.h"
#include "api/ApiTest.h"
#include "platform/jpeg/JpegImageCodec.h"

namespace {

using ovix::Dictionary;
using ovix::Value;
using ovix::platform::RgbaImage;
using ovix::test::LoopbackServer;
using ::testing::UnorderedElementsAre;

RgbaImage picture(int width, int height) {
    RgbaImage image{width, height, std::vector<std::uint8_t>(static_cast<std::size_t>(width) * height * 4)};
    for (std::size_t i = 0; i < image.pixels.size(); ++i) {
        image.pixels[i] = static_cast<std::uint8_t>((i * 7) ^ (i >> 5));
    }
    return image;
}

class ImageUpload : public ovix::test::ApiTest {
  protected:
    static constexpr const char* kPath = "/inside/image/api/v2.0/upload";
    using Result = std::optional<Dictionary>;

    Result upload(const RgbaImage& image, ovix::test::Outcome<Result>&& outcome = {}) {
        return outcome.run([&](auto done) { ovix::APIService::uploadImage(image, done); });
    }
    static std::string boundaryOf(const LoopbackServer::Request& request) {
        const std::string type = request.header("Content-Type");
        const std::string prefix = "multipart/form-data; boundary=";
        return type.rfind(prefix, 0) == 0 ? type.substr(prefix.size()) : "";
    }
};

TEST_F(ImageUpload, PostsOneJpegPartByteForByte) {
    server.on(kPath, LoopbackServer::Reply{200, R"({"Data":{"ImageUrl":"https://cdn/x.jpg"}})"});
    store("ovix_token", "tok");
    store("ovix_client_id", "game-7");
    const auto image = picture(64, 48);

    EXPECT_EQ(upload(image),
              (Dictionary{{"Data", Value(Dictionary{{"ImageUrl", Value("https://cdn/x.jpg")}})}}));

    auto seen = server.requests();
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0].method, "POST");
    EXPECT_EQ(seen[0].target, kPath);
    EXPECT_THAT(seen[0].headerNames(), UnorderedElementsAre("content-type", "clientid"))
        << "no Authorization";
    EXPECT_EQ(seen[0].header("ClientID"), "game-7");
    const std::string b = boundaryOf(seen[0]);
    EXPECT_TRUE(std::regex_match(
        b, std::regex("Boundary-[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}")))
        << b;

    // Read the body the way a multipart parser does: delimiter line, part headers up to the empty
    // line, content up to CRLF "--" boundary, then the closing "--" and CRLF.
    const std::string& body = seen[0].body;
    const std::string head = "--" + b + "\r\n";
    ASSERT_EQ(body.rfind(head, 0), 0u);
    const auto headersEnd = body.find("\r\n\r\n");
    const auto close = body.find("\r\n--" + b, headersEnd);
    ASSERT_NE(close, std::string::npos);
    EXPECT_EQ(
        body.substr(head.size(), headersEnd - head.size()),
        "Content-Disposition: form-data; name=\"image\"; filename=\"image\"\r\nContent-Type: image/jpeg");
    EXPECT_EQ(body.substr(close), "\r\n--" + b + "--\r\n")
        << "one part, and the body ends with the closing line";
    const std::string jpeg = body.substr(headersEnd + 4, close - headersEnd - 4);
    EXPECT_EQ(jpeg, ovix::platform::JpegImageCodec().encodeJpeg(image, 0.8).value())
        << "the JPEG at quality 0.8";
    EXPECT_EQ(seen[0].header("Content-Length"), std::to_string(body.size()));
}

TEST_F(ImageUpload, EveryUploadHasItsOwnBoundaryAndAPictureThatCannotBeEncodedSendsNothing) {
    ovix::test::Outcome<Result> empty, cut;
    RgbaImage truncated = picture(4, 4);
    truncated.pixels.resize(10);
    EXPECT_EQ(upload(RgbaImage{}, std::move(empty)), std::nullopt);
    EXPECT_EQ(upload(truncated, std::move(cut)), std::nullopt);
    EXPECT_TRUE(empty.ranInline && cut.ranInline);
    EXPECT_EQ(http->sent, 0);

    server.on(kPath, LoopbackServer::Reply{200, R"({"Data":{"ImageUrl":"u"}})"});
    EXPECT_TRUE(upload(picture(8, 8)));
    EXPECT_TRUE(upload(picture(8, 8)));
    server.on(kPath, LoopbackServer::Reply{413, "{}"});
    EXPECT_EQ(upload(picture(8, 8)), std::nullopt);
    auto seen = server.requests();
    ASSERT_EQ(seen.size(), 3u);
    EXPECT_NE(boundaryOf(seen[0]), boundaryOf(seen[1]));
    EXPECT_THAT(seen[0].headerNames(), UnorderedElementsAre("content-type"))
        << "no ClientID when none is stored";
}

}  // namespace
