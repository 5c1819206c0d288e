#pragma once

#include <utility>
#include <vector>

#include "kit/layout/Variable.h"

namespace ovix::kit::layout {

struct Term {
    Variable variable;
    double coefficient = 1;
};

/// A linear expression: sum of coefficient * variable, plus a constant.
///
/// Terms are kept as written (a variable may appear more than once); the solver folds them. Doubles
/// and variables convert implicitly, so `2 * width + left - 20` reads as written.
class Expression {
  public:
    Expression(double constant = 0) : constant(constant) {}
    Expression(Variable variable) : terms{Term{std::move(variable), 1}} {}
    Expression(Term term) : terms{std::move(term)} {}
    Expression(std::vector<Term> terms, double constant) : terms(std::move(terms)), constant(constant) {}

    /// The expression evaluated with the variables' current values.
    double value() const;

    std::vector<Term> terms;
    double constant = 0;
};

Expression operator+(const Expression& a, const Expression& b);
Expression operator-(const Expression& a, const Expression& b);
Expression operator-(const Expression& e);
Expression operator*(const Expression& e, double factor);
Expression operator*(double factor, const Expression& e);
Expression operator/(const Expression& e, double divisor);

}  // namespace ovix::kit::layout
