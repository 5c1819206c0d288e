#include "platform/webkitgtk/WebKitGtkWebView.h"

namespace ovix::platform::webkitgtk {

std::shared_ptr<WebKitGtkWebView> WebKitGtkWebView::create(kit::Rect frame,
                                                           kit::host::WebViewConfiguration configuration) {
    auto view = std::make_shared<WebKitGtkWebView>(frame, std::move(configuration));
    view->attach();
    return view;
}

WebKitGtkWebView::WebKitGtkWebView(kit::Rect frame, kit::host::WebViewConfiguration configuration)
    : kit::host::WebView(frame, std::move(configuration)) {}

void WebKitGtkWebView::attach() {
    std::weak_ptr<WebKitGtkWebView> weak = self<WebKitGtkWebView>();
    // Each event holds the view for its duration: a receiver may drop the view while it handles it.
    auto relay = [weak](void (WebKitGtkWebView::*notify)()) {
        return [weak, notify] {
            if (auto view = weak.lock()) {
                (view.get()->*notify)();
            }
        };
    };
    WebKitGtkPage::Callbacks callbacks;
    callbacks.started = relay(&WebKitGtkWebView::notifyDidStartProvisionalNavigation);
    callbacks.committed = relay(&WebKitGtkWebView::notifyDidCommitNavigation);
    callbacks.finished = relay(&WebKitGtkWebView::notifyDidFinishNavigation);
    callbacks.failed = [weak](const kit::host::WebError& error) {
        if (auto view = weak.lock()) {
            view->notifyDidFailNavigation(error);
        }
    };
    callbacks.scriptMessage = [weak](const std::string& name, const Value& body) {
        if (auto view = weak.lock()) {
            view->deliverScriptMessage(kit::host::ScriptMessage{name, body});
        }
    };
    page_ = std::make_unique<WebKitGtkPage>(std::move(callbacks));

    if (const auto& controller = configuration().userContentController) {
        for (const auto& name : controller->scriptMessageHandlerNames()) {
            page_->registerScriptMessageHandler(name);
        }
        controller->addObserver(
            std::static_pointer_cast<kit::host::UserContentController::Observer>(self<WebKitGtkWebView>()));
    }
}

void WebKitGtkWebView::setCustomUserAgent(std::string userAgent) {
    page_->setCustomUserAgent(userAgent);
    kit::host::WebView::setCustomUserAgent(std::move(userAgent));
}

void WebKitGtkWebView::load(const kit::host::URLRequest& request) {
    page_->load(request);
}

void WebKitGtkWebView::evaluateJavaScript(const std::string& script, ScriptCompletion completion) {
    page_->evaluateJavaScript(script, std::move(completion));
}

void WebKitGtkWebView::userContentControllerDidAddScriptMessageHandler(const std::string& name) {
    page_->registerScriptMessageHandler(name);
}

}  // namespace ovix::platform::webkitgtk
