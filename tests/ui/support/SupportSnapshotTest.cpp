// The support form drawn as the player sees it, at 3 pixels per point in both orientations. The PNGs
// go into the build tree for a person to look at; the checks read the written files back.
#include <cairo.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>

#include "ovix/kit/NavigationController.h"
#include "platform/cairo/KitRenderer.h"
#include "ui/support/MultiSelectVC.h"
#include "ui/support/SupportTestSupport.h"

namespace ovix::test {
namespace {

constexpr double scale = 3;

using Surface = std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)>;

struct Rgb {
    int r, g, b;
};

/// A `w` x `h` picture split into four coloured quarters.
platform::RgbaImage quarters(int w, int h, Rgb a, Rgb b, Rgb c, Rgb d) {
    platform::RgbaImage image{w, h, {}};
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            const Rgb& q = y < h / 2 ? (x < w / 2 ? a : b) : (x < w / 2 ? c : d);
            image.pixels.insert(image.pixels.end(),
                                {static_cast<std::uint8_t>(q.r), static_cast<std::uint8_t>(q.g),
                                 static_cast<std::uint8_t>(q.b), 255});
        }
    }
    return image;
}

std::string pngOf(const platform::RgbaImage& image) {
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, image.width, image.height);
    cairo_surface_flush(surface);
    unsigned char* data = cairo_image_surface_get_data(surface);
    const int stride = cairo_image_surface_get_stride(surface);
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x) {
            const auto* p = &image.pixels[static_cast<std::size_t>((y * image.width + x) * 4)];
            reinterpret_cast<std::uint32_t*>(data + y * stride)[x] =
                (std::uint32_t{p[0]} << 16) | (std::uint32_t{p[1]} << 8) | p[2];
        }
    }
    cairo_surface_mark_dirty(surface);
    std::string bytes;
    cairo_surface_write_to_png_stream(
        surface,
        [](void* out, const unsigned char* chunk, unsigned int length) {
            static_cast<std::string*>(out)->append(reinterpret_cast<const char*>(chunk), length);
            return CAIRO_STATUS_SUCCESS;
        },
        &bytes);
    cairo_surface_destroy(surface);
    return bytes;
}

class SupportSnapshotTest : public SupportFormTest {
  protected:
    /// The form as the side panel shows it: over the whole screen.
    SupportSnapshotTest() {
        root->dismiss(false);
        form = SupportReportVC::create();
        form->setModalPresentationStyle(kit::ModalPresentationStyle::overFullScreen);
        root->present(form, false);
        h.mainQueue->runUntilIdle();
        window()->layoutIfNeeded();
    }

    void turn(bool landscape) {
        if (landscape) {
            h.application->rotate(kit::DeviceOrientation::landscapeLeft);
        }
        window()->layoutIfNeeded();
    }
    /// Scrolls the page so that `view`'s bottom is in sight (landscape shows part of the form at a time).
    void scrollToShow(const kit::View& view) {
        auto& page = *formView().scrollView();
        window()->layoutIfNeeded();
        const kit::Rect r = view.convertTo(view.bounds(), &page);  // in the page's content
        const double y =
            std::clamp(r.maxY() + 12 - page.bounds().size.height, 0.0, page.maximumContentOffset().y);
        page.setContentOffset({0, y});
        window()->layoutIfNeeded();
    }
    /// Writes the window as `<name>-<orientation>.png` and reads the file back.
    Surface snap(const std::string& name, bool landscape) {
        window()->layoutIfNeeded();
        const auto dir = std::filesystem::path(OVIX_SNAPSHOT_DIR);
        std::filesystem::create_directories(dir);
        const auto file = dir / (name + (landscape ? "-landscape" : "-portrait") + ".png");
        platform::gtk::KitRenderer renderer;
        EXPECT_TRUE(renderer.writePng(*window(), h.mainQueue->now(), scale, file));
        Surface surface(cairo_image_surface_create_from_png(file.c_str()), &cairo_surface_destroy);
        EXPECT_EQ(cairo_surface_status(surface.get()), CAIRO_STATUS_SUCCESS);
        EXPECT_EQ(cairo_image_surface_get_width(surface.get()), window()->bounds().size.width * scale);
        EXPECT_EQ(cairo_image_surface_get_height(surface.get()), window()->bounds().size.height * scale);
        return surface;
    }
    /// The pixel under window point `p`.
    static Rgb at(cairo_surface_t* surface, kit::Point p) {
        const int x = static_cast<int>(p.x * scale);
        const int y = static_cast<int>(p.y * scale);
        if (cairo_image_surface_get_data(surface) == nullptr || x < 0 || y < 0 ||
            x >= cairo_image_surface_get_width(surface) || y >= cairo_image_surface_get_height(surface)) {
            ADD_FAILURE() << "no pixel at " << p.x << ", " << p.y;
            return {-1000, -1000, -1000};
        }
        const unsigned char* row =
            cairo_image_surface_get_data(surface) + y * cairo_image_surface_get_stride(surface);
        const auto word = reinterpret_cast<const std::uint32_t*>(row)[x];
        return {static_cast<int>((word >> 16) & 0xff), static_cast<int>((word >> 8) & 0xff),
                static_cast<int>(word & 0xff)};
    }
    static bool near(Rgb a, Rgb b, int tolerance = 24) {
        return std::abs(a.r - b.r) + std::abs(a.g - b.g) + std::abs(a.b - b.b) <= tolerance;
    }
    /// Pixels of window rectangle `area` that are not `plain`.
    static int differing(cairo_surface_t* surface, kit::Rect area, Rgb plain) {
        int count = 0;
        for (double y = area.minY(); y < area.maxY(); y += 1 / scale) {
            for (double x = area.minX(); x < area.maxX(); x += 1 / scale) {
                count += near(at(surface, {x, y}), plain) ? 0 : 1;
            }
        }
        return count;
    }
    /// `view`'s bounds in window points.
    static kit::Rect inWindow(const kit::View& view) { return view.convertTo(view.bounds(), nullptr); }
};

