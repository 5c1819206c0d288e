#include "platform/sqlite/SqliteKeyValueStore.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

namespace ovix::platform {

namespace fs = std::filesystem;

namespace {

// Creates the file owner-only before SQLite sees it; SQLite gives its -wal and -shm files the
// database file's permissions. 0 or the errno of the failure.
int createPrivateFile(const fs::path& file) {
    std::error_code ec;
    fs::create_directories(file.parent_path(), ec);
    int fd = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (fd < 0) {
        return errno;
    }
    ::fchmod(fd, 0600);
    ::close(fd);
    return 0;
}

// Why SQLite could not set the file up for writing: most often the folder, where the write-ahead
// log must be created.
std::string whyNotWritable(const fs::path& file, const char* sqliteMessage) {
    const fs::path folder = file.parent_path().empty() ? fs::path(".") : file.parent_path();
    if (::access(folder.c_str(), W_OK) != 0) {
        return "the folder " + folder.string() + " is not writable (" + std::strerror(errno) + ")";
    }
    return sqliteMessage;
}

// An empty string_view may carry a null pointer, which SQLite would bind as NULL, not as "".
void bindText(sqlite3_stmt* stmt, int index, std::string_view text) {
    sqlite3_bind_text(stmt, index, text.empty() ? "" : text.data(), static_cast<int>(text.size()),
                      SQLITE_TRANSIENT);
}

}  // namespace

fs::path SqliteKeyValueStore::defaultPath() {
    fs::path base;
    if (const char* xdg = std::getenv("XDG_DATA_HOME"); xdg != nullptr && *xdg == '/') {
        base = xdg;
    } else if (const char* home = std::getenv("HOME"); home != nullptr && *home != '\0') {
        base = fs::path(home) / ".local" / "share";
    } else {
        base = fs::temp_directory_path();
    }
    std::error_code ec;
    std::string program = fs::read_symlink("/proc/self/exe", ec).filename().string();
    if (ec || program.empty()) {
        program = "ovix";
    }
    return base / program / "ovix-store.sqlite3";
}

SqliteKeyValueStore::SqliteKeyValueStore(fs::path file, std::shared_ptr<Console> console)
    : file_(std::move(file)), console_(std::move(console)) {
    std::string why;
    if (int error = createPrivateFile(file_); error != 0) {
        why = std::strerror(error);
        if (!fs::exists(file_)) {
            fail("cannot create the store file (" + why + ")");
            return;
        }
    } else {
        why = openReadWrite();
        if (why.empty()) {
            return;
        }
    }
    // Committed values stay readable; writes are refused with the cause.
    if (!openReadOnly()) {
        fail("cannot open the store file (" + why + ")");
        return;
    }
    readOnlyReason_ = "read-only: " + why;
    fail("opened " + readOnlyReason_ + "; changes will not be saved");
}

std::string SqliteKeyValueStore::openReadWrite() {
    const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_FULLMUTEX;
    // WAL: a commit is one append to the log, so a killed writer never tears a value.
    // synchronous=NORMAL is durable against a killed process (not against power loss), which is
    // what a game's preferences need.
    const char* setup =
        "PRAGMA journal_mode=WAL;"
        "PRAGMA synchronous=NORMAL;"
        "CREATE TABLE IF NOT EXISTS kv (key TEXT PRIMARY KEY NOT NULL, value NOT NULL) WITHOUT ROWID;";
    if (sqlite3_open_v2(file_.c_str(), &db_, flags, nullptr) == SQLITE_OK) {
        sqlite3_busy_timeout(db_, 5000);
        if (sqlite3_exec(db_, setup, nullptr, nullptr, nullptr) == SQLITE_OK && prepareStatements()) {
            return {};
        }
    }
    std::string why = whyNotWritable(file_, db_ ? sqlite3_errmsg(db_) : "cannot open the store");
    closeDatabase();
    return why;
}

bool SqliteKeyValueStore::openReadOnly() {
    // A read-only folder cannot hold the log's shared-memory file: then the file is read as it
    // stands, as an immutable database.
    for (const std::string& name :
         {"file:" + file_.string() + "?mode=ro", "file:" + file_.string() + "?immutable=1"}) {
        const int flags = SQLITE_OPEN_READONLY | SQLITE_OPEN_URI | SQLITE_OPEN_FULLMUTEX;
        if (sqlite3_open_v2(name.c_str(), &db_, flags, nullptr) == SQLITE_OK && prepareStatements() &&
            sqlite3_step(select_) != SQLITE_ERROR) {
            sqlite3_reset(select_);
            return true;
        }
        closeDatabase();
    }
    return false;
}

bool SqliteKeyValueStore::prepareStatements() {
    select_ = prepare("SELECT value FROM kv WHERE key = ?1");
    upsert_ =
        prepare("INSERT INTO kv (key, value) VALUES (?1, ?2) ON CONFLICT(key) DO UPDATE SET value = ?2");
    delete_ = prepare("DELETE FROM kv WHERE key = ?1");
    return select_ && upsert_ && delete_;
}

void SqliteKeyValueStore::closeDatabase() {
    sqlite3_finalize(select_);
    sqlite3_finalize(upsert_);
    sqlite3_finalize(delete_);
    select_ = upsert_ = delete_ = nullptr;
    sqlite3_close(db_);
    db_ = nullptr;
}

SqliteKeyValueStore::~SqliteKeyValueStore() {
    closeDatabase();
}

// Whether a write may go ahead; a store opened read-only says why it drops the write.
bool SqliteKeyValueStore::writable(std::string_view key) const {
    if (!readOnlyReason_.empty()) {
        fail("cannot save \"" + std::string(key) + "\": the store is " + readOnlyReason_);
        return false;
    }
    return upsert_ != nullptr;
}

sqlite3_stmt* SqliteKeyValueStore::prepare(const char* sql) {
    sqlite3_stmt* stmt = nullptr;
    if (sqlite3_prepare_v3(db_, sql, -1, SQLITE_PREPARE_PERSISTENT, &stmt, nullptr) != SQLITE_OK) {
        return nullptr;
    }
    return stmt;
}

void SqliteKeyValueStore::fail(std::string_view what) const {
    if (console_) {
        console_->printLine("❌ Key-value store " + file_.string() + ": " + std::string(what));
    }
}

std::optional<std::string> SqliteKeyValueStore::string(std::string_view key) const {
    std::lock_guard lock(mutex_);
    if (!select_) {
        return std::nullopt;
    }
    bindText(select_, 1, key);
    std::optional<std::string> out;
    if (sqlite3_step(select_) == SQLITE_ROW && sqlite3_column_type(select_, 0) == SQLITE_TEXT) {
        auto* text = reinterpret_cast<const char*>(sqlite3_column_text(select_, 0));
        out.emplace(text, static_cast<std::size_t>(sqlite3_column_bytes(select_, 0)));
    }
    sqlite3_reset(select_);
    sqlite3_clear_bindings(select_);
    return out;
}

std::optional<std::int64_t> SqliteKeyValueStore::integer(std::string_view key) const {
    std::lock_guard lock(mutex_);
    if (!select_) {
        return std::nullopt;
    }
    bindText(select_, 1, key);
    std::optional<std::int64_t> out;
    if (sqlite3_step(select_) == SQLITE_ROW && sqlite3_column_type(select_, 0) == SQLITE_INTEGER) {
        out = sqlite3_column_int64(select_, 0);
    }
    sqlite3_reset(select_);
    sqlite3_clear_bindings(select_);
    return out;
}

void SqliteKeyValueStore::setString(std::string_view key, std::string_view value) {
    std::lock_guard lock(mutex_);
    if (!writable(key)) {
        return;
    }
    bindText(upsert_, 1, key);
    bindText(upsert_, 2, value);
    if (sqlite3_step(upsert_) != SQLITE_DONE) {
        fail(sqlite3_errmsg(db_));
    }
    sqlite3_reset(upsert_);
    sqlite3_clear_bindings(upsert_);
}

void SqliteKeyValueStore::setInteger(std::string_view key, std::int64_t value) {
    std::lock_guard lock(mutex_);
    if (!writable(key)) {
        return;
    }
    bindText(upsert_, 1, key);
    sqlite3_bind_int64(upsert_, 2, value);
    if (sqlite3_step(upsert_) != SQLITE_DONE) {
        fail(sqlite3_errmsg(db_));
    }
    sqlite3_reset(upsert_);
    sqlite3_clear_bindings(upsert_);
}

void SqliteKeyValueStore::remove(std::string_view key) {
    std::lock_guard lock(mutex_);
    if (!writable(key)) {
        return;
    }
    bindText(delete_, 1, key);
    if (sqlite3_step(delete_) != SQLITE_DONE) {
        fail(sqlite3_errmsg(db_));
    }
    sqlite3_reset(delete_);
    sqlite3_clear_bindings(delete_);
}

}  // namespace ovix::platform
