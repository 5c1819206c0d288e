#pragma once

#include <filesystem>
#include <memory>
#include <vector>

#include "ovix/platform/ImagePicker.h"

namespace demo {

/// A picker with no dialog: each opening picks the image files it was given, as if the player had
/// chosen them in the file chooser. The tour uses it to attach one of its own screenshots to the
/// support form, since a scripted player cannot click through GTK's file chooser.
///
/// Uses the installed platform's main queue and image codec at the time of each opening, so it may be
/// made before the platform is installed. Main thread for `present`; `finish` runs later on the main
/// queue; an item loads on the main queue too and reports a file that cannot be read or decoded as an
/// error.
class FilePicker : public ovix::platform::ImagePicker {
  public:
    explicit FilePicker(std::vector<std::filesystem::path> files) : files_(std::move(files)) {}
    void setFiles(std::vector<std::filesystem::path> files) { files_ = std::move(files); }
    void present(const ovix::platform::ImagePickerConfiguration& configuration, Finish finish) override;
    int presentCount() const { return presentCount_; }

  private:
    std::vector<std::filesystem::path> files_;
    int presentCount_ = 0;
};

}  // namespace demo
