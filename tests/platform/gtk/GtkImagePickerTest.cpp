// The desktop's image picker on GTK's real file chooser, under the test binary's own X server.
#include <cairo.h>
#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/gtk/GlibMainQueue.h"
#include "platform/gtk/GtkImagePicker.h"
#include "platform/jpeg/JpegImageCodec.h"
#include "platform/png/PngImageCodec.h"
#include "support/GtkTestEnvironment.h"
#include "support/ScratchDirectory.h"

namespace ovix::test {
namespace {

using platform::ImageLoadResult;
using platform::ImagePickerConfiguration;
using platform::ImagePickerItem;
using platform::gtk::GtkImagePicker;
using Items = std::vector<std::shared_ptr<ImagePickerItem>>;

/// What a picker's finish delivered, and where.
struct Finished {
    bool ran = false;
    bool onMainThread = false;
    Items items;
};

/// What an item's load delivered, and where.
struct Loaded {
    bool ran = false;
    bool onMainThread = false;
    ImageLoadResult result;
};

class GtkImagePickerTest : public ::testing::Test {
  protected:
    GtkImagePickerTest() { picker.emplace(queue, codec); }

    platform::ImagePicker::Finish recordInto(Finished& finished) const {
        return [&finished, queue = queue](Items items) {
            finished.ran = true;
            finished.onMainThread = queue->isMainThread();
            finished.items = std::move(items);
        };
    }
    Loaded load(ImagePickerItem& item) const {
        Loaded loaded;
        item.loadImage([&loaded, queue = queue](ImageLoadResult result) {
            loaded.ran = true;
            loaded.onMainThread = queue->isMainThread();
            loaded.result = std::move(result);
        });
        EXPECT_FALSE(loaded.ran) << "the load answered inline";
        EXPECT_TRUE(pumpUntil([&] { return loaded.ran; }));
        return loaded;
    }
    static ImagePickerConfiguration upTo(int limit) {
        ImagePickerConfiguration configuration;
        configuration.selectionLimit = limit;
        configuration.filter = platform::ImagePickerFilter::images;
        return configuration;
    }
    /// A `width` x 2 PNG of one opaque colour.
    std::string writePng(const std::string& name, int width, unsigned char r, unsigned char g,
                         unsigned char b) const {
        cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, 2);
        cairo_t* cr = cairo_create(surface);
        cairo_set_source_rgb(cr, r / 255.0, g / 255.0, b / 255.0);
        cairo_paint(cr);
        cairo_destroy(cr);
        const std::string path = (dir / name).string();
        EXPECT_EQ(cairo_surface_write_to_png(surface, path.c_str()), CAIRO_STATUS_SUCCESS);
        cairo_surface_destroy(surface);
        return path;
    }
    GtkFileChooser* chooser() const { return GTK_FILE_CHOOSER(picker->dialog()); }

