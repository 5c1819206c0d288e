// A display, private web data directories and an initialised GTK for every test of this binary.
#include "support/GtkTestEnvironment.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <gtk/gtk.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace ovix::test {

namespace {

// Starts a private X server on a free display and points DISPLAY at it. Returns its process id, or
// -1 with `problem` saying why (`notInstalled` when there is no Xvfb to run).
pid_t startXvfb(std::string& problem, bool& notInstalled) {
    int fds[2];
    if (::pipe(fds) != 0) {
        problem = "pipe failed";
        return -1;
    }
    const pid_t pid = ::fork();
    if (pid < 0) {
        problem = "fork failed";
        return -1;
    }
    if (pid == 0) {
        // The server goes with the test process, even when that one crashes.
        ::prctl(PR_SET_PDEATHSIG, SIGTERM);
        ::close(fds[0]);
        const std::string fd = std::to_string(fds[1]);
        const int devnull = ::open("/dev/null", O_WRONLY);
        ::dup2(devnull, STDOUT_FILENO);
        ::dup2(devnull, STDERR_FILENO);
        // -displayfd: Xvfb picks a free display and writes its number once it accepts connections.
        ::execlp("Xvfb", "Xvfb", "-displayfd", fd.c_str(), "-screen", "0", "1280x1024x24", "-nolisten", "tcp",
                 static_cast<char*>(nullptr));
        ::_exit(127);
    }
    ::close(fds[1]);
    std::string number;
    char c;
    while (::read(fds[0], &c, 1) == 1 && c != '\n') {
        number.push_back(c);
    }
    ::close(fds[0]);
    if (number.empty()) {
        int status = 0;
        ::kill(pid, SIGTERM);
        ::waitpid(pid, &status, 0);
        notInstalled = WIFEXITED(status) && WEXITSTATUS(status) == 127;  // the exec failed
        problem = notInstalled ? "Xvfb is not installed" : "Xvfb did not start";
        return -1;
    }
    ::setenv("DISPLAY", (":" + number).c_str(), 1);
    return pid;
}

class GtkTestEnvironment : public ::testing::Environment {
  public:
    ~GtkTestEnvironment() override {
        if (xvfb_ > 0) {
            ::kill(xvfb_, SIGTERM);
            ::waitpid(xvfb_, nullptr, 0);
            ::unsetenv("DISPLAY");
        }
    }

    void SetUp() override {
        // Without a display of its own, the binary starts a private X server.
        const char* display = std::getenv("DISPLAY");
        if (display == nullptr || *display == '\0') {
            std::string problem;
            bool notInstalled = false;
            xvfb_ = startXvfb(problem, notInstalled);
            if (notInstalled) {
                GTEST_SKIP() << problem;
            }
            ASSERT_GT(xvfb_, 0) << problem;
        }

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
    pid_t xvfb_ = -1;
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
