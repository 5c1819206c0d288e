#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <memory>
#include <vector>

#include "kit/LayoutEngine.h"
#include "kit/layout/Solver.h"
#include "ovix/kit/Label.h"
#include "ovix/kit/LayoutConstraint.h"
#include "ovix/kit/View.h"
#include "ovix/testing/HeadlessPlatform.h"

namespace {

using namespace ovix::kit;

// A form as the screens build it: a column of labelled fields in a 390-wide root, each pinned inside
// 20-point margins, 8 points under the one above, 44 tall, with a label whose intrinsic size takes
// part. About four constraints per field plus the label's intrinsic ones: 25 fields make a form of
// ~100 constraints.
struct Form {
    explicit Form(int fields) : root(View::create({0, 0, 390, 844})) {
        std::shared_ptr<View> above;
        for (int i = 0; i < fields; ++i) {
            auto field = View::create();
            field->setTranslatesAutoresizingMaskIntoConstraints(false);
            auto label = Label::create("Field");
            label->setTranslatesAutoresizingMaskIntoConstraints(false);
            root->addSubview(field);
            field->addSubview(label);
            auto top = above ? field->topAnchor().constraintEqualTo(above->bottomAnchor(), 8)
                             : field->topAnchor().constraintEqualTo(root->topAnchor(), 20);
            LayoutConstraint::activate({
                top,
                field->leadingAnchor().constraintEqualTo(root->leadingAnchor(), 20),
                field->trailingAnchor().constraintEqualTo(root->trailingAnchor(), -20),
                field->heightAnchor().constraintEqualToConstant(44),
                label->leadingAnchor().constraintEqualTo(field->leadingAnchor(), 12),
                label->centerYAnchor().constraintEqualTo(field->centerYAnchor()),
            });
            if (!firstTop) {
                firstTop = top;
            }
            above = field;
        }
    }

    std::shared_ptr<View> root;
    std::shared_ptr<LayoutConstraint> firstTop;
};

void installPlatform() {
    static bool installed = [] {
        ovix::testing::HeadlessPlatform::create().install();
        return true;
    }();
    (void)installed;
}

// Building the solver system from the tree and solving it, as the first layout pass of a screen does.
void FirstLayout(benchmark::State& state) {
    installPlatform();
    for (auto _ : state) {
        state.PauseTiming();
        Form form(static_cast<int>(state.range(0)));
        state.ResumeTiming();
        form.root->layoutIfNeeded();
        benchmark::DoNotOptimize(form.root->subviews().back()->frame());
    }
    state.SetComplexityN(state.range(0) * 4);
}

// One constant changes (the top of the first field) and every frame below moves: the incremental
// path of a laid-out screen.
void RelayoutAfterConstantChange(benchmark::State& state) {
    installPlatform();
    Form form(static_cast<int>(state.range(0)));
    form.root->layoutIfNeeded();
    const auto fullSyncs = LayoutEngine::of(*form.root)->fullSyncCount();
    double constant = 20;
    for (auto _ : state) {
        constant = constant == 20 ? 100 : 20;
        form.firstTop->setConstant(constant);
        form.root->layoutIfNeeded();
        benchmark::DoNotOptimize(form.root->subviews().back()->frame());
    }
    state.counters["full_syncs"] =
        static_cast<double>(LayoutEngine::of(*form.root)->fullSyncCount() - fullSyncs);
    state.SetComplexityN(state.range(0) * 4);
}

using Clock = std::chrono::steady_clock;

double microsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::micro>(Clock::now() - start).count();
}

double snap(double v) {
    double r = std::round(v);
    return std::fabs(v - r) < 1e-7 ? r : v;
}

