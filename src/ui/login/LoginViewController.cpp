#include "ui/login/LoginViewController.h"

#include <set>

#include "core/Endpoints.h"
#include "core/EventSlot.h"
#include "core/SessionManager.h"
#include "core/UrlSyntax.h"
#include "device/DeviceInfoCollector.h"
#include "ovix/OvixEvents.h"
#include "ovix/kit/NavigationController.h"
#include "ovix/kit/host/WebEngine.h"
#include "ovix/platform/Platform.h"

namespace ovix {

namespace {

void replaceAll(std::string& text, std::string_view from, std::string_view to) {
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
}

bool isHexDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

// Whether `text` reads as a URL at all: not empty, only the characters URLs are made of (no spaces,
// quotes, angle brackets, braces, pipes, carets, backslashes or bytes outside ASCII), percent signs
// starting an escape, at most one fragment mark. Nothing is encoded or repaired.
bool parsesAsUrl(std::string_view text) {
    if (text.empty()) {
        return false;
    }
    static constexpr std::string_view forbidden = " \"<>\\^`{|}";
    int fragments = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const auto byte = static_cast<unsigned char>(c);
        if (byte <= 0x20 || byte >= 0x7f || forbidden.find(c) != std::string_view::npos) {
            return false;
        }
        if (c == '%' && (i + 2 >= text.size() || !isHexDigit(text[i + 1]) || !isHexDigit(text[i + 2]))) {
            return false;
        }
        if (c == '#' && ++fragments > 1) {
            return false;
        }
    }
    return true;
}

}  // namespace

void LoginViewController::viewDidLoad() {
    kit::ViewController::viewDidLoad();
    view()->setBackgroundColor(kit::Color::white());
    if (auto navigation = navigationController()) {
        navigation->setNavigationBarHidden(true, false);
    }
    setupLoadingView();
    setupBackButton();
    if (SessionManager::readString(SessionManager::shared().statusKey) == logoutStatus) {
        clearWebViewCache();
    } else {
        setupWebView();
    }
}

void LoginViewController::setupLoadingView() {
    auto root = view();
    loadingView_ = LoadingView::create();
    loadingView_->setTranslatesAutoresizingMaskIntoConstraints(false);
    root->addSubview(loadingView_);
    kit::LayoutConstraint::activate({
        loadingView_->centerXAnchor().constraintEqualTo(root->centerXAnchor()),
        loadingView_->centerYAnchor().constraintEqualTo(root->centerYAnchor()),
    });
}

void LoginViewController::setupBackButton() {
    auto root = view();
    backButton_ = kit::Button::create(kit::ButtonType::system);
    backButton_->setTitle("← Back", kit::ControlState::normal);
    backButton_->setTintColor(kit::Color::black());
    backButton_->setHidden(true);
    backButton_->setTranslatesAutoresizingMaskIntoConstraints(false);
    std::weak_ptr<LoginViewController> weak = self<LoginViewController>();
    backButton_->addTarget(
        [weak] {
            if (auto screen = weak.lock()) {
                screen->didTapBack();
            }
        },
        kit::ControlEvent::touchUpInside);

    backButton_->setBackgroundColor(kit::Color::white().withAlphaComponent(0.8));
    auto& layer = backButton_->layer();
    layer.setCornerRadius(8);
    layer.setShadowColor(kit::Color::black());
    layer.setShadowOpacity(0.2);
    layer.setShadowOffset({0, 1});
    layer.setShadowRadius(2);

    root->addSubview(backButton_);
    kit::LayoutConstraint::activate({
        backButton_->leadingAnchor().constraintEqualTo(root->leadingAnchor(), 16),
        backButton_->topAnchor().constraintEqualTo(root->safeAreaLayoutGuide().topAnchor(), 8),
        backButton_->widthAnchor().constraintEqualToConstant(60),
        backButton_->heightAnchor().constraintEqualToConstant(36),
    });
}

void LoginViewController::setupWebView() {
    auto root = view();
    auto platform = platform::current();
    std::weak_ptr<LoginViewController> weak = self<LoginViewController>();

    auto contentController = kit::host::UserContentController::create();
    contentController->addScriptMessageHandler(weak, std::string(scriptMessageHandlerName));
    kit::host::WebViewConfiguration configuration;
    configuration.userContentController = contentController;

    webView_ = platform->webEngine->makeWebView(kit::Rect{}, std::move(configuration));
    webView_->setNavigationDelegate(weak);
    webView_->setCustomUserAgent(std::string(customUserAgent));
    webView_->setTranslatesAutoresizingMaskIntoConstraints(false);
    root->addSubview(webView_);
    root->bringSubviewToFront(*loadingView_);
    root->bringSubviewToFront(*backButton_);

    webViewTopConstraint_ = webView_->topAnchor().constraintEqualTo(root->topAnchor(), 0);
    webViewTopConstraint_->setActive(true);
    kit::LayoutConstraint::activate({
        webView_->leadingAnchor().constraintEqualTo(root->leadingAnchor()),
        webView_->trailingAnchor().constraintEqualTo(root->trailingAnchor()),
        webView_->bottomAnchor().constraintEqualTo(root->bottomAnchor()),
    });

    const std::string url = buildAuthUrl();
    if (!parsesAsUrl(url)) {
        return;
    }
    loadingView_->setHidden(false);
    auto progress = loadingView_->progressView();
    progress->setProgress(0, false);
    kit::View::animate(progressFillDuration, [progress] { progress->setProgress(1.0, true); });
    webView_->load(kit::host::URLRequest{url, requestTimeout});
}

