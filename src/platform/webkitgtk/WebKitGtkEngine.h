#pragma once

#include <memory>

#include "ovix/kit/host/WebEngine.h"
#include "ovix/platform/Console.h"

namespace ovix::platform::webkitgtk {

/// The desktop web engine: WebKitGTK views in WebKitGTK's default network session, whose website
/// data is the default store. Needs an initialised GTK on the platform's main thread (the GTK host
/// sets that up); see `WebKitGtkWebView`.
class WebKitGtkEngine : public kit::host::WebEngine {
  public:
    explicit WebKitGtkEngine(std::shared_ptr<Console> console);

    std::shared_ptr<kit::host::WebView> makeWebView(kit::Rect frame,
                                                    kit::host::WebViewConfiguration configuration) override;
    std::shared_ptr<kit::host::WebsiteDataStore> defaultDataStore() override { return dataStore_; }

  private:
    std::shared_ptr<kit::host::WebsiteDataStore> dataStore_;
};

}  // namespace ovix::platform::webkitgtk
