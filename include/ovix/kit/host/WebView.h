#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "ovix/Value.h"
#include "ovix/kit/View.h"
#include "ovix/kit/host/NavigationDelegate.h"
#include "ovix/kit/host/URLRequest.h"
#include "ovix/kit/host/WebError.h"
#include "ovix/kit/host/WebViewConfiguration.h"

namespace ovix::kit::host {

/// A view that shows web pages: part of the view tree like any other view (frame, constraints,
/// hidden state), with the page drawn by the platform's web engine. Made by `WebEngine::makeWebView`.
///
/// Pages may post to the channels of the configuration's user content controller. Navigation events
/// go to the delegate, held weakly. Main thread only; engines report events from the main loop,
/// never inline inside a call.
class WebView : public kit::View {
  public:
    using ScriptCompletion = std::function<void(const Value& result, const std::optional<WebError>& error)>;

    WebView(kit::Rect frame, WebViewConfiguration configuration)
        : kit::View(frame), configuration_(std::move(configuration)) {}

    const WebViewConfiguration& configuration() const { return configuration_; }

    std::shared_ptr<NavigationDelegate> navigationDelegate() const { return navigationDelegate_.lock(); }
    void setNavigationDelegate(std::weak_ptr<NavigationDelegate> delegate) {
        navigationDelegate_ = std::move(delegate);
    }

    /// The browser identity pages see instead of the engine's own; "" for the engine's own.
    const std::string& customUserAgent() const { return customUserAgent_; }
    virtual void setCustomUserAgent(std::string userAgent) { customUserAgent_ = std::move(userAgent); }

    /// Starts loading `request`, replacing a load in progress (which fails as cancelled).
    virtual void load(const URLRequest& request) = 0;
    virtual bool canGoBack() const = 0;
    /// Navigates to the previous page of the back list; nothing when there is none.
    virtual void goBack() = 0;
    /// The current page's address; "" before anything was committed.
    virtual std::string url() const = 0;
    /// Runs `script` in the page; `completion` gets its value, or the error it threw (or why it could
    /// not run). Always later, on the main thread, exactly once.
    virtual void evaluateJavaScript(const std::string& script, ScriptCompletion completion) = 0;

    std::string className() const override { return "WebView"; }

  protected:
    /// For engines: tell the delegate (if it is still there).
    void notifyDidStartProvisionalNavigation() {
        if (auto delegate = navigationDelegate()) {
            delegate->webViewDidStartProvisionalNavigation(*this);
        }
    }
    void notifyDidCommitNavigation() {
        if (auto delegate = navigationDelegate()) {
            delegate->webViewDidCommitNavigation(*this);
        }
    }
    void notifyDidFinishNavigation() {
        if (auto delegate = navigationDelegate()) {
            delegate->webViewDidFinishNavigation(*this);
        }
    }
    void notifyDidFailNavigation(const WebError& error) {
        if (auto delegate = navigationDelegate()) {
            delegate->webViewDidFailNavigation(*this, error);
        }
    }
    /// For engines: a page posted `message`; false when no live handler has its channel.
    bool deliverScriptMessage(const ScriptMessage& message) {
        return configuration_.userContentController &&
               configuration_.userContentController->didReceiveScriptMessage(message);
    }

  private:
    WebViewConfiguration configuration_;
    std::weak_ptr<NavigationDelegate> navigationDelegate_;
    std::string customUserAgent_;
};

}  // namespace ovix::kit::host
