#include "ovix/testing/ScriptedWebEngine.h"

namespace ovix::testing {

std::shared_ptr<kit::host::WebView> ScriptedWebEngine::makeWebView(
    kit::Rect frame, kit::host::WebViewConfiguration configuration) {
    auto view = std::make_shared<ScriptedWebView>(frame, std::move(configuration));
    made_.push_back(view);
    return view;
}

std::shared_ptr<ScriptedWebView> ScriptedWebEngine::lastWebView() const {
    return made_.empty() ? nullptr : made_.back().lock();
}

std::vector<std::shared_ptr<ScriptedWebView>> ScriptedWebEngine::liveWebViews() const {
    std::vector<std::shared_ptr<ScriptedWebView>> live;
    for (const auto& weak : made_) {
        if (auto view = weak.lock()) {
            live.push_back(std::move(view));
        }
    }
    return live;
}

}  // namespace ovix::testing
