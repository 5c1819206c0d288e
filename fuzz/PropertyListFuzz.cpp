// Options files, XML or binary: read or refused, never a crash, an abort or a deep recursion.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/plist/PropertyListReader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    (void)ovix::platform::PropertyListReader::parse(
        std::string_view(reinterpret_cast<const char*>(data), size));
    return 0;
}
