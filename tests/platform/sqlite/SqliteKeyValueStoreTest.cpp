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

TEST_F(SqliteStore, StringsAndIntegersSurviveARestart) {
    {
        SqliteKeyValueStore store(file);
        ASSERT_TRUE(store.isOpen());
        store.setString("ovix_token", "abc");
        store.setString("empty", "");
        store.setString("unicode", "Giao dịch thất bại");
        store.setInteger("PopupTabEventsLastIndex", 1);
        store.setString("gone", "x");
        store.remove("gone");
    }
    SqliteKeyValueStore again(file);
    EXPECT_EQ(again.string("ovix_token"), "abc");
    EXPECT_EQ(again.string("empty"), "") << "empty is a value";
    EXPECT_FALSE(again.string("gone")) << "absent is not empty";
    EXPECT_FALSE(again.string("never"));
    EXPECT_EQ(again.string("unicode"), "Giao dịch thất bại");
    EXPECT_EQ(again.integer("PopupTabEventsLastIndex"), 1);
    EXPECT_FALSE(again.string("PopupTabEventsLastIndex")) << "no conversion between kinds";
    EXPECT_FALSE(again.integer("ovix_token"));
    again.setString("PopupTabEventsLastIndex", "now text");
    EXPECT_FALSE(again.integer("PopupTabEventsLastIndex"));
}

TEST_F(SqliteStore, FilesAreOwnerOnly) {
    auto old = ::umask(0);  // a permissive umask must not widen the file
    {
        SqliteKeyValueStore store(file);
        store.setString("k", "v");
        for (const auto& entry : fs::directory_iterator(dir)) {
            struct stat st {};
            ASSERT_EQ(::stat(entry.path().c_str(), &st), 0);
            EXPECT_EQ(st.st_mode & 0777, 0600u) << entry.path();
        }
    }
    ::umask(old);
}

TEST_F(SqliteStore, SafeFromSeveralThreads) {
    SqliteKeyValueStore store(file);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&store, t] {
            for (int i = 0; i < 200; ++i) {
                std::string key = "t" + std::to_string(t) + "-" + std::to_string(i % 20);
                store.setString(key, std::to_string(i));
                auto back = store.string(key);
                ASSERT_TRUE(back);
                store.setInteger("shared", i);
            }
        });
    }
    for (auto& th : threads) {
        th.join();
    }
    for (int t = 0; t < 4; ++t) {
        for (int k = 0; k < 20; ++k) {
            EXPECT_EQ(store.string("t" + std::to_string(t) + "-" + std::to_string(k)),
                      std::to_string(180 + k));
        }
    }
    EXPECT_TRUE(store.integer("shared"));
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
        ASSERT_GE(child, 0);
        if (child == 0) {
            ::close(fds[0]);
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
        int value = 0;
        while (last < kKeys && ::read(fds[0], &value, sizeof value) == sizeof value) {
            last = value;
        }
        // Not right after a report: the reader's wake-up would always place the kill there.
        std::this_thread::sleep_for(std::chrono::microseconds(std::uniform_int_distribution(0, 2000)(rng)));
        ::kill(child, SIGKILL);
        int status = 0;
        ::waitpid(child, &status, 0);
        while (::read(fds[0], &value, sizeof value) == sizeof value) {
            last = value;  // committed before the child died
        }
        ::close(fds[0]);
        ASSERT_TRUE(WIFSIGNALED(status));

        SqliteKeyValueStore store(file);
        for (int i = last - kKeys + 1; i <= last; ++i) {
            auto got = store.string("key" + std::to_string(i % kKeys));
            ASSERT_TRUE(got) << i;
            // A write the child did not get to report may have landed too; it must then be whole.
            const auto colon = got->find(':');
            ASSERT_NE(colon, std::string::npos);
            EXPECT_GE(std::stoi(got->substr(0, colon)), i);
            EXPECT_EQ(got->substr(colon + 1), big) << i;
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
