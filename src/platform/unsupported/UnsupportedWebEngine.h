#pragma once

#include "ovix/kit/host/WebEngine.h"
#include "platform/unsupported/Unsupported.h"

namespace ovix::platform {

/// Web pages on a platform without a web engine: every load fails and every script errs with
/// `WebError::Kind::Unsupported`, later on the main queue; removing website data has nothing to
/// remove and completes later.
class UnsupportedWebEngine : public kit::host::WebEngine {
  public:
    class View : public kit::host::WebView {
      public:
        using kit::host::WebView::WebView;

        void load(const kit::host::URLRequest&) override {
            unsupported::report("Web pages");
            std::weak_ptr<View> weak = self<View>();
            current()->mainQueue->async([weak] {
                if (auto view = weak.lock()) {
                    view->notifyDidFailNavigation(error());
                }
            });
        }
        bool canGoBack() const override { return false; }
        void goBack() override {}
        std::string url() const override { return ""; }
        void evaluateJavaScript(const std::string&, ScriptCompletion completion) override {
            current()->mainQueue->async(
                [completion = std::move(completion)] { completion(Value(), error()); });
        }

      private:
        static kit::host::WebError error() {
            return {kit::host::WebError::Kind::Unsupported, unsupported::message("Web pages")};
        }
    };

    class DataStore : public kit::host::WebsiteDataStore {
      public:
        void removeData(const std::set<kit::host::WebsiteDataType>&, Date,
                        std::function<void()> completion) override {
            current()->mainQueue->async(std::move(completion));
        }
    };

    std::shared_ptr<kit::host::WebView> makeWebView(kit::Rect frame,
                                                    kit::host::WebViewConfiguration configuration) override {
        return std::make_shared<View>(frame, std::move(configuration));
    }
    std::shared_ptr<kit::host::WebsiteDataStore> defaultDataStore() override { return dataStore_; }

  private:
    std::shared_ptr<DataStore> dataStore_ = std::make_shared<DataStore>();
};

}  // namespace ovix::platform
