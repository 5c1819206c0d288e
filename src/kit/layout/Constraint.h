#pragma once

#include <cstddef>
#include <functional>
#include <memory>

#include "kit/layout/Expression.h"
#include "kit/layout/Strength.h"

namespace ovix::kit::layout {

enum class Relation { LessOrEqual, Equal, GreaterOrEqual };

/// `expression <relation> 0` at a strength.
///
/// A cheap handle: copies are the same constraint (identity comparison and hashing), which is what a
/// solver tracks. `Solver::setConstant` changes the expression's constant of the shared constraint,
/// so every copy sees the current constant.
class Constraint {
  public:
    Constraint(Expression lhsMinusRhs, Relation relation, double strength = strength::required);
    /// A new constraint with the same expression and relation, at another strength.
    Constraint(const Constraint& other, double strength);

    const Expression& expression() const { return data_->expression; }
    Relation relation() const { return data_->relation; }
    double strength() const { return data_->strength; }
    bool isRequired() const { return data_->strength >= strength::required; }

    bool operator==(const Constraint& other) const { return data_ == other.data_; }
    std::size_t hash() const { return std::hash<const void*>()(data_.get()); }

  private:
    friend class Solver;
    void setConstant(double constant) { data_->expression.constant = constant; }

    struct Data {
        Expression expression;
        Relation relation;
        double strength;
    };
    std::shared_ptr<Data> data_;
};

/// Required constraints from two sides. Note `Variable == Variable` is handle identity, not a
/// constraint: write `Expression(a) == b` (or `a == b + 0`) for that.
Constraint operator==(const Expression& lhs, const Expression& rhs);
Constraint operator<=(const Expression& lhs, const Expression& rhs);
Constraint operator>=(const Expression& lhs, const Expression& rhs);
/// The same constraint at another strength: `(a >= b) | strength::weak`.
Constraint operator|(const Constraint& constraint, double strength);

}  // namespace ovix::kit::layout

template <>
struct std::hash<ovix::kit::layout::Constraint> {
    std::size_t operator()(const ovix::kit::layout::Constraint& c) const { return c.hash(); }
};
