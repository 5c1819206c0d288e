#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include "ovix/platform/Console.h"
#include "ovix/platform/Crypto.h"
#include "ovix/platform/DeviceFacts.h"
#include "ovix/platform/Environment.h"
#include "ovix/platform/HttpClient.h"
#include "ovix/platform/ImageCodec.h"
#include "ovix/platform/ImagePicker.h"
#include "ovix/platform/KeyValueStore.h"
#include "ovix/platform/MainQueue.h"
#include "ovix/platform/NotificationCenter.h"
#include "ovix/platform/PushClient.h"
#include "ovix/platform/ResourceBundle.h"
#include "ovix/platform/Store.h"
#include "ovix/platform/TimeZone.h"

// What a host supplies to the view kit is declared by the kit (ovix/kit/host/); the platform only
// carries it, so the platform headers never include a kit header.
namespace ovix::kit::host {
class Application;
class WebEngine;
}  // namespace ovix::kit::host

namespace ovix::platform {

/// Every service the SDK takes from its environment.
///
/// A platform is assembled once and installed before first use. Every member is set: a service the
/// platform lacks is an implementation that says "unsupported" at run time, never a null pointer.
struct Platform {
    Environment environment = Environment::production();
    std::shared_ptr<MainQueue> mainQueue;
    std::shared_ptr<Console> console;
    std::shared_ptr<KeyValueStore> keyValueStore;
    std::shared_ptr<HttpClient> http;
    std::shared_ptr<NotificationCenter> notificationCenter;
    std::shared_ptr<PushClient> pushClient;
    std::shared_ptr<Store> store;
    std::shared_ptr<DeviceFacts> deviceFacts;
    std::shared_ptr<kit::host::WebEngine> webEngine;
    std::shared_ptr<ImagePicker> imagePicker;
    std::shared_ptr<ImageCodec> imageCodec;
    std::shared_ptr<kit::host::Application> application;
    std::shared_ptr<ResourceBundle> resources;
    std::shared_ptr<Crypto> crypto;
    std::shared_ptr<TimeZone> timeZone;

    /// The SDK's resource bundle: "OvixSdkResources.bundle" inside the code bundle, or the code bundle
    /// itself when that is missing or cannot be opened. Computed once per platform, on first use.
    const Bundle& sdkBundle() const;

  private:
    mutable std::once_flag sdkBundleOnce_;
    mutable std::optional<Bundle> sdkBundle_;
};

/// Installs the platform every later call uses. Call before first use of the SDK.
///
/// Lifetime rule: a platform that is replaced stays alive while anything still holds it, and work
/// already started finishes on the services it started with: every request holds what it needs
/// (its client, console, queue) until its completion has run, and each completion runs exactly once.
/// The replaced platform is released outside the registry's lock, so its services may wait for
/// threads that are calling `current()` at that moment.
void install(std::shared_ptr<Platform> platform);
/// The installed platform; on first call without an install, the build's default platform.
std::shared_ptr<Platform> current();
/// The build's default platform (desktop Linux services where this build has them).
std::shared_ptr<Platform> makeDefault();

}  // namespace ovix::platform
