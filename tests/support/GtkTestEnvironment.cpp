// A display, private web data directories and an initialised GTK for every test of this binary.
#include "support/GtkTestEnvironment.h"

#include <gtest/gtest.h>
#include <gtk/gtk.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "support/XvfbDisplay.h"

namespace ovix::test {

namespace {

class GtkTestEnvironment : public ::testing::Environment {
  public:
    void SetUp() override {
        std::string problem;
        bool notInstalled = false;
        display_ = XvfbDisplay::startIfNeeded(problem, notInstalled);
        if (notInstalled) {
            GTEST_SKIP() << problem;
        }
        ASSERT_TRUE(problem.empty()) << problem;

        // Cookies, caches and local storage of the engine go to a directory of this run only.
        char pattern[] = "/tmp/ovix-webkit-XXXXXX";
        ASSERT_NE(::mkdtemp(pattern), nullptr);
        home_ = pattern;
        for (const char* variable :
             {"XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_CONFIG_HOME", "XDG_RUNTIME_DIR"}) {
            const auto dir = home_ / variable;
            std::filesystem::create_directories(dir);
            std::filesystem::permissions(dir, std::filesystem::perms::owner_all);
            ::setenv(variable, dir.c_str(), 1);
        }
        ::setenv("GSETTINGS_BACKEND", "memory", 1);
        // Software drawing: the same pixels on every machine, and no GL driver compiling shaders in
        // the test process (its JIT and the sanitizer's unwinder deadlock on the unwinder's lock).
        ::setenv("GSK_RENDERER", "cairo", 1);
        ASSERT_TRUE(gtk_init_check()) << "GTK could not open the display";
    }

    void TearDown() override {
        std::error_code ignored;
        if (!home_.empty()) {
            std::filesystem::remove_all(home_, ignored);
        }
    }

  private:
    std::unique_ptr<XvfbDisplay> display_;
    std::filesystem::path home_;
};

[[maybe_unused]] ::testing::Environment* const environment =
    ::testing::AddGlobalTestEnvironment(new GtkTestEnvironment);

gboolean expire(gpointer flag) {
    *static_cast<bool*>(flag) = true;
    return G_SOURCE_REMOVE;
}

}  // namespace

bool pumpUntil(const std::function<bool()>& done, double seconds) {
    bool expired = false;
    const guint timer = g_timeout_add(static_cast<guint>(seconds * 1000), expire, &expired);
    while (!done() && !expired) {
        g_main_context_iteration(nullptr, TRUE);
    }
    if (!expired) {
        g_source_remove(timer);
    }
    return done();
}

void pumpPending() {
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
}

}  // namespace ovix::test

// The toolkit keeps process-lifetime caches (types, fonts, the display) that it never frees.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libgtk-4.so\nleak:libwebkitgtk-6.0.so\nleak:libjavascriptcoregtk-6.0.so\nleak:libglib-2.0."
           "so\n"
           "leak:libgobject-2.0.so\nleak:libfontconfig.so\nleak:libEGL\nleak:libGLX\nleak:libgio-2.0.so\n"
           "leak:libpango\nleak:libcairo\nleak:libharfbuzz\nleak:libX11\nleak:libxkbcommon\n";
}

// Those libraries are built without frame pointers: only the slow unwinder finds the frames that
// the suppressions above name.
extern "C" const char* __asan_default_options() {
    return "fast_unwind_on_malloc=0";
}
