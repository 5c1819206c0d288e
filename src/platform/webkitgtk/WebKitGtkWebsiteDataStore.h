#pragma once

#include <memory>

#include "ovix/kit/host/WebsiteDataStore.h"
#include "ovix/platform/Console.h"

namespace ovix::platform::webkitgtk {

/// The website data of WebKitGTK's default network session: the store every web view of the desktop
/// engine uses. WebKitGTK keeps no WebSQL databases, so that type has nothing to remove, and it
/// removes cookies only all at once: a removal since a date later than the epoch leaves them.
///
/// Threading: GTK's thread only; the completion runs there from the GLib main loop. A removal that
/// WebKit reports as failed prints one line on `console` and still completes.
class WebKitGtkWebsiteDataStore : public kit::host::WebsiteDataStore {
  public:
    explicit WebKitGtkWebsiteDataStore(std::shared_ptr<Console> console);

    void removeData(const std::set<kit::host::WebsiteDataType>& types, Date modifiedSince,
                    std::function<void()> completion) override;

    /// WebKit's bit set for `types` (exposed for tests).
    static unsigned webKitTypes(const std::set<kit::host::WebsiteDataType>& types);

  private:
    std::shared_ptr<Console> console_;
};

}  // namespace ovix::platform::webkitgtk
