#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace ovix {

class Value;

/// A point in time, as carried by payloads such as a transaction's purchase date.
using Date = std::chrono::system_clock::time_point;
/// String-keyed map of loosely typed values (the payload of most events and responses).
using Dictionary = std::map<std::string, Value, std::less<>>;
using Array = std::vector<Value>;

/// The dynamic value that payloads and loosely typed dictionaries are made of.
///
/// A value holds exactly one kind. The typed accessors never convert between kinds: a string "5" is
/// not an integer, an unsigned 5 is not a signed 5 and an integer is not a double. Each accessor
/// returns a pointer (null when the kind differs) or an optional.
class Value {
  public:
    enum class Kind { Null, Bool, Int, UInt, Double, String, Date, Array, Object };

    /// The deepest nesting of arrays and objects any conversion into a value accepts (JSON text,
    /// property lists, catalogs, page messages). Deeper input is refused as a whole, so that no
    /// input can exhaust the stack of the thread converting it.
    static constexpr std::size_t maxNestingDepth = 256;

    Value() = default;
    Value(std::nullptr_t) {}
    Value(bool b) : data_(b) {}
    Value(int i) : data_(static_cast<std::int64_t>(i)) {}
    Value(long i) : data_(static_cast<std::int64_t>(i)) {}
    Value(long long i) : data_(static_cast<std::int64_t>(i)) {}
    Value(unsigned int u) : data_(static_cast<std::uint64_t>(u)) {}
    Value(unsigned long u) : data_(static_cast<std::uint64_t>(u)) {}
    Value(unsigned long long u) : data_(static_cast<std::uint64_t>(u)) {}
    Value(double d) : data_(d) {}
    Value(const char* s) : data_(std::string(s)) {}
    Value(std::string s) : data_(std::move(s)) {}
    Value(std::string_view s) : data_(std::string(s)) {}
    Value(Date d) : data_(d) {}
    Value(Array a);
    Value(Dictionary d);

    Value(const Value& other);
    Value(Value&& other) noexcept = default;
    Value& operator=(const Value& other);
    Value& operator=(Value&& other) noexcept = default;
    /// Frees nested arrays and objects without recursing, however deep the value.
    ~Value();

    Kind kind() const;
    bool isNull() const { return kind() == Kind::Null; }

    std::optional<bool> asBool() const;
    std::optional<std::int64_t> asInt() const;
    std::optional<std::uint64_t> asUInt() const;
    std::optional<double> asDouble() const;
    std::optional<Date> asDate() const;
    const std::string* asString() const;
    const Array* asArray() const;
    const Dictionary* asObject() const;
    Array* asArray();
    Dictionary* asObject();

    /// The member `key` of an object; null when this is not an object or has no such member.
    const Value* find(std::string_view key) const;
    /// The string under `key` of an object, or nullopt when absent or not a string.
    std::optional<std::string> stringAt(std::string_view key) const;

    /// Parses JSON text straight into a value (no intermediate document). Returns nullopt for text
    /// that is not JSON (truncated, trailing garbage, invalid UTF-8) or that nests arrays and objects
    /// deeper than `maxNestingDepth`. Integers that fit become Int (negative) or UInt (non-negative) — a JSON
    /// number without fraction or exponent that fits in 64 bits; other numbers become Double.
    static std::optional<Value> fromJson(std::string_view text);
    /// Compact JSON text (no spaces, keys in the map's order). A Date is written as seconds since
    /// 1970 (a number); non-finite doubles are written as null.
    std::string toJson() const;

    friend bool operator==(const Value& a, const Value& b);

  private:
    using Storage = std::variant<std::monostate, bool, std::int64_t, std::uint64_t, double, std::string, Date,
                                 std::shared_ptr<Array>, std::shared_ptr<Dictionary>>;
    static bool ownsContainer(const Storage& data);

    Storage data_;
};

/// Writes the value's JSON text (also how test frameworks print it).
std::ostream& operator<<(std::ostream& out, const Value& value);

}  // namespace ovix
