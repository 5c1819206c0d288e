#pragma once

#include <cstddef>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "ovix/Value.h"

namespace demo {

/// What the game heard from the SDK, in arrival order: every listener event with its data, and the
/// game's own notes (user info, HUD actions). The HUD draws the last lines; the tour counts events.
///
/// Threading: any thread (the SDK raises purchases on the store's thread, user info arrives on the
/// network thread). Each new line goes to `printer` on the thread that added it, under the log's lock,
/// so printed lines never interleave; `printer` must not call back into the log.
class EventLog {
  public:
    using Printer = std::function<void(const std::string& line)>;
    explicit EventLog(Printer printer = {}) : printer_(std::move(printer)) {}

    /// Records an SDK event; its line is "event NAME" plus the data as JSON unless it is null.
    void addEvent(std::string_view name, const ovix::Value& data);
    /// Records a line of the game's own.
    void addNote(std::string_view text);

    /// How many times `name` has been raised so far.
    std::size_t count(std::string_view name) const;
    /// The data of the last `name` event; null when there was none.
    ovix::Value lastData(std::string_view name) const;
    /// The last `n` lines, oldest first.
    std::vector<std::string> tail(std::size_t n) const;
    /// Every event name in arrival order.
    std::vector<std::string> names() const;

    /// The longest a line is kept on screen; longer data is cut with "…".
    static constexpr std::size_t maxLineBytes = 160;
    /// The line for an event, as printed and drawn.
    static std::string formatEvent(std::string_view name, const ovix::Value& data);

  private:
    struct Entry {
        std::string name;  // empty for a note
        ovix::Value data;
        std::string line;
    };
    void add(Entry entry);

    Printer printer_;
    mutable std::mutex mutex_;
    std::vector<Entry> entries_;
};

}  // namespace demo
