#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "ovix/platform/ImagePicker.h"
#include "ovix/platform/MainQueue.h"

namespace ovix::testing {

/// One item the scripted player picks.
struct ScriptedPick {
    enum class Kind {
        image,        ///< loads `image`
        notAnImage,   ///< cannot load an image (a video, a document)
        failingLoad,  ///< claims an image, then fails to load with `error`
    };
    Kind kind = Kind::image;
    platform::RgbaImage image;
    std::string error;

    static ScriptedPick picture(platform::RgbaImage image) { return {Kind::image, std::move(image), {}}; }
    static ScriptedPick notAnImage() { return {Kind::notAnImage, {}, {}}; }
    static ScriptedPick failingLoad(std::string error) { return {Kind::failingLoad, {}, std::move(error)}; }
};

/// An image picker whose player the test plays.
///
/// `present` opens it (recording the configuration) and waits; the test then picks or cancels.
/// Picks beyond the configuration's selection limit are dropped, as a real picker would not let the
/// player choose them; the "images only" filter is the caller's to honour through `canLoadImage`,
/// which is false for `notAnImage` picks. Finishing and every item's load complete on the main queue,
/// never inline: the test drives the queue. Presenting while open finishes the new request with no
/// items. Safe from any thread; never calls out while holding its lock.
class ScriptedImagePicker : public platform::ImagePicker {
  public:
    explicit ScriptedImagePicker(std::shared_ptr<platform::MainQueue> queue);

    void present(const platform::ImagePickerConfiguration& configuration, Finish finish) override;

    bool isPresented() const;
    /// How many times a picker was opened (refused second openings not counted).
    int presentCount() const;
    /// The configuration of the open picker, or of the last one.
    std::optional<platform::ImagePickerConfiguration> configuration() const;

    /// The player picks `picks` in this order and confirms. False when no picker is open.
    bool pick(std::vector<ScriptedPick> picks);
    /// The player cancels: the picker finishes with no items. False when no picker is open.
    bool cancel();

  private:
    std::shared_ptr<platform::MainQueue> queue_;
    mutable std::mutex mutex_;
    Finish open_;
    int presentCount_ = 0;
    std::optional<platform::ImagePickerConfiguration> configuration_;
};

}  // namespace ovix::testing
