#pragma once

#include "platform/unsupported/Unsupported.h"

namespace ovix::platform {

/// Image picking on a platform without a picker: completes with no images.
class UnsupportedImagePicker : public ImagePicker {
  public:
    void pickImages(int, std::function<void(std::vector<RgbaImage>)> completion) override {
        unsupported::report("Image picking");
        unsupported::later([completion = std::move(completion)] { completion({}); });
    }
};

}  // namespace ovix::platform
