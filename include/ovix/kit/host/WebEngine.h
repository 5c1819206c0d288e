#pragma once

#include <memory>

#include "ovix/kit/Geometry.h"
#include "ovix/kit/host/WebView.h"
#include "ovix/kit/host/WebViewConfiguration.h"
#include "ovix/kit/host/WebsiteDataStore.h"

namespace ovix::kit::host {

/// Web pages inside the SDK's screens: web views with named message channels, a browser identity of
/// their own, navigation events, back navigation and script evaluation, and the store of the data
/// the pages leave behind.
///
/// Threading: main thread only (see `WebView` and `WebsiteDataStore` for their callbacks).
class WebEngine {
  public:
    virtual ~WebEngine() = default;

    /// A new web view showing nothing yet. The caller owns it (usually by adding it to a view tree).
    virtual std::shared_ptr<WebView> makeWebView(kit::Rect frame, WebViewConfiguration configuration) = 0;
    /// The store every web view of this engine uses.
    virtual std::shared_ptr<WebsiteDataStore> defaultDataStore() = 0;
};

}  // namespace ovix::kit::host
