#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

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
    double constant = 20;
    for (auto _ : state) {
        constant = constant == 20 ? 100 : 20;
        form.firstTop->setConstant(constant);
        form.root->layoutIfNeeded();
        benchmark::DoNotOptimize(form.root->subviews().back()->frame());
    }
    state.SetComplexityN(state.range(0) * 4);
}

BENCHMARK(FirstLayout)->Arg(25)->Arg(250)->Arg(2500)->Unit(benchmark::kMicrosecond)->Complexity();
BENCHMARK(RelayoutAfterConstantChange)
    ->Arg(25)
    ->Arg(250)
    ->Arg(2500)
    ->Unit(benchmark::kMicrosecond)
    ->Complexity();

}  // namespace
