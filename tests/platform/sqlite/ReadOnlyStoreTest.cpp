#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <string>

#include "ovix/testing/CapturingConsole.h"
#include "platform/sqlite/SqliteKeyValueStore.h"
#include "support/ScratchDirectory.h"

namespace {

namespace fs = std::filesystem;
using ovix::platform::SqliteKeyValueStore;
using ::testing::HasSubstr;

constexpr uid_t kNobody = 65534;

// Runs `check` in a child that cannot write where the store lives: the owner's write bits are taken
// away and, when the tests run as root (who ignores them), the child becomes an unprivileged owner.
// The child's console lines come back to the parent; it exits 0 when `check` held.
template <typename Check>
std::pair<int, std::string> inReadOnlyChild(const fs::path& dir, const fs::path& lock, Check check) {
    int pipeFds[2];
    if (::pipe(pipeFds) != 0) {
        return {-1, ""};
    }
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(pipeFds[0]);
        if (::geteuid() == 0) {
            for (const auto& path : {dir, dir / "store.sqlite3"}) {
                (void)::chown(path.c_str(), kNobody, kNobody);
            }
            if (::setgid(kNobody) != 0 || ::setuid(kNobody) != 0) {
                ::_exit(90);
            }
        }
        ::chmod(lock.c_str(), lock == dir ? 0500 : 0400);
        auto console = std::make_shared<ovix::testing::CapturingConsole>();
        const int status = check(console) ? 0 : 1;
        std::string lines;
        for (const auto& line : console->lines()) {
            lines += line + "\n";
        }
        (void)!::write(pipeFds[1], lines.data(), lines.size());
        ::_exit(status);
    }
    ::close(pipeFds[1]);
    std::string lines;
    char buffer[4096];
    for (ssize_t n; (n = ::read(pipeFds[0], buffer, sizeof buffer)) > 0;) {
        lines.append(buffer, static_cast<std::size_t>(n));
    }
    ::close(pipeFds[0]);
    int status = 0;
    ::waitpid(child, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, lines};
}

}  // namespace

TEST(SqliteReadOnlyStore, CommittedValuesStayReadableAndWritesFailNamingTheCause) {
    for (const bool folderLocked : {false, true}) {
        SCOPED_TRACE(folderLocked ? "read-only folder" : "read-only file");
        ovix::test::ScratchDirectory dir("ovix-readonly");
        const fs::path file = dir.path() / "store.sqlite3";
        SqliteKeyValueStore(file).setString("ovix_token", "committed");

        auto [status, lines] =
            inReadOnlyChild(dir.path(), folderLocked ? dir.path() : file, [&](auto console) {
                SqliteKeyValueStore store(file, console);
                const bool read = store.string("ovix_token") == "committed";
                store.setString("ovix_token", "lost");
                return read && store.string("ovix_token") == "committed";
            });
        EXPECT_EQ(status, 0) << lines;
        EXPECT_THAT(lines, HasSubstr("opened read-only: "));
        EXPECT_THAT(lines, HasSubstr(folderLocked ? "is not writable" : "Permission denied"));
        EXPECT_THAT(lines, HasSubstr("cannot save \"ovix_token\""));
        EXPECT_THAT(lines, ::testing::Not(HasSubstr("cannot create")));
        ::chmod(dir.path().c_str(), 0700);
        EXPECT_EQ(SqliteKeyValueStore(file).string("ovix_token"), "committed") << "nothing on disk changed";
    }
}
