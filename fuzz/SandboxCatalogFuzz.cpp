// Sandbox store catalogs: a catalog or a reason, never a crash or undefined behaviour.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "ovix/platform/SandboxStore.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string error;
    auto catalog = ovix::platform::SandboxStore::parseCatalog(
        std::string_view(reinterpret_cast<const char*>(data), size), &error);
    if (!catalog && error.empty()) {
        std::abort();  // a refusal always says why
    }
    return 0;
}
