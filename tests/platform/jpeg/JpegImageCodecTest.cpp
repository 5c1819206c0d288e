#include <gtest/gtest.h>

#include <cmath>

#include "platform/jpeg/JpegImageCodec.h"

namespace {

using ovix::platform::JpegImageCodec;
using ovix::platform::RgbaImage;

// Left half red, right half blue, alpha 7: a swapped channel order cannot survive a round trip.
RgbaImage halves() {
    RgbaImage image{32, 16, {}};
    for (int i = 0; i < 32 * 16; ++i) {
        const bool left = i % 32 < 16;
        image.pixels.insert(image.pixels.end(),
                            {std::uint8_t(left ? 220 : 10), 40, std::uint8_t(left ? 10 : 220), 7});
    }
    return image;
}

TEST(JpegCodec, EncodesAtLibjpegQualityEightyAndRoundTripsSizeAndColours) {
    JpegImageCodec codec;
    const std::string jpeg = codec.encodeJpeg(halves(), 0.8).value();
    // Quality 80 scales the standard luminance DC step 16 by 40 % to 6.
    const auto table = jpeg.find("\xFF\xDB");
    ASSERT_NE(table, std::string::npos);
    EXPECT_EQ(static_cast<unsigned char>(jpeg.at(table + 5)), 6);
    EXPECT_EQ(JpegImageCodec::libjpegQuality(7.0), 100);
    EXPECT_EQ(JpegImageCodec::libjpegQuality(std::nan("")), 1);

    auto back = codec.decode(jpeg);
    ASSERT_TRUE(back);
    ASSERT_EQ(std::tuple(back->width, back->height, back->pixels.size()), std::tuple(32, 16, 32u * 16u * 4u));
    auto at = [&](int x, int channel) { return static_cast<int>(back->pixels[(8 * 32 + x) * 4 + channel]); };
    EXPECT_NEAR(at(4, 0), 220, 12);
    EXPECT_NEAR(at(28, 2), 220, 12);
    EXPECT_NEAR(at(28, 0), 10, 12);
    EXPECT_EQ(at(28, 3), 255) << "decoded alpha is opaque";
}

TEST(JpegCodec, RefusesWhatItCannotCodeLeavingTheOutputAlone) {
    JpegImageCodec codec;
    const std::string jpeg = codec.encodeJpeg(halves(), 0.8).value();
    std::string out = "prefix";  // appending after it shows in the image upload's multipart body
    RgbaImage cut = halves();
    cut.pixels.pop_back();
    for (const RgbaImage& bad :
         {cut, RgbaImage{}, RgbaImage{70000, 1, std::vector<std::uint8_t>(70000 * 4)}}) {
        EXPECT_FALSE(codec.appendJpeg(bad, 0.8, out)) << bad.width;
    }
    EXPECT_EQ(out, "prefix") << "left alone on failure";

    std::string zeroWide = jpeg;
    const auto frame = zeroWide.find("\xFF\xC0");
    ASSERT_NE(frame, std::string::npos);
    zeroWide[frame + 7] = zeroWide[frame + 8] = '\0';
    for (const std::string& bad :
         {std::string(), std::string("\x89PNG\r\n\x1a\n"), jpeg.substr(0, 20), zeroWide}) {
        EXPECT_FALSE(codec.decode(bad));
    }
}

}  // namespace
