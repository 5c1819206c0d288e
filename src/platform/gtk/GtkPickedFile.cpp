#include "platform/gtk/GtkPickedFile.h"

#include <string_view>
#include <utility>

namespace ovix::platform::gtk {

namespace {

std::string displayName(GFile* file) {
    char* base = g_file_get_basename(file);
    std::string name = base != nullptr ? base : "";
    g_free(base);
    return name;
}

/// From the name alone: the chooser's list is the player's, and a stat per file is not needed to
/// tell a photo from a document.
bool namedLikeAnImage(const std::string& name) {
    gboolean uncertain = FALSE;
    char* type = g_content_type_guess(name.c_str(), nullptr, 0, &uncertain);
    char* mime = type != nullptr ? g_content_type_get_mime_type(type) : nullptr;
    const bool image = mime != nullptr && std::string_view(mime).starts_with("image/");
    g_free(mime);
    g_free(type);
    return image;
}

}  // namespace

struct GtkPickedFile::Job {
    GFile* file;
    std::string name;
    std::shared_ptr<const ImageCodec> codec;
    std::shared_ptr<MainQueue> queue;
    LoadCompletion completion;

    ~Job() { g_object_unref(file); }
};

GtkPickedFile::GtkPickedFile(GFile* file, std::shared_ptr<const ImageCodec> codec,
                             std::shared_ptr<MainQueue> queue)
    : file_(G_FILE(g_object_ref(file))),
      codec_(std::move(codec)),
      queue_(std::move(queue)),
      name_(displayName(file)),
      isImage_(namedLikeAnImage(name_)) {}

GtkPickedFile::~GtkPickedFile() {
    g_object_unref(file_);
}

void GtkPickedFile::loadImage(LoadCompletion completion) {
    if (!isImage_) {
        queue_->async([completion = std::move(completion), name = name_] {
            completion(ImageLoadResult{std::nullopt, name + " is not an image"});
        });
        return;
    }
    // The job owns its own reference to the file, so the item may go before the load ends.
    auto* job = new Job{G_FILE(g_object_ref(file_)), name_, codec_, queue_, std::move(completion)};
    GTask* task = g_task_new(nullptr, nullptr, nullptr, nullptr);
    g_task_set_task_data(task, job, [](gpointer data) { delete static_cast<Job*>(data); });
    g_task_run_in_thread(task, &GtkPickedFile::run);
    g_object_unref(task);
}

void GtkPickedFile::run(GTask* task, gpointer, gpointer data, GCancellable*) {
    auto& job = *static_cast<Job*>(data);
    job.queue->async([completion = std::move(job.completion), result = read(job)]() mutable {
        completion(std::move(result));
    });
    g_task_return_boolean(task, TRUE);
}

ImageLoadResult GtkPickedFile::read(const Job& job) {
    char* contents = nullptr;
    gsize length = 0;
    GError* error = nullptr;
    if (!g_file_load_contents(job.file, nullptr, &contents, &length, nullptr, &error)) {
        std::string message = error != nullptr ? error->message : job.name + " could not be read";
        g_clear_error(&error);
        return {std::nullopt, std::move(message)};
    }
    auto image = job.codec->decode(std::string_view(contents, length));
    g_free(contents);
    if (!image) {
        return {std::nullopt, job.name + " is not a PNG or JPEG image"};
    }
    return {std::move(image), std::nullopt};
}

}  // namespace ovix::platform::gtk
