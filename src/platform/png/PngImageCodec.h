#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "ovix/platform/ImageCodec.h"

namespace ovix::platform {

/// PNG decoding on libpng, in front of another codec: bytes that start with the PNG signature are
/// decoded here (any PNG colour type, bit depth and interlacing, converted to 8-bit RGBA); all other
/// bytes, and JPEG encoding, go to `next`. A damaged PNG, or one above `maxPixels`, decodes to
/// nullopt without asking `next`.
///
/// Threading: any thread; calls are independent.
class PngImageCodec : public ImageCodec {
  public:
    /// The largest picture decoded: 100 megapixels (400 MB of RGBA).
    static constexpr long long maxPixels = 100'000'000;

    explicit PngImageCodec(std::shared_ptr<const ImageCodec> next);

    /// Whether `bytes` start with the PNG signature.
    static bool isPng(std::string_view bytes);

    std::optional<RgbaImage> decode(std::string_view bytes) const override;
    std::optional<std::string> encodeJpeg(const RgbaImage& image, double quality) const override;
    bool appendJpeg(const RgbaImage& image, double quality, std::string& out) const override;

  private:
    static std::optional<RgbaImage> decodePng(std::string_view bytes);

    std::shared_ptr<const ImageCodec> next_;
};

}  // namespace ovix::platform
