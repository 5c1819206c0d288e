#include "BruteForceOracle.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace ovix::kit::layout::test {

namespace {

// Gaussian elimination with partial pivoting; false when the rows do not meet in one point.
bool solveSquare(std::vector<std::vector<double>> a, std::vector<double> b, std::vector<double>& x) {
    const std::size_t n = b.size();
    for (std::size_t col = 0; col < n; ++col) {
        std::size_t pivot = col;
        for (std::size_t r = col + 1; r < n; ++r) {
            if (std::fabs(a[r][col]) > std::fabs(a[pivot][col])) {
                pivot = r;
            }
        }
        if (std::fabs(a[pivot][col]) < 1e-9) {
            return false;
        }
        std::swap(a[pivot], a[col]);
        std::swap(b[pivot], b[col]);
        for (std::size_t r = 0; r < n; ++r) {
            if (r == col) {
                continue;
            }
            double f = a[r][col] / a[col][col];
            for (std::size_t c = col; c < n; ++c) {
                a[r][c] -= f * a[col][c];
            }
            b[r] -= f * b[col];
        }
    }
    x.assign(n, 0);
    for (std::size_t i = 0; i < n; ++i) {
        x[i] = b[i] / a[i][i];
    }
    return true;
}

}  // namespace

double BruteForceOracle::violation(const LinearConstraint& constraint, const std::vector<double>& x) {
    double r = constraint.constant;
    for (std::size_t i = 0; i < x.size(); ++i) {
        r += constraint.coefficients[i] * x[i];
    }
    switch (constraint.relation) {
        case Relation::Equal:
            return std::fabs(r);
        case Relation::LessOrEqual:
            return std::max(r, 0.0);
        case Relation::GreaterOrEqual:
            return std::max(-r, 0.0);
    }
    return 0;
}

BruteForceOracle::Objective BruteForceOracle::objective(const std::vector<LinearConstraint>& constraints,
                                                        const std::vector<double>& x) {
    Objective total{0, 0, 0};
    for (const LinearConstraint& c : constraints) {
        if (c.strength >= strength::required) {
            continue;
        }
        strength::Levels w = strength::levels(c.strength);
        double v = violation(c, x);
        total[0] += w.strong * v;
        total[1] += w.medium * v;
        total[2] += w.weak * v;
    }
    return total;
}

int BruteForceOracle::compare(const Objective& a, const Objective& b, double tolerance) {
    for (std::size_t i = 0; i < a.size(); ++i) {
        double slack = tolerance * (1 + std::max(std::fabs(a[i]), std::fabs(b[i])));
        if (a[i] < b[i] - slack) {
            return -1;
        }
        if (a[i] > b[i] + slack) {
            return 1;
        }
    }
    return 0;
}

BruteForceOracle::Result BruteForceOracle::minimise(const std::vector<LinearConstraint>& constraints,
                                                    std::size_t dimension) {
    Result best;
    std::vector<std::size_t> chosen;
    std::function<void(std::size_t)> choose = [&](std::size_t from) {
        if (chosen.size() == dimension) {
            std::vector<std::vector<double>> a;
            std::vector<double> b;
            for (std::size_t index : chosen) {
                a.push_back(constraints[index].coefficients);
                b.push_back(-constraints[index].constant);
            }
            std::vector<double> x;
            auto breaks = [&](const LinearConstraint& c) {
                return c.strength >= strength::required && violation(c, x) > 1e-7;
            };
            if (!solveSquare(a, b, x) || std::any_of(constraints.begin(), constraints.end(), breaks)) {
                return;
            }
            Objective value = objective(constraints, x);
            if (!best.feasible || compare(value, best.objective, 1e-9) < 0) {
                best = Result{true, value};
            }
            return;
        }
        for (std::size_t i = from; i < constraints.size(); ++i) {
            chosen.push_back(i);
            choose(i + 1);
            chosen.pop_back();
        }
    };
    choose(0);
    return best;
}

}  // namespace ovix::kit::layout::test
