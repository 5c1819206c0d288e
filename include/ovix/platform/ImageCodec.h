#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ovix::platform {

/// Decoded pixels, 8-bit RGBA, rows packed.
struct RgbaImage {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> pixels;  ///< width * height * 4 bytes
    bool empty() const { return width <= 0 || height <= 0; }
};

/// Image decoding and JPEG encoding.
/// Threading: any thread; calls are independent.
class ImageCodec {
  public:
    virtual ~ImageCodec() = default;
    /// nullopt for bytes that are not a supported image.
    virtual std::optional<RgbaImage> decode(std::string_view bytes) const = 0;
    /// JPEG at `quality` in 0...1 (0.8 is libjpeg quality 80); nullopt when encoding fails.
    virtual std::optional<std::string> encodeJpeg(const RgbaImage& image, double quality) const = 0;
    /// Appends the JPEG to `out`, which keeps what it held, so that a caller can encode straight into
    /// a larger buffer (a request body) without a second copy of the picture. On failure returns
    /// false and leaves `out` as it was. Codecs that can write in place override this.
    virtual bool appendJpeg(const RgbaImage& image, double quality, std::string& out) const {
        auto jpeg = encodeJpeg(image, quality);
        if (!jpeg) {
            return false;
        }
        out += *jpeg;
        return true;
    }
};

}  // namespace ovix::platform
