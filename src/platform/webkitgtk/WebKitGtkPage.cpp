#include "platform/webkitgtk/WebKitGtkPage.h"

#include <cmath>
#include <utility>

namespace ovix::platform::webkitgtk {

namespace {

struct PendingScript {
    WebKitGtkPage::ScriptCompletion completion;
};

// Calls a copy: the callback may destroy the page, and with it the function being run.
template <class Function, class... Args>
void callIfSet(const Function& callback, Args&&... args) {
    if (callback) {
        Function copy = callback;
        copy(std::forward<Args>(args)...);
    }
}

}  // namespace

Value valueFromJavaScript(JSCValue* value) {
    if (value == nullptr) {
        return Value();
    }
    char* json = jsc_value_to_json(value, 0);
    if (json == nullptr) {
        return Value();
    }
    auto parsed = Value::fromJson(json);
    g_free(json);
    return parsed ? std::move(*parsed) : Value();
}

WebKitGtkPage::WebKitGtkPage(Callbacks callbacks)
    : callbacks_(std::move(callbacks)),
      contentManager_(webkit_user_content_manager_new()),
      view_(WEBKIT_WEB_VIEW(
          g_object_new(WEBKIT_TYPE_WEB_VIEW, "user-content-manager", contentManager_, nullptr))),
      cancellable_(g_cancellable_new()) {
    g_object_ref_sink(view_);
    loadChangedHandler_ = g_signal_connect(view_, "load-changed", G_CALLBACK(onLoadChanged), this);
    loadFailedHandler_ = g_signal_connect(view_, "load-failed", G_CALLBACK(onLoadFailed), this);
}

WebKitGtkPage::~WebKitGtkPage() {
    cancelLoadTimeout();
    g_cancellable_cancel(cancellable_);
    g_signal_handler_disconnect(view_, loadChangedHandler_);
    g_signal_handler_disconnect(view_, loadFailedHandler_);
    for (const auto& registration : registrations_) {
        g_signal_handler_disconnect(contentManager_, registration->handler);
        webkit_user_content_manager_unregister_script_message_handler(contentManager_,
                                                                      registration->name.c_str(), nullptr);
    }
    webkit_web_view_stop_loading(view_);
    g_object_unref(view_);
    g_object_unref(contentManager_);
    g_object_unref(cancellable_);
}

bool WebKitGtkPage::registerScriptMessageHandler(const std::string& name) {
    for (const auto& registration : registrations_) {
        if (registration->name == name) {
            return false;
        }
    }
    auto registration = std::make_unique<Registration>(Registration{this, name, 0});
    // Connect before registering, so no message can arrive unheard.
    const std::string signal = "script-message-received::" + name;
    registration->handler =
        g_signal_connect(contentManager_, signal.c_str(), G_CALLBACK(onScriptMessage), registration.get());
    if (!webkit_user_content_manager_register_script_message_handler(contentManager_, name.c_str(),
                                                                     nullptr)) {
        g_signal_handler_disconnect(contentManager_, registration->handler);
        return false;
    }
    registrations_.push_back(std::move(registration));
    return true;
}

void WebKitGtkPage::setCustomUserAgent(const std::string& userAgent) {
    webkit_settings_set_user_agent(webkit_web_view_get_settings(view_),
                                   userAgent.empty() ? nullptr : userAgent.c_str());
}

std::string WebKitGtkPage::userAgent() const {
    const char* agent = webkit_settings_get_user_agent(webkit_web_view_get_settings(view_));
    return agent ? agent : "";
}

void WebKitGtkPage::load(const kit::host::URLRequest& request) {
    cancelLoadTimeout();
    loadingUrl_ = request.url;
    WebKitURIRequest* uriRequest = webkit_uri_request_new(request.url.c_str());
    webkit_web_view_load_request(view_, uriRequest);
    g_object_unref(uriRequest);
    if (request.timeoutInterval > 0) {
        // WebKit has no per-request timeout: stop the load ourselves if nothing arrived in time.
        const auto ms = static_cast<guint>(std::lround(request.timeoutInterval * 1000.0));
        loadTimeout_ = g_timeout_add(ms, onLoadTimeout, this);
    }
}

bool WebKitGtkPage::canGoBack() const {
    return webkit_web_view_can_go_back(view_);
}

void WebKitGtkPage::goBack() {
    if (canGoBack()) {
        cancelLoadTimeout();
        WebKitBackForwardListItem* item =
            webkit_back_forward_list_get_back_item(webkit_web_view_get_back_forward_list(view_));
        const char* uri = item ? webkit_back_forward_list_item_get_uri(item) : nullptr;
        loadingUrl_ = uri ? uri : "";
        webkit_web_view_go_back(view_);
    }
}

std::string WebKitGtkPage::url() const {
    const char* uri = webkit_web_view_get_uri(view_);
    return uri ? uri : "";
}

void WebKitGtkPage::evaluateJavaScript(const std::string& script, ScriptCompletion completion) {
    auto* pending = new PendingScript{std::move(completion)};
    webkit_web_view_evaluate_javascript(view_, script.data(), static_cast<gssize>(script.size()), nullptr,
                                        nullptr, cancellable_, onScriptFinished, pending);
}

void WebKitGtkPage::onScriptFinished(GObject* view, GAsyncResult* result, gpointer data) {
    std::unique_ptr<PendingScript> pending(static_cast<PendingScript*>(data));
    GError* error = nullptr;
    JSCValue* value = webkit_web_view_evaluate_javascript_finish(WEBKIT_WEB_VIEW(view), result, &error);
    if (error != nullptr) {
        const bool cancelled = g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CANCELLED);
        kit::host::WebError failure{
            cancelled ? kit::host::WebError::Kind::Cancelled : kit::host::WebError::Kind::JavaScript,
            error->message};
        g_error_free(error);
        if (pending->completion) {
            pending->completion(Value(), failure);
        }
        return;
    }
    Value converted = valueFromJavaScript(value);
    g_object_unref(value);
    if (pending->completion) {
        pending->completion(converted, std::nullopt);
    }
}

