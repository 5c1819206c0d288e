#pragma once

#include <filesystem>
#include <memory>
#include <mutex>
#include <string>

#include "ovix/platform/Console.h"
#include "ovix/platform/KeyValueStore.h"

struct sqlite3;
struct sqlite3_stmt;

namespace ovix::platform {

/// The persistent key-value store on one SQLite file.
///
/// Each write is its own transaction in write-ahead-log mode: a process killed at any moment leaves
/// every committed value intact and the file readable. The file and its companions are created with
/// mode 0600. One connection, serialised by a mutex: safe from any thread.
/// A store whose file or folder cannot be written opens read-only: committed values stay readable,
/// one console line names the cause, and each write is dropped with a line saying why (writes are
/// fire-and-forget); nothing on disk changes. A store that cannot open its file at all prints one
/// line and reads as empty.
class SqliteKeyValueStore : public KeyValueStore {
  public:
    /// `console` receives the failure lines; may be null.
    explicit SqliteKeyValueStore(std::filesystem::path file, std::shared_ptr<Console> console = nullptr);
    ~SqliteKeyValueStore() override;
    SqliteKeyValueStore(const SqliteKeyValueStore&) = delete;
    SqliteKeyValueStore& operator=(const SqliteKeyValueStore&) = delete;

    /// `$XDG_DATA_HOME/<program>/ovix-store.sqlite3`, with `~/.local/share` when XDG_DATA_HOME is unset.
    static std::filesystem::path defaultPath();

    std::optional<std::string> string(std::string_view key) const override;
    std::optional<std::int64_t> integer(std::string_view key) const override;
    void setString(std::string_view key, std::string_view value) override;
    void setInteger(std::string_view key, std::int64_t value) override;
    void remove(std::string_view key) override;

    bool isOpen() const { return db_ != nullptr; }

  private:
    /// "" once open for writing; otherwise why not, with everything closed again.
    std::string openReadWrite();
    bool openReadOnly();
    bool prepareStatements();
    void closeDatabase();
    bool writable(std::string_view key) const;
    void fail(std::string_view what) const;
    sqlite3_stmt* prepare(const char* sql);

    std::filesystem::path file_;
    std::shared_ptr<Console> console_;
    mutable std::mutex mutex_;
    sqlite3* db_ = nullptr;
    sqlite3_stmt* select_ = nullptr;
    sqlite3_stmt* upsert_ = nullptr;
    sqlite3_stmt* delete_ = nullptr;
    std::string readOnlyReason_;  ///< empty while writes are possible
};

}  // namespace ovix::platform
