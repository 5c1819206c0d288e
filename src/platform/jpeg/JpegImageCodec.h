#pragma once

#include "ovix/platform/ImageCodec.h"

namespace ovix::platform {

/// JPEG decoding and encoding on libjpeg-turbo. Quality q on the 0...1 scale is libjpeg quality
/// round(100 q), at least 1; the alpha channel is dropped. Decodes baseline and progressive JPEG,
/// colour or grey, into RGBA with opaque alpha; anything else (other formats, CMYK, pictures over
/// `maxPixels`) is nullopt.
///
/// Threading: any thread; calls are independent.
class JpegImageCodec : public ImageCodec {
  public:
    /// The largest picture decoded: 100 megapixels (400 MB of RGBA).
    static constexpr long long maxPixels = 100'000'000;

    std::optional<RgbaImage> decode(std::string_view bytes) const override;
    std::optional<std::string> encodeJpeg(const RgbaImage& image, double quality) const override;
    /// Writes the compressed stream straight onto the end of `out`.
    bool appendJpeg(const RgbaImage& image, double quality, std::string& out) const override;

    /// The libjpeg quality for `quality` on the 0...1 scale.
    static int libjpegQuality(double quality);
};

}  // namespace ovix::platform
