// URL syntax pieces: positions stay inside the text and origins are stable once taken.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "core/UrlSyntax.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const std::size_t end = ovix::UrlSyntax::schemeEnd(text);
    if (end != std::string_view::npos && (end >= text.size() || text[end] != ':')) {
        std::abort();
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        (void)ovix::UrlSyntax::isEscapeAt(text, i);
    }
    const std::string origin = ovix::UrlSyntax::origin(text);
    if (!origin.empty() && ovix::UrlSyntax::origin(origin) != origin) {
        std::abort();
    }
    return 0;
}