void WebKitGtkPage::onLoadChanged(WebKitWebView*, WebKitLoadEvent event, gpointer self) {
    auto* page = static_cast<WebKitGtkPage*>(self);
    switch (event) {
        case WEBKIT_LOAD_STARTED:
            page->failed_ = false;
            callIfSet(page->callbacks_.started);
            break;
        case WEBKIT_LOAD_REDIRECTED:
            break;
        case WEBKIT_LOAD_COMMITTED:
            page->cancelLoadTimeout();
            page->stopping_ = false;  // whatever was stopped before is over
            callIfSet(page->callbacks_.committed);
            break;
        case WEBKIT_LOAD_FINISHED:
            page->cancelLoadTimeout();
            if (page->failed_) {
                // WebKit closes a failed load with "finished" too; the failure was already reported.
                page->failed_ = false;
            } else {
                callIfSet(page->callbacks_.finished);
            }
            break;
    }
}

gboolean WebKitGtkPage::onLoadFailed(WebKitWebView*, WebKitLoadEvent, char* uri, GError* error,
                                     gpointer self) {
    auto* page = static_cast<WebKitGtkPage*>(self);
    const std::string failing = uri ? uri : "";
    const kit::host::WebError failure = errorFrom(error);
    const bool cancelled = failure.kind == kit::host::WebError::Kind::Cancelled;
    // A load abandoned on its time-out may still end later, however it ends (cancelled when a newer
    // load replaces it, interrupted when its answer finally arrives); its time-out was reported.
    if (!page->timedOutUrl_.empty() && failing == page->timedOutUrl_ && failing != page->loadingUrl_) {
        return TRUE;
    }
    page->failed_ = true;
    if (cancelled && page->stopping_ && failing == page->timedOutUrl_) {
        page->stopping_ = false;  // the load we stopped on its time-out, reported then
        return TRUE;
    }
    // A cancellation of another address ends an earlier load that a newer one replaced; the newer
    // one keeps its time-out.
    if (!cancelled || failing == page->loadingUrl_) {
        page->cancelLoadTimeout();
    }
    callIfSet(page->callbacks_.failed, failure);
    return TRUE;  // handled: no WebKit error page
}

void WebKitGtkPage::onScriptMessage(WebKitUserContentManager*, JSCValue* body, gpointer data) {
    auto* registration = static_cast<Registration*>(data);
    callIfSet(registration->page->callbacks_.scriptMessage, std::string(registration->name),
              valueFromJavaScript(body));
}

gboolean WebKitGtkPage::onLoadTimeout(gpointer self) {
    auto* page = static_cast<WebKitGtkPage*>(self);
    page->loadTimeout_ = 0;
    // A load stopped before WebKit started it ends silently, one stopped later ends as "cancelled",
    // possibly after a newer load began: report the time-out now and swallow that cancellation.
    page->stopping_ = true;
    page->timedOutUrl_ = page->loadingUrl_;
    webkit_web_view_stop_loading(page->view_);
    callIfSet(page->callbacks_.failed,
              kit::host::WebError{kit::host::WebError::Kind::TimedOut, "The request timed out."});
    return G_SOURCE_REMOVE;
}

void WebKitGtkPage::cancelLoadTimeout() {
    if (loadTimeout_ != 0) {
        g_source_remove(loadTimeout_);
        loadTimeout_ = 0;
    }
}

kit::host::WebError WebKitGtkPage::errorFrom(const GError* error) {
    const std::string message = error ? error->message : "";
    if (error == nullptr) {
        return {kit::host::WebError::Kind::Page, message};
    }
    const bool cancelled = g_error_matches(error, WEBKIT_NETWORK_ERROR, WEBKIT_NETWORK_ERROR_CANCELLED) ||
                           g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CANCELLED);
    if (cancelled) {
        return {kit::host::WebError::Kind::Cancelled, message};
    }
    if (g_error_matches(error, G_IO_ERROR, G_IO_ERROR_TIMED_OUT)) {
        return {kit::host::WebError::Kind::TimedOut, message};
    }
    if (error->domain == WEBKIT_NETWORK_ERROR || error->domain == G_IO_ERROR ||
        error->domain == G_RESOLVER_ERROR || error->domain == G_TLS_ERROR) {
        return {kit::host::WebError::Kind::Network, message};
    }
    return {kit::host::WebError::Kind::Page, message};
}

}  // namespace ovix::platform::webkitgtk
