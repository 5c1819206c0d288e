#include "ovix/testing/ScriptedWebView.h"

#include "ovix/platform/Platform.h"

namespace ovix::testing {

ScriptedWebView::ScriptedWebView(kit::Rect frame, kit::host::WebViewConfiguration configuration)
    : kit::host::WebView(frame, std::move(configuration)), mainQueue_(platform::current()->mainQueue) {}

ScriptedWebView::~ScriptedWebView() {
    // The contract promises every completion once; a view that goes cancels what it still runs. The
    // view may go while its platform is being replaced: use the queue it was made with.
    auto queue = mainQueue_.lock();
    for (auto& completion : pending_) {
        if (!queue) {
            break;
        }
        queue->async([completion = std::move(completion)] {
            completion(Value(),
                       kit::host::WebError{kit::host::WebError::Kind::Cancelled, "The web view went away."});
        });
    }
}

void ScriptedWebView::load(const kit::host::URLRequest& request) {
    loads_.push_back(request);
    navigation_ = Pending{request.url, false};
}

void ScriptedWebView::goBack() {
    if (!canGoBack()) {
        return;
    }
    ++goBackCount_;
    navigation_ = Pending{history_[static_cast<std::size_t>(index_ - 1)], true};
}

std::string ScriptedWebView::url() const {
    return index_ >= 0 ? history_[static_cast<std::size_t>(index_)] : std::string();
}

void ScriptedWebView::evaluateJavaScript(const std::string& script, ScriptCompletion completion) {
    scripts_.push_back(script);
    if (!responder_) {
        pending_.push_back(std::move(completion));
        return;
    }
    auto answer = responder_(script);
    mainQueue_.lock()->async([completion = std::move(completion), answer = std::move(answer)] {
        completion(answer.first, answer.second);
    });
}

void ScriptedWebView::navigateFromPage(const std::string& url) {
    navigation_ = Pending{url, false};
}

std::optional<std::string> ScriptedWebView::pendingUrl() const {
    return navigation_ ? std::optional<std::string>(navigation_->url) : std::nullopt;
}

void ScriptedWebView::startNavigation() {
    notifyDidStartProvisionalNavigation();
}

void ScriptedWebView::commitNavigation() {
    if (!navigation_) {
        return;
    }
    if (navigation_->back) {
        --index_;
    } else {
        history_.resize(static_cast<std::size_t>(index_ + 1));
        history_.push_back(navigation_->url);
        ++index_;
    }
    notifyDidCommitNavigation();
}

void ScriptedWebView::finishNavigation() {
    navigation_.reset();
    notifyDidFinishNavigation();
}

void ScriptedWebView::failNavigation(kit::host::WebError error) {
    navigation_.reset();
    notifyDidFailNavigation(error);
}

void ScriptedWebView::completeNavigation() {
    startNavigation();
    commitNavigation();
    finishNavigation();
}

bool ScriptedWebView::postMessage(const std::string& name, Value body) {
    return deliverScriptMessage(kit::host::ScriptMessage{name, std::move(body)});
}

bool ScriptedWebView::answerScript(Value result) {
    return complete(std::move(result), std::nullopt);
}

bool ScriptedWebView::failScript(kit::host::WebError error) {
    return complete(Value(), std::move(error));
}

bool ScriptedWebView::complete(Value result, std::optional<kit::host::WebError> error) {
    if (pending_.empty()) {
        return false;
    }
    auto completion = std::move(pending_.front());
    pending_.pop_front();
    completion(result, error);
    return true;
}

}  // namespace ovix::testing
