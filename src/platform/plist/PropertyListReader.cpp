#include "platform/plist/PropertyListReader.h"

#include "platform/plist/PropertyListNesting.h"

#include <plist/plist.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <limits>
#include <memory>
#include <system_error>

namespace ovix::platform {

namespace {

constexpr std::uintmax_t kMaxFileSize = 16u << 20;
// Property-list dates count seconds from 2001-01-01, Unix time from 1970-01-01.
constexpr std::int64_t kPlistEpochInUnixSeconds = 978307200;

struct PlistFree {
    void operator()(void* node) const { plist_free(static_cast<plist_t>(node)); }
};
using PlistPtr = std::unique_ptr<void, PlistFree>;

struct CFree {
    void operator()(char* p) const { std::free(p); }
};
using CString = std::unique_ptr<char, CFree>;

std::optional<Value> toValue(plist_t node, std::size_t depth);

std::optional<Value> arrayValue(plist_t node, std::size_t depth) {
    Array out;
    const std::uint32_t n = plist_array_get_size(node);
    out.reserve(n);
    for (std::uint32_t i = 0; i < n; ++i) {
        auto item = toValue(plist_array_get_item(node, i), depth);
        if (!item) {
            return std::nullopt;
        }
        out.push_back(std::move(*item));
    }
    return Value(std::move(out));
}

std::optional<Value> dictValue(plist_t node, std::size_t depth) {
    Dictionary out;
    plist_dict_iter it = nullptr;
    plist_dict_new_iter(node, &it);
    std::unique_ptr<void, decltype(&std::free)> iterator(it, &std::free);
    for (;;) {
        char* rawKey = nullptr;
        plist_t item = nullptr;
        plist_dict_next_item(node, it, &rawKey, &item);
        CString key(rawKey);
        if (!item) {
            break;
        }
        auto value = toValue(item, depth);
        if (!value) {
            return std::nullopt;
        }
        out.insert_or_assign(std::string(key ? key.get() : ""), std::move(*value));
    }
    return Value(std::move(out));
}

// `depth` counts the arrays and dictionaries around `node`; deeper than a value may nest is refused.
std::optional<Value> toValue(plist_t node, std::size_t depth) {
    switch (plist_get_node_type(node)) {
        case PLIST_BOOLEAN: {
            std::uint8_t b = 0;
            plist_get_bool_val(node, &b);
            return Value(b != 0);
        }
        case PLIST_UINT: {
            // The library hands every integer over as 64 unsigned bits; property lists hold signed
            // 64-bit integers far more often than unsigned ones above 2^63, so the top half is negative.
            std::uint64_t u = 0;
            plist_get_uint_val(node, &u);
            if (u > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max())) {
                return Value(static_cast<long long>(static_cast<std::int64_t>(u)));
            }
            return Value(static_cast<unsigned long long>(u));
        }
        case PLIST_UID: {
            std::uint64_t u = 0;
            plist_get_uid_val(node, &u);
            return Value(static_cast<unsigned long long>(u));
        }
        case PLIST_REAL: {
            double d = 0;
            plist_get_real_val(node, &d);
            return Value(d);
        }
        case PLIST_STRING: {
            // By pointer and length: the string may hold a NUL byte.
            std::uint64_t length = 0;
            const char* text = plist_get_string_ptr(node, &length);
            return Value(text ? std::string(text, length) : std::string());
        }
        case PLIST_DATA: {
            char* raw = nullptr;
            std::uint64_t length = 0;
            plist_get_data_val(node, &raw, &length);
            CString bytes(raw);
            return Value(bytes ? std::string(bytes.get(), length) : std::string());
        }
        case PLIST_DATE: {
            std::int32_t sec = 0, usec = 0;
            plist_get_date_val(node, &sec, &usec);
            auto since =
                std::chrono::seconds(kPlistEpochInUnixSeconds + sec) + std::chrono::microseconds(usec);
            return Value(Date(std::chrono::duration_cast<Date::duration>(since)));
        }
        case PLIST_ARRAY:
        case PLIST_DICT:
            if (depth >= Value::maxNestingDepth) {
                return std::nullopt;
            }
            return plist_get_node_type(node) == PLIST_ARRAY ? arrayValue(node, depth + 1)
                                                            : dictValue(node, depth + 1);
        default:
            return Value();
    }
}

}  // namespace

std::optional<Value> PropertyListReader::parse(std::string_view bytes) {
    if (bytes.empty() || bytes.size() > kMaxFileSize) {
        return std::nullopt;
    }
    // XML cannot hold a NUL character, and libplist would keep one inside a dictionary key and then
    // fail an assertion reading it back.
    if (bytes.substr(0, 6) != "bplist" && bytes.find('\0') != std::string_view::npos) {
        return std::nullopt;
    }
    // libplist recurses once per level while parsing: measure first, and refuse what nests too deep.
    auto depth = PropertyListNesting::measure(bytes, Value::maxNestingDepth);
    if (!depth || *depth > Value::maxNestingDepth) {
        return std::nullopt;
    }
    plist_t root = nullptr;
    plist_from_memory(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &root);
    PlistPtr owned(root);
    if (!root) {
        return std::nullopt;
    }
    return toValue(root, 0);
}

std::optional<Value> PropertyListReader::readFile(const std::filesystem::path& path) {
    std::error_code ec;
    if (!std::filesystem::is_regular_file(path, ec)) {
        return std::nullopt;
    }
    auto size = std::filesystem::file_size(path, ec);
    if (ec || size > kMaxFileSize) {
        return std::nullopt;
    }
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        return std::nullopt;
    }
    std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (in.bad()) {
        return std::nullopt;
    }
    return parse(bytes);
}

}  // namespace ovix::platform
