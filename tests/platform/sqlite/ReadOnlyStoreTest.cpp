#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <sstream>
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
// Returns the child's exit status (0 when `check` held) and its console lines, passed back in `log`.
template <typename Check>
std::pair<int, std::string> inReadOnlyChild(const fs::path& dir, const fs::path& lock, Check check) {
    const fs::path log = fs::path(dir.string() + ".log");
    std::ofstream(log).close();
    fs::permissions(log, fs::perms::all);
    const pid_t child = ::fork();
    if (child == 0) {
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
        std::ofstream out(log);
        for (const auto& line : console->lines()) {
            out << line << "\n";
        }
        out.close();
        ::_exit(status);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    std::stringstream lines;
    lines << std::ifstream(log).rdbuf();
    fs::remove(log);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, lines.str()};
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
