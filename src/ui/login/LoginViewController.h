#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "ovix/kit/Button.h"
#include "ovix/kit/LayoutConstraint.h"
#include "ovix/kit/ViewController.h"
#include "ovix/kit/host/NavigationDelegate.h"
#include "ovix/kit/host/ScriptMessageHandler.h"
#include "ovix/kit/host/WebView.h"
#include "ui/login/LoadingView.h"

namespace ovix {

/// The full-screen login screen: the accounts host's authorisation page in a web view. After every
/// finished page load the page gets the device record through "window.onReceiveDeviceInfo("; the
/// page hands the access token back as a message {"data": <token>} under "OvixLoginSuccess", which
/// is stored (status "login"), raised as `LOGIN_SUCCESS` and closes the screen.
///
/// The page is trusted only while the web view's main frame is on the accounts host's origin
/// (scheme, host and port of the configured address): only then does it receive the device record
/// and may its token message log the player in. Messages from any other page are ignored silently.
/// The check sees the main frame only: a frame that the accounts page itself embeds shares its
/// trust. Once a token is saved, later messages to the same screen are ignored; a token longer than
/// `maxTokenBytes` is ignored with one console line.
///
/// After a logout (stored status "logout") the engine's website data is wiped before the page loads.
/// A back button appears over the page while it can go back. Delayed work and completions hold the
/// screen weakly and do nothing once it has gone. Main thread only: the web engine calls the
/// navigation and message entry points there.
class LoginViewController : public kit::ViewController,
                            public kit::host::NavigationDelegate,
                            public kit::host::ScriptMessageHandler {
  public:
    /// The page's message channel, and the event raised on success.
    static constexpr std::string_view scriptMessageHandlerName = "OvixLoginSuccess";
    static constexpr std::string_view tokenField = "data";
    /// Far above any real access token; a page posting more is not a login.
    static constexpr std::size_t maxTokenBytes = 16 * 1024;
    static constexpr std::string_view customUserAgent =
        "Mozilla/5.0 (iPhone; CPU iPhone OS 16_6 like Mac OS X) AppleWebKit/605.1.15 (KHTML, like Gecko) "
        "Version/16.6 Mobile/15E148 Safari/604.1";
    static constexpr std::string_view authorizationPath =
        "/auth-connect/api/v2.0/oauth2/auth?scope=account&response_type=token&response_mode=command"
        "&state=some_states&redirect_uri=https://default&access_type=offline&client_type=normal&os=ios"
        "&client_id=";
    static constexpr std::string_view logoutStatus = "logout";
    static constexpr double requestTimeout = 60;
    static constexpr double progressFillDuration = 5.0;
    static constexpr double hideLoadingDelay = 0.8;
    static constexpr double backButtonLayoutDuration = 0.25;
    static constexpr double webViewTopWithBackButton = 80;

    static std::shared_ptr<LoginViewController> create() { return std::make_shared<LoginViewController>(); }

    // Absent until the view has loaded (the web view: until it is set up, after a wipe if any).
    const std::shared_ptr<kit::host::WebView>& webView() const { return webView_; }
    const std::shared_ptr<LoadingView>& loadingView() const { return loadingView_; }
    const std::shared_ptr<kit::Button>& backButton() const { return backButton_; }
    /// Web view top = root view top + constant (0, or 80 while the back button shows).
    const std::shared_ptr<kit::LayoutConstraint>& webViewTopConstraint() const {
        return webViewTopConstraint_;
    }

    /// The back button's action: one page back when the page can go back.
    void didTapBack();

    void webViewDidStartProvisionalNavigation(kit::host::WebView& webView) override;
    void webViewDidCommitNavigation(kit::host::WebView& webView) override;
    void webViewDidFinishNavigation(kit::host::WebView& webView) override;
    void webViewDidFailNavigation(kit::host::WebView& webView, const kit::host::WebError& error) override;
    void userContentControllerDidReceiveScriptMessage(kit::host::UserContentController& controller,
                                                      const kit::host::ScriptMessage& message) override;

    /// The script that hands `json` to the page: the text escaped for a script (backslashes doubled
    /// first, then apostrophes, line feeds and carriage returns escaped) as the argument of
    /// "window.onReceiveDeviceInfo(".
    static std::string deviceInfoScript(std::string_view json);

    std::string className() const override { return "LoginViewController"; }

  protected:
    void viewDidLoad() override;

  private:
    void setupLoadingView();
    void setupBackButton();
    void setupWebView();
    void clearWebViewCache();
    std::string buildAuthUrl() const;
    void updateBackButton();
    void sendDeviceInfoToWebView();
    void hideLoadingView();
    bool pageIsOnAccountsOrigin() const;

    std::shared_ptr<kit::host::WebView> webView_;
    std::shared_ptr<LoadingView> loadingView_;
    std::shared_ptr<kit::Button> backButton_;
    std::shared_ptr<kit::LayoutConstraint> webViewTopConstraint_;
    bool tokenSaved_ = false;
};

}  // namespace ovix