// What the bare solver's caller has to do after a re-solve: every constrained view's frame from the
// solved values (relative to its superview), set where it changed.
struct FrameWriter {
    FrameWriter(const LayoutEngine& engine, View& root) {
        std::vector<View*> pending{&root};
        while (!pending.empty()) {
            View* view = pending.back();
            pending.pop_back();
            for (auto& child : view->subviews()) {
                pending.push_back(child.get());
                if (!child->translatesAutoresizingMaskIntoConstraints()) {
                    targets.push_back({child.get(), engine.variablesOf(*child), engine.variablesOf(*view)});
                }
            }
        }
    }
    void write() const {
        for (const Target& t : targets) {
            Rect frame{snap(t.box->left.value() - t.parent->left.value()),
                       snap(t.box->top.value() - t.parent->top.value()), snap(t.box->width.value()),
                       snap(t.box->height.value())};
            if (frame != t.view->frame()) {
                t.view->setFrame(frame);
            }
        }
    }
    struct Target {
        View* view;
        const LayoutEngine::Box* box;
        const LayoutEngine::Box* parent;
    };
    std::vector<Target> targets;
};

// The engine against the bare solver on the very system the engine builds, in one run: a first
// layout against a from-scratch solve, and a re-layout after one constant change against the
// cheapest correct solver operation for it (the constant changed in place) plus writing the frames
// back. Each figure is the best of several batches, so a busy machine inflates neither side.
void LayoutAgainstSolver(benchmark::State& state) {
    installPlatform();
    const int fields = static_cast<int>(state.range(0));
    const int firstReps = std::max(2, 2500 / fields);
    const int relayoutReps = std::max(10, 50000 / fields);
    double engineFirst = std::numeric_limits<double>::max(), solverFirst = engineFirst;
    double engineRelayout = engineFirst, solverRelayout = engineFirst;
    for (auto _ : state) {
        for (int rep = 0; rep < firstReps; ++rep) {
            Form form(fields);
            auto start = Clock::now();
            form.root->layoutIfNeeded();
            engineFirst = std::min(engineFirst, microsSince(start));
            auto constraints = LayoutEngine::of(*form.root)->installedConstraints();
            start = Clock::now();
            ovix::kit::layout::Solver solver;
            for (auto& c : constraints) {
                solver.addConstraint(c);
            }
            solver.updateVariables();
            solverFirst = std::min(solverFirst, microsSince(start));
        }

        Form engineForm(fields), solverForm(fields);
        engineForm.root->layoutIfNeeded();
        solverForm.root->layoutIfNeeded();
        const LayoutEngine& engine = *LayoutEngine::of(*solverForm.root);
        ovix::kit::layout::Solver solver;
        for (auto& c : engine.installedConstraints()) {
            solver.addConstraint(c);
        }
        solver.updateVariables();
        const auto* changed = engine.solverConstraintFor(*solverForm.firstTop);
        FrameWriter writer(engine, *solverForm.root);
        double constant = 20;
        for (int batch = 0; batch < 15; ++batch) {
            auto start = Clock::now();
            for (int i = 0; i < relayoutReps; ++i) {
                constant = constant == 20 ? 100 : 20;
                engineForm.firstTop->setConstant(constant);
                engineForm.root->layoutIfNeeded();
            }
            engineRelayout = std::min(engineRelayout, microsSince(start) / relayoutReps);
            start = Clock::now();
            for (int i = 0; i < relayoutReps; ++i) {
                constant = constant == 20 ? 100 : 20;
                solver.setConstant(*changed, -constant);
                solver.updateVariables();
                writer.write();
            }
            solverRelayout = std::min(solverRelayout, microsSince(start) / relayoutReps);
        }
        if (engineForm.root->subviews().back()->frame() != solverForm.root->subviews().back()->frame()) {
            state.SkipWithError("the engine and the solver disagree on the last field's frame");
        }
    }
    state.counters["engine_first_us"] = engineFirst;
    state.counters["solver_first_us"] = solverFirst;
    state.counters["first_ratio"] = engineFirst / solverFirst;
    state.counters["engine_relayout_us"] = engineRelayout;
    state.counters["solver_resolve_write_us"] = solverRelayout;
    state.counters["relayout_ratio"] = engineRelayout / solverRelayout;
}

BENCHMARK(LayoutAgainstSolver)->Arg(25)->Arg(250)->Arg(2500)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(FirstLayout)->Arg(25)->Arg(250)->Arg(2500)->Unit(benchmark::kMicrosecond)->Complexity();
BENCHMARK(RelayoutAfterConstantChange)
    ->Arg(25)
    ->Arg(250)
    ->Arg(2500)
    ->Unit(benchmark::kMicrosecond)
    ->Complexity();

}  // namespace