void LoginViewController::clearWebViewCache() {
    using kit::host::WebsiteDataType;
    const std::set<WebsiteDataType> types{
        WebsiteDataType::Cookies,         WebsiteDataType::SessionStorage,
        WebsiteDataType::LocalStorage,    WebsiteDataType::IndexedDBDatabases,
        WebsiteDataType::WebSQLDatabases, WebsiteDataType::DiskCache,
        WebsiteDataType::MemoryCache,
    };
    std::weak_ptr<LoginViewController> weak = self<LoginViewController>();
    platform::current()->webEngine->defaultDataStore()->removeData(types, Date{}, [weak] {
        auto platform = platform::current();
        platform->console->printLine("🧹 WebView cache cleared");
        platform->mainQueue->async([weak] {
            if (auto screen = weak.lock()) {
                screen->setupWebView();
            }
        });
    });
}

std::string LoginViewController::buildAuthUrl() const {
    return Endpoints::shared().urlString + std::string(authorizationPath) +
           SessionManager::readString(SessionManager::shared().clientIdKey);
}

void LoginViewController::updateBackButton() {
    if (webView_->canGoBack()) {
        backButton_->setHidden(false);
        webViewTopConstraint_->setConstant(webViewTopWithBackButton);
    } else {
        backButton_->setHidden(true);
        webViewTopConstraint_->setConstant(0);
    }
    auto root = view();
    kit::View::animate(backButtonLayoutDuration, [root] { root->layoutIfNeeded(); });
}

std::string LoginViewController::deviceInfoScript(std::string_view json) {
    std::string escaped(json);
    // Backslashes first, so the escapes added next are not doubled again.
    replaceAll(escaped, "\\", "\\\\");
    replaceAll(escaped, "'", "\\'");
    replaceAll(escaped, "\n", "\\n");
    replaceAll(escaped, "\r", "\\r");
    return "window.onReceiveDeviceInfo(" + escaped + ");";
}

bool LoginViewController::pageIsOnAccountsOrigin() const {
    const std::string expected = UrlSyntax::origin(Endpoints::shared().urlString);
    return webView_ && !expected.empty() && UrlSyntax::origin(webView_->url()) == expected;
}

void LoginViewController::sendDeviceInfoToWebView() {
    updateBackButton();
    if (!pageIsOnAccountsOrigin()) {
        return;
    }
    // The record is always serialisable and its text always UTF-8 (invalid bytes are repaired).
    const std::string json =
        DeviceInfoCollector::toJsonString(DeviceInfoCollector::buildDeviceInfoJson("", ""));
    webView_->evaluateJavaScript(
        deviceInfoScript(json), [](const Value&, const std::optional<kit::host::WebError>& error) {
            auto console = platform::current()->console;
            if (error) {
                console->printLine("❌ Failed to send device info: " + error->description());
            } else {
                console->printLine("✅ Sent device info to WebView");
            }
        });
}

void LoginViewController::hideLoadingView() {
    if (!loadingView_->isHidden()) {
        loadingView_->setHidden(true);
        loadingView_->progressView()->layer().removeAllAnimations();
    }
}

void LoginViewController::didTapBack() {
    if (webView_ && webView_->canGoBack()) {
        webView_->goBack();
    }
}

void LoginViewController::webViewDidStartProvisionalNavigation(kit::host::WebView&) {}

void LoginViewController::webViewDidCommitNavigation(kit::host::WebView&) {
    std::weak_ptr<LoginViewController> weak = self<LoginViewController>();
    platform::current()->mainQueue->asyncAfter(hideLoadingDelay, [weak] {
        if (auto screen = weak.lock()) {
            screen->hideLoadingView();
        }
    });
}

void LoginViewController::webViewDidFinishNavigation(kit::host::WebView&) {
    sendDeviceInfoToWebView();
}

void LoginViewController::webViewDidFailNavigation(kit::host::WebView&, const kit::host::WebError&) {}

void LoginViewController::userContentControllerDidReceiveScriptMessage(
    kit::host::UserContentController&, const kit::host::ScriptMessage& message) {
    if (tokenSaved_ || message.name != scriptMessageHandlerName || message.body.asObject() == nullptr ||
        !pageIsOnAccountsOrigin()) {
        return;
    }
    const auto token = message.body.stringAt(tokenField);
    if (!token) {
        return;
    }
    if (token->size() > maxTokenBytes) {
        platform::current()->console->printLine("⚠️ Login token ignored: longer than " +
                                                std::to_string(maxTokenBytes) + " bytes");
        return;
    }
    tokenSaved_ = true;
    SessionManager::shared().saveToken(*token);
    EventSlot::shared().raise(OvixEvents::LOGIN_SUCCESS);
    dismiss(true);
}

}  // namespace ovix
