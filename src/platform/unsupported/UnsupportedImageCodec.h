#pragma once

#include "platform/unsupported/Unsupported.h"

namespace ovix::platform {

/// Image coding on a platform without codecs: nothing decodes, nothing encodes.
class UnsupportedImageCodec : public ImageCodec {
  public:
    std::optional<RgbaImage> decode(std::string_view) const override {
        unsupported::report("Image decoding");
        return std::nullopt;
    }
    std::optional<std::string> encodeJpeg(const RgbaImage&, double) const override {
        unsupported::report("JPEG encoding");
        return std::nullopt;
    }
};

}  // namespace ovix::platform
