// The demo's scripted tour end to end: scripts/demo under a private Xvfb, the real SDK, WebKitGTK
// and the in-process emulator. Its exit code must be 0 and each step's picture must show something.
#include <cairo.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string_view>
#include <utility>

namespace demo {
namespace {

const char* const steps[] = {"splash",       "login-page",      "login-filled",     "game",
                             "overlay-home", "account-popup",   "overlay-events",   "overlay-report",
                             "support-form", "support-picture", "purchase-refused", "purchase-made",
                             "restore",      "logout"};

struct Picture {
    bool loaded = false;
    int width = 0, height = 0;
    std::size_t colours = 0;    // distinct colours among the sampled pixels
    double commonestShare = 1;  // share of the sampled pixels in the most frequent colour
    std::map<std::pair<int, int>, std::uint32_t> probes;  // chosen pixels, 0xRRGGBB
};

// Pixels at places the tour knows: the floating button's middle once the game shows it (the button is
// 60 x 60 at (100, 200)), the refused purchase's alert inside its left margin, the support form's white page.
const std::pair<int, int> buttonMiddle{130, 230}, alertMargin{360, 320}, formMargin{60, 300};

bool reddish(std::uint32_t rgb) {
    const int r = (rgb >> 16) & 0xff, g = (rgb >> 8) & 0xff, b = rgb & 0xff;
    return r > 180 && g < 120 && b < 120;
}
bool nearWhite(std::uint32_t rgb) {
    return ((rgb >> 16) & 0xff) > 235 && ((rgb >> 8) & 0xff) > 235 && (rgb & 0xff) > 235;
}

Picture inspect(const std::filesystem::path& path) {
    Picture picture;
    cairo_surface_t* surface = cairo_image_surface_create_from_png(path.c_str());
    if (cairo_surface_status(surface) == CAIRO_STATUS_SUCCESS) {
        cairo_surface_flush(surface);
        picture.loaded = true;
        picture.width = cairo_image_surface_get_width(surface);
        picture.height = cairo_image_surface_get_height(surface);
        const int stride = cairo_image_surface_get_stride(surface);
        const unsigned char* data = cairo_image_surface_get_data(surface);
        std::map<std::uint32_t, std::size_t> counts;
        std::size_t samples = 0;
        for (int y = 0; y < picture.height; y += 3) {
            for (int x = 0; x < picture.width; x += 3) {
                ++counts[*reinterpret_cast<const std::uint32_t*>(data + y * stride + x * 4)];
                ++samples;
            }
        }
        std::size_t commonest = 0;
        for (const auto& [colour, count] : counts) {
            commonest = std::max(commonest, count);
        }
        for (const auto& at : {buttonMiddle, alertMargin, formMargin}) {
            if (at.first < picture.width && at.second < picture.height) {
                picture.probes[at] =
                    *reinterpret_cast<const std::uint32_t*>(data + at.second * stride + at.first * 4) &
                    0xffffff;
            }
        }
        picture.colours = counts.size();
        picture.commonestShare = samples ? static_cast<double>(commonest) / static_cast<double>(samples) : 1;
    }
    cairo_surface_destroy(surface);
    return picture;
}

TEST(DemoTourTest, EveryStepPassesAndLeavesAPictureWithSomethingOnIt) {
    const std::filesystem::path out = std::filesystem::path(OVIX_DEMO_TEST_OUT);
    const std::filesystem::path log = out.string() + ".log";
    const std::string command = std::string(OVIX_DEMO_SCRIPT) + " " + OVIX_DEMO_BUILD_DIR + " -- --out " +
                                out.string() + " > " + log.string() + " 2>&1";
    const int status = std::system(command.c_str());
    std::stringstream output;
    output << std::ifstream(log).rdbuf();
    ASSERT_TRUE(WIFEXITED(status));
    ASSERT_EQ(WEXITSTATUS(status), 0) << output.str();
    EXPECT_NE(output.str().find("tour: 14 of 14 steps passed"), std::string::npos) << output.str();
    // The events a player's session raises, in the order the tour causes them.
    std::size_t from = 0;
    for (const char* event :
         {"event OvixLoginSuccess", "event OvixBillingConnected", "event OvixPurchaseUpdated",
          "event OvixPurchaseRestored", "event OvixLogoutSuccess"}) {
        SCOPED_TRACE(event);
        from = output.str().find(event, from);
        ASSERT_NE(from, std::string::npos) << output.str();
    }

    int number = 0;
    for (const char* step : steps) {
        char name[64];
        std::snprintf(name, sizeof name, "%02d-%s.png", ++number, step);
        SCOPED_TRACE(name);
        auto picture = inspect(out / name);
        ASSERT_TRUE(picture.loaded);
        EXPECT_EQ(picture.width, 960);
        EXPECT_EQ(picture.height, 600);
        EXPECT_GE(picture.colours, 20u) << "a nearly flat picture";
        EXPECT_LT(picture.commonestShare, 0.995) << "one colour almost everywhere";  // the white form: 0.988
        const std::string_view shown = step;
        if (shown == "game" || shown == "purchase-made") {
            EXPECT_TRUE(reddish(picture.probes[buttonMiddle])) << std::hex << picture.probes[buttonMiddle];
        }
        if (shown == "purchase-refused") {
            EXPECT_TRUE(nearWhite(picture.probes[alertMargin])) << std::hex << picture.probes[alertMargin];
        }
        if (shown == "support-form") {
            EXPECT_TRUE(nearWhite(picture.probes[formMargin])) << std::hex << picture.probes[formMargin];
        }
    }
}

}  // namespace
}  // namespace demo