    std::shared_ptr<platform::gtk::GlibMainQueue> queue = std::make_shared<platform::gtk::GlibMainQueue>();
    std::shared_ptr<const platform::ImageCodec> codec =
        std::make_shared<platform::PngImageCodec>(std::make_shared<platform::JpegImageCodec>());
    ScratchDirectory dir{"ovix-picker"};
    std::optional<GtkImagePicker> picker;
};

TEST_F(GtkImagePickerTest, ADialogLeftWithoutChoosingFinishesWithNothingOnTheMainQueue) {
    struct Case {
        const char* name;
        void (*leave)(std::optional<GtkImagePicker>& picker);
    };
    const Case cases[] = {
        {"Hủy", [](auto& p) { gtk_dialog_response(GTK_DIALOG(p->dialog()), GTK_RESPONSE_CANCEL); }},
        {"the window closed", [](auto& p) { gtk_window_close(p->dialog()); }},
        {"the picker destroyed while open", [](auto& p) { p.reset(); }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        picker.emplace(queue, codec);
        Finished finished;
        picker->present(upTo(5), recordInto(finished));
        ASSERT_NE(picker->dialog(), nullptr);
        EXPECT_TRUE(gtk_widget_get_visible(GTK_WIDGET(picker->dialog())));
        // Several files at once, and only the image types the codec reads are offered.
        EXPECT_TRUE(gtk_file_chooser_get_select_multiple(chooser()));
        GtkFileFilter* filter = gtk_file_chooser_get_filter(chooser());
        ASSERT_NE(filter, nullptr);
        GVariant* rules = gtk_file_filter_to_gvariant(filter);
        gchar* text = g_variant_print(rules, FALSE);
        EXPECT_NE(std::string(text).find("image/png"), std::string::npos) << text;
        EXPECT_NE(std::string(text).find("image/jpeg"), std::string::npos) << text;
        g_free(text);
        g_variant_unref(rules);

        c.leave(picker);
        EXPECT_FALSE(finished.ran) << "finished inline";
        ASSERT_TRUE(pumpUntil([&] { return finished.ran; }));
        EXPECT_TRUE(finished.onMainThread);
        EXPECT_TRUE(finished.items.empty());
        if (picker) {
            EXPECT_EQ(picker->dialog(), nullptr) << "the dialog stays open";
        }
    }
}

TEST_F(GtkImagePickerTest, OneImageAtATimeAndOnePickerAtATime) {
    Finished first;
    picker->present(upTo(1), recordInto(first));
    EXPECT_FALSE(gtk_file_chooser_get_select_multiple(chooser()));
    GtkWindow* open = picker->dialog();

    Finished second;
    picker->present(upTo(5), recordInto(second));
    ASSERT_TRUE(pumpUntil([&] { return second.ran; }));
    EXPECT_TRUE(second.items.empty());
    EXPECT_FALSE(first.ran);
    EXPECT_EQ(picker->dialog(), open) << "the open picker was replaced";

    gtk_dialog_response(GTK_DIALOG(open), GTK_RESPONSE_CANCEL);
    ASSERT_TRUE(pumpUntil([&] { return first.ran; }));
}

TEST_F(GtkImagePickerTest, AChosenFileComesBackDecoded) {
    const std::string path = writePng("sky.png", 3, 40, 120, 220);
    Finished finished;
    picker->present(upTo(5), recordInto(finished));
    GFile* file = g_file_new_for_path(path.c_str());
    ASSERT_TRUE(gtk_file_chooser_set_file(chooser(), file, nullptr));
    g_object_unref(file);
    // The chooser selects the file once it has listed its folder.
    ASSERT_TRUE(pumpUntil([&] {
        GListModel* chosen = gtk_file_chooser_get_files(chooser());
        const guint count = g_list_model_get_n_items(chosen);
        g_object_unref(chosen);
        return count == 1;
    }));
    gtk_dialog_response(GTK_DIALOG(picker->dialog()), GTK_RESPONSE_ACCEPT);
    ASSERT_TRUE(pumpUntil([&] { return finished.ran; }));
    ASSERT_EQ(finished.items.size(), 1u);
    ASSERT_TRUE(finished.items[0]->canLoadImage());

    const Loaded loaded = load(*finished.items[0]);
    EXPECT_TRUE(loaded.onMainThread);
    ASSERT_TRUE(loaded.result.image) << loaded.result.error.value_or("");
    EXPECT_EQ(loaded.result.image->width, 3) << "the chosen file, not another";
}

TEST_F(GtkImagePickerTest, SevenChosenFilesWithALimitOfFiveGiveTheFirstFive) {
    // What the player chose, in order; only the first five are kept.
    const std::string jpeg = *codec->encodeJpeg({2, 1, {200, 30, 30, 255, 200, 30, 30, 255}}, 0.9);
    struct Case {
        std::string name;
        std::string path;
        bool canLoad;
        std::optional<int> width;        // a decoded picture's width, or
        std::string errorMentions = {};  // a word of the load error
    };
    const std::vector<Case> cases{
        {"a PNG", writePng("1.png", 5, 10, 200, 10), true, 5},
        {"a JPEG", dir.write("2.JPG", jpeg).string(), true, 2},
        {"a document", dir.write("notes.txt", "not a picture").string(), false, std::nullopt, "notes.txt"},
        {"a picture that vanished", (dir / "gone.png").string(), true, std::nullopt, "gone.png"},
        {"a picture whose bytes are no image", dir.write("broken.jpg", "garbage").string(), true,
         std::nullopt, "broken.jpg"},
        {"past the limit", writePng("6.png", 6, 1, 2, 3), true, 6},
        {"past the limit", writePng("7.png", 7, 1, 2, 3), true, 7},
    };
    auto itemsUpTo = [&](int limit) {
        GListStore* files = g_list_store_new(G_TYPE_FILE);
        for (const auto& c : cases) {
            GFile* file = g_file_new_for_path(c.path.c_str());
            g_list_store_append(files, file);
            g_object_unref(file);
        }
        const Items items = picker->itemsFor(G_LIST_MODEL(files), limit);
        g_object_unref(files);
        return items;
    };
    const Items items = itemsUpTo(5);

    ASSERT_EQ(items.size(), 5u);
    for (std::size_t i = 0; i < items.size(); ++i) {
        const Case& c = cases[i];
        SCOPED_TRACE(c.name);
        EXPECT_EQ(items[i]->canLoadImage(), c.canLoad);
        const Loaded loaded = load(*items[i]);
        EXPECT_TRUE(loaded.onMainThread);
        if (c.width) {
            ASSERT_TRUE(loaded.result.image) << loaded.result.error.value_or("");
            EXPECT_EQ(loaded.result.image->width, *c.width);
            EXPECT_FALSE(loaded.result.error);
        } else {
            EXPECT_FALSE(loaded.result.image);
            ASSERT_TRUE(loaded.result.error);
            EXPECT_NE(loaded.result.error->find(c.errorMentions), std::string::npos) << *loaded.result.error;
        }
    }
    EXPECT_EQ(itemsUpTo(0).size(), cases.size()) << "no limit keeps them all";
}

}  // namespace
}  // namespace ovix::test
