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
using ovix::test::Outcome;
using ::testing::UnorderedElementsAre;

using Result = std::optional<Dictionary>;

RgbaImage picture(int width, int height) {
    RgbaImage image{width, height, std::vector<std::uint8_t>(static_cast<std::size_t>(width) * height * 4)};
    for (std::size_t i = 0; i < image.pixels.size(); ++i) {
        image.pixels[i] = static_cast<std::uint8_t>((i * 7) ^ (i >> 5));
    }
    return image;
}

struct Multipart {
    std::string boundary;
    std::string disposition;
    std::string type;
    std::string content;
    std::string after;  ///< whatever follows the closing delimiter
};

// Splits a one-part multipart body by the rules of the format: the part lies between the opening
// delimiter line and CRLF "--" boundary; headers end at the first empty line.
std::optional<Multipart> parseSinglePart(const std::string& body, const std::string& boundary) {
    const std::string open = "--" + boundary + "\r\n";
    const std::string close = "\r\n--" + boundary + "--";
    if (body.rfind(open, 0) != 0) {
        return std::nullopt;
    }
    const auto closeAt = body.rfind(close);
    const auto headersEnd = body.find("\r\n\r\n", open.size());
    if (closeAt == std::string::npos || headersEnd == std::string::npos || headersEnd > closeAt) {
        return std::nullopt;
    }
    Multipart part;
    part.boundary = boundary;
    std::string headers = body.substr(open.size(), headersEnd - open.size());
    for (std::size_t start = 0; start <= headers.size();) {
        auto end = headers.find("\r\n", start);
        if (end == std::string::npos) {
            end = headers.size();
        }
        const std::string line = headers.substr(start, end - start);
        if (line.rfind("Content-Disposition: ", 0) == 0) {
            part.disposition = line.substr(21);
        } else if (line.rfind("Content-Type: ", 0) == 0) {
            part.type = line.substr(14);
        } else {
            return std::nullopt;  // no other part header is expected
        }
        start = end + 2;
    }
    part.content = body.substr(headersEnd + 4, closeAt - headersEnd - 4);
    part.after = body.substr(closeAt + close.size());
    // A second delimiter inside would mean a second part.
    if (part.content.find("\r\n--" + boundary) != std::string::npos) {
        return std::nullopt;
    }
    return part;
}

class ImageUpload : public ovix::test::ApiTest {
  protected:
    static constexpr const char* kPath = "/inside/image/api/v2.0/upload";

    Result upload(const RgbaImage& image, bool* ranInline = nullptr) {
        Outcome<Result> outcome;
        ovix::APIService::uploadImage(image, outcome.completion());
        outcome.markReturned();
        auto result = outcome.get();
        if (ranInline != nullptr) {
            *ranInline = outcome.ranInline();
        }
        return result;
    }

    std::string boundaryOf(const LoopbackServer::Request& request) const {
        const std::string prefix = "multipart/form-data; boundary=";
        auto type = request.header("Content-Type");
        return type.rfind(prefix, 0) == 0 ? type.substr(prefix.size()) : std::string();
    }

    ovix::platform::JpegImageCodec codec;
};

TEST_F(ImageUpload, PostsOneJpegPartByteForByte) {
    server.on(kPath, LoopbackServer::Reply{200, R"({"Data":{"ImageUrl":"https://cdn/x.jpg"}})"});
    signIn("tok", "game-7");
    const auto image = picture(64, 48);

    auto result = upload(image);

    EXPECT_EQ(result, (Dictionary{{"Data", Value(Dictionary{{"ImageUrl", Value("https://cdn/x.jpg")}})}}));
    auto seen = server.requests();
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0].method, "POST");
    EXPECT_EQ(seen[0].target, kPath);
    EXPECT_THAT(seen[0].headerNames(), UnorderedElementsAre("content-type", "clientid"))
        << "no Authorization";
    EXPECT_EQ(seen[0].header("ClientID"), "game-7");

    const std::string boundary = boundaryOf(seen[0]);
    EXPECT_TRUE(std::regex_match(
        boundary, std::regex("Boundary-[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}")))
        << boundary;
    auto part = parseSinglePart(seen[0].body, boundary);
    ASSERT_TRUE(part) << "not a one-part multipart body";
    EXPECT_EQ(part->disposition, "form-data; name=\"image\"; filename=\"image\"");
    EXPECT_EQ(part->type, "image/jpeg");
    EXPECT_EQ(part->after, "\r\n") << "the closing delimiter ends the body with CRLF";
    EXPECT_EQ(part->content, *codec.encodeJpeg(image, 0.8)) << "the JPEG at quality 0.8, unchanged";

    const std::string expected =
        "--" + boundary + "\r\nContent-Disposition: form-data; name=\"image\"; filename=\"image\"\r\n" +
        "Content-Type: image/jpeg\r\n\r\n" + part->content + "\r\n--" + boundary + "--\r\n";
    EXPECT_EQ(seen[0].body, expected);
    EXPECT_EQ(seen[0].header("Content-Length"), std::to_string(expected.size()));
}

TEST_F(ImageUpload, EveryUploadHasItsOwnBoundaryAndNoClientIdWhenNoneIsStored) {
    server.on(kPath, LoopbackServer::Reply{200, R"({"Data":{"ImageUrl":"u"}})"});
    const auto image = picture(8, 8);
    EXPECT_TRUE(upload(image));
    EXPECT_TRUE(upload(image));
    auto seen = server.requests();
    ASSERT_EQ(seen.size(), 2u);
    EXPECT_NE(boundaryOf(seen[0]), boundaryOf(seen[1]));
    EXPECT_FALSE(boundaryOf(seen[0]).empty());
    for (const auto& request : seen) {
        EXPECT_THAT(request.headerNames(), UnorderedElementsAre("content-type"));
    }
}

TEST_F(ImageUpload, APictureThatCannotBeEncodedIsNilAtOnceWithoutTraffic) {
    bool ranInline = false;
    EXPECT_EQ(upload(RgbaImage{}, &ranInline), std::nullopt);
    EXPECT_TRUE(ranInline);
    RgbaImage truncated = picture(4, 4);
    truncated.pixels.resize(10);
    EXPECT_EQ(upload(truncated, &ranInline), std::nullopt);
    EXPECT_TRUE(ranInline);
    EXPECT_EQ(http->sent(), 0);
}

TEST_F(ImageUpload, ServerFailuresAreNil) {
    server.on(kPath, LoopbackServer::Reply{413, R"({"Message":"too large"})"});
    EXPECT_EQ(upload(picture(8, 8)), std::nullopt);
    EXPECT_TRUE(headless.console->hasLine("❌ HTTP error: 413"));
}

}  // namespace
