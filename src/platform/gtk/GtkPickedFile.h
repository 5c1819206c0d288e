#pragma once

#include <gio/gio.h>

#include <memory>
#include <string>

#include "ovix/platform/ImagePicker.h"
#include "ovix/platform/MainQueue.h"

namespace ovix::platform::gtk {

/// A file the player chose in the desktop's file chooser, as a picked item.
///
/// Whether it can give an image is judged from its name's content type (image/*), without touching
/// the disk. `loadImage` reads the file and decodes it through `codec` on a GLib worker thread, then
/// answers on `queue`: a file that cannot be read, or whose bytes `codec` does not decode, answers
/// with an error naming the file. An item that is no image answers with an error without reading.
/// Holds its own reference to the file; safe to load from any thread, any number of times.
class GtkPickedFile : public ImagePickerItem {
  public:
    GtkPickedFile(GFile* file, std::shared_ptr<const ImageCodec> codec, std::shared_ptr<MainQueue> queue);
    ~GtkPickedFile() override;
    GtkPickedFile(const GtkPickedFile&) = delete;
    GtkPickedFile& operator=(const GtkPickedFile&) = delete;

    bool canLoadImage() const override { return isImage_; }
    void loadImage(LoadCompletion completion) override;

    /// The file's name as the player saw it.
    const std::string& name() const { return name_; }

  private:
    struct Job;
    static void run(GTask* task, gpointer source, gpointer data, GCancellable* cancellable);
    static ImageLoadResult read(const Job& job);

    GFile* file_;
    std::shared_ptr<const ImageCodec> codec_;
    std::shared_ptr<MainQueue> queue_;
    std::string name_;
    bool isImage_;
};

}  // namespace ovix::platform::gtk
