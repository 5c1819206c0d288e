#pragma once

#include <functional>
#include <vector>

#include "ovix/platform/ImageCodec.h"

namespace ovix::platform {

/// Lets the player pick images.
/// Threading: call on the main thread; the completion arrives on any thread, exactly once, with the
/// picked images in selection order (empty when the player cancelled). A platform without a picker
/// completes with an empty list and prints that picking is unsupported.
class ImagePicker {
  public:
    virtual ~ImagePicker() = default;
    virtual void pickImages(int selectionLimit, std::function<void(std::vector<RgbaImage>)> completion) = 0;
};

}  // namespace ovix::platform