constexpr Rgb white{255, 255, 255};

TEST_F(SupportSnapshotTest, TheEmptyForm) {
    for (bool landscape : {false, true}) {
        SCOPED_TRACE(landscape ? "landscape" : "portrait");
        turn(landscape);
        auto drawn = snap("support-form-empty", landscape);

        // The column is centred: a field's outline is as far from the left edge as from the right.
        const kit::Rect field = inWindow(*formView().txtTitle());
        const double width = window()->bounds().size.width;
        EXPECT_NEAR(field.midX(), width / 2, 0.5);
        const double y = field.midY();
        double left = 0;
        while (left < width / 2 && near(at(drawn.get(), {left, y}), white)) {
            left += 1 / scale;
        }
        double right = width - 1 / scale;
        while (right > width / 2 && near(at(drawn.get(), {right, y}), white)) {
            right -= 1 / scale;
        }
        EXPECT_NEAR(left, width - 1 / scale - right, 1.0);
        EXPECT_NEAR(left, field.minX(), 1.0) << "the outline is not where the field is";
        // The title and the placeholders are drawn; the send button is red, the close one dark gray.
        EXPECT_GT(differing(drawn.get(), inWindow(*formView().lblTitle()), white), 200);
        EXPECT_GT(differing(drawn.get(), field.insetBy(4, 4), white), 100)
            << "no placeholder in the title field";
        // Nothing of the page under the status bar: the strip above the safe area is the page's white.
        const double safeTop = window()->safeAreaInsets().top;
        if (safeTop > 0) {
            EXPECT_EQ(differing(drawn.get(), {0, 0, width, safeTop}, white), 0);
        }

        if (landscape) {
            scrollToShow(*formView().btnSend());
            drawn = snap("support-form-empty-end", landscape);
        }
        const kit::Rect send = inWindow(*formView().btnSend());
        EXPECT_TRUE(near(at(drawn.get(), {send.minX() + 6, send.midY()}), {255, 59, 48}, 40));
        const kit::Rect close = inWindow(*formView().btnClose());
        EXPECT_TRUE(near(at(drawn.get(), {close.minX() + 6, close.midY()}), {85, 85, 85}, 40));
    }
}

