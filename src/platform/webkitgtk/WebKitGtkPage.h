#pragma once

#include <webkit/webkit.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ovix/Value.h"
#include "ovix/kit/host/URLRequest.h"
#include "ovix/kit/host/WebError.h"

namespace ovix::platform::webkitgtk {

/// One WebKitGTK web view and what the SDK needs of it, as plain C++ callbacks: the GObject side of
/// the desktop web engine.
///
/// Threading: GTK's thread only (the thread that initialised GTK). Every callback arrives there from
/// the GLib main loop, never inline inside a call of this class. Once the page is destroyed no
/// callback runs; a script evaluation still pending then completes with a `Cancelled` error.
/// A load that fails reports `failed` and never `finished` (WebKit itself reports both).
class WebKitGtkPage {
  public:
    struct Callbacks {
        std::function<void()> started;
        std::function<void()> committed;
        std::function<void()> finished;
        std::function<void(const kit::host::WebError&)> failed;
        /// A page called `window.webkit.messageHandlers.<name>.postMessage(body)`; `body` is the
        /// posted value as JSON sees it (undefined and functions arrive as null).
        std::function<void(const std::string& name, const Value& body)> scriptMessage;
    };
    using ScriptCompletion =
        std::function<void(const Value& result, const std::optional<kit::host::WebError>& error)>;

    explicit WebKitGtkPage(Callbacks callbacks);
    ~WebKitGtkPage();
    WebKitGtkPage(const WebKitGtkPage&) = delete;
    WebKitGtkPage& operator=(const WebKitGtkPage&) = delete;

    /// Lets pages post under `name`; false when the name is already registered.
    bool registerScriptMessageHandler(const std::string& name);
    /// An empty text restores WebKit's own user agent.
    void setCustomUserAgent(const std::string& userAgent);
    std::string userAgent() const;

    /// Starts loading; a load still running is cancelled (it reports `failed` with `Cancelled`).
    void load(const kit::host::URLRequest& request);
    bool canGoBack() const;
    /// Loads the previous back-list entry; nothing when there is none.
    void goBack();
    /// The current page's address, "" before the first load.
    std::string url() const;

    /// Runs `script` in the page's main world; `completion` gets the script's value (as JSON sees it)
    /// or the error it threw. Always later, on GTK's thread.
    void evaluateJavaScript(const std::string& script, ScriptCompletion completion);

    /// The web view widget. The page owns a reference; a host that parents it keeps it alive (silent,
    /// once the page is gone) until the host removes it.
    GtkWidget* widget() const { return GTK_WIDGET(view_); }

  private:
    struct Registration {
        WebKitGtkPage* page;
        std::string name;
        gulong handler;
    };

    static void onLoadChanged(WebKitWebView* view, WebKitLoadEvent event, gpointer self);
    static gboolean onLoadFailed(WebKitWebView* view, WebKitLoadEvent event, char* uri, GError* error,
                                 gpointer self);
    static void onScriptMessage(WebKitUserContentManager* manager, JSCValue* body, gpointer registration);
    static gboolean onLoadTimeout(gpointer self);
    static void onScriptFinished(GObject* view, GAsyncResult* result, gpointer completion);
    void cancelLoadTimeout();
    static kit::host::WebError errorFrom(const GError* error);

    Callbacks callbacks_;
    WebKitUserContentManager* contentManager_;
    WebKitWebView* view_;
    GCancellable* cancellable_;
    std::vector<std::unique_ptr<Registration>> registrations_;
    gulong loadChangedHandler_ = 0;
    gulong loadFailedHandler_ = 0;
    guint loadTimeout_ = 0;
    bool failed_ = false;      // the current load failed: its "finished" is not reported
    bool stopping_ = false;    // we stopped a load that timed out and reported it ourselves
    std::string loadingUrl_;   // what `load` or `goBack` asked for last
    std::string timedOutUrl_;  // the address of the load we stopped
};

/// The value a JavaScript value stands for in JSON; null for undefined, functions and the like.
Value valueFromJavaScript(JSCValue* value);

}  // namespace ovix::platform::webkitgtk
