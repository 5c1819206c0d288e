#include <gtest/gtest.h>
#include <signal.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <random>
#include <thread>

#include "ovix/testing/CapturingConsole.h"
#include "platform/sqlite/SqliteKeyValueStore.h"

namespace {

namespace fs = std::filesystem;
using ovix::platform::SqliteKeyValueStore;

class SqliteStore : public ::testing::Test {
  protected:
    void SetUp() override {
        dir = fs::temp_directory_path() / ("ovix-kv-" + std::to_string(::getpid()) + "-" +
                                           ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(dir);
        file = dir / "store.sqlite3";
    }
    void TearDown() override { fs::remove_all(dir); }
    fs::path dir;
    fs::path file;
};

TEST_F(SqliteStore, OwnerOnlyFilesKeepStringsAndIntegersAcrossARestartEachOfItsOwnKind) {
    const auto old = ::umask(0);  // a permissive umask must not widen the files
    {
        SqliteKeyValueStore store(file);
        ASSERT_TRUE(store.isOpen());
        store.setString("text", "Giao dịch thất bại");
        store.setString("empty", "");
        store.setInteger("number", 1);
        store.setString("gone", "x");
        store.remove("gone");
        for (const auto& entry : fs::directory_iterator(dir)) {  // the database and its log files
            struct stat st {};
            ASSERT_EQ(::stat(entry.path().c_str(), &st), 0);
            EXPECT_EQ(st.st_mode & 0777, 0600u) << entry.path();
        }
    }
    ::umask(old);
    SqliteKeyValueStore again(file);
    EXPECT_EQ(again.string("text"), "Giao dịch thất bại");
    EXPECT_EQ(again.string("empty"), "") << "empty is a value";
    EXPECT_EQ(again.integer("number"), 1);
    // Absent is not empty, and neither kind reads as the other.
    for (const char* key : {"gone", "never", "number"}) {
        EXPECT_FALSE(again.string(key)) << key;
    }
    again.setString("number", "now text");
    for (const char* key : {"gone", "text", "number"}) {
        EXPECT_FALSE(again.integer(key)) << key;
    }
}

TEST_F(SqliteStore, SafeFromSeveralThreads) {
    SqliteKeyValueStore store(file);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&store, t] {
            for (int i = 0; i < 200; ++i) {
                // Appended, not "t" + to_string(t): g++ 12 at -O3 warns falsely on that form
                // (-Wrestrict, GCC bug 105329).
                const std::string key =
                    std::string("t").append(std::to_string(t)).append("-").append(std::to_string(i % 20));
                store.setString(key, std::to_string(i));
                EXPECT_EQ(store.string(key), std::to_string(i));  // each thread has keys of its own
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(store.string("t3-19"), "199");
}

TEST_F(SqliteStore, UnopenableFileReadsEmptyAndSaysSo) {
    fs::create_directories(file);  // a directory where the file should be
    auto console = std::make_shared<ovix::testing::CapturingConsole>();
    SqliteKeyValueStore store(file, console);
    EXPECT_FALSE(store.isOpen());
    store.setString("k", "v");
    EXPECT_FALSE(store.string("k"));
    ASSERT_EQ(console->lines().size(), 1u);
    EXPECT_EQ(console->lines()[0].rfind("❌ Key-value store ", 0), 0u);
}

// A child writes and reports each committed write through a pipe; it is killed at an arbitrary
// moment. Every reported value must be there, every value there must be whole, and the file must
// pass an integrity check.
TEST_F(SqliteStore, KilledWriterLeavesEveryCommittedValueIntact) {
    constexpr int kKeys = 50;
    const std::string big(std::size_t{1} << 16, 'v');
    std::mt19937 rng(std::random_device{}());
    for (int round = 0; round < 30; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        fs::remove_all(dir);
        int fds[2];
        ASSERT_EQ(::pipe(fds), 0);
        const pid_t child = ::fork();
        if (child == 0) {
            SqliteKeyValueStore store(file);
            for (int i = 0;; ++i) {
                store.setString("key" + std::to_string(i % kKeys), std::to_string(i) + ":" + big);
                if (::write(fds[1], &i, sizeof i) != sizeof i) {
                    ::_exit(1);
                }
            }
        }
        ::close(fds[1]);
        int last = -1;
        while (last < kKeys && ::read(fds[0], &last, sizeof last) == sizeof last) {
        }
        // Not right after a report: the reader's wake-up would always place the kill there.
        std::this_thread::sleep_for(std::chrono::microseconds(std::uniform_int_distribution(0, 2000)(rng)));
        ASSERT_EQ(::kill(child, SIGKILL), 0);
        ::waitpid(child, nullptr, 0);
        while (::read(fds[0], &last, sizeof last) == sizeof last) {
        }
        ::close(fds[0]);

        SqliteKeyValueStore store(file);
        for (int i = last - kKeys + 1; i <= last; ++i) {
            // A write the child did not get to report may have landed too; it must then be whole.
            const auto got = store.string("key" + std::to_string(i % kKeys)).value_or("-1:");
            EXPECT_GE(std::stoi(got), i);
            EXPECT_EQ(got.substr(got.find(':') + 1), big) << i;
        }
        sqlite3* db = nullptr;
        ASSERT_EQ(sqlite3_open_v2(file.c_str(), &db, SQLITE_OPEN_READONLY, nullptr), SQLITE_OK);
        sqlite3_stmt* check = nullptr;
        ASSERT_EQ(sqlite3_prepare_v2(db, "PRAGMA integrity_check", -1, &check, nullptr), SQLITE_OK);
        ASSERT_EQ(sqlite3_step(check), SQLITE_ROW);
        EXPECT_STREQ(reinterpret_cast<const char*>(sqlite3_column_text(check, 0)), "ok");
        sqlite3_finalize(check);
        sqlite3_close(db);
    }
}

}  // namespace
