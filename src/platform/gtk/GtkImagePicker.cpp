#include "platform/gtk/GtkImagePicker.h"

#include <utility>

#include "platform/gtk/GtkPickedFile.h"

namespace ovix::platform::gtk {

GtkImagePicker::GtkImagePicker(std::shared_ptr<MainQueue> queue, std::shared_ptr<const ImageCodec> codec,
                               std::function<GtkWindow*()> parent)
    : queue_(std::move(queue)), codec_(std::move(codec)), parent_(std::move(parent)) {}

GtkImagePicker::~GtkImagePicker() {
    if (dialog_ != nullptr) {
        g_signal_handlers_disconnect_by_data(dialog_, this);
        close({});
    }
}

void GtkImagePicker::present(const ImagePickerConfiguration& configuration, Finish finish) {
    if (dialog_ != nullptr) {
        queue_->async([finish = std::move(finish)] { finish({}); });
        return;
    }
    limit_ = configuration.selectionLimit;
    finish_ = std::move(finish);
    dialog_ = makeDialog(configuration);
    g_signal_connect(dialog_, "response", G_CALLBACK(&GtkImagePicker::onResponse), this);
    gtk_window_present(GTK_WINDOW(dialog_));
}

GtkWidget* GtkImagePicker::makeDialog(const ImagePickerConfiguration& configuration) const {
    GtkWindow* parent = parent_ ? parent_() : nullptr;
    GtkWidget* dialog =
        gtk_file_chooser_dialog_new("Chọn ảnh", parent, GTK_FILE_CHOOSER_ACTION_OPEN, "_Hủy",
                                    GTK_RESPONSE_CANCEL, "_Chọn", GTK_RESPONSE_ACCEPT, nullptr);
    gtk_window_set_modal(GTK_WINDOW(dialog), parent != nullptr);
    auto* chooser = GTK_FILE_CHOOSER(dialog);
    gtk_file_chooser_set_select_multiple(chooser, configuration.selectionLimit != 1);
    if (configuration.filter == ImagePickerFilter::images) {
        GtkFileFilter* images = gtk_file_filter_new();
        gtk_file_filter_set_name(images, "Ảnh (PNG, JPEG)");
        gtk_file_filter_add_mime_type(images, "image/png");
        gtk_file_filter_add_mime_type(images, "image/jpeg");
        gtk_file_chooser_add_filter(chooser, images);  // the chooser takes the filter's reference
        gtk_file_chooser_set_filter(chooser, images);
    }
    return dialog;
}

void GtkImagePicker::onResponse(GtkDialog* dialog, int response, gpointer self) {
    auto* picker = static_cast<GtkImagePicker*>(self);
    std::vector<std::shared_ptr<ImagePickerItem>> items;
    if (response == GTK_RESPONSE_ACCEPT) {
        GListModel* files = gtk_file_chooser_get_files(GTK_FILE_CHOOSER(dialog));
        items = picker->itemsFor(files, picker->limit_);
        g_object_unref(files);
    }
    picker->close(std::move(items));
}

std::vector<std::shared_ptr<ImagePickerItem>> GtkImagePicker::itemsFor(GListModel* files, int limit) const {
    std::vector<std::shared_ptr<ImagePickerItem>> items;
    const guint count = g_list_model_get_n_items(files);
    const guint kept = limit > 0 && static_cast<guint>(limit) < count ? static_cast<guint>(limit) : count;
    for (guint i = 0; i < kept; ++i) {
        auto* file = G_FILE(g_list_model_get_item(files, i));  // a new reference
        items.push_back(std::make_shared<GtkPickedFile>(file, codec_, queue_));
        g_object_unref(file);
    }
    return items;
}

void GtkImagePicker::close(std::vector<std::shared_ptr<ImagePickerItem>> items) {
    gtk_window_destroy(GTK_WINDOW(std::exchange(dialog_, nullptr)));
    queue_->async([finish = std::exchange(finish_, nullptr), items = std::move(items)] { finish(items); });
}

}  // namespace ovix::platform::gtk
