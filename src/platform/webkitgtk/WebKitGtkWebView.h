#pragma once

#include <memory>
#include <string>

#include "ovix/kit/host/WebView.h"
#include "platform/gtk/GtkEmbeddedView.h"
#include "platform/webkitgtk/WebKitGtkPage.h"

namespace ovix::platform::webkitgtk {

/// A kit web view whose page is a WebKitGTK web view. The view takes part in the kit tree like any
/// other; a GTK host shows `widget()` over the view's frame. Every channel of the configuration's
/// user content controller, present or added later, is offered to pages.
///
/// Threading: GTK's thread, which must be the platform's main thread; events arrive from the GLib
/// main loop. The view stays alive while it reports an event, even if the receiver drops it.
class WebKitGtkWebView : public kit::host::WebView,
                         public kit::host::UserContentController::Observer,
                         public gtk::GtkEmbeddedView {
  public:
    static std::shared_ptr<WebKitGtkWebView> create(kit::Rect frame,
                                                    kit::host::WebViewConfiguration configuration);
    WebKitGtkWebView(kit::Rect frame, kit::host::WebViewConfiguration configuration);

    void setCustomUserAgent(std::string userAgent) override;
    void load(const kit::host::URLRequest& request) override;
    bool canGoBack() const override { return page_->canGoBack(); }
    void goBack() override { page_->goBack(); }
    std::string url() const override { return page_->url(); }
    void evaluateJavaScript(const std::string& script, ScriptCompletion completion) override;

    void userContentControllerDidAddScriptMessageHandler(const std::string& name) override;

    GtkWidget* widget() const override { return page_->widget(); }

    std::string className() const override { return "WebView"; }

  private:
    void attach();

    std::unique_ptr<WebKitGtkPage> page_;
};

}  // namespace ovix::platform::webkitgtk
