#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "ovix/kit/host/WebView.h"
#include "ovix/platform/MainQueue.h"

namespace ovix::testing {

/// A web view whose page is played by the test.
///
/// Loads are recorded with their requests and become the pending navigation; the test then plays
/// the engine's events for it (`startNavigation`, `commitNavigation`, `finishNavigation`,
/// `failNavigation`), which reach the navigation delegate at once. A commit adds the page to the back
/// list (or moves back in it after `goBack`). The page posts messages with `postMessage`. Scripts are
/// recorded and answered by the test (`answerScript`, `failScript`) or by a responder; scripts still
/// unanswered when the view goes complete later as cancelled. Main thread only.
class ScriptedWebView : public kit::host::WebView {
  public:
    using ScriptResponder =
        std::function<std::pair<Value, std::optional<kit::host::WebError>>(const std::string& script)>;

    ScriptedWebView(kit::Rect frame, kit::host::WebViewConfiguration configuration);
    ~ScriptedWebView() override;

    void load(const kit::host::URLRequest& request) override;
    bool canGoBack() const override { return index_ > 0; }
    void goBack() override;
    std::string url() const override;
    void evaluateJavaScript(const std::string& script, ScriptCompletion completion) override;

    // --- Navigation, played by the test ---
    /// Every request passed to `load`, in order.
    const std::vector<kit::host::URLRequest>& loads() const { return loads_; }
    int goBackCount() const { return goBackCount_; }
    /// The page moves on by itself (a link or a script): `url` becomes the pending navigation.
    void navigateFromPage(const std::string& url);
    /// The address of the navigation in progress, if any.
    std::optional<std::string> pendingUrl() const;
    void startNavigation();
    /// The pending page replaces the current one (ignored when nothing is pending).
    void commitNavigation();
    void finishNavigation();
    void failNavigation(kit::host::WebError error);
    /// Start, commit and finish.
    void completeNavigation();
    /// The committed pages, oldest first; `url()` is the entry at the current position.
    const std::vector<std::string>& history() const { return history_; }

    // --- The page's side ---
    /// The page posts `body` under `name`; false when no live handler has that channel (a real page
    /// would find no such handler).
    bool postMessage(const std::string& name, Value body);

    // --- Scripts ---
    /// Every script evaluated, in order.
    const std::vector<std::string>& evaluatedScripts() const { return scripts_; }
    std::size_t pendingScriptCount() const { return pending_.size(); }
    /// Completes the oldest unanswered script with `result` (at once); false when none waits.
    bool answerScript(Value result = Value());
    bool failScript(kit::host::WebError error);
    /// Later scripts are answered by `responder`, on the main queue; null returns to test answers.
    void setScriptResponder(ScriptResponder responder) { responder_ = std::move(responder); }

    std::string className() const override { return "ScriptedWebView"; }

  private:
    struct Pending {
        std::string url;
        bool back = false;
    };

    bool complete(Value result, std::optional<kit::host::WebError> error);

    std::vector<kit::host::URLRequest> loads_;
    int goBackCount_ = 0;
    std::optional<Pending> navigation_;
    std::vector<std::string> history_;
    int index_ = -1;
    std::vector<std::string> scripts_;
    std::deque<ScriptCompletion> pending_;
    ScriptResponder responder_;
    std::weak_ptr<platform::MainQueue> mainQueue_;
};

}  // namespace ovix::testing
