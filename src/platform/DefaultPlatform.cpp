#include <cstdlib>

#include "ovix/platform/Platform.h"
#include "ovix/platform/SandboxStore.h"
#include "platform/curl/CurlHttpClient.h"
#include "platform/jpeg/JpegImageCodec.h"
#include "platform/linux/LinuxDeviceFacts.h"
#include "platform/linux/LinuxPushClient.h"
#include "platform/openssl/OpenSslCrypto.h"
#include "platform/png/PngImageCodec.h"
#include "platform/posix/ExecutableResourceBundle.h"
#include "platform/posix/PosixTimeZone.h"
#include "platform/posix/StdoutConsole.h"
#include "platform/posix/ThreadMainQueue.h"
#include "platform/sqlite/SqliteKeyValueStore.h"
#include "platform/unsupported/UnsupportedApplication.h"
#include "platform/unsupported/UnsupportedImagePicker.h"
#include "platform/unsupported/UnsupportedNotificationCenter.h"
#include "platform/unsupported/UnsupportedWebEngine.h"

namespace ovix::platform {

// The desktop Linux services this build has; what it lacks answers "unsupported".
std::shared_ptr<Platform> makeDefault() {
    auto p = std::make_shared<Platform>();
    p->environment = Environment::production();
    p->console = std::make_shared<StdoutConsole>();
    p->mainQueue = std::make_shared<ThreadMainQueue>();
    p->keyValueStore = std::make_shared<SqliteKeyValueStore>(SqliteKeyValueStore::defaultPath(), p->console);
    p->resources = std::make_shared<ExecutableResourceBundle>();
    // A developer may name the authorities to trust instead of the system's (a local emulator's, say)
    // in OVIX_CA_BUNDLE, a PEM file. Verification itself stays on.
    CurlHttpClient::Options http;
    if (const char* authorities = std::getenv("OVIX_CA_BUNDLE");
        authorities != nullptr && *authorities != '\0') {
        http.caBundlePath = authorities;
    }
    p->http = std::make_shared<CurlHttpClient>(http);
    p->notificationCenter = std::make_shared<UnsupportedNotificationCenter>();
    p->pushClient = std::make_shared<LinuxPushClient>();
    // Linux has no platform store: the sandbox store, from the catalog file the developer named.
    p->store = SandboxStore::createConfigured(p->resources->mainBundle(), *p->console);
    p->deviceFacts = std::make_shared<LinuxDeviceFacts>(std::make_shared<OpenSslCrypto>());
    p->imagePicker = std::make_shared<UnsupportedImagePicker>();
    p->imageCodec = std::make_shared<PngImageCodec>(std::make_shared<JpegImageCodec>());
    p->application = std::make_shared<UnsupportedApplication>();
    // This platform has no windows to show pages in.
    p->webEngine = std::make_shared<UnsupportedWebEngine>();
    p->crypto = std::make_shared<OpenSslCrypto>();
    p->timeZone = std::make_shared<PosixTimeZone>();
    return p;
}

}  // namespace ovix::platform
