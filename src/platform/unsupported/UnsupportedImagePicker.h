#pragma once

#include "platform/unsupported/Unsupported.h"

namespace ovix::platform {

/// Image picking on a platform without a picker: says so and finishes with no items.
class UnsupportedImagePicker : public ImagePicker {
  public:
    void present(const ImagePickerConfiguration&, Finish finish) override {
        unsupported::report("Image picking");
        current()->mainQueue->async([finish = std::move(finish)] { finish({}); });
    }
};

}  // namespace ovix::platform
