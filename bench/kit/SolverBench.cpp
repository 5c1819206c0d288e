#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <new>
#include <vector>

#include "kit/layout/Solver.h"

namespace {
// Every allocation in the process, so a benchmark can report how many one iteration costs.
std::atomic<std::size_t> allocations{0};
}  // namespace

void* operator new(std::size_t size) {
    allocations.fetch_add(1, std::memory_order_relaxed);
    if (void* p = std::malloc(size == 0 ? 1 : size)) {
        return p;
    }
    throw std::bad_alloc();
}
// g++ sees free() meet a pointer from operator new once both are inlined here; they are a pair.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
void operator delete(void* p) noexcept {
    std::free(p);
}
void operator delete(void* p, std::size_t) noexcept {
    std::free(p);
}
#pragma GCC diagnostic pop

namespace {

using namespace ovix::kit::layout;

// Allocations per iteration over the timed loop.
class AllocationCounter {
  public:
    AllocationCounter() : start_(allocations.load()) {}
    void report(benchmark::State& state, const char* name) const {
        double total = static_cast<double>(allocations.load() - start_);
        state.counters[name] =
            total / static_cast<double>(std::max<benchmark::IterationCount>(state.iterations(), 1));
    }

  private:
    std::size_t start_;
};

// A column of views in a 390-wide container: each view spans the width inside 20-point margins,
// sits 8 points under the previous one and prefers 44 points of height; every third one must be at
// least 50 tall. About four constraints per view, so 25 views make a form of ~100 constraints.
struct ColumnForm {
    struct View {
        Variable left{"left"}, width{"width"}, top{"top"}, height{"height"};
    };

    explicit ColumnForm(int count) : views(static_cast<std::size_t>(count)) {
        constraints.push_back(containerWidth);
        for (std::size_t i = 0; i < views.size(); ++i) {
            const View& v = views[i];
            constraints.push_back(Expression(v.left) == 20);
            constraints.push_back(v.left + v.width == container - 20);
            if (i == 0) {
                constraints.push_back(Expression(v.top) == 20);
            } else {
                const View& above = views[i - 1];
                constraints.push_back(v.top == above.top + above.height + 8);
            }
            constraints.push_back((Expression(v.height) == 44) | strength::fromPriority(750));
            if (i % 3 == 0) {
                constraints.push_back(v.height >= 50);
            }
        }
        lastHeight = constraints.back();
        for (auto it = constraints.rbegin(); it != constraints.rend(); ++it) {
            if (!it->isRequired()) {
                lastHeight = *it;
                break;
            }
        }
    }

    void addTo(Solver& solver) const {
        for (const Constraint& c : constraints) {
            solver.addConstraint(c);
        }
    }

    Variable container{"container"};
    Constraint containerWidth = Expression(container) == 390;
    std::vector<View> views;
    std::vector<Constraint> constraints;
    Constraint lastHeight = containerWidth;
};

void SolveFromScratch(benchmark::State& state) {
    ColumnForm form(static_cast<int>(state.range(0)));
    AllocationCounter counter;
    for (auto _ : state) {
        Solver solver;
        form.addTo(solver);
        solver.updateVariables();
        benchmark::DoNotOptimize(form.views.back().top.value());
    }
    counter.report(state, "allocs_per_solve");
    state.counters["constraints"] = static_cast<double>(form.constraints.size());
}

// Flips one constraint's constant between two values and re-solves each time.
void Resolve(benchmark::State& state, Constraint ColumnForm::*changed, double a, double b) {
    ColumnForm form(static_cast<int>(state.range(0)));
    Solver solver;
    form.addTo(solver);
    double value = a;
    AllocationCounter counter;
    for (auto _ : state) {
        value = value == a ? b : a;
        solver.setConstant(form.*changed, -value);
        solver.updateVariables();
        benchmark::DoNotOptimize(form.views.back().top.value());
    }
    counter.report(state, "allocs_per_solve");
    state.counters["constraints"] = static_cast<double>(form.constraints.size());
}

// The container's width changes: every view's width follows.
void ResolveAfterContainerWidthChange(benchmark::State& state) {
    Resolve(state, &ColumnForm::containerWidth, 390, 428);
}

// The last view's preferred height changes (its label got a new text): only that view moves.
void ResolveAfterOneHeightChange(benchmark::State& state) {
    Resolve(state, &ColumnForm::lastHeight, 44, 60);
}

// The container's width is an edit variable (strong) instead of a required 390: the window is being
// resized and each new width is suggested. The same operation the peer solver offers.
void ResolveAfterSuggestedWidth(benchmark::State& state) {
    ColumnForm form(static_cast<int>(state.range(0)));
    Solver solver;
    for (const Constraint& c : form.constraints) {
        if (!(c == form.containerWidth)) {
            solver.addConstraint(c);
        }
    }
    solver.addEditVariable(form.container, strength::strong);
    double value = 390;
    AllocationCounter counter;
    for (auto _ : state) {
        value = value == 390 ? 428 : 390;
        solver.suggestValue(form.container, value);
        solver.updateVariables();
        benchmark::DoNotOptimize(form.views.back().top.value());
    }
    counter.report(state, "allocs_per_solve");
    state.counters["constraints"] = static_cast<double>(form.constraints.size() - 1);
}

BENCHMARK(SolveFromScratch)->Arg(25)->Arg(250)->Arg(2500)->Unit(benchmark::kMicrosecond);
BENCHMARK(ResolveAfterContainerWidthChange)->Arg(25)->Arg(250)->Arg(2500)->Unit(benchmark::kMicrosecond);
BENCHMARK(ResolveAfterOneHeightChange)->Arg(25)->Arg(250)->Arg(2500)->Unit(benchmark::kMicrosecond);
BENCHMARK(ResolveAfterSuggestedWidth)->Arg(25)->Arg(250)->Arg(2500)->Unit(benchmark::kMicrosecond);

}  // namespace
