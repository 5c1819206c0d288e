#include <gtest/gtest.h>

#include <cmath>

#include "platform/jpeg/JpegImageCodec.h"

namespace {

using ovix::platform::JpegImageCodec;
using ovix::platform::RgbaImage;

// Left half red, right half blue, alpha 7: a swapped channel order cannot survive a round trip.
RgbaImage halves(int width = 32, int height = 16) {
    RgbaImage image{width, height, {}};
    for (int i = 0; i < width * height; ++i) {
        const bool left = i % width < width / 2;
        image.pixels.insert(image.pixels.end(),
                            {std::uint8_t(left ? 220 : 10), 40, std::uint8_t(left ? 10 : 220), 7});
    }
    return image;
}

// The first step (DC) of the first quantisation table.
int firstQuantStep(const std::string& jpeg) {
    const auto table = jpeg.find("\xFF\xDB");
    return table == std::string::npos ? -1 : static_cast<unsigned char>(jpeg.at(table + 5));
}

TEST(JpegCodec, QualityOnTheZeroToOneScaleIsLibjpegsTimesAHundred) {
    EXPECT_EQ(JpegImageCodec::libjpegQuality(0.8), 80);
    EXPECT_EQ(JpegImageCodec::libjpegQuality(1.0), 100);
    EXPECT_EQ(JpegImageCodec::libjpegQuality(7.0), 100);
    EXPECT_EQ(JpegImageCodec::libjpegQuality(0.0), 1);
    EXPECT_EQ(JpegImageCodec::libjpegQuality(std::nan("")), 1);
    // Quality 80 scales the standard luminance DC step 16 by 40 % to 6; quality 50 keeps 16.
    EXPECT_EQ(firstQuantStep(JpegImageCodec().encodeJpeg(halves(), 0.8).value()), 6);
    EXPECT_EQ(firstQuantStep(JpegImageCodec().encodeJpeg(halves(), 0.5).value()), 16);
}

TEST(JpegCodec, RoundTripKeepsSizeAndColours) {
    JpegImageCodec codec;
    auto back = codec.decode(codec.encodeJpeg(halves(), 0.8).value());
    ASSERT_TRUE(back);
    ASSERT_EQ(back->width, 32);
    ASSERT_EQ(back->height, 16);
    ASSERT_EQ(back->pixels.size(), 32u * 16u * 4u);
    auto at = [&](int x, int channel) { return static_cast<int>(back->pixels[(8 * 32 + x) * 4 + channel]); };
    EXPECT_NEAR(at(4, 0), 220, 12);
    EXPECT_NEAR(at(4, 2), 10, 12);
    EXPECT_NEAR(at(28, 0), 10, 12);
    EXPECT_NEAR(at(28, 2), 220, 12);
    EXPECT_EQ(at(28, 3), 255) << "decoded alpha is opaque";
}

TEST(JpegCodec, AppendsAfterWhatWasThereAndLeavesItAloneOnFailure) {
    JpegImageCodec codec;
    std::string out = "prefix";
    ASSERT_TRUE(codec.appendJpeg(halves(), 0.8, out));
    EXPECT_EQ(out, "prefix" + codec.encodeJpeg(halves(), 0.8).value());

    out = "prefix";
    RgbaImage cut = halves();
    cut.pixels.pop_back();
    EXPECT_FALSE(codec.appendJpeg(cut, 0.8, out));
    EXPECT_FALSE(codec.appendJpeg(RgbaImage{}, 0.8, out));
    EXPECT_FALSE(codec.appendJpeg(RgbaImage{70000, 1, std::vector<std::uint8_t>(70000 * 4)}, 0.8, out))
        << "too wide";
    EXPECT_EQ(out, "prefix");
}

TEST(JpegCodec, RefusesWhatIsNotADecodableJpeg) {
    JpegImageCodec codec;
    const std::string jpeg = codec.encodeJpeg(halves(), 0.9).value();
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
