#include "EventLog.h"

#include <algorithm>

namespace demo {

namespace {

// Cuts at a UTF-8 character boundary so that a Vietnamese text never ends in half a character.
std::string shorten(std::string text, std::size_t limit) {
    if (text.size() <= limit) {
        return text;
    }
    std::size_t cut = limit;
    while (cut > 0 && (static_cast<unsigned char>(text[cut]) & 0xC0) == 0x80) {
        --cut;
    }
    text.resize(cut);
    return text + "…";
}

}  // namespace

std::string EventLog::formatEvent(std::string_view name, const ovix::Value& data) {
    std::string line = "event " + std::string(name);
    if (!data.isNull()) {
        // Appended in two steps: g++ 12 at -O3 warns falsely on `" " + string` (-Wrestrict, GCC bug 105329).
        line += ' ';
        line += data.toJson();
    }
    return shorten(std::move(line), maxLineBytes);
}

void EventLog::addEvent(std::string_view name, const ovix::Value& data) {
    add({std::string(name), data, formatEvent(name, data)});
}

void EventLog::addNote(std::string_view text) {
    add({"", ovix::Value(), shorten(std::string(text), maxLineBytes)});
}

void EventLog::add(Entry entry) {
    const std::lock_guard lock(mutex_);
    if (printer_) {
        printer_(entry.line);
    }
    entries_.push_back(std::move(entry));
}

std::size_t EventLog::count(std::string_view name) const {
    const std::lock_guard lock(mutex_);
    return static_cast<std::size_t>(std::count_if(entries_.begin(), entries_.end(),
                                                  [&](const Entry& entry) { return entry.name == name; }));
}

ovix::Value EventLog::lastData(std::string_view name) const {
    const std::lock_guard lock(mutex_);
    for (auto it = entries_.rbegin(); it != entries_.rend(); ++it) {
        if (it->name == name) {
            return it->data;
        }
    }
    return ovix::Value();
}

std::vector<std::string> EventLog::tail(std::size_t n) const {
    const std::lock_guard lock(mutex_);
    std::vector<std::string> lines;
    const std::size_t first = entries_.size() > n ? entries_.size() - n : 0;
    for (std::size_t i = first; i < entries_.size(); ++i) {
        lines.push_back(entries_[i].line);
    }
    return lines;
}

std::vector<std::string> EventLog::names() const {
    const std::lock_guard lock(mutex_);
    std::vector<std::string> result;
    for (const auto& entry : entries_) {
        if (!entry.name.empty()) {
            result.push_back(entry.name);
        }
    }
    return result;
}

}  // namespace demo
