#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace demo {

/// Runs scripted steps one after another, each as a player would see it: do something, wait until
/// what it should bring about has happened (an event, a screen) — a step may take several such
/// stages, each starting once the one before came true — let the picture settle, write a snapshot
/// "NN-name.png". A step whose expectation does not come true within its timeout fails the
/// tour and ends it: later steps build on it. A step passes only when its snapshot was written too.
///
/// The runner owns no clock and no loop: the game calls `tick(now)` from its main loop (a GLib
/// timeout) with monotonic seconds. Main thread only; the steps' functions run inside `tick`.
class TourRunner {
  public:
    struct Stage {
        std::function<void()> action;  ///< may be empty
        std::function<bool()> done;    ///< the expectation; empty means "at once"
        std::string expectation;       ///< what `done` waits for, for the report
        /// For the last stage: `done` must stay true until the snapshot; when it turns false while
        /// the picture settles, the step waits for it again (within its timeout). `done` must then
        /// be a plain check without side effects.
        bool mustHold = false;
    };
    struct Step {
        std::string name;
        std::vector<Stage> stages;
        double timeout = 10;  ///< seconds from the first action to the last stage's `done`
        double settle = 0.6;  ///< seconds between the last `done` and the snapshot (animations)
    };
    struct Result {
        std::string name;
        bool passed = false;
        std::string detail;    ///< "" when passed; why it failed otherwise
        std::string snapshot;  ///< the file written, "" when none was
        double seconds = 0;    ///< from the action to the snapshot
    };
    /// Writes the picture to `path`; false when it could not.
    using Snapshot = std::function<bool(const std::string& path)>;
    /// Hears each finished step at once (for printing).
    using Report = std::function<void(const Result&)>;

    TourRunner(std::string outputDirectory, Snapshot snapshot, Report report = {});
    void add(Step step) { steps_.push_back(std::move(step)); }

    /// Advances the tour; returns true once it has ended (all passed, or one failed).
    bool tick(double now);
    bool finished() const { return finished_; }
    /// True when the tour ended and every step passed.
    bool passed() const;
    const std::vector<Result>& results() const { return results_; }
    /// "NN-name.png" inside the output directory, NN the 1-based step number.
    std::string snapshotPath(std::size_t index) const;

  private:
    enum class Phase { start, waiting, settling };
    void finishStep(bool passed, std::string detail, double now);

    std::string directory_;
    Snapshot snapshot_;
    Report report_;
    std::vector<Step> steps_;
    std::vector<Result> results_;
    std::size_t current_ = 0;
    std::size_t stage_ = 0;
    Phase phase_ = Phase::start;
    double started_ = 0;
    double doneAt_ = 0;
    bool finished_ = false;
};

}  // namespace demo
