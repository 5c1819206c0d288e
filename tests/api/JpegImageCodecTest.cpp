#include <gtest/gtest.h>

#include <cmath>

#include "platform/jpeg/JpegImageCodec.h"

namespace {

using ovix::platform::JpegImageCodec;
using ovix::platform::RgbaImage;

RgbaImage solid(int width, int height, std::uint8_t r, std::uint8_t g, std::uint8_t b) {
    RgbaImage image{width, height, {}};
    for (int i = 0; i < width * height; ++i) {
        image.pixels.insert(image.pixels.end(), {r, g, b, 255});
    }
    return image;
}

// The first entry (the DC step) of the first quantisation table in a JPEG stream.
int firstLuminanceStep(const std::string& jpeg) {
    for (std::size_t i = 2; i + 5 < jpeg.size(); ++i) {
        if (static_cast<unsigned char>(jpeg[i]) == 0xFF && static_cast<unsigned char>(jpeg[i + 1]) == 0xDB) {
            return static_cast<unsigned char>(jpeg[i + 5]);
        }
    }
    return -1;
}

TEST(JpegCodec, QualityScaleMapsOntoLibjpegs) {
    EXPECT_EQ(JpegImageCodec::libjpegQuality(0.8), 80);
    EXPECT_EQ(JpegImageCodec::libjpegQuality(1.0), 100);
    EXPECT_EQ(JpegImageCodec::libjpegQuality(7.0), 100);
    EXPECT_EQ(JpegImageCodec::libjpegQuality(0.0), 1);
    EXPECT_EQ(JpegImageCodec::libjpegQuality(-1.0), 1);
    EXPECT_EQ(JpegImageCodec::libjpegQuality(std::nan("")), 1);
    // Quality 80 scales the standard luminance DC step 16 to 16 * 40 / 100, rounded: 6.
    JpegImageCodec codec;
    EXPECT_EQ(firstLuminanceStep(*codec.encodeJpeg(solid(16, 16, 1, 2, 3), 0.8)), 6);
    EXPECT_EQ(firstLuminanceStep(*codec.encodeJpeg(solid(16, 16, 1, 2, 3), 0.5)), 16);
}

TEST(JpegCodec, RoundTripKeepsSizeAndColourOrder) {
    JpegImageCodec codec;
    RgbaImage image{32, 16, {}};
    for (int y = 0; y < 16; ++y) {
        for (int x = 0; x < 32; ++x) {
            // Left half red, right half blue: a swapped channel order cannot survive this.
            image.pixels.insert(image.pixels.end(), {static_cast<std::uint8_t>(x < 16 ? 220 : 10), 40,
                                                     static_cast<std::uint8_t>(x < 16 ? 10 : 220), 7});
        }
    }
    auto jpeg = codec.encodeJpeg(image, 0.8);
    ASSERT_TRUE(jpeg);
    auto back = codec.decode(*jpeg);
    ASSERT_TRUE(back);
    EXPECT_EQ(back->width, 32);
    EXPECT_EQ(back->height, 16);
    ASSERT_EQ(back->pixels.size(), 32u * 16u * 4u);
    auto at = [&](int x, int y, int channel) {
        return static_cast<int>(back->pixels[(y * 32 + x) * 4 + channel]);
    };
    EXPECT_NEAR(at(4, 8, 0), 220, 12);
    EXPECT_NEAR(at(4, 8, 2), 10, 12);
    EXPECT_NEAR(at(28, 8, 0), 10, 12);
    EXPECT_NEAR(at(28, 8, 2), 220, 12);
    EXPECT_EQ(at(28, 8, 3), 255) << "decoded alpha is opaque";
}

TEST(JpegCodec, AppendKeepsWhatWasThereAndLeavesItAloneOnFailure) {
    JpegImageCodec codec;
    std::string out = "prefix";
    ASSERT_TRUE(codec.appendJpeg(solid(8, 8, 9, 9, 9), 0.8, out));
    EXPECT_EQ(out.substr(0, 6), "prefix");
    EXPECT_EQ(out.substr(6), *codec.encodeJpeg(solid(8, 8, 9, 9, 9), 0.8));

    out = "prefix";
    RgbaImage bad = solid(8, 8, 0, 0, 0);
    bad.pixels.pop_back();
    EXPECT_FALSE(codec.appendJpeg(bad, 0.8, out));
    EXPECT_FALSE(codec.appendJpeg(RgbaImage{}, 0.8, out));
    EXPECT_FALSE(codec.appendJpeg(RgbaImage{70000, 1, std::vector<std::uint8_t>(70000 * 4)}, 0.8, out));
    EXPECT_EQ(out, "prefix");
}

TEST(JpegCodec, DecodesGreyAndRefusesWhatIsNotAJpeg) {
    JpegImageCodec codec;
    auto jpeg = *codec.encodeJpeg(solid(8, 8, 128, 128, 128), 0.9);
    EXPECT_FALSE(codec.decode(""));
    EXPECT_FALSE(codec.decode("\x89PNG\r\n\x1a\n"));
    EXPECT_FALSE(codec.decode(jpeg.substr(0, 20))) << "cut inside the headers";
    std::string corrupt = jpeg;
    const auto frame = corrupt.find("\xFF\xC0");
    ASSERT_NE(frame, std::string::npos);
    corrupt[frame + 7] = corrupt[frame + 8] = '\0';  // a frame zero pixels wide
    EXPECT_FALSE(codec.decode(corrupt));
    auto grey = codec.decode(jpeg);
    ASSERT_TRUE(grey);
    EXPECT_NEAR(grey->pixels[0], 128, 3);
    EXPECT_NEAR(grey->pixels[1], 128, 3);
}

}  // namespace
