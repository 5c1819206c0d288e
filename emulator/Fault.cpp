#include "emulator/Fault.h"

#include <charconv>
#include <stdexcept>

namespace ovix::emulator {

namespace {

// The string itself, compared as a string: json == "literal" builds a temporary json, which g++ 12 at
// -O3 warns about falsely (-Warray-bounds inside nlohmann's binary comparison).
const std::string& stringOf(const nlohmann::json& value) {
    return value.get_ref<const std::string&>();
}

int number(std::string_view text, std::string_view item, int low, int high) {
    int value = 0;
    const auto* end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, value);
    if (text.empty() || error != std::errc{} || rest != end || value < low || value > high) {
        throw std::invalid_argument("fault item \"" + std::string(item) + "\": expected a number from " +
                                    std::to_string(low) + " to " + std::to_string(high));
    }
    return value;
}

void apply(Fault& fault, std::string_view item) {
    const auto colon = item.find(':');
    const auto name = item.substr(0, colon);
    const auto value = colon == std::string_view::npos ? std::string_view{} : item.substr(colon + 1);
    const bool hasValue = colon != std::string_view::npos;
    if (name == "latency" && hasValue) {
        fault.latencyMs = number(value, item, 0, 600000);
    } else if (name == "status" && hasValue) {
        fault.status = number(value, item, 100, 599);
    } else if (name == "times" && hasValue) {
        fault.times = number(value, item, 1, 1000000);
    } else if (item == "malformed") {
        fault.body = Fault::Body::Malformed;
    } else if (item == "truncated") {
        fault.body = Fault::Body::Truncated;
    } else if (item == "drop") {
        fault.drop = true;
    } else {
        throw std::invalid_argument(
            "unknown fault item \"" + std::string(item) +
            "\" (latency:<ms>, status:<code>, malformed, truncated, drop, times:<n>)");
    }
}

std::string bodyName(Fault::Body body) {
    switch (body) {
        case Fault::Body::Malformed:
            return "malformed";
        case Fault::Body::Truncated:
            return "truncated";
        case Fault::Body::Intact:
            break;
    }
    return "intact";
}

}  // namespace

Fault Fault::parse(std::string_view text) {
    if (text.empty()) {
        throw std::invalid_argument("empty fault");
    }
    Fault fault;
    std::size_t start = 0;
    while (start <= text.size()) {
        const auto comma = std::min(text.find(',', start), text.size());
        apply(fault, text.substr(start, comma - start));
        start = comma + 1;
    }
    return fault;
}

std::string Fault::describe() const {
    std::string out;
    auto add = [&out](const std::string& item) { out += (out.empty() ? "" : ",") + item; };
    if (latencyMs > 0) {
        add("latency:" + std::to_string(latencyMs));
    }
    if (status != 0) {
        add("status:" + std::to_string(status));
    }
    if (body != Body::Intact) {
        add(bodyName(body));
    }
    if (drop) {
        add("drop");
    }
    if (times > 0) {
        add("times:" + std::to_string(times));
    }
    return out.empty() ? "none" : out;
}

Fault Fault::fromJson(const nlohmann::json& json) {
    if (!json.is_object()) {
        throw std::invalid_argument("a fault is a JSON object");
    }
    Fault fault;
    for (const auto& [key, value] : json.items()) {
        const bool integer = value.is_number_integer();
        if (key == "latencyMs" && integer) {
            fault.latencyMs = number(std::to_string(value.get<long long>()), key, 0, 600000);
        } else if (key == "status" && integer) {
            fault.status =
                value.get<int>() == 0 ? 0 : number(std::to_string(value.get<long long>()), key, 100, 599);
        } else if (key == "times" && integer) {
            fault.times = number(std::to_string(value.get<long long>()), key, 0, 1000000);
        } else if (key == "drop" && value.is_boolean()) {
            fault.drop = value.get<bool>();
        } else if (key == "body" && value.is_string() && stringOf(value) == "malformed") {
            fault.body = Body::Malformed;
        } else if (key == "body" && value.is_string() && stringOf(value) == "truncated") {
            fault.body = Body::Truncated;
        } else if (key == "body" && value.is_string() && stringOf(value) == "intact") {
            fault.body = Body::Intact;
        } else {
            throw std::invalid_argument("fault member \"" + key +
                                        "\": unknown, or a value of the wrong type");
        }
    }
    return fault;
}

nlohmann::json Fault::toJson() const {
    return {{"latencyMs", latencyMs},
            {"status", status},
            {"body", bodyName(body)},
            {"drop", drop},
            {"times", times}};
}

}  // namespace ovix::emulator
