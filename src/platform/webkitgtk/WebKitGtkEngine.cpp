#include "platform/webkitgtk/WebKitGtkEngine.h"

#include "platform/webkitgtk/WebKitGtkWebView.h"
#include "platform/webkitgtk/WebKitGtkWebsiteDataStore.h"

namespace ovix::platform::webkitgtk {

WebKitGtkEngine::WebKitGtkEngine(std::shared_ptr<Console> console)
    : dataStore_(std::make_shared<WebKitGtkWebsiteDataStore>(std::move(console))) {}

std::shared_ptr<kit::host::WebView> WebKitGtkEngine::makeWebView(
    kit::Rect frame, kit::host::WebViewConfiguration configuration) {
    return WebKitGtkWebView::create(frame, std::move(configuration));
}

}  // namespace ovix::platform::webkitgtk
