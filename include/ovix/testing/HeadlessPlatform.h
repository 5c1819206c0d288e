#pragma once

#include <filesystem>
#include <memory>

#include "ovix/platform/Platform.h"
#include "ovix/platform/SandboxStore.h"
#include "ovix/testing/CapturingConsole.h"
#include "ovix/testing/DirectoryResourceBundle.h"
#include "ovix/testing/FakeNotificationCenter.h"
#include "ovix/testing/FakePushClient.h"
#include "ovix/testing/HeadlessApplication.h"
#include "ovix/testing/HeadlessDeviceFacts.h"
#include "ovix/testing/MemoryKeyValueStore.h"
#include "ovix/testing/ScriptedImagePicker.h"
#include "ovix/testing/ScriptedWebEngine.h"
#include "ovix/testing/VirtualMainQueue.h"

namespace ovix::testing {

/// A deterministic platform for the SDK's tests and a game's own: virtual-time main queue, console
/// capture, in-memory store, scriptable notification centre, resources in chosen directories.
/// Services without a headless double answer "unsupported"; a test may replace any member of
/// `platform` before installing it.
struct HeadlessPlatform {
    struct Options {
        platform::Environment environment = platform::Environment::production();
        /// Host application's resources; the SDK's code directory holds "OvixSdkResources.bundle".
        std::filesystem::path mainResources = ".";
        std::filesystem::path codeResources = ".";
        bool echoConsole = false;
        /// Main screen size, safe areas, windows and openable URL schemes.
        HeadlessApplication::Options application;
    };

    std::shared_ptr<platform::Platform> platform;
    std::shared_ptr<VirtualMainQueue> mainQueue;
    std::shared_ptr<CapturingConsole> console;
    std::shared_ptr<MemoryKeyValueStore> store;
    std::shared_ptr<FakeNotificationCenter> notificationCenter;
    std::shared_ptr<DirectoryResourceBundle> resources;
    std::shared_ptr<HeadlessDeviceFacts> deviceFacts;
    std::shared_ptr<FakePushClient> pushClient;
    /// Scenes, windows (one key window by default) and the main screen; rotates on request.
    std::shared_ptr<HeadlessApplication> application;
    /// The store: an empty sandbox catalog for the test to fill and script.
    std::shared_ptr<platform::SandboxStore> sandboxStore;
    /// Web views whose pages the test plays; their website data store records removals.
    std::shared_ptr<ScriptedWebEngine> webEngine;
    /// The image picker: the test picks or cancels for the player.
    std::shared_ptr<ScriptedImagePicker> imagePicker;

    /// Builds the platform; the calling thread becomes its main thread. Not installed yet.
    static HeadlessPlatform create(Options options);
    static HeadlessPlatform create() { return create(Options{}); }
    /// `platform::install(platform)`.
    void install() const;
};

}  // namespace ovix::testing
