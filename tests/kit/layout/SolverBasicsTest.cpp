#include <gtest/gtest.h>

#include <vector>

#include "kit/layout/Solver.h"

namespace ovix::kit::layout {
namespace {

constexpr double kTight = 1e-9;

TEST(LayoutExpression, ArithmeticKeepsCoefficientsAndConstant) {
    Variable x("x");
    Variable y("y");
    x.setValue(4);
    y.setValue(10);
    Expression e = (2 * x + y - 3) / 2 - -x;
    EXPECT_DOUBLE_EQ(e.value(), (2 * 4 + 10 - 3) / 2.0 + 4);
    EXPECT_DOUBLE_EQ(e.constant, -1.5);
    Constraint c = 3 * x <= y + 1;
    EXPECT_EQ(c.relation(), Relation::LessOrEqual);
    EXPECT_DOUBLE_EQ(c.expression().value(), 3 * 4 - 10 - 1);
    EXPECT_TRUE(c.isRequired());
    Constraint weak = c | strength::weak;
    EXPECT_FALSE(weak == c);
    EXPECT_EQ(weak.strength(), strength::weak);
    EXPECT_FALSE(Variable("x") == Variable("x")) << "variables compare by identity, not by name";
}

TEST(LayoutStrength, PrioritiesKeepTheirOrderBelowRequired) {
    EXPECT_EQ(strength::fromPriority(1000), strength::required);
    EXPECT_LT(strength::fromPriority(999), strength::required);
    EXPECT_GT(strength::fromPriority(999), strength::fromPriority(750));
    EXPECT_GT(strength::fromPriority(750), strength::fromPriority(250));
    EXPECT_GT(strength::fromPriority(250), strength::fromPriority(1));
    EXPECT_GT(strength::fromPriority(250.5), strength::fromPriority(250));
    EXPECT_LT(strength::fromPriority(999), strength::strong);
    EXPECT_EQ(strength::create(2000, -5, 3), strength::create(1000, 0, 3));
    auto levels = strength::levels(strength::create(7, 250, 3));
    EXPECT_EQ(levels.strong, 7);
    EXPECT_EQ(levels.medium, 250);
    EXPECT_EQ(levels.weak, 3);
    EXPECT_EQ(strength::clip(2 * strength::required), strength::required);
}

TEST(Solver, EqualitiesWithMultipliersSolveExactly) {
    Variable x("x"), y("y"), z("z");
    Solver solver;
    ASSERT_EQ(solver.addConstraint(Expression(x) == 10), SolverResult::Ok);
    ASSERT_EQ(solver.addConstraint(y == 2 * x + 1), SolverResult::Ok);
    ASSERT_EQ(solver.addConstraint(3 * z == y + x + 2), SolverResult::Ok);
    solver.updateVariables();
    EXPECT_NEAR(x.value(), 10, kTight);
    EXPECT_NEAR(y.value(), 21, kTight);
    EXPECT_NEAR(z.value(), 11, kTight);
    EXPECT_EQ(solver.constraintCount(), 3u);
}

TEST(Solver, InequalitiesBoundWeakerWishes) {
    Variable x("x");
    Solver solver;
    ASSERT_EQ(solver.addConstraint(x >= 10), SolverResult::Ok);
    ASSERT_EQ(solver.addConstraint(x <= 20), SolverResult::Ok);
    Constraint low = (Expression(x) == 0) | strength::strong;
    ASSERT_EQ(solver.addConstraint(low), SolverResult::Ok);
    solver.updateVariables();
    EXPECT_NEAR(x.value(), 10, kTight);
    ASSERT_EQ(solver.removeConstraint(low), SolverResult::Ok);
    ASSERT_EQ(solver.addConstraint((Expression(x) == 35) | strength::weak), SolverResult::Ok);
    solver.updateVariables();
    EXPECT_NEAR(x.value(), 20, kTight);
}

TEST(Solver, StrongerLevelsWinWhateverTheWeightsBelow) {
    Variable x("x");
    Solver solver;
    Constraint weak = (Expression(x) == 10) | strength::weak;
    Constraint medium = (Expression(x) == 20) | strength::medium;
    Constraint strong = (Expression(x) == 30) | strength::strong;
    for (const Constraint& c : {weak, medium, strong}) {
        ASSERT_EQ(solver.addConstraint(c), SolverResult::Ok);
    }
    solver.updateVariables();
    EXPECT_NEAR(x.value(), 30, kTight);
    ASSERT_EQ(solver.removeConstraint(strong), SolverResult::Ok);
    solver.updateVariables();
    EXPECT_NEAR(x.value(), 20, kTight);
    ASSERT_EQ(solver.removeConstraint(medium), SolverResult::Ok);
    solver.updateVariables();
    EXPECT_NEAR(x.value(), 10, kTight);

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

TEST(Solver, ContainerBetweenBoundsClampsAsItsSuperviewResizes) {
    // A container inside 20-point margins, at least 300 and at most 600 wide, centred.
    Variable superWidth("super.width"), left("left"), width("width");
    Solver solver;
    Constraint superSize = Expression(superWidth) == 500;
    ASSERT_EQ(solver.addConstraint(superSize), SolverResult::Ok);
    ASSERT_EQ(solver.addConstraint(width >= 300), SolverResult::Ok);
    ASSERT_EQ(solver.addConstraint(width <= 600), SolverResult::Ok);
    ASSERT_EQ(solver.addConstraint((width == superWidth - 40) | strength::fromPriority(750)),
              SolverResult::Ok);
    ASSERT_EQ(solver.addConstraint(left + width / 2 == superWidth / 2), SolverResult::Ok);
    struct Case {
        double superWidth, width, left;
    };
    for (Case c : {Case{200, 300, -50}, Case{500, 460, 20}, Case{900, 600, 150}, Case{500, 460, 20}}) {
        ASSERT_EQ(solver.setConstant(superSize, -c.superWidth), SolverResult::Ok);
        solver.updateVariables();
        EXPECT_NEAR(width.value(), c.width, kTight) << c.superWidth;
        EXPECT_NEAR(left.value(), c.left, kTight) << c.superWidth;
    }
    EXPECT_EQ(superSize.expression().constant, -500);
}

TEST(Solver, RequiredInequalitiesClampEditSuggestions) {
    Variable x("x");
    Solver solver;
    ASSERT_EQ(solver.addConstraint(x <= 100), SolverResult::Ok);
    ASSERT_EQ(solver.addConstraint(x >= 0), SolverResult::Ok);
    ASSERT_EQ(solver.addEditVariable(x, strength::strong), SolverResult::Ok);
    struct Case {
        double suggestion, expected;
    };
    for (Case c : {Case{150, 100}, Case{50, 50}, Case{-10, 0}, Case{100, 100}, Case{1e6, 100}}) {
        ASSERT_EQ(solver.suggestValue(x, c.suggestion), SolverResult::Ok);
        solver.updateVariables();
        EXPECT_NEAR(x.value(), c.expected, kTight) << c.suggestion;
    }
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

// A small form: two fields side by side under a title, inside margins, with a minimum field width.
struct Form {
    Variable width{"width"}, titleTop{"title.top"}, titleHeight{"title.height"};
    Variable nameLeft{"name.left"}, nameWidth{"name.width"}, mailLeft{"mail.left"}, mailWidth{"mail.width"};
    Variable fieldTop{"field.top"};
    Constraint widthIs = Expression(width) == 320;
    Constraint spacing = mailLeft == nameLeft + nameWidth + 8;
    std::vector<Constraint> all() const {
        return {widthIs,
                spacing,
                Expression(titleTop) == 20,
                (Expression(titleHeight) == 30) | strength::strong,
                titleHeight >= 24,
                fieldTop == titleTop + titleHeight + 12,
                Expression(nameLeft) == 16,
                mailLeft + mailWidth == width - 16,
                (Expression(nameWidth) == mailWidth) | strength::medium,
                nameWidth >= 100,
                mailWidth >= 80};
    }
    void addTo(Solver& solver) const {
        for (const Constraint& c : all()) {
            ASSERT_EQ(solver.addConstraint(c), SolverResult::Ok);
        }
    }
    std::vector<double> values() const {
        return {width.value(),     titleTop.value(), titleHeight.value(), nameLeft.value(),
                nameWidth.value(), mailLeft.value(), mailWidth.value(),   fieldTop.value()};
    }
};

void expectNear(const std::vector<double>& a, const std::vector<double>& b) {
    ASSERT_EQ(a.size(), b.size());
    for (std::size_t i = 0; i < a.size(); ++i) {
        EXPECT_NEAR(a[i], b[i], kTight) << "index " << i;
    }
}

TEST(Solver, FormSolvesAndSetConstantMatchesRebuilding) {
    Form form;
    Solver solver;
    form.addTo(solver);
    solver.updateVariables();
    expectNear(form.values(), {320, 20, 30, 16, 140, 164, 140, 62});

    for (double width : {250.0, 400.0}) {
        ASSERT_EQ(solver.setConstant(form.widthIs, -width), SolverResult::Ok);
        ASSERT_EQ(solver.setConstant(form.spacing, -20), SolverResult::Ok);
        solver.updateVariables();
        std::vector<double> incremental = form.values();

        Form fresh;
        Solver rebuilt;
        fresh.widthIs = Expression(fresh.width) == width;
        fresh.spacing = fresh.mailLeft == fresh.nameLeft + fresh.nameWidth + 20;
        fresh.addTo(rebuilt);
        rebuilt.updateVariables();
        expectNear(incremental, fresh.values());
    }
    // At 200 the minimum widths cannot both hold beside the margins: 16 + 100 + 20 + 80 + 16 > 200,
    // so the request is refused and the previous width stays.
    EXPECT_EQ(solver.setConstant(form.widthIs, -200), SolverResult::UnsatisfiableConstraint);
    solver.updateVariables();
    EXPECT_NEAR(form.width.value(), 400, kTight);
    EXPECT_EQ(form.widthIs.expression().constant, -400);

    EXPECT_EQ(solver.setConstant(Expression(form.width) == 1, 5), SolverResult::UnknownConstraint);
}

TEST(Solver, RemovingAConstraintRestoresThePreviousSolution) {
    Form form;
    Solver solver;
    form.addTo(solver);
    solver.updateVariables();
    std::vector<double> before = form.values();

    Constraint squeeze = (Expression(form.nameWidth) == 180) | strength::strong;
    Constraint pushDown = form.fieldTop >= 100;
    ASSERT_EQ(solver.addConstraint(squeeze), SolverResult::Ok);
    ASSERT_EQ(solver.addConstraint(pushDown), SolverResult::Ok);
    solver.updateVariables();
    EXPECT_NEAR(form.nameWidth.value(), 180, kTight);
    EXPECT_NEAR(form.mailWidth.value(), 100, kTight);
    EXPECT_NEAR(form.fieldTop.value(), 100, kTight);
    EXPECT_NEAR(form.titleHeight.value(), 68, kTight);

    ASSERT_EQ(solver.removeConstraint(pushDown), SolverResult::Ok);
    ASSERT_EQ(solver.removeConstraint(squeeze), SolverResult::Ok);
    solver.updateVariables();
    expectNear(form.values(), before);
    EXPECT_EQ(solver.removeConstraint(squeeze), SolverResult::UnknownConstraint);
    EXPECT_EQ(solver.constraintCount(), form.all().size());
}

TEST(Solver, UnsatisfiableRequiredConstraintsLeaveEverythingAsItWas) {
    Form form;
    Solver solver;
    form.addTo(solver);
    solver.updateVariables();
    const std::vector<double> before = form.values();

    std::vector<Constraint> impossible = {
        Expression(form.titleTop) == 25,                     // contradicts a required equality
        form.nameWidth + form.mailWidth >= 400,              // contradicts the margins
        form.titleHeight <= 20,                              // contradicts a required minimum
        form.fieldTop <= form.titleTop + form.titleHeight};  // contradicts the spacing
    for (const Constraint& c : impossible) {
        EXPECT_EQ(solver.addConstraint(c), SolverResult::UnsatisfiableConstraint);
        EXPECT_FALSE(solver.hasConstraint(c));
        EXPECT_EQ(solver.invariantViolation(), "");
        solver.updateVariables();
        EXPECT_EQ(form.values(), before) << "a refused constraint moved the solution";
    }
    EXPECT_EQ(solver.constraintCount(), form.all().size());

    // Still fully usable afterwards.
    Constraint taller = (Expression(form.titleHeight) == 40) | strength::fromPriority(999);
    ASSERT_EQ(solver.addConstraint(taller), SolverResult::Ok);
    solver.updateVariables();
    EXPECT_NEAR(form.fieldTop.value(), 20 + 30 + 12, kTight) << "strong 30 beats priority 999's 40";
    Constraint exact = Expression(form.titleHeight) == 40;
    ASSERT_EQ(solver.addConstraint(exact), SolverResult::Ok);
    solver.updateVariables();
    EXPECT_NEAR(form.fieldTop.value(), 20 + 40 + 12, kTight);
    EXPECT_EQ(solver.setConstant(exact, -10), SolverResult::UnsatisfiableConstraint);
    EXPECT_EQ(exact.expression().constant, -40);
    solver.updateVariables();
    EXPECT_NEAR(form.titleHeight.value(), 40, kTight);
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
    EXPECT_EQ(solver.constraintCount(), 4u);
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
