#include "ovix/testing/HeadlessPlatform.h"

#include "ovix/testing/FixedTimeZone.h"
#include "platform/jpeg/JpegImageCodec.h"
#include "platform/openssl/OpenSslCrypto.h"
#include "platform/png/PngImageCodec.h"
#include "platform/unsupported/UnsupportedHttpClient.h"
#include "platform/unsupported/UnsupportedNotificationCenter.h"

namespace ovix::testing {

HeadlessPlatform HeadlessPlatform::create(Options options) {
    HeadlessPlatform h;
    h.mainQueue = std::make_shared<VirtualMainQueue>();
    h.console = std::make_shared<CapturingConsole>(options.echoConsole);
    h.store = std::make_shared<MemoryKeyValueStore>();
    h.notificationCenter = std::make_shared<FakeNotificationCenter>();
    h.resources = std::make_shared<DirectoryResourceBundle>(options.mainResources, options.codeResources);
    h.deviceFacts = std::make_shared<HeadlessDeviceFacts>();
    h.pushClient = std::make_shared<FakePushClient>();
    h.application = HeadlessApplication::create(options.application);
    h.sandboxStore = std::make_shared<platform::SandboxStore>();
    h.webEngine = std::make_shared<ScriptedWebEngine>();
    h.imagePicker = std::make_shared<ScriptedImagePicker>(h.mainQueue);

    h.platform = std::make_shared<platform::Platform>();
    auto& p = *h.platform;
    p.environment = std::move(options.environment);
    p.mainQueue = h.mainQueue;
    p.console = h.console;
    p.keyValueStore = h.store;
    p.notificationCenter = h.notificationCenter;
    p.resources = h.resources;
    p.http = std::make_shared<platform::UnsupportedHttpClient>();
    p.pushClient = h.pushClient;
    p.store = h.sandboxStore;
    p.deviceFacts = h.deviceFacts;
    p.imagePicker = h.imagePicker;
    p.imageCodec = std::make_shared<platform::PngImageCodec>(std::make_shared<platform::JpegImageCodec>());
    p.application = h.application;
    p.webEngine = h.webEngine;
    p.crypto = std::make_shared<platform::OpenSslCrypto>();
    p.timeZone = std::make_shared<FixedTimeZone>();
    return h;
}

void HeadlessPlatform::install() const {
    platform::install(platform);
}

}  // namespace ovix::testing
