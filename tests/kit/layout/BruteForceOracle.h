#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "kit/layout/Constraint.h"

namespace ovix::kit::layout::test {

/// `coefficients . x + constant <relation> 0` over a handful of unknowns, as the tests generate it.
struct LinearConstraint {
    std::vector<double> coefficients;
    double constant = 0;
    Relation relation = Relation::Equal;
    double strength = strength::required;
};

/// Independent reference for small systems: the weighted error is linear on each cell of the
/// arrangement of the constraints' hyperplanes, so when every unknown is also pinned by some
/// constraint the optimum sits on a vertex of that arrangement. Enumerates all of them.
class BruteForceOracle {
  public:
    using Objective = std::array<double, 3>;
    struct Result {
        bool feasible = false;
        Objective objective{};
    };

    /// Error of every non-required constraint at `x`, weighted and summed per strength level.
    static Objective objective(const std::vector<LinearConstraint>& constraints,
                               const std::vector<double>& x);
    /// How far `x` is from satisfying `constraint` (0 when it holds).
    static double violation(const LinearConstraint& constraint, const std::vector<double>& x);
    /// -1, 0 or 1 comparing two objectives level by level, with a relative tolerance.
    static int compare(const Objective& a, const Objective& b, double tolerance);

    static Result minimise(const std::vector<LinearConstraint>& constraints, std::size_t dimension);
};

}  // namespace ovix::kit::layout::test
