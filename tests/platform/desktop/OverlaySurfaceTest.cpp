#include "ovix/desktop/OverlaySurface.h"

#include <glib.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "kit/KitTest.h"
#include "ovix/FloatingButton.h"
#include "ovix/kit/Label.h"
#include "ovix/kit/TextField.h"
#include "ovix/kit/ViewController.h"

namespace ovix::test {
namespace {

using desktop::OverlaySurface;
using kit::Point;

/// A game's overlay buffer: `width` x `height` RGBA pixels in rows padded to `stride` bytes, filled
/// with a sentinel so that untouched bytes show.
struct Buffer {
    Buffer(int w, int h, int padding = 16)
        : width(w), height(h), stride(w * 4 + padding), bytes(stride * h, 0xAB) {}
    bool render(OverlaySurface& surface) { return surface.render(bytes.data(), width, height, stride); }
    const std::uint8_t* at(int x, int y) const {
        return &bytes[static_cast<std::size_t>(y * stride + x * 4)];
    }
    bool untouched() const {
        return std::all_of(bytes.begin(), bytes.end(), [](std::uint8_t b) { return b == 0xAB; });
    }
    void reset() { std::fill(bytes.begin(), bytes.end(), 0xAB); }
    /// Pixels in the point rect (at `scale`) that are the system blue, opaque.
    int blueIn(kit::Rect r, double scale) const {
        int n = 0;
        for (int y = static_cast<int>(r.origin.y * scale); y < static_cast<int>(r.maxY() * scale); ++y) {
            for (int x = static_cast<int>(r.origin.x * scale); x < static_cast<int>(r.maxX() * scale); ++x) {
                const auto* p = at(x, y);
                n += p[0] == 0 && p[1] == 122 && p[2] == 255 && p[3] == 255;
            }
        }
        return n;
    }

    int width, height, stride;
    std::vector<std::uint8_t> bytes;
};

class OverlaySurfaceTest : public KitTest {
  protected:
    void SetUp() override {
        KitTest::SetUp();
        window()->setRootViewController(std::make_shared<kit::ViewController>());
        button = FloatingButton::create({100, 200, 60, 60});
        window()->rootViewController()->view()->addSubview(button);
        surface = std::make_unique<OverlaySurface>(window());
        surface->resize(390, 844, 1);
    }

