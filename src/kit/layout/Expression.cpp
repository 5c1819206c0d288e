#include "kit/layout/Expression.h"

namespace ovix::kit::layout {

double Expression::value() const {
    double sum = constant;
    for (const Term& t : terms) {
        sum += t.coefficient * t.variable.value();
    }
    return sum;
}

Expression operator+(const Expression& a, const Expression& b) {
    Expression sum = a;
    sum.terms.insert(sum.terms.end(), b.terms.begin(), b.terms.end());
    sum.constant += b.constant;
    return sum;
}

Expression operator*(const Expression& e, double factor) {
    Expression product = e;
    for (Term& t : product.terms) {
        t.coefficient *= factor;
    }
    product.constant *= factor;
    return product;
}

Expression operator*(double factor, const Expression& e) {
    return e * factor;
}
Expression operator/(const Expression& e, double divisor) {
    return e * (1.0 / divisor);
}
Expression operator-(const Expression& e) {
    return e * -1.0;
}
Expression operator-(const Expression& a, const Expression& b) {
    return a + (-b);
}

}  // namespace ovix::kit::layout
