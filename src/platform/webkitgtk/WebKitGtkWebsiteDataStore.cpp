#include "platform/webkitgtk/WebKitGtkWebsiteDataStore.h"

#include <webkit/webkit.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <utility>

namespace ovix::platform::webkitgtk {

namespace {

struct PendingRemoval {
    std::function<void()> completion;
    std::shared_ptr<Console> console;
};

void onCleared(GObject* manager, GAsyncResult* result, gpointer data) {
    std::unique_ptr<PendingRemoval> pending(static_cast<PendingRemoval*>(data));
    GError* error = nullptr;
    if (!webkit_website_data_manager_clear_finish(WEBKIT_WEBSITE_DATA_MANAGER(manager), result, &error)) {
        if (pending->console) {
            pending->console->printLine(std::string("⚠️ Website data could not be removed: ") +
                                        (error ? error->message : "unknown error"));
        }
        g_clear_error(&error);
    }
    if (pending->completion) {
        pending->completion();
    }
}

gboolean completeLater(gpointer data) {
    std::unique_ptr<PendingRemoval> pending(static_cast<PendingRemoval*>(data));
    if (pending->completion) {
        pending->completion();
    }
    return G_SOURCE_REMOVE;
}

}  // namespace

WebKitGtkWebsiteDataStore::WebKitGtkWebsiteDataStore(std::shared_ptr<Console> console)
    : console_(std::move(console)) {}

unsigned WebKitGtkWebsiteDataStore::webKitTypes(const std::set<kit::host::WebsiteDataType>& types) {
    // WebKitGTK keeps no WebSQL databases: nothing to ask for.
    static constexpr std::pair<kit::host::WebsiteDataType, unsigned> bitOf[] = {
        {kit::host::WebsiteDataType::Cookies, WEBKIT_WEBSITE_DATA_COOKIES},
        {kit::host::WebsiteDataType::SessionStorage, WEBKIT_WEBSITE_DATA_SESSION_STORAGE},
        {kit::host::WebsiteDataType::LocalStorage, WEBKIT_WEBSITE_DATA_LOCAL_STORAGE},
        {kit::host::WebsiteDataType::IndexedDBDatabases, WEBKIT_WEBSITE_DATA_INDEXEDDB_DATABASES},
        {kit::host::WebsiteDataType::WebSQLDatabases, 0},
        {kit::host::WebsiteDataType::DiskCache, WEBKIT_WEBSITE_DATA_DISK_CACHE},
        {kit::host::WebsiteDataType::MemoryCache, WEBKIT_WEBSITE_DATA_MEMORY_CACHE},
    };
    unsigned bits = 0;
    for (const auto& [type, bit] : bitOf) {
        bits |= types.contains(type) ? bit : 0u;
    }
    return bits;
}

void WebKitGtkWebsiteDataStore::removeData(const std::set<kit::host::WebsiteDataType>& types,
                                           Date modifiedSince, std::function<void()> completion) {
    auto* pending = new PendingRemoval{std::move(completion), console_};
    const auto bits = static_cast<WebKitWebsiteDataTypes>(webKitTypes(types));
    const auto age = std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::system_clock::now() -
                                                                           modifiedSince);
    if (bits == 0 || age.count() < 0) {
        // Nothing of these kinds, or nothing modified since a future date: still complete later.
        g_idle_add(completeLater, pending);
        return;
    }
    // WebKit measures back from now and reads a span of 0 as "all data": what the epoch asks for, and
    // what a date of just now must not become.
    const bool sinceEpoch = modifiedSince <= Date{};
    const GTimeSpan span = sinceEpoch ? 0 : std::max<GTimeSpan>(1, static_cast<GTimeSpan>(age.count()));
    WebKitWebsiteDataManager* manager =
        webkit_network_session_get_website_data_manager(webkit_network_session_get_default());
    webkit_website_data_manager_clear(manager, bits, span, nullptr, onCleared, pending);
}

}  // namespace ovix::platform::webkitgtk
