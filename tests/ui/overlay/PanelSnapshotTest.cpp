#include <cairo.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "ovix/FloatingButton.h"
#include "ovix/WarningButton.h"
#include "platform/cairo/KitRenderer.h"
#include "ui/overlay/PanelTestSupport.h"
#include "ui/overlay/PopupTabHome.h"
#include "ui/overlay/SidebarPopup.h"
#include "ui/overlay/TabCell.h"

namespace ovix::test {
namespace {

using Surface = std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)>;

struct Pixel {
    int r, g, b, a;
};

class PanelSnapshotTest : public PanelTest {
  protected:
    /// A stand-in game frame: sky, ground and a few blocks, so the overlay is seen over something.
    void addGameScene() {
        const auto size = window()->bounds().size;
        auto scene = kit::View::create({0, 0, size.width, size.height});
        scene->setBackgroundColor(kit::Color::rgb255(110, 180, 235));
        auto ground = kit::View::create({0, size.height * 0.7, size.width, size.height * 0.3});
        ground->setBackgroundColor(kit::Color::rgb255(70, 150, 60));
        scene->addSubview(ground);
        for (int i = 0; i < 3; ++i) {
            auto block = kit::View::create({40 + i * size.width / 3, size.height * 0.7 - 50, 50, 50});
            block->setBackgroundColor(kit::Color::rgb255(190, 120, 60));
            block->layer().setCornerRadius(6);
            scene->addSubview(block);
        }
        window()->addSubview(scene);
    }

    void snapshot(const std::string& name) {
        window()->layoutIfNeeded();
        const auto dir = std::filesystem::path(OVIX_SNAPSHOT_DIR);
        std::filesystem::create_directories(dir);
        EXPECT_TRUE(renderer.writePng(*window(), now(), 3, dir / (name + ".png"))) << name;
    }

    /// `view` alone, at 1 pixel per point.
    Surface render(const kit::View& view) {
        const auto size = view.bounds().size;
        Surface surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, static_cast<int>(size.width),
                                                   static_cast<int>(size.height)),
                        &cairo_surface_destroy);
        cairo_t* cr = cairo_create(surface.get());
        cairo_translate(cr, -view.frame().x(), -view.frame().y());
        renderer.draw(cr, view, now());
        cairo_destroy(cr);
        cairo_surface_flush(surface.get());
        return surface;
    }

    static Pixel at(cairo_surface_t* surface, int x, int y) {
        const unsigned char* row =
            cairo_image_surface_get_data(surface) + y * cairo_image_surface_get_stride(surface);
        const auto word = reinterpret_cast<const std::uint32_t*>(row)[x];
        return {static_cast<int>((word >> 16) & 0xff), static_cast<int>((word >> 8) & 0xff),
                static_cast<int>(word & 0xff), static_cast<int>(word >> 24)};
    }

    /// Pixels of `area` (in the surface) that differ from `plain` by more than a rounding error.
    static int differing(cairo_surface_t* surface, kit::Rect area, Pixel plain) {
        int count = 0;
        for (int y = static_cast<int>(area.minY()); y < static_cast<int>(area.maxY()); ++y) {
            for (int x = static_cast<int>(area.minX()); x < static_cast<int>(area.maxX()); ++x) {
                Pixel p = at(surface, x, y);
                if (std::abs(p.r - plain.r) + std::abs(p.g - plain.g) + std::abs(p.b - plain.b) > 24) {
                    ++count;
                }
            }
        }
        return count;
    }

    platform::gtk::KitRenderer renderer;
};

TEST_F(PanelSnapshotTest, TheOverlayOverAGameInBothOrientations) {
    struct Row {
        const char* name;
        bool landscape;
    };
    for (const Row& row : {Row{"portrait", false}, Row{"landscape", true}}) {
        SCOPED_TRACE(row.name);
        start({390, 844}, row.landscape);
        addGameScene();
        auto button = FloatingButton::create({100, 200, 56, 56});
        window()->addSubview(button);
        snapshot(std::string(row.name) + "-1-button");

        button->sendActions(kit::ControlEvent::touchUpInside);
        auto sheet = button->popupView();
        window()->layoutIfNeeded();
        h.mainQueue->advance(0.15);
        snapshot(std::string(row.name) + "-2-sheet-sliding");
        h.mainQueue->advance(0.15);
        snapshot(std::string(row.name) + "-3-home");

        auto panel = std::dynamic_pointer_cast<SidebarPopup>(sheet->subviews().at(0));
        ASSERT_NE(panel, nullptr);
        auto drawn = render(*window());
        // The logo on the blue circle: the button's middle is not all blue.
        EXPECT_GT(differing(drawn.get(), {114, 214, 28, 28}, {0, 122, 255, 255}), 100);
        // The sheet's rounded corner lets the game's sky through at its top-left pixel.
        EXPECT_EQ(differing(drawn.get(), {0, sheet->frame().y(), 1, 1}, {110, 180, 235, 255}), 0);
        // A tile's icon over the tile's grey.
        auto home = std::dynamic_pointer_cast<PopupTabHome>(panel->contentView()->subviews().at(0));
        auto tile = home->collectionView()->cellForItem(kit::IndexPath::forItem(1));
        const auto grey = tile->convertTo(kit::Point{4, 45}, nullptr);
        const auto icon = std::dynamic_pointer_cast<TabCell>(tile)->iconImageView();
        EXPECT_GT(differing(drawn.get(), icon->convertTo(icon->bounds(), nullptr),
                            at(drawn.get(), static_cast<int>(grey.x), static_cast<int>(grey.y))),
                  100);

        panel->menuButtons()[2]->sendActions(kit::ControlEvent::touchUpInside);
        snapshot(std::string(row.name) + "-4-report");
        panel->menuButtons()[1]->sendActions(kit::ControlEvent::touchUpInside);
        snapshot(std::string(row.name) + "-5-events");
    }
}

// The button a game makes itself, in both looks: its picture is drawn over the game, and after a tap
// the full look covers the wider frame about the same centre.
TEST_F(PanelSnapshotTest, TheWarningButtonIsDrawnInBothLooks) {
    start({390, 844}, false);
    addGameScene();
    auto button =
        WarningButton::create(kit::Image::named("ic_sdk_warning"), kit::Image::named("ic_sdk_warning_full"),
                              {40, 40}, {150, 60}, {120, 200});
    window()->addSubview(button);
    const Pixel sky{110, 180, 235, 255};
    snapshot("warning-normal");
    EXPECT_GT(differing(render(*window()).get(), button->frame(), sky), 400);

    button->sendActions(kit::ControlEvent::touchUpInside);
    h.mainQueue->advance(WarningButton::toggleDuration);
    snapshot("warning-full");
    const kit::Rect full = button->frame();
    ASSERT_EQ(full.size.width, 150);
    // The strip the full look adds left of the normal frame is drawn, not sky.
    EXPECT_GT(differing(render(*window()).get(), {full.x() + 4, full.y() + 10, 40, 40}, sky), 400);
}

}  // namespace
}  // namespace ovix::test
