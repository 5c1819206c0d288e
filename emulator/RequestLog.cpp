#include "emulator/RequestLog.h"

#include <algorithm>
#include <cctype>

namespace ovix::emulator {

namespace {

bool sameName(const std::string& a, const std::string& b) {
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(),
                      [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

}  // namespace

std::string RequestLog::Entry::header(const std::string& name) const {
    for (const auto& [key, value] : headers) {
        if (sameName(key, name)) {
            return value;
        }
    }
    return {};
}

nlohmann::json RequestLog::Entry::toJson() const {
    auto list = nlohmann::json::array();
    for (const auto& [name, value] : headers) {
        list.push_back({{"name", name}, {"value", value}});
    }
    return {{"timeMs", timeMs},       {"server", server}, {"route", route},
            {"method", method},       {"target", target}, {"headers", list},
            {"bodyBytes", bodyBytes}, {"status", status}, {"fault", fault}};
}

std::string RequestLog::Entry::line() const {
    std::string out = method + " " + target + " -> " + (status == 0 ? "dropped" : std::to_string(status));
    if (!fault.empty()) {
        out += " [fault " + fault + "]";
    }
    out += " |";
    for (const auto& [name, value] : headers) {
        out += " " + name + ": " + value + ";";
    }
    if (bodyBytes > 0) {
        out += " body " + std::to_string(bodyBytes) + " bytes";
    }
    return out;
}

RequestLog::RequestLog(std::size_t capacity, Printer printer)
    : capacity_(std::max<std::size_t>(capacity, 1)), printer_(std::move(printer)) {}

void RequestLog::record(Entry entry) {
    std::lock_guard lock(mutex_);
    if (printer_) {
        printer_(entry.line());
    }
    entries_.push_back(std::move(entry));
    while (entries_.size() > capacity_) {
        entries_.pop_front();
    }
}

std::vector<RequestLog::Entry> RequestLog::entries(const std::string& route) const {
    std::lock_guard lock(mutex_);
    std::vector<Entry> out;
    for (const auto& entry : entries_) {
        if (route.empty() || entry.route == route) {
            out.push_back(entry);
        }
    }
    return out;
}

void RequestLog::clear() {
    std::lock_guard lock(mutex_);
    entries_.clear();
}

}  // namespace ovix::emulator
