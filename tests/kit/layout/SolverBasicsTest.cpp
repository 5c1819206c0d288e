#include <gtest/gtest.h>

#include "platform/kit/layout/Solver.h"

namespace ovix::kit::layout {
namespace {

TEST(Solver, Smoke) {
    Variable x("x"), y("y");
    Solver s;
    EXPECT_EQ(s.addConstraint(Expression(x) == 10), SolverResult::Ok);
    EXPECT_EQ(s.addConstraint(y == x * 2 + 1), SolverResult::Ok);
    s.updateVariables();
    EXPECT_DOUBLE_EQ(x.value(), 10);
    EXPECT_DOUBLE_EQ(y.value(), 21);
}

}  // namespace
}  // namespace ovix::kit::layout
