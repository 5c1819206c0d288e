#pragma once

#include "platform/unsupported/Unsupported.h"

namespace ovix::platform {

/// Web pages on a platform without a web engine: every load fails and every script errs with
/// `WebError::Kind::Unsupported`, later on the main queue; removing website data has nothing to
/// remove and completes later.
class UnsupportedWebEngine : public WebEngine {
  public:
    class View : public WebView {
      public:
        using WebView::WebView;

        void load(const URLRequest&) override {
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
        static WebError error() { return {WebError::Kind::Unsupported, unsupported::message("Web pages")}; }
    };

    class DataStore : public WebsiteDataStore {
      public:
        void removeData(const std::set<WebsiteDataType>&, Date, std::function<void()> completion) override {
            current()->mainQueue->async(std::move(completion));
        }
    };

    std::shared_ptr<WebView> makeWebView(kit::Rect frame, WebViewConfiguration configuration) override {
        return std::make_shared<View>(frame, std::move(configuration));
    }
    std::shared_ptr<WebsiteDataStore> defaultDataStore() override { return dataStore_; }

  private:
    std::shared_ptr<DataStore> dataStore_ = std::make_shared<DataStore>();
};

}  // namespace ovix::platform
