#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <memory>
#include <vector>

#include "ovix/platform/ImageCodec.h"
#include "ovix/platform/ImagePicker.h"
#include "ovix/platform/MainQueue.h"

namespace ovix::platform::gtk {

/// The desktop's image picker: GTK's file chooser dialog, modal over the window `parent` names (none
/// when `parent` is unset or answers null).
///
/// The "images only" filter offers PNG and JPEG files (what the platform's codec decodes); "any"
/// offers every file. The dialog allows several files unless the limit is 1; as it cannot stop the
/// player from choosing more, only the first `selectionLimit` chosen files are returned. Cancelling,
/// closing the dialog or destroying the picker while it is open finishes with no items. Each item is
/// a `GtkPickedFile`: read and decoded through `codec` off the main thread, answering on `queue`.
///
/// Threading: GTK's thread, which must be `queue`'s main thread. `finish` runs on `queue`, never
/// inline, exactly once per `present`.
class GtkImagePicker : public ImagePicker {
  public:
    GtkImagePicker(std::shared_ptr<MainQueue> queue, std::shared_ptr<const ImageCodec> codec,
                   std::function<GtkWindow*()> parent = {});
    ~GtkImagePicker() override;
    GtkImagePicker(const GtkImagePicker&) = delete;
    GtkImagePicker& operator=(const GtkImagePicker&) = delete;

    void present(const ImagePickerConfiguration& configuration, Finish finish) override;

    /// The open chooser dialog, or null when none is open.
    GtkWindow* dialog() const { return dialog_ != nullptr ? GTK_WINDOW(dialog_) : nullptr; }

    /// What the chooser's answer becomes: the first `limit` (all when 0 or less) of `files` (a list
    /// of `GFile`), in order, as picked items.
    std::vector<std::shared_ptr<ImagePickerItem>> itemsFor(GListModel* files, int limit) const;

  private:
    static void onResponse(GtkDialog* dialog, int response, gpointer self);
    GtkWidget* makeDialog(const ImagePickerConfiguration& configuration) const;
    void close(std::vector<std::shared_ptr<ImagePickerItem>> items);

    std::shared_ptr<MainQueue> queue_;
    std::shared_ptr<const ImageCodec> codec_;
    std::function<GtkWindow*()> parent_;
    GtkWidget* dialog_ = nullptr;
    int limit_ = 0;
    Finish finish_;
};

}  // namespace ovix::platform::gtk
