#include "ovix/desktop/DesktopPlatform.h"

#include "ovix/desktop/GameWindowOverlay.h"
#include "ovix/desktop/OverlaySurface.h"

#include <gtk/gtk.h>

#include "ovix/platform/SandboxStore.h"
#include "platform/curl/CurlHttpClient.h"
#include "platform/desktop/ActivityMainQueue.h"
#include "platform/desktop/GameWindowApplication.h"
#include "platform/desktop/GioNotificationCenter.h"
#include "platform/desktop/InstalledResourceBundle.h"
#include "platform/gtk/GlibMainQueue.h"
#include "platform/gtk/GtkImagePicker.h"
#include "platform/jpeg/JpegImageCodec.h"
#include "platform/linux/LinuxDeviceFacts.h"
#include "platform/linux/LinuxPushClient.h"
#include "platform/openssl/OpenSslCrypto.h"
#include "platform/png/PngImageCodec.h"
#include "platform/posix/PosixTimeZone.h"
#include "platform/posix/StdoutConsole.h"
#include "platform/sqlite/SqliteKeyValueStore.h"
#include "platform/unsupported/UnsupportedImagePicker.h"
#include "platform/unsupported/UnsupportedWebEngine.h"
#include "platform/webkitgtk/WebKitGtkEngine.h"

namespace ovix::desktop {

namespace {

// The content area's size now, or the size the window will open at.
kit::Size contentSize(GtkWindow* window) {
    GtkWidget* widget = GTK_WIDGET(window);
    GtkWidget* child = gtk_window_get_child(window);
    if (child && gtk_widget_get_width(child) > 0) {
        return {static_cast<double>(gtk_widget_get_width(child)),
                static_cast<double>(gtk_widget_get_height(child))};
    }
    if (gtk_widget_get_width(widget) > 0) {
        return {static_cast<double>(gtk_widget_get_width(widget)),
                static_cast<double>(gtk_widget_get_height(widget))};
    }
    int width = 0;
    int height = 0;
    gtk_window_get_default_size(window, &width, &height);
    return {static_cast<double>(width > 0 ? width : 0), static_cast<double>(height > 0 ? height : 0)};
}

// The game window while it exists: the picker's dialog is modal over it, and the platform may
// outlive the window.
std::function<GtkWindow*()> windowWhileAlive(GtkWindow* window) {
    auto ref = std::shared_ptr<GWeakRef>(new GWeakRef, [](GWeakRef* r) {
        g_weak_ref_clear(r);
        delete r;
    });
    g_weak_ref_init(ref.get(), window);
    return [ref]() -> GtkWindow* {
        GObject* alive = static_cast<GObject*>(g_weak_ref_get(ref.get()));
        if (alive == nullptr) {
            return nullptr;
        }
        g_object_unref(alive);  // GTK keeps the window while it is shown
        return GTK_WINDOW(alive);
    };
}

std::vector<std::filesystem::path> libraryResourceDirs() {
    return {OVIX_INSTALLED_RESOURCES, OVIX_SOURCE_RESOURCES};
}

/// Every service, for a game area of `size` points at `scale`; pages and the image picker only for a
/// game with a GTK window (`gameWindow` not null).
std::shared_ptr<platform::Platform> assemble(const DesktopPlatform::Options& options, kit::Size size,
                                             double scale, GtkWindow* gameWindow) {
    using namespace platform;
    auto p = std::make_shared<Platform>();
    p->environment = options.environment;
    p->console = std::make_shared<StdoutConsole>();
    p->mainQueue =
        std::make_shared<ovix::platform::desktop::ActivityMainQueue>(std::make_shared<gtk::GlibMainQueue>());
    p->keyValueStore = std::make_shared<SqliteKeyValueStore>(
        options.storePath.empty() ? SqliteKeyValueStore::defaultPath() : options.storePath, p->console);
    p->resources = std::make_shared<ovix::platform::desktop::InstalledResourceBundle>(libraryResourceDirs());
    p->http = std::make_shared<CurlHttpClient>();
    p->notificationCenter = std::make_shared<ovix::platform::desktop::GioNotificationCenter>(p->console);
    p->pushClient = std::make_shared<LinuxPushClient>();
    // Linux has no platform store: the sandbox store, from the catalog file the developer named.
    p->store = SandboxStore::createConfigured(p->resources->mainBundle(), *p->console);
    p->crypto = std::make_shared<OpenSslCrypto>();
    auto application =
        std::make_shared<ovix::platform::desktop::GameWindowApplication>(size, scale, p->console);
    auto facts = std::make_shared<LinuxDeviceFacts>(std::make_shared<OpenSslCrypto>());
    facts->setScreenSource([weak = std::weak_ptr(application)] {
        auto app = weak.lock();
        return app ? app->screenFacts() : ScreenFacts{};
    });
    p->deviceFacts = facts;
    p->application = application;
    auto codec = std::make_shared<PngImageCodec>(std::make_shared<JpegImageCodec>());
    p->imageCodec = codec;
    // Pages and the file chooser need GTK and a window to sit over; a game without one has neither.
    if (gameWindow != nullptr) {
        p->imagePicker =
            std::make_shared<gtk::GtkImagePicker>(p->mainQueue, codec, windowWhileAlive(gameWindow));
        p->webEngine = std::make_shared<webkitgtk::WebKitGtkEngine>(p->console);
    } else {
        p->imagePicker = std::make_shared<UnsupportedImagePicker>();
        p->webEngine = std::make_shared<UnsupportedWebEngine>();
    }
    p->timeZone = std::make_shared<PosixTimeZone>();
    return p;
}

}  // namespace

std::shared_ptr<platform::Platform> DesktopPlatform::create(GtkWindow* gameWindow, const Options& options) {
    return assemble(options, contentSize(gameWindow), gtk_widget_get_scale_factor(GTK_WIDGET(gameWindow)),
                    gameWindow);
}

std::shared_ptr<GameWindowOverlay> DesktopPlatform::install(GtkWindow* gameWindow, const Options& options) {
    platform::install(create(gameWindow, options));
    return GameWindowOverlay::attach(gameWindow);
}

std::unique_ptr<OverlaySurface> DesktopPlatform::installSurface(double width, double height, double scale,
                                                                const Options& options) {
    auto p = assemble(options, {width, height}, scale, nullptr);
    platform::install(p);
    auto application =
        std::static_pointer_cast<ovix::platform::desktop::GameWindowApplication>(p->application);
    std::weak_ptr<ovix::platform::desktop::GameWindowApplication> weak = application;
    auto surface =
        std::make_unique<OverlaySurface>(application->window(), [weak](kit::Size size, double scale) {
            if (auto app = weak.lock()) {
                app->resize(size, scale);
            }
        });
    surface->resize(width, height, scale);
    return surface;
}

}  // namespace ovix::desktop
