#pragma once

#include <memory>
#include <vector>

#include "ovix/kit/host/WebEngine.h"
#include "ovix/testing/ScriptedWebView.h"
#include "ovix/testing/ScriptedWebsiteDataStore.h"

namespace ovix::testing {

/// The headless web engine: makes `ScriptedWebView`s, whose pages the test plays, and keeps its
/// data in a `ScriptedWebsiteDataStore`. Remembers the views it made without keeping them alive.
/// Main thread only.
class ScriptedWebEngine : public kit::host::WebEngine {
  public:
    std::shared_ptr<kit::host::WebView> makeWebView(kit::Rect frame,
                                                    kit::host::WebViewConfiguration configuration) override;
    std::shared_ptr<kit::host::WebsiteDataStore> defaultDataStore() override { return dataStore; }

    /// How many web views were made so far.
    std::size_t madeCount() const { return made_.size(); }
    /// The most recently made view, if it is still alive.
    std::shared_ptr<ScriptedWebView> lastWebView() const;
    /// The views made so far that are still alive, oldest first.
    std::vector<std::shared_ptr<ScriptedWebView>> liveWebViews() const;

    const std::shared_ptr<ScriptedWebsiteDataStore> dataStore = std::make_shared<ScriptedWebsiteDataStore>();

  private:
    std::vector<std::weak_ptr<ScriptedWebView>> made_;
};

}  // namespace ovix::testing
