#include "kit/layout/Constraint.h"

#include <utility>

namespace ovix::kit::layout {

Constraint::Constraint(Expression lhsMinusRhs, Relation relation, double strength)
    : data_(std::make_shared<Data>(Data{std::move(lhsMinusRhs), relation, strength::clip(strength)})) {}

Constraint::Constraint(const Constraint& other, double strength)
    : Constraint(other.expression(), other.relation(), strength) {}

Constraint operator==(const Expression& lhs, const Expression& rhs) {
    return Constraint(lhs - rhs, Relation::Equal);
}

Constraint operator<=(const Expression& lhs, const Expression& rhs) {
    return Constraint(lhs - rhs, Relation::LessOrEqual);
}

Constraint operator>=(const Expression& lhs, const Expression& rhs) {
    return Constraint(lhs - rhs, Relation::GreaterOrEqual);
}

Constraint operator|(const Constraint& constraint, double strength) {
    return Constraint(constraint, strength);
}

}  // namespace ovix::kit::layout
