// Feed elements as the server may send them: each object becomes an item, whatever its members hold.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "ovix/NewsItem.h"
#include "ovix/Value.h"
#include "platform/posix/PosixTimeZone.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static ovix::platform::PosixTimeZone zone;
    auto value = ovix::Value::fromJson(std::string_view(reinterpret_cast<const char*>(data), size));
    if (!value) {
        return 0;
    }
    auto take = [](const ovix::Value& element) {
        if (const auto* object = element.asObject()) {
            auto item = ovix::NewsItem::fromDictionary(*object);
            (void)ovix::NewsItem::formatDate(item.createdAt, zone);
        }
    };
    if (const auto* items = value->asArray()) {
        for (const auto& element : *items) {
            take(element);
        }
    } else {
        take(*value);
    }
    return 0;
}
