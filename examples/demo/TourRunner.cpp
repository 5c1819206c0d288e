#include "TourRunner.h"

#include <cstdio>

namespace demo {

TourRunner::TourRunner(std::string outputDirectory, Snapshot snapshot, Report report)
    : directory_(std::move(outputDirectory)), snapshot_(std::move(snapshot)), report_(std::move(report)) {}

std::string TourRunner::snapshotPath(std::size_t index) const {
    char number[16];
    std::snprintf(number, sizeof number, "%02zu", index + 1);
    return directory_ + "/" + number + "-" + steps_.at(index).name + ".png";
}

bool TourRunner::passed() const {
    if (!finished_ || results_.size() != steps_.size()) {
        return false;
    }
    for (const auto& result : results_) {
        if (!result.passed) {
            return false;
        }
    }
    return true;
}

bool TourRunner::tick(double now) {
    if (finished_) {
        return true;
    }
    if (current_ >= steps_.size()) {
        finished_ = true;
        return true;
    }
    auto& step = steps_[current_];
    if (phase_ == Phase::start) {
        started_ = now;
        stage_ = 0;
        phase_ = Phase::waiting;
        if (!step.stages.empty() && step.stages[0].action) {
            step.stages[0].action();
        }
    }
    // Stages that are already true pass in the same tick; the next one's action runs at once.
    while (phase_ == Phase::waiting) {
        if (stage_ >= step.stages.size()) {
            phase_ = Phase::settling;
            doneAt_ = now;
            break;
        }
        const auto& stage = step.stages[stage_];
        if (!stage.done || stage.done()) {
            if (++stage_ < step.stages.size() && step.stages[stage_].action) {
                step.stages[stage_].action();
            }
            continue;
        }
        if (now - started_ > step.timeout) {
            finishStep(
                false,
                "timed out after " + std::to_string(static_cast<int>(step.timeout)) + " s waiting for " +
                    (stage.expectation.empty() ? "stage " + std::to_string(stage_ + 1) : stage.expectation),
                now);
        }
        return finished_;
    }
    if (phase_ == Phase::settling && !step.stages.empty() && step.stages.back().mustHold &&
        !step.stages.back().done()) {
        phase_ = Phase::waiting;
        stage_ = step.stages.size() - 1;
        return finished_;
    }
    if (phase_ == Phase::settling && now - doneAt_ >= step.settle) {
        finishStep(true, "", now);
    }
    return finished_;
}

void TourRunner::finishStep(bool passed, std::string detail, double now) {
    Result result{steps_[current_].name, passed, std::move(detail), "", now - started_};
    // A failed step is still pictured: the picture shows what was on screen instead.
    const std::string path = snapshotPath(current_);
    if (snapshot_ && snapshot_(path)) {
        result.snapshot = path;
    } else if (result.passed) {
        result.passed = false;
        result.detail = "could not write " + path;
    }
    results_.push_back(result);
    if (report_) {
        report_(results_.back());
    }
    phase_ = Phase::start;
    ++current_;
    if (!results_.back().passed || current_ >= steps_.size()) {
        finished_ = true;
    }
}

}  // namespace demo
