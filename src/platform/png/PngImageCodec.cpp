#include "platform/png/PngImageCodec.h"

#include <png.h>

#include <new>
#include <utility>

namespace ovix::platform {

PngImageCodec::PngImageCodec(std::shared_ptr<const ImageCodec> next) : next_(std::move(next)) {}

bool PngImageCodec::isPng(std::string_view bytes) {
    static constexpr std::string_view signature{"\x89PNG\r\n\x1a\n", 8};
    return bytes.substr(0, signature.size()) == signature;
}

std::optional<RgbaImage> PngImageCodec::decode(std::string_view bytes) const {
    if (isPng(bytes)) {
        return decodePng(bytes);
    }
    return next_ ? next_->decode(bytes) : std::nullopt;
}

std::optional<std::string> PngImageCodec::encodeJpeg(const RgbaImage& image, double quality) const {
    return next_ ? next_->encodeJpeg(image, quality) : std::nullopt;
}

bool PngImageCodec::appendJpeg(const RgbaImage& image, double quality, std::string& out) const {
    return next_ && next_->appendJpeg(image, quality, out);
}

std::optional<RgbaImage> PngImageCodec::decodePng(std::string_view bytes) {
    // libpng's simplified interface: no setjmp of ours, errors come back as a zero result.
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_memory(&png, bytes.data(), bytes.size()) == 0) {
        return std::nullopt;  // libpng has already released what it held
    }
    const long long pixels = static_cast<long long>(png.width) * static_cast<long long>(png.height);
    if (png.width == 0 || png.height == 0 || pixels > maxPixels) {
        png_image_free(&png);
        return std::nullopt;
    }
    png.format = PNG_FORMAT_RGBA;
    RgbaImage image;
    image.width = static_cast<int>(png.width);
    image.height = static_cast<int>(png.height);
    try {
        image.pixels.resize(PNG_IMAGE_SIZE(png));
    } catch (const std::bad_alloc&) {
        png_image_free(&png);
        return std::nullopt;
    }
    if (png_image_finish_read(&png, nullptr, image.pixels.data(), 0, nullptr) == 0) {
        return std::nullopt;  // a damaged stream; finish_read frees on failure
    }
    return image;
}

}  // namespace ovix::platform
