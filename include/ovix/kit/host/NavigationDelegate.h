#pragma once

#include "ovix/kit/host/WebError.h"

namespace ovix::kit::host {

class WebView;

/// Follows the page loads of a web view: a navigation starts, commits (the first bytes of the new
/// page arrived and it replaced the old one), then finishes, or fails at any point before finishing.
/// Navigations the page starts by itself (links, scripts, redirects of its own) are reported too.
///
/// Threading: called on the main thread by the web engine, never inline inside a call to the web
/// view. Every callback does nothing by default.
class NavigationDelegate {
  public:
    virtual ~NavigationDelegate() = default;
    virtual void webViewDidStartProvisionalNavigation(WebView& webView) { (void)webView; }
    virtual void webViewDidCommitNavigation(WebView& webView) { (void)webView; }
    virtual void webViewDidFinishNavigation(WebView& webView) { (void)webView; }
    /// The navigation ends here: no finish follows.
    virtual void webViewDidFailNavigation(WebView& webView, const WebError& error) {
        (void)webView;
        (void)error;
    }
};

}  // namespace ovix::kit::host