TEST_F(SupportSnapshotTest, TheFormWithThreeThumbnailsAndAChosenType) {
    // Three real pictures, two PNGs and a JPEG, served back as the uploads' thumbnails.
    const Rgb colours[3][4] = {{{230, 60, 40}, {250, 200, 30}, {40, 160, 80}, {30, 90, 200}},
                               {{120, 40, 160}, {120, 40, 160}, {250, 250, 250}, {20, 20, 20}},
                               {{0, 170, 170}, {240, 120, 0}, {240, 120, 0}, {0, 170, 170}}};
    for (int n = 0; n < 3; ++n) {
        const auto& q = colours[n];
        auto image = quarters(160, 120, q[0], q[1], q[2], q[3]);
        server.on("/img/" + std::to_string(n) + ".jpg",
                  n == 1 ? LoopbackServer::Reply{200, *codec.encodeJpeg(image, 0.95), "image/jpeg"}
                         : LoopbackServer::Reply{200, pngOf(image), "image/png"});
    }
    gate->releaseAll();
    pickThroughForm(pictures(0, 3));
    ASSERT_TRUE(h.mainQueue->runUntil([&] {
        auto shown = thumbnails();
        return shown.size() == 3 &&
               std::all_of(shown.begin(), shown.end(), [](auto& t) { return t->image(); });
    }));
    tapCentre(*formView().txtTypeFalse());
    auto navigation = std::dynamic_pointer_cast<kit::NavigationController>(form->presentedViewController());
    ASSERT_NE(navigation, nullptr);
    auto list = std::dynamic_pointer_cast<MultiSelectVC>(navigation->topViewController());
    list->selected = {false, true, true};
    list->doneTapped();
    h.mainQueue->advance(1);
    ASSERT_EQ(formView().txtTypeFalse()->text(), "Crash, Khác");

    for (bool landscape : {false, true}) {
        SCOPED_TRACE(landscape ? "landscape" : "portrait");
        turn(landscape);
        auto drawn = snap("support-form-attached", landscape);
        // The chosen types are written in the field.
        EXPECT_GT(differing(drawn.get(), inWindow(*formView().txtTypeFalse()).insetBy(4, 4), white), 150);
        if (landscape) {
            scrollToShow(*formView().attachContainer());
            drawn = snap("support-form-attached-end", landscape);
        }

        // The strip shows whole thumbnails up to its end, and scrolls for the rest.
        const kit::Rect strip = inWindow(*formView().attachScroll());
        const auto shown = thumbnails();
        int whole = 0;
        for (std::size_t i = 0; i < shown.size(); ++i) {
            const kit::Rect r = inWindow(*shown[i]);
            EXPECT_EQ(r.size, (kit::Size{100, 100}));
            if (r.maxX() > strip.maxX()) {
                continue;
            }
            ++whole;
            // The thumbnails come in the order their uploads answered: find each one's picture.
            const std::string& url = form->uploadedImageUrls()[i];
            int picture = -1;
            for (int k = 0; k < 3; ++k) {
                picture = url == pictureUrl(k) ? k : picture;
            }
            SCOPED_TRACE(url);
            ASSERT_GE(picture, 0);
            // Aspect-fill crops the sides of the 4:3 picture: each quarter shows at its corner of the
            // square, and nothing of it spills past the frame's rounded corner or into the gap after it.
            const auto& q = colours[picture];
            EXPECT_TRUE(near(at(drawn.get(), {r.minX() + 20, r.minY() + 30}), q[0]));
            EXPECT_TRUE(near(at(drawn.get(), {r.minX() + 20, r.maxY() - 20}), q[2]));
            EXPECT_TRUE(near(at(drawn.get(), {r.maxX() - 20, r.maxY() - 20}), q[3]));
            EXPECT_TRUE(near(at(drawn.get(), {r.minX() + 0.4, r.maxY() - 0.4}), white)) << "square corner";
            EXPECT_TRUE(near(at(drawn.get(), {r.maxX() + 4, r.midY()}), white)) << "the picture spills over";
            // The "✕" sits on a dark disc at the top right corner, over the picture's top right quarter.
            const Rgb disc = at(drawn.get(), {r.maxX() - 16, r.minY() + 24});
            EXPECT_LT(disc.r + disc.g + disc.b, (q[1].r + q[1].g + q[1].b) / 2 + 30);
            EXPECT_GT(differing(drawn.get(), {r.maxX() - 22, r.minY() + 10, 12, 12}, disc), 10) << "no ✕";
        }
        EXPECT_EQ(whole, 2);
    }
}

// The list's picture; which rows carry a checkmark is the list's own test, how one is drawn the
// renderer's.
TEST_F(SupportSnapshotTest, TheTypeListWithTwoTicks) {
    for (bool landscape : {false, true}) {
        SCOPED_TRACE(landscape ? "landscape" : "portrait");
        turn(landscape);
        tapCentre(*formView().txtTypeFalse());
        auto navigation =
            std::dynamic_pointer_cast<kit::NavigationController>(form->presentedViewController());
        ASSERT_NE(navigation, nullptr);
        auto list = std::dynamic_pointer_cast<MultiSelectVC>(navigation->topViewController());
        h.mainQueue->advance(1);
        for (int row : {0, 2}) {
            tapCentre(*list->tableView()->cellForRow(kit::IndexPath::forRow(row)));
        }
        h.mainQueue->advance(1);
        snap("support-type-list", landscape);
        list->cancelTapped();
        h.mainQueue->advance(1);
    }
}

}  // namespace
}  // namespace ovix::test
