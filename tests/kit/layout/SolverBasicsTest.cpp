#include <gtest/gtest.h>

#include <vector>

#include "kit/layout/Solver.h"

namespace ovix::kit::layout {
namespace {

constexpr double kTight = 1e-9;

TEST(LayoutStrength, PrioritiesKeepTheirOrderBelowRequired) {
    EXPECT_EQ(strength::fromPriority(1000), strength::required);
    EXPECT_LT(strength::fromPriority(999), strength::required);
    EXPECT_GT(strength::fromPriority(999), strength::fromPriority(750));
    EXPECT_GT(strength::fromPriority(750), strength::fromPriority(250));
    EXPECT_GT(strength::fromPriority(250), strength::fromPriority(1));
    EXPECT_GT(strength::fromPriority(250.5), strength::fromPriority(250));
    EXPECT_LT(strength::fromPriority(999), strength::strong);
    EXPECT_EQ(strength::create(2000, -5, 3), strength::create(1000, 0, 3)) << "each level clamps its weight";
    auto levels = strength::levels(strength::create(7, 250, 3));
    EXPECT_EQ((std::vector<double>{levels.strong, levels.medium, levels.weak}),
              (std::vector<double>{7, 250, 3}));
}

TEST(Solver, StrongerLevelsWinWhateverTheWeightsBelow) {
    Variable x("x");
    // Two weak constraints weighing 999 each still lose to one medium of weight 1: the levels are
    // symbolic, not a weighted sum (where 1998 would beat 1000).
    Solver lexicographic;
    ASSERT_EQ(lexicographic.addConstraint((Expression(x) == 0) | strength::medium), SolverResult::Ok);
    for (int i = 0; i < 2; ++i) {
        ASSERT_EQ(lexicographic.addConstraint((Expression(x) == 10) | strength::create(0, 0, 999)),
                  SolverResult::Ok);
    }
    lexicographic.updateVariables();
    EXPECT_NEAR(x.value(), 0, kTight);

    // Within one level the weights trade linearly.
    Solver weighted;
    ASSERT_EQ(weighted.addConstraint((Expression(x) == 0) | strength::create(0, 2, 0)), SolverResult::Ok);
    ASSERT_EQ(weighted.addConstraint((Expression(x) == 10) | strength::create(0, 3, 0)), SolverResult::Ok);
    weighted.updateVariables();
    EXPECT_NEAR(x.value(), 10, kTight);
}

TEST(Solver, EditVariablesStartWhereTheSolutionIsAndReportMisuse) {
    Variable x("x"), y("y"), stranger("stranger");
    Solver solver;
    ASSERT_EQ(solver.addConstraint((Expression(x) == 10) | strength::weak), SolverResult::Ok);
    ASSERT_EQ(solver.addConstraint(y == x + 5), SolverResult::Ok);
    EXPECT_EQ(solver.addEditVariable(x, strength::required), SolverResult::BadRequiredStrength);
    ASSERT_EQ(solver.addEditVariable(x, strength::strong), SolverResult::Ok);
    EXPECT_TRUE(solver.hasEditVariable(x));
    EXPECT_EQ(solver.addEditVariable(x, strength::medium), SolverResult::DuplicateEditVariable);
    EXPECT_EQ(solver.constraintCount(), 2u);
    solver.updateVariables();
    EXPECT_NEAR(x.value(), 10, kTight);

    ASSERT_EQ(solver.suggestValue(x, 42), SolverResult::Ok);
    solver.updateVariables();
    EXPECT_NEAR(y.value(), 47, kTight);

    EXPECT_EQ(solver.suggestValue(stranger, 1), SolverResult::UnknownEditVariable);
    EXPECT_EQ(solver.removeEditVariable(stranger), SolverResult::UnknownEditVariable);
    ASSERT_EQ(solver.removeEditVariable(x), SolverResult::Ok);
    EXPECT_FALSE(solver.hasEditVariable(x));
    solver.updateVariables();
    EXPECT_NEAR(x.value(), 10, kTight) << "the weak wish takes over again";
}

TEST(Solver, DuplicatesAndRepeatedRequiredEqualities) {
    Variable x("x");
    Solver solver;
    Constraint first = Expression(x) == 10;
    Constraint second = Expression(x) == 10;  // equal content, different constraint
    ASSERT_EQ(solver.addConstraint((Expression(x) == -5) | strength::weak), SolverResult::Ok);
    ASSERT_EQ(solver.addConstraint(first), SolverResult::Ok);
    EXPECT_EQ(solver.addConstraint(first), SolverResult::DuplicateConstraint);
    ASSERT_EQ(solver.addConstraint(x >= 10), SolverResult::Ok);  // tight: its slack ties at 0
    ASSERT_EQ(solver.addConstraint(second), SolverResult::Ok);
    EXPECT_EQ(solver.addConstraint(Expression(x) == 11), SolverResult::UnsatisfiableConstraint);
    EXPECT_EQ(solver.constraintCount(), 4u) << "a refused constraint is not counted";
    EXPECT_EQ(solver.setConstant(Expression(x) == 10, -11), SolverResult::UnknownConstraint);
    // Moving only one of two identical required equalities cannot work.
    EXPECT_EQ(solver.setConstant(second, -12), SolverResult::UnsatisfiableConstraint);
    EXPECT_EQ(solver.setConstant(first, -12), SolverResult::UnsatisfiableConstraint);
    ASSERT_EQ(solver.removeConstraint(first), SolverResult::Ok);
    EXPECT_EQ(solver.invariantViolation(), "");
    solver.updateVariables();
    EXPECT_NEAR(x.value(), 10, kTight);
    ASSERT_EQ(solver.setConstant(second, -12), SolverResult::Ok);
    solver.updateVariables();
    EXPECT_NEAR(x.value(), 12, kTight);
    ASSERT_EQ(solver.removeConstraint(second), SolverResult::Ok);
    solver.updateVariables();
    EXPECT_NEAR(x.value(), 10, kTight) << "the weak wish for -5 stops at the required minimum";
}

TEST(Solver, ForgetsVariablesNoConstraintMentionsAndResets) {
    Variable x("x"), y("y");
    Solver solver;
    Constraint onlyX = Expression(x) == 3;
    ASSERT_EQ(solver.addConstraint(onlyX), SolverResult::Ok);
    ASSERT_EQ(solver.addConstraint(Expression(y) == 4), SolverResult::Ok);
    ASSERT_EQ(solver.removeConstraint(onlyX), SolverResult::Ok);
    x.setValue(-1);
    solver.updateVariables();
    EXPECT_EQ(x.value(), -1) << "a forgotten variable is no longer written";
    EXPECT_NEAR(y.value(), 4, kTight);

    solver.reset();
    EXPECT_EQ(solver.constraintCount(), 0u);
    y.setValue(-2);
    solver.updateVariables();
    EXPECT_EQ(y.value(), -2);
    ASSERT_EQ(solver.addConstraint(Expression(y) == 8), SolverResult::Ok);
    solver.updateVariables();
    EXPECT_NEAR(y.value(), 8, kTight);
}

TEST(Solver, RefusedConstraintLeavesNoVariableBehind) {
    // z appears only in a refused constraint (its terms cancel, so the row has no unknown to solve
    // for): the solver must forget it, or a later constraint on z reuses a symbol the refusal took
    // back.
    Variable x("x"), z("z");
    Solver solver;
    ASSERT_EQ(solver.addConstraint(Expression(x) == 10), SolverResult::Ok);
    EXPECT_EQ(solver.addConstraint(x + z - z == 11), SolverResult::UnsatisfiableConstraint);
    EXPECT_EQ(solver.invariantViolation(), "");
    z.setValue(-7);
    solver.updateVariables();
    EXPECT_EQ(z.value(), -7) << "a variable of a refused constraint is not written";
    Variable w("w");
    ASSERT_EQ(solver.addConstraint(w == x + 1), SolverResult::Ok);
    ASSERT_EQ(solver.addConstraint(Expression(z) == 5), SolverResult::Ok);
    EXPECT_EQ(solver.invariantViolation(), "");
    solver.updateVariables();
    EXPECT_NEAR(z.value(), 5, kTight);
    EXPECT_NEAR(w.value(), 11, kTight);
}

TEST(Solver, VariableStaysWhileAnyConstraintNamesIt) {
    // The solver counts every term that names a variable; a variable written twice in one
    // constraint must not be dropped, nor kept, by a miscount when constraints go.
    struct Case {
        const char* name;
        std::size_t removeFirst;  // index into the constraints below
    };
    for (const Case& c : {Case{"repeated term goes first", 0}, Case{"single term goes first", 1}}) {
        SCOPED_TRACE(c.name);
        Variable x("x"), y("y");
        Solver solver;
        std::vector<Constraint> constraints{(x + x == 10) | strength::weak, y == x + 1};
        for (const Constraint& constraint : constraints) {
            ASSERT_EQ(solver.addConstraint(constraint), SolverResult::Ok);
        }
        ASSERT_EQ(solver.removeConstraint(constraints[c.removeFirst]), SolverResult::Ok);
        Constraint pin = Expression(x) == 3;
        ASSERT_EQ(solver.addConstraint(pin), SolverResult::Ok);
        solver.updateVariables();
        if (c.removeFirst == 0) {
            EXPECT_NEAR(y.value(), 4, kTight) << "y still follows x";
        }
        ASSERT_EQ(solver.removeConstraint(constraints[1 - c.removeFirst]), SolverResult::Ok);
        ASSERT_EQ(solver.setConstant(pin, -4), SolverResult::Ok);
        EXPECT_EQ(solver.invariantViolation(), "");
        solver.updateVariables();
        EXPECT_NEAR(x.value(), 4, kTight) << "x is still solved for";
    }
}

TEST(Solver, SameCallsGiveTheSameValues) {
    // Many optima (only weak wishes share the slack): the pivot order alone decides which one, so
    // it must not depend on where the objects happen to live in memory.
    auto run = [] {
        std::vector<Variable> gaps;
        Solver solver;
        Expression total;
        for (int i = 0; i < 12; ++i) {
            gaps.emplace_back("gap");
            EXPECT_EQ(solver.addConstraint(gaps.back() >= 0), SolverResult::Ok);
            EXPECT_EQ(solver.addConstraint((gaps.back() <= 5) | strength::weak), SolverResult::Ok);
            total = total + gaps.back();
        }
        EXPECT_EQ(solver.addConstraint(total == 40), SolverResult::Ok);
        solver.updateVariables();
        std::vector<double> values;
        for (const Variable& g : gaps) {
            values.push_back(g.value());
        }
        return values;
    };
    std::vector<double> first = run();
    std::vector<std::vector<double>> keepAlive(50, std::vector<double>(17));  // shift the heap
    EXPECT_EQ(run(), first);
}

}  // namespace
}  // namespace ovix::kit::layout
