#include "ovix/Value.h"

#include <cmath>
#include <nlohmann/json.hpp>
#include <ostream>

namespace ovix {

// Arrays and objects sit behind a pointer so that Value can hold containers of itself; copies are
// deep so that a copied payload never changes under its receiver.
Value::Value(Array a) : data_(std::make_shared<Array>(std::move(a))) {}
Value::Value(Dictionary d) : data_(std::make_shared<Dictionary>(std::move(d))) {}

Value::Value(const Value& other) {
    *this = other;
}

Value& Value::operator=(const Value& other) {
    if (this == &other) {
        return *this;
    }
    if (auto* a = std::get_if<std::shared_ptr<Array>>(&other.data_)) {
        data_ = std::make_shared<Array>(**a);
    } else if (auto* d = std::get_if<std::shared_ptr<Dictionary>>(&other.data_)) {
        data_ = std::make_shared<Dictionary>(**d);
    } else {
        data_ = other.data_;
    }
    return *this;
}

Value::Kind Value::kind() const {
    return static_cast<Kind>(data_.index());
}

std::optional<bool> Value::asBool() const {
    if (auto* v = std::get_if<bool>(&data_)) {
        return *v;
    }
    return std::nullopt;
}

std::optional<std::int64_t> Value::asInt() const {
    if (auto* v = std::get_if<std::int64_t>(&data_)) {
        return *v;
    }
    return std::nullopt;
}

std::optional<std::uint64_t> Value::asUInt() const {
    if (auto* v = std::get_if<std::uint64_t>(&data_)) {
        return *v;
    }
    return std::nullopt;
}

std::optional<double> Value::asDouble() const {
    if (auto* v = std::get_if<double>(&data_)) {
        return *v;
    }
    return std::nullopt;
}

std::optional<Date> Value::asDate() const {
    if (auto* v = std::get_if<Date>(&data_)) {
        return *v;
    }
    return std::nullopt;
}

const std::string* Value::asString() const {
    return std::get_if<std::string>(&data_);
}

const Array* Value::asArray() const {
    auto* p = std::get_if<std::shared_ptr<Array>>(&data_);
    return p ? p->get() : nullptr;
}

const Dictionary* Value::asObject() const {
    auto* p = std::get_if<std::shared_ptr<Dictionary>>(&data_);
    return p ? p->get() : nullptr;
}

Array* Value::asArray() {
    auto* p = std::get_if<std::shared_ptr<Array>>(&data_);
    return p ? p->get() : nullptr;
}

Dictionary* Value::asObject() {
    auto* p = std::get_if<std::shared_ptr<Dictionary>>(&data_);
    return p ? p->get() : nullptr;
}

const Value* Value::find(std::string_view key) const {
    const Dictionary* object = asObject();
    if (object == nullptr) {
        return nullptr;
    }
    auto it = object->find(key);
    return it == object->end() ? nullptr : &it->second;
}

std::optional<std::string> Value::stringAt(std::string_view key) const {
    const Value* member = find(key);
    if (member == nullptr || member->asString() == nullptr) {
        return std::nullopt;
    }
    return *member->asString();
}

namespace {

Value fromNlohmann(const nlohmann::json& j) {
    switch (j.type()) {
        case nlohmann::json::value_t::null:
        case nlohmann::json::value_t::discarded:
            return Value();
        case nlohmann::json::value_t::boolean:
            return Value(j.get<bool>());
        case nlohmann::json::value_t::number_integer:
            return Value(static_cast<long long>(j.get<std::int64_t>()));
        case nlohmann::json::value_t::number_unsigned:
            return Value(static_cast<unsigned long long>(j.get<std::uint64_t>()));
        case nlohmann::json::value_t::number_float:
            return Value(j.get<double>());
        case nlohmann::json::value_t::string:
            return Value(j.get_ref<const std::string&>());
        case nlohmann::json::value_t::array: {
            Array a;
            a.reserve(j.size());
            for (const auto& e : j) {
                a.push_back(fromNlohmann(e));
            }
            return Value(std::move(a));
        }
        case nlohmann::json::value_t::object: {
            Dictionary d;
            for (auto it = j.begin(); it != j.end(); ++it) {
                d.emplace(it.key(), fromNlohmann(it.value()));
            }
            return Value(std::move(d));
        }
        case nlohmann::json::value_t::binary:
            return Value();
    }
    return Value();
}

nlohmann::json toNlohmann(const Value& v) {
    switch (v.kind()) {
        case Value::Kind::Null:
            return nullptr;
        case Value::Kind::Bool:
            return *v.asBool();
        case Value::Kind::Int:
            return *v.asInt();
        case Value::Kind::UInt:
            return *v.asUInt();
        case Value::Kind::Double: {
            double d = *v.asDouble();
            return std::isfinite(d) ? nlohmann::json(d) : nlohmann::json(nullptr);
        }
        case Value::Kind::String:
            return *v.asString();
        case Value::Kind::Date: {
            auto since = v.asDate()->time_since_epoch();
            return std::chrono::duration<double>(since).count();
        }
        case Value::Kind::Array: {
            auto out = nlohmann::json::array();
            for (const auto& e : *v.asArray()) {
                out.push_back(toNlohmann(e));
            }
            return out;
        }
        case Value::Kind::Object: {
            auto out = nlohmann::json::object();
            for (const auto& [k, e] : *v.asObject()) {
                out[k] = toNlohmann(e);
            }
            return out;
        }
    }
    return nullptr;
}

}  // namespace

std::optional<Value> Value::fromJson(std::string_view text) {
    auto parsed = nlohmann::json::parse(text.begin(), text.end(), nullptr, /*allow_exceptions=*/false);
    if (parsed.is_discarded()) {
        return std::nullopt;
    }
    return fromNlohmann(parsed);
}

std::string Value::toJson() const {
    // Replace invalid UTF-8 rather than throw: a payload must always serialise.
    return toNlohmann(*this).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

bool operator==(const Value& a, const Value& b) {
    if (a.kind() != b.kind()) {
        return false;
    }
    switch (a.kind()) {
        case Value::Kind::Array:
            return *a.asArray() == *b.asArray();
        case Value::Kind::Object:
            return *a.asObject() == *b.asObject();
        default:
            return a.data_ == b.data_;
    }
}

std::ostream& operator<<(std::ostream& out, const Value& value) {
    return out << value.toJson();
}

}  // namespace ovix
