// The WebKitGTK engine for real, under a private X server, against pages from a loopback server.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <set>
#include <string>
#include <vector>

#include "platform/webkitgtk/WebKitGtkPage.h"
#include "platform/webkitgtk/WebKitGtkWebsiteDataStore.h"
#include "support/GtkTestEnvironment.h"
#include "support/LoopbackServer.h"

namespace ovix::test {
namespace {

using kit::host::URLRequest;
using kit::host::WebError;
using platform::webkitgtk::WebKitGtkPage;

struct Message {
    std::string name;
    Value body;
};

class WebKitGtkPageTest : public ::testing::Test {
  protected:
    WebKitGtkPageTest() {
        WebKitGtkPage::Callbacks callbacks;
        callbacks.started = [this] { events.push_back("started"); };
        callbacks.committed = [this] { events.push_back("committed"); };
        callbacks.finished = [this] { events.push_back("finished"); };
        callbacks.failed = [this](const WebError& error) {
            events.push_back("failed");
            failures.push_back(error);
        };
        callbacks.scriptMessage = [this](const std::string& name, const Value& body) {
            messages.push_back({name, body});
        };
        page = std::make_unique<WebKitGtkPage>(std::move(callbacks));
    }

    int finishedCount() const {
        return static_cast<int>(std::count(events.begin(), events.end(), "finished"));
    }

    /// Loads `path` (serving `html` there first, when given) and waits for the load to finish.
    void loadAndFinish(const std::string& path, const std::string& html = "") {
        if (!html.empty()) {
            server.page(path, html);
        }
        const int before = finishedCount();
        const auto failed = failures.size();
        page->load(URLRequest{server.url(path)});
        ASSERT_TRUE(pumpUntil([&] { return finishedCount() > before || failures.size() > failed; })) << path;
        ASSERT_EQ(failures.size(), failed) << failures.back().description();
    }

    std::pair<Value, std::optional<WebError>> evaluate(const std::string& script) {
        bool done = false;
        std::pair<Value, std::optional<WebError>> out;
        page->evaluateJavaScript(script, [&](const Value& result, const std::optional<WebError>& error) {
            out = {result, error};
            done = true;
        });
        EXPECT_TRUE(pumpUntil([&] { return done; }));
        return out;
    }

