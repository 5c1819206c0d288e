// The headless engine itself: the back list and the weak message channels that screen tests rely on.
#include <gtest/gtest.h>

#include "ovix/testing/HeadlessPlatform.h"

namespace ovix::test {
namespace {

using kit::host::ScriptMessage;
using kit::host::UserContentController;

class Recorder : public kit::host::ScriptMessageHandler, public kit::host::NavigationDelegate {
  public:
    void userContentControllerDidReceiveScriptMessage(UserContentController&,
                                                      const ScriptMessage& message) override {
        messages.push_back(message);
    }
    void webViewDidCommitNavigation(kit::host::WebView& view) override {
        events.push_back("commit " + view.url());
    }
    void webViewDidFinishNavigation(kit::host::WebView&) override { events.push_back("finish"); }
    void webViewDidFailNavigation(kit::host::WebView&, const kit::host::WebError& error) override {
        events.push_back("fail " + error.description());
    }
    std::vector<ScriptMessage> messages;
    std::vector<std::string> events;
};

class ScriptedWebEngineTest : public ::testing::Test {
  protected:
    ScriptedWebEngineTest() {
        h.install();
        view = std::dynamic_pointer_cast<testing::ScriptedWebView>(h.webEngine->makeWebView({}, {}));
        view->setNavigationDelegate(recorder);
    }
    testing::HeadlessPlatform h = testing::HeadlessPlatform::create();
    std::shared_ptr<Recorder> recorder = std::make_shared<Recorder>();
    std::shared_ptr<testing::ScriptedWebView> view;
};

TEST_F(ScriptedWebEngineTest, CommitsBuildTheBackListAndGoingBackMovesInIt) {
    view->load({"https://a.example/1"});
    view->completeNavigation();
    view->navigateFromPage("https://a.example/2");
    view->completeNavigation();
    view->navigateFromPage("https://a.example/3");
    view->completeNavigation();
    EXPECT_TRUE(view->canGoBack());

    view->goBack();
    EXPECT_EQ(view->url(), "https://a.example/3");  // not before the commit
    view->completeNavigation();
    EXPECT_EQ(view->url(), "https://a.example/2");
    // A new page after going back drops the forward entry.
    view->navigateFromPage("https://a.example/4");
    view->completeNavigation();
    EXPECT_EQ(view->history(), (std::vector<std::string>{"https://a.example/1", "https://a.example/2",
                                                         "https://a.example/4"}));
    view->goBack();
    view->failNavigation({kit::host::WebError::Kind::Cancelled, "stopped"});
    EXPECT_EQ(view->url(), "https://a.example/4");
    EXPECT_EQ(recorder->events.back(), "fail Cancelled: stopped");
    EXPECT_EQ(view->loads().size(), 1u);
}

TEST_F(ScriptedWebEngineTest, ChannelsHoldTheirHandlersWeaklyAndTakeEachNameOnce) {
    auto controller = view->configuration().userContentController;
    auto other = std::make_shared<Recorder>();
    EXPECT_TRUE(controller->addScriptMessageHandler(recorder, "one"));
    EXPECT_FALSE(controller->addScriptMessageHandler(other, "one"));
    EXPECT_TRUE(view->postMessage("one", Value(Array{Value(1), Value("x")})));
    ASSERT_EQ(recorder->messages.size(), 1u);
    EXPECT_EQ(recorder->messages[0].body, Value(Array{Value(1), Value("x")}));
    EXPECT_TRUE(other->messages.empty());

    EXPECT_TRUE(controller->addScriptMessageHandler(other, "two"));
    other.reset();
    EXPECT_FALSE(view->postMessage("two", Value()));
    controller->removeScriptMessageHandler("one");
    EXPECT_FALSE(view->postMessage("one", Value()));
    EXPECT_EQ(controller->scriptMessageHandlerNames(), std::vector<std::string>{"two"});
}

TEST_F(ScriptedWebEngineTest, ScriptsAreAnsweredOnceAndCancelledWhenTheViewGoes) {
    std::vector<std::string> results;
    auto record = [&](const Value& value, const std::optional<kit::host::WebError>& error) {
        results.push_back(error ? error->description() : value.toJson());
    };
    view->evaluateJavaScript("1+1", record);
    view->evaluateJavaScript("later()", record);
    EXPECT_TRUE(view->answerScript(Value(2)));
    EXPECT_EQ(results, std::vector<std::string>{"2"});
    view.reset();
    EXPECT_EQ(results.size(), 1u);  // never inline
    h.mainQueue->runUntilIdle();
    EXPECT_EQ(results.back(), "Cancelled: The web view went away.");
}

}  // namespace
}  // namespace ovix::test
