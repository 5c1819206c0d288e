#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

#include "ovix/Value.h"

namespace ovix::platform {

/// Reads property lists, XML or binary, into values (libplist).
///
/// Dictionaries become objects, arrays arrays, strings strings, booleans booleans, non-negative integers
/// unsigned integers and negative ones signed integers, reals doubles, dates dates; data becomes a string
/// holding its raw bytes. Threading: any thread; calls are independent.
class PropertyListReader {
  public:
    /// The property list in `bytes`; nullopt when they are not one.
    static std::optional<Value> parse(std::string_view bytes);
    /// The property list in the regular file at `path`; nullopt when it is missing, unreadable,
    /// larger than 16 MiB or not a property list.
    static std::optional<Value> readFile(const std::filesystem::path& path);
};

}  // namespace ovix::platform
