#include "ovix/platform/Environment.h"

namespace ovix::platform {

Environment Environment::production() {
    return Environment{"https://id.ovix.vn", "https://graph.ovix.vn"};
}

Environment Environment::emulator(std::string baseUrl) {
    while (!baseUrl.empty() && baseUrl.back() == '/') {
        baseUrl.pop_back();
    }
    return Environment{baseUrl, baseUrl};
}

}  // namespace ovix::platform
