#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ovix/platform/ImageCodec.h"

namespace ovix::platform {

/// What the player may pick.
enum class ImagePickerFilter {
    any,     ///< every file or item
    images,  ///< images only
};

struct ImagePickerConfiguration {
    /// The most items one opening returns; 0 means no limit. A picker whose dialog cannot stop the
    /// player from choosing more keeps the first `selectionLimit` and drops the rest.
    int selectionLimit = 1;
    ImagePickerFilter filter = ImagePickerFilter::images;
};

/// The outcome of loading a picked item: exactly one of `image` or `error` is set.
struct ImageLoadResult {
    std::optional<RgbaImage> image;
    std::optional<std::string> error;  ///< a readable description of why the item gave no image
};

/// One picked item. It may be something that is not an image at all (`canLoadImage` false), or an
/// image whose loading still fails (a file that vanished, bytes that do not decode).
///
/// Threading: any thread. `loadImage` returns at once; its completion runs exactly once, on any
/// thread, never inline inside the call. Loading an item that cannot load an image completes with
/// an error. Items keep what they need alive until their completion has run; an item may be loaded
/// again.
class ImagePickerItem {
  public:
    using LoadCompletion = std::function<void(ImageLoadResult)>;
    virtual ~ImagePickerItem() = default;
    virtual bool canLoadImage() const = 0;
    virtual void loadImage(LoadCompletion completion) = 0;
};

/// Lets the player pick images.
///
/// `present` shows the picker over the application (on a platform whose picker is a window or
/// dialog of its own, that window). When the player is done, the picker closes itself and `finish`
/// runs exactly once, on the main queue, never inline: with the picked items in the order the player
/// chose them, at most `selectionLimit` of them, none when the player cancelled. A platform without
/// a picker prints that picking is unsupported and finishes with no items.
///
/// Threading: call `present` on the main thread. Presenting while a picker from this service is
/// still open finishes the new request at once (on the main queue) with no items.
class ImagePicker {
  public:
    using Finish = std::function<void(std::vector<std::shared_ptr<ImagePickerItem>>)>;
    virtual ~ImagePicker() = default;
    virtual void present(const ImagePickerConfiguration& configuration, Finish finish) = 0;
};

}  // namespace ovix::platform
