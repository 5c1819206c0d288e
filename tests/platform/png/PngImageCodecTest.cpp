#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/jpeg/JpegImageCodec.h"
#include "platform/png/PngImageCodec.h"

namespace ovix::test {
namespace {

using Pixels = std::vector<std::uint8_t>;

// 2 x 1 pictures written by hand: one per colour type the thumbnails meet in practice.
const std::string rgbaPng(
    "\x89\x50\x4e\x47\x0d\x0a\x1a\x0a\x00\x00\x00\x0d\x49\x48\x44\x52\x00\x00\x00\x02\x00\x00\x00\x01\x08\x06"
    "\x00"
    "\x00\x00\xf4\x22\x7f\x8a\x00\x00\x00\x0e\x49\x44\x41\x54\x78\x9c\x63\xf8\xcf\xc0\x00\x42\x0d\x00\x0f\x7a"
    "\x03"
    "\x7e\x77\xe9\x7f\x97\x00\x00\x00\x00\x49\x45\x4e\x44\xae\x42\x60\x82",
    71);
const std::string grayPng(
    "\x89\x50\x4e\x47\x0d\x0a\x1a\x0a\x00\x00\x00\x0d\x49\x48\x44\x52\x00\x00\x00\x02\x00\x00\x00\x01\x08\x00"
    "\x00"
    "\x00\x00\xd1\x49\x20\x56\x00\x00\x00\x0b\x49\x44\x41\x54\x78\x9c\x63\x60\x38\x01\x00\x00\xcb\x00\xc9\x69"
    "\xc8"
    "\xc3\x6c\x00\x00\x00\x00\x49\x45\x4e\x44\xae\x42\x60\x82",
    68);
const std::string palettePng(
    "\x89\x50\x4e\x47\x0d\x0a\x1a\x0a\x00\x00\x00\x0d\x49\x48\x44\x52\x00\x00\x00\x02\x00\x00\x00\x01\x08\x03"
    "\x00"
    "\x00\x00\xc3\xfc\x8f\xb8\x00\x00\x00\x06\x50\x4c\x54\x45\x0a\x14\x1e\x28\x32\x3c\xd5\x1b\xb4\xe9\x00\x00"
    "\x00"
    "\x02\x74\x52\x4e\x53\xff\x00\xe5\xb7\x30\x4a\x00\x00\x00\x0b\x49\x44\x41\x54\x78\x9c\x63\x60\x64\x00\x00"
    "\x00"
    "\x05\x00\x02\xd1\x66\x33\x78\x00\x00\x00\x00\x49\x45\x4e\x44\xae\x42\x60\x82",
    100);

/// What the chained codec gives back for one input.
struct Decoded {
    const char* name;
    std::string bytes;
    std::optional<Pixels> pixels;  // nullopt: no image
};

TEST(PngImageCodecTest, DecodesPngToRgbaAndHandsEverythingElseOn) {
    const auto jpeg = std::make_shared<platform::JpegImageCodec>();
    const platform::PngImageCodec codec(jpeg);
    const std::string jpegBytes = *jpeg->encodeJpeg({1, 1, {40, 40, 40, 255}}, 1.0);
    std::string corruptHeader = rgbaPng;
    corruptHeader[29] = '\0';  // a byte of the header's checksum
    const std::vector<Decoded> cases{
        {"RGBA with alpha", rgbaPng, Pixels{255, 0, 0, 255, 0, 0, 255, 128}},
        {"gray expands to opaque RGB", grayPng, Pixels{0, 0, 0, 255, 200, 200, 200, 255}},
        {"palette with a transparent entry", palettePng, Pixels{40, 50, 60, 0, 10, 20, 30, 255}},
        {"JPEG goes to the next codec", jpegBytes, jpeg->decode(jpegBytes)->pixels},
        {"a PNG cut inside its data", rgbaPng.substr(0, 50), std::nullopt},
        {"a PNG with a corrupt header checksum", corruptHeader, std::nullopt},
        {"the signature alone", rgbaPng.substr(0, 8), std::nullopt},
        {"text", "not a picture", std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const auto image = codec.decode(c.bytes);
        ASSERT_EQ(image.has_value(), c.pixels.has_value());
        if (image) {
            EXPECT_EQ(image->pixels, *c.pixels);
            EXPECT_EQ(image->width * image->height * 4, static_cast<int>(image->pixels.size()));
        }
    }
}

TEST(PngImageCodecTest, JpegEncodingIsTheNextCodecsAndAbsentWithoutOne) {
    const platform::RgbaImage square{2, 2, Pixels(16, 90)};
    const platform::PngImageCodec chained(std::make_shared<platform::JpegImageCodec>());
    const auto jpeg = chained.encodeJpeg(square, 0.8);
    ASSERT_TRUE(jpeg);
    EXPECT_EQ(jpeg->substr(0, 2), "\xff\xd8");
    std::string body = "head";
    EXPECT_TRUE(chained.appendJpeg(square, 0.8, body));
    EXPECT_EQ(body.substr(4), *jpeg);

    const platform::PngImageCodec alone(nullptr);
    EXPECT_FALSE(alone.encodeJpeg(square, 0.8));
    EXPECT_FALSE(alone.decode(*jpeg));
    EXPECT_TRUE(alone.decode(rgbaPng));
}

}  // namespace
}  // namespace ovix::test
