#include "ovix/Value.h"

#include <algorithm>
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

// A container this value holds; moved-from containers hold null.
bool Value::ownsContainer(const Storage& data) {
    if (auto* a = std::get_if<std::shared_ptr<Array>>(&data)) {
        return *a != nullptr;
    }
    auto* d = std::get_if<std::shared_ptr<Dictionary>>(&data);
    return d != nullptr && *d != nullptr;
}

Value::~Value() {
    if (!ownsContainer(data_)) {
        return;
    }
    // Children that are containers move to a work list before their parent goes, so each container
    // is destroyed holding only leaves: the call stack stays one level deep at any nesting.
    std::vector<Storage> pending;
    pending.push_back(std::move(data_));
    while (!pending.empty()) {
        Storage current = std::move(pending.back());
        pending.pop_back();
        auto collect = [&pending](Value& child) {
            if (ownsContainer(child.data_)) {
                pending.push_back(std::move(child.data_));
            }
        };
        if (auto* a = std::get_if<std::shared_ptr<Array>>(&current); a && a->use_count() == 1) {
            std::for_each((*a)->begin(), (*a)->end(), collect);
        } else if (auto* d = std::get_if<std::shared_ptr<Dictionary>>(&current); d && d->use_count() == 1) {
            for (auto& member : **d) {
                collect(member.second);
            }
        }
    }
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

// Builds a value from the parser's events, one container per open bracket, so that no document is
// made on the way and the nesting is bounded before anything deep is built.
class ValueBuilder {
  public:
    using json = nlohmann::json;

    std::optional<Value> take() { return std::move(root_); }

    bool null() { return add(Value()); }
    bool boolean(bool b) { return add(Value(b)); }
    bool number_integer(json::number_integer_t i) { return add(Value(static_cast<long long>(i))); }
    bool number_unsigned(json::number_unsigned_t u) { return add(Value(static_cast<unsigned long long>(u))); }
    bool number_float(json::number_float_t d, const json::string_t&) { return add(Value(d)); }
    bool string(json::string_t& s) { return add(Value(std::move(s))); }
    bool binary(json::binary_t&) { return add(Value()); }
    bool start_object(std::size_t) { return open(Value(Dictionary{})); }
    bool start_array(std::size_t) { return open(Value(Array{})); }
    bool key(json::string_t& k) {
        keys_.back() = std::move(k);
        return true;
    }
    bool end_object() { return close(); }
    bool end_array() { return close(); }
    bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception&) { return false; }

  private:
    bool open(Value container) {
        if (open_.size() >= Value::maxNestingDepth) {
            return false;
        }
        open_.push_back(std::move(container));
        keys_.emplace_back();
        return true;
    }

    bool close() {
        Value done = std::move(open_.back());
        open_.pop_back();
        keys_.pop_back();
        return add(std::move(done));
    }

    bool add(Value v) {
        if (open_.empty()) {
            root_ = std::move(v);
        } else if (auto* array = open_.back().asArray()) {
            array->push_back(std::move(v));
        } else {
            // A repeated key keeps its last value.
            open_.back().asObject()->insert_or_assign(std::move(keys_.back()), std::move(v));
        }
        return true;
    }

    std::vector<Value> open_;
    std::vector<std::string> keys_;
    std::optional<Value> root_;
};

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
    ValueBuilder builder;
    if (!nlohmann::json::sax_parse(text.begin(), text.end(), &builder)) {
        return std::nullopt;
    }
    return builder.take();
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
