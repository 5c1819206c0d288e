// JSON text into values: any input parses or is refused, never crashes, and what parses writes back
// to JSON that parses again to the same value.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "ovix/Value.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    auto value = ovix::Value::fromJson(text);
    if (value) {
        auto again = ovix::Value::fromJson(value->toJson());
        // Doubles may round-trip to integers when they hold whole numbers; compare the text instead.
        if (!again || again->toJson() != value->toJson()) {
            std::abort();
        }
    }
    return 0;
}
