// The game's event log: counts the tour relies on, what is printed and drawn, many threads at once.
#include <gtest/gtest.h>

#include <thread>

#include "EventLog.h"

namespace demo {
namespace {

TEST(EventLogTest, CountsEachEventByNameKeepsTheLastDataAndPrintsEveryLine) {
    std::vector<std::string> printed;
    EventLog log([&](const std::string& line) { printed.push_back(line); });
    log.addEvent("OvixBillingConnected", ovix::Value(ovix::Array{ovix::Value("a")}));
    log.addNote("HUD: buy b");
    log.addEvent("OvixBillingConnected", ovix::Value(ovix::Array{ovix::Value("b")}));
    log.addEvent("OvixLogoutSuccess", ovix::Value());

    EXPECT_EQ(log.count("OvixBillingConnected"), 2u);
    EXPECT_EQ(log.count("OvixLogoutSuccess"), 1u);
    EXPECT_EQ(log.count("HUD: buy b"), 0u) << "a note is not an event";
    EXPECT_EQ(log.lastData("OvixBillingConnected"), ovix::Value(ovix::Array{ovix::Value("b")}));
    EXPECT_TRUE(log.lastData("OvixPurchaseUpdated").isNull());
    EXPECT_EQ(log.names(), (std::vector<std::string>{"OvixBillingConnected", "OvixBillingConnected",
                                                     "OvixLogoutSuccess"}));
    EXPECT_EQ(printed,
              (std::vector<std::string>{"event OvixBillingConnected [\"a\"]", "HUD: buy b",
                                        "event OvixBillingConnected [\"b\"]", "event OvixLogoutSuccess"}));
    EXPECT_EQ(log.tail(2),
              (std::vector<std::string>{"event OvixBillingConnected [\"b\"]", "event OvixLogoutSuccess"}));
    EXPECT_EQ(log.tail(10).size(), 4u);
}

bool validUtf8(const std::string& text) {
    for (std::size_t i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i]);
        const std::size_t length = lead < 0x80         ? 1
                                   : (lead >> 5) == 6  ? 2
                                   : (lead >> 4) == 14 ? 3
                                   : (lead >> 3) == 30 ? 4
                                                       : 0;
        if (length == 0 || i + length > text.size()) {
            return false;
        }
        for (std::size_t k = 1; k < length; ++k) {
            if ((static_cast<unsigned char>(text[i + k]) & 0xC0) != 0x80) {
                return false;
            }
        }
        i += length;
    }
    return true;
}

TEST(EventLogTest, ALongLineIsCutBetweenCharactersNeverInsideOne) {
    // "đ" is two bytes: a cut at the limit would fall inside one for some lengths of the prefix.
    for (std::size_t prefix = 0; prefix < 4; ++prefix) {
        SCOPED_TRACE(prefix);
        std::string text(prefix, 'x');
        for (int i = 0; i < 200; ++i) {
            text += "đ";
        }
        const auto line = EventLog::formatEvent("E", ovix::Value(text));
        EXPECT_LE(line.size(), EventLog::maxLineBytes + std::string("…").size());
        EXPECT_TRUE(line.ends_with("…"));
        EXPECT_TRUE(validUtf8(line)) << "cut inside a character";
    }
    EXPECT_EQ(EventLog::formatEvent("E", ovix::Value("short")), "event E \"short\"");
}

TEST(EventLogTest, EventsFromManyThreadsAreAllCountedAndPrintedWhole) {
    std::vector<std::string> printed;
    EventLog log([&](const std::string& line) { printed.push_back(line); });  // unguarded: the log serialises
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&log] {
            for (int i = 0; i < 500; ++i) {
                log.addEvent("OvixPurchaseUpdated", ovix::Value(i));
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(log.count("OvixPurchaseUpdated"), 2000u);
    EXPECT_EQ(printed.size(), 2000u);
}

}  // namespace
}  // namespace demo
