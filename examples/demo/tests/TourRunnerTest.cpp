// The tour's step runner: order, waiting, timeouts, settling and what counts as a pass.
#include <gtest/gtest.h>

#include <set>

#include "TourRunner.h"

namespace demo {
namespace {

struct Recorder {
    std::vector<std::string> written;
    std::set<std::string> refuse;  // paths whose snapshot "fails"
    TourRunner::Snapshot snapshot() {
        return [this](const std::string& path) {
            written.push_back(path);
            return !refuse.contains(path);
        };
    }
};

/// Ticks every 50 ms from t = 0 until the runner ends or `limit` seconds pass.
double runUntilEnd(TourRunner& runner, double limit = 100) {
    double now = 0;
    while (!runner.tick(now) && now < limit) {
        now += 0.05;
    }
    return now;
}

TEST(TourRunnerTest, RunsStepsInOrderAndPicturesEachOnceItsExpectationCameTrue) {
    Recorder recorder;
    TourRunner runner("/out", recorder.snapshot());
    std::vector<std::string> actions;
    int polls = 0;
    runner.add({"first",
                {{[&] { actions.push_back("first"); }, [&] { return ++polls >= 3; }, "three polls"}},
                5,
                0});
    runner.add({"second", {{[&] { actions.push_back("second"); }, {}, ""}}, 5, 0});
    runUntilEnd(runner);

    EXPECT_TRUE(runner.passed());
    EXPECT_EQ(actions, (std::vector<std::string>{"first", "second"}));
    EXPECT_EQ(polls, 3);
    EXPECT_EQ(recorder.written, (std::vector<std::string>{"/out/01-first.png", "/out/02-second.png"}));
    EXPECT_EQ(runner.results().at(1).snapshot, "/out/02-second.png");
}

TEST(TourRunnerTest, StagesStartOneAfterAnotherAndTheSnapshotWaitsForTheSettle) {
    Recorder recorder;
    TourRunner runner("/out", recorder.snapshot());
    bool opened = false;
    bool tapped = false;
    double tappedAt = -1;
    double now = 0;
    runner.add({"menu",
                {{[&] { opened = true; }, [&] { return now >= 1.0; }, "the sheet"},
                 {[&] {
                      tapped = true;
                      tappedAt = now;
                  },
                  {},
                  ""}},
                5,
                0.5});
    for (; now < 1.45; now += 0.05) {
        runner.tick(now);
    }
    EXPECT_TRUE(opened);
    EXPECT_TRUE(tapped);
    EXPECT_GE(tappedAt, 1.0) << "the second stage's action ran before the first came true";
    EXPECT_TRUE(recorder.written.empty()) << "pictured before the settle was over";
    for (; now < 1.7; now += 0.05) {
        runner.tick(now);
    }
    EXPECT_EQ(recorder.written.size(), 1u);
    EXPECT_TRUE(runner.passed());
}

TEST(TourRunnerTest, AFailedStepEndsTheTourWithItsReasonAndStillPicturesTheScreen) {
    struct Case {
        const char* name;
        bool expectationComes;
        bool snapshotWorks;
        const char* detailPart;
    };
    const Case cases[] = {
        {"timeout", false, true, "waiting for the popup"},
        {"snapshot refused", true, false, "could not write /out/01-popup.png"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Recorder recorder;
        if (!c.snapshotWorks) {
            recorder.refuse.insert("/out/01-popup.png");
        }
        std::vector<std::string> reported;
        TourRunner runner("/out", recorder.snapshot(),
                          [&](const TourRunner::Result& result) { reported.push_back(result.name); });
        bool laterRan = false;
        runner.add({"popup", {{{}, [&] { return c.expectationComes; }, "the popup"}}, 2, 0});
        runner.add({"later", {{[&] { laterRan = true; }, {}, ""}}, 2, 0});
        const double ended = runUntilEnd(runner);

        EXPECT_TRUE(runner.finished());
        EXPECT_FALSE(runner.passed());
        EXPECT_FALSE(laterRan);
        ASSERT_EQ(runner.results().size(), 1u);
        EXPECT_FALSE(runner.results()[0].passed);
        EXPECT_NE(runner.results()[0].detail.find(c.detailPart), std::string::npos)
            << runner.results()[0].detail;
        EXPECT_EQ(recorder.written, std::vector<std::string>{"/out/01-popup.png"});
        EXPECT_EQ(reported, std::vector<std::string>{"popup"});
        if (!c.expectationComes) {
            EXPECT_GT(ended, 2.0);
            EXPECT_LT(ended, 2.2);
        }
    }
}

TEST(TourRunnerTest, AnExpectationThatMustHoldIsAwaitedAgainWhenItLapsesWhileSettling) {
    Recorder recorder;
    TourRunner runner("/out", recorder.snapshot());
    double now = 0;
    // Gone at 0.2 s, back from 0.4 s to 0.6 s (a cover shown again), gone for good after.
    auto coverGone = [&] { return (now >= 0.2 && now < 0.4) || now >= 0.6; };
    double pictureAt = -1;
    runner.add({"page", {{{}, coverGone, "the cover gone", true}}, 5, 0.5});
    for (; now < 2 && recorder.written.empty(); now += 0.05) {
        runner.tick(now);
        if (!recorder.written.empty()) {
            pictureAt = now;
        }
    }
    EXPECT_TRUE(runner.passed());
    EXPECT_GE(pictureAt, 1.1) << "pictured while the cover was back";
}

}  // namespace
}  // namespace demo