    LoopbackServer server{LoopbackServer::Connections::OnePerRequest};
    std::unique_ptr<WebKitGtkPage> page;
    std::vector<std::string> events;
    std::vector<WebError> failures;
    std::vector<Message> messages;
};

TEST_F(WebKitGtkPageTest, PageMessagesArriveOnlyUnderRegisteredNamesWithTheBodyAsAValue) {
    ASSERT_TRUE(page->registerScriptMessageHandler("OvixLoginSuccess"));
    ASSERT_TRUE(page->registerScriptMessageHandler("Other"));
    EXPECT_FALSE(page->registerScriptMessageHandler("Other"));
    server.page("/post", R"(<html><body><script>
        const h = window.webkit.messageHandlers;
        h.OvixLoginSuccess.postMessage({data: "abc"});
        h.Other.postMessage({data: 5, list: [1, 2.5, null, true, "é\\'\n"], nested: {k: -3}});
        h.Other.postMessage("just text");
        h.Other.postMessage(undefined);
    </script></body></html>)");

    loadAndFinish("/post");
    ASSERT_TRUE(pumpUntil([&] { return messages.size() == 4; }));

    EXPECT_EQ(messages[0].name, "OvixLoginSuccess");
    EXPECT_EQ(messages[0].body, Value(Dictionary{{"data", "abc"}}));
    EXPECT_EQ(messages[1].name, "Other");
    EXPECT_EQ(messages[1].body,
              Value(Dictionary{{"data", 5u},
                               {"list", Array{Value(1u), Value(2.5), Value(), Value(true), Value("é\\'\n")}},
                               {"nested", Dictionary{{"k", -3}}}}));
    EXPECT_EQ(messages[2].body, Value("just text"));
    EXPECT_TRUE(messages[3].body.isNull());
    EXPECT_EQ(evaluate("typeof window.webkit.messageHandlers.Unregistered").first, Value("undefined"));
}

TEST_F(WebKitGtkPageTest, AnUnreachableHostFailsWithoutFinishing) {
    std::string url;
    {
        LoopbackServer closed;
        url = closed.url("/gone");
    }  // the port is closed again

    page->load(URLRequest{url});
    ASSERT_TRUE(pumpUntil([&] { return !failures.empty(); }));
    pumpPending();

    EXPECT_EQ(failures.front().kind, WebError::Kind::Network) << failures.front().description();
    EXPECT_EQ(finishedCount(), 0);
}

TEST_F(WebKitGtkPageTest, ALoadWithoutAnswerTimesOut) {
    // A first page brings the web process up, so the short time-out measures the load, not the start.
    loadAndFinish("/warm", "<html><body>warm</body></html>");
    server.on("/slow", LoopbackServer::Reply{.stall = true});
    page->load(URLRequest{server.url("/slow"), 0.3});
    ASSERT_TRUE(pumpUntil([&] { return !failures.empty(); }));
    EXPECT_EQ(failures.front().kind, WebError::Kind::TimedOut) << failures.front().description();
    server.releaseStalled();

    // The stopped load leaves no trace, and the next load reports normally.
    loadAndFinish("/after", "<html><body>after</body></html>");
    EXPECT_EQ(failures.size(), 1u);
    EXPECT_EQ(finishedCount(), 2);
}

TEST_F(WebKitGtkPageTest, LoadsReportInOrderAndBackNavigationReturnsToThePreviousPage) {
    server.page("/second", "<html><body>second</body></html>");
    loadAndFinish("/first", "<html><body>first</body></html>");
    EXPECT_EQ(events, (std::vector<std::string>{"started", "committed", "finished"}));
    EXPECT_EQ(page->url(), server.url("/first"));
    EXPECT_FALSE(page->canGoBack());
    page->goBack();  // nothing to go back to: no load starts
    pumpPending();
    EXPECT_EQ(events.size(), 3u);

    // The page navigates by itself, as a login page moving between its own screens does.
    const int before = finishedCount();
    evaluate("location.href = '/second'");
    ASSERT_TRUE(pumpUntil([&] { return finishedCount() > before; }));
    EXPECT_EQ(page->url(), server.url("/second"));
    ASSERT_TRUE(page->canGoBack());

    const int afterSecond = finishedCount();
    page->goBack();
    ASSERT_TRUE(pumpUntil([&] { return finishedCount() > afterSecond; }));
    EXPECT_EQ(page->url(), server.url("/first"));
    EXPECT_FALSE(page->canGoBack());
}

TEST_F(WebKitGtkPageTest, ScriptsReturnTheirValueOrTheErrorTheyRaised) {
    loadAndFinish("/js", "<html><body><script>window.twice = (o) => ({n: o.n * 2});</script></body></html>");

    auto [value, noError] = evaluate("twice({n: 21})");
    EXPECT_FALSE(noError.has_value());
    EXPECT_EQ(value, Value(Dictionary{{"n", 42u}}));

    auto [nothing, missing] = evaluate("window.onReceiveDeviceInfo({});");
    ASSERT_TRUE(missing.has_value());
    EXPECT_EQ(missing->kind, WebError::Kind::JavaScript);
    EXPECT_NE(missing->message.find("TypeError"), std::string::npos) << missing->message;
}

TEST_F(WebKitGtkPageTest, RemovingWebsiteDataForgetsCookiesAndStorageModifiedSinceTheMomentGiven) {
    ASSERT_TRUE(page->registerScriptMessageHandler("report"));
    server.page("/set", R"(<html><body><script>
        localStorage.setItem('k', 'v');
        document.cookie = 'script=2; path=/; max-age=3600';
    </script></body></html>)",
                {{"Set-Cookie", "server=1; Path=/; Max-Age=3600"}});
    server.page("/check", R"(<html><body><script>
        window.webkit.messageHandlers.report.postMessage(
            {cookie: document.cookie, stored: localStorage.getItem('k')});
    </script></body></html>)");
    auto removeSince = [](Date since, std::set<kit::host::WebsiteDataType> types) {
        platform::webkitgtk::WebKitGtkWebsiteDataStore store(nullptr);
        bool removed = false;
        store.removeData(types, since, [&] { removed = true; });
        EXPECT_FALSE(removed);  // never inline
        ASSERT_TRUE(pumpUntil([&] { return removed; }));
    };
    loadAndFinish("/set");

    // Cookies changed since a moment ago: none, so every cookie stays.
    removeSince(std::chrono::system_clock::now(), {kit::host::WebsiteDataType::Cookies});
    loadAndFinish("/check");
    ASSERT_TRUE(pumpUntil([&] { return messages.size() == 1; }));
    EXPECT_NE(server.lastFor("/check").header("Cookie").find("server=1"), std::string::npos);
    EXPECT_NE(messages[0].body.stringAt("cookie").value_or("").find("script=2"), std::string::npos);
    EXPECT_EQ(messages[0].body.stringAt("stored"), "v");

    removeSince(Date{}, kit::host::WebsiteDataStore::allWebsiteDataTypes());
    loadAndFinish("/check");
    ASSERT_TRUE(pumpUntil([&] { return messages.size() == 2; }));
    EXPECT_EQ(server.lastFor("/check").header("Cookie"), "");
    EXPECT_EQ(messages[1].body.stringAt("cookie"), "");
    EXPECT_TRUE(messages[1].body.find("stored")->isNull());
}

}  // namespace
}  // namespace ovix::test
