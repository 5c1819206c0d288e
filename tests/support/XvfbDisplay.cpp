#include "support/XvfbDisplay.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>

namespace ovix::test {

namespace {

bool onPath(const std::string& program) {
    const char* path = std::getenv("PATH");
    std::stringstream dirs(path ? path : "/usr/bin:/bin");
    std::string dir;
    while (std::getline(dirs, dir, ':')) {
        if (!dir.empty() && ::access((std::filesystem::path(dir) / program).c_str(), X_OK) == 0) {
            return true;
        }
    }
    return false;
}

}  // namespace

std::unique_ptr<XvfbDisplay> XvfbDisplay::startIfNeeded(std::string& problem, bool& notInstalled) {
    problem.clear();
    notInstalled = false;
    const char* existing = std::getenv("DISPLAY");
    if (existing != nullptr && *existing != '\0') {
        return nullptr;
    }
    if (!onPath("Xvfb")) {
        notInstalled = true;
        problem = "Xvfb is not installed";
        return nullptr;
    }
    int fds[2];
    if (::pipe(fds) != 0) {
        problem = "pipe failed";
        return nullptr;
    }
    const pid_t pid = ::fork();
    if (pid < 0) {
        problem = "fork failed";
        return nullptr;
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
        ::kill(pid, SIGTERM);
        ::waitpid(pid, nullptr, 0);
        problem = "Xvfb did not start";
        return nullptr;
    }
    ::setenv("DISPLAY", (":" + number).c_str(), 1);
    return std::unique_ptr<XvfbDisplay>(new XvfbDisplay(pid));
}

XvfbDisplay::~XvfbDisplay() {
    ::kill(pid_, SIGTERM);
    ::waitpid(pid_, nullptr, 0);
    ::unsetenv("DISPLAY");
}

}  // namespace ovix::test