    std::shared_ptr<FloatingButton> button;
    std::unique_ptr<OverlaySurface> surface;
};

TEST_F(OverlaySurfaceTest, AnIdleFrameDrawsNothingAndAChangeDrawsAgain) {
    Buffer buffer(390, 844);
    ASSERT_TRUE(buffer.render(*surface)) << "the first frame";
    buffer.reset();
    EXPECT_FALSE(buffer.render(*surface));
    EXPECT_FALSE(buffer.render(*surface));
    EXPECT_TRUE(buffer.untouched()) << "an idle frame leaves the game's buffer alone";

    struct Change {
        const char* name;
        std::function<void()> make;
    };
    auto label = kit::Label::create("Lỗi");
    label->setFrame({10, 10, 100, 20});
    // A view placed by constraints moves only when layout runs: the surface must run it.
    auto pinned = kit::View::create();
    pinned->setBackgroundColor(kit::Color::systemGreen());
    pinned->setTranslatesAutoresizingMaskIntoConstraints(false);
    window()->addSubview(pinned);
    auto top = pinned->topAnchor().constraintEqualTo(window()->topAnchor(), 300);
    kit::LayoutConstraint::activate({top,
                                     pinned->leadingAnchor().constraintEqualTo(window()->leadingAnchor()),
                                     pinned->widthAnchor().constraintEqualToConstant(40),
                                     pinned->heightAnchor().constraintEqualToConstant(40)});
    buffer.render(*surface);
    const Change changes[] = {
        {"a constraint's constant", [&] { top->setConstant(320); }},
        {"a view added", [&] { window()->addSubview(label); }},
        {"its text", [&] { label->setText("Lỗi mạng"); }},
        {"its colour", [&] { label->setTextColor(kit::Color::systemRed()); }},
        {"moved",
         [&] {
             button->setCenter({200, 300});
         }},
        {"hidden", [&] { label->setHidden(true); }},
        {"a press highlights the button",
         [&] {
             surface->pointerPress({200, 300});
         }},
        {"resized", [&] { surface->resize(390, 844, 1); }},
    };
    for (const auto& change : changes) {
        SCOPED_TRACE(change.name);
        change.make();
        EXPECT_TRUE(buffer.render(*surface));
        EXPECT_FALSE(buffer.render(*surface)) << "and idle again";
    }
    EXPECT_EQ(pinned->frame(), (kit::Rect{0, 320, 40, 40})) << "laid out by the surface, not the queue";
    surface->pointerRelease({200, 300});
    Buffer smaller(200, 200);
    EXPECT_TRUE(smaller.render(*surface)) << "another size is a new frame";
    EXPECT_FALSE(surface->render(nullptr, 10, 10, 40));
    EXPECT_FALSE(surface->render(smaller.bytes.data(), 200, 200, 199 * 4)) << "stride too small";
}

TEST_F(OverlaySurfaceTest, AClickOnTheButtonDrawsTheSheetUntilItsSlideEnds) {
    Buffer buffer(390, 844);
    buffer.render(*surface);
    EXPECT_TRUE(surface->pointerPress({130, 230}));
    EXPECT_TRUE(surface->pointerRelease({130, 230}));
    ASSERT_NE(button->popupView(), nullptr);
    EXPECT_TRUE(buffer.render(*surface));
    int frames = 0;
    for (int i = 0; i < 10; ++i) {
        queue().advance(0.05);  // 0.5 s: the 0.3 s slide and then some
        frames += buffer.render(*surface);
    }
    EXPECT_GE(frames, 6) << "every frame of the slide is drawn";
    EXPECT_LE(frames, 8) << "and none after it";
    EXPECT_FALSE(buffer.render(*surface));
}

TEST_F(OverlaySurfaceTest, TheButtonsPixelsLandInTheBufferAtTheScale) {
    for (double scale : {1.0, 2.0}) {
        SCOPED_TRACE(scale);
        surface->resize(390, 844, scale);
        Buffer buffer(static_cast<int>(390 * scale), static_cast<int>(844 * scale), 12);
        ASSERT_TRUE(buffer.render(*surface));
        // The circle's blue where no icon covers it: inside the circle, off its centre.
        EXPECT_GT(buffer.blueIn({108, 225, 6, 10}, scale), 0.9 * 6 * 10 * scale * scale);
        EXPECT_EQ(buffer.blueIn({0, 0, 390, 190}, scale), 0) << "nothing of it above the button";
        const auto* empty = buffer.at(static_cast<int>(20 * scale), static_cast<int>(20 * scale));
        EXPECT_EQ(empty[3], 0) << "the game shows through where the overlay is empty";
        const auto* padding = buffer.bytes.data() + buffer.width * 4;
        EXPECT_EQ(padding[0], 0xAB) << "row padding is the game's";
    }
}

TEST_F(OverlaySurfaceTest, TranslucentPixelsComeOutWithStraightAlpha) {
    auto veil = kit::View::create({0, 0, 50, 50});
    veil->setBackgroundColor(kit::Color(1, 0.5, 0, 0.5));
    window()->addSubview(veil);
    Buffer buffer(390, 844);
    ASSERT_TRUE(buffer.render(*surface));
    const auto* p = buffer.at(25, 25);
    EXPECT_NEAR(p[0], 255, 1);
    EXPECT_NEAR(p[1], 128, 2);
    EXPECT_EQ(p[2], 0);
    EXPECT_NEAR(p[3], 128, 1);
}

TEST_F(OverlaySurfaceTest, PumpRunsReadyGLibWorkWithoutWaiting) {
    int ran = 0;
    g_idle_add(
        [](gpointer count) -> gboolean {
            ++*static_cast<int*>(count);
            return G_SOURCE_REMOVE;
        },
        &ran);
    const guint later = g_timeout_add_seconds(
        60, [](gpointer) -> gboolean { return G_SOURCE_REMOVE; }, nullptr);
    Buffer buffer(390, 844);
    buffer.render(*surface);

    const gint64 start = g_get_monotonic_time();
    EXPECT_TRUE(surface->pump());
    EXPECT_EQ(ran, 1);
    EXPECT_FALSE(surface->pump()) << "nothing ready: returns at once";
    EXPECT_LT(g_get_monotonic_time() - start, 1'000'000);
    g_source_remove(later);
    EXPECT_TRUE(buffer.render(*surface)) << "work ran, so the frame is drawn";

    // Work that reposts itself cannot hold the frame.
    int spins = 0;
    const guint spinner = g_idle_add(
        [](gpointer count) -> gboolean {
            ++*static_cast<int*>(count);
            return G_SOURCE_CONTINUE;
        },
        &spins);
    surface->pump(5);
    EXPECT_EQ(spins, 5);
    g_source_remove(spinner);
}

// Which field takes text is the input router's test; here, that the surface tells the game so.
TEST_F(OverlaySurfaceTest, TypingIntoAFocusedFieldIsConsumedAndRedraws) {
    auto field = kit::TextField::create({20, 500, 300, 40});
    window()->rootViewController()->view()->addSubview(field);
    Buffer buffer(390, 844);
    buffer.render(*surface);
    EXPECT_FALSE(surface->text("w")) << "nothing focused";
    ASSERT_TRUE(field->becomeFirstResponder());
    buffer.render(*surface);
    EXPECT_TRUE(surface->text("Lỗi"));
    EXPECT_TRUE(surface->key(kit::Key::left));
    EXPECT_TRUE(buffer.render(*surface));
    EXPECT_EQ(field->text(), "Lỗi");
}

}  // namespace
}  // namespace ovix::test
