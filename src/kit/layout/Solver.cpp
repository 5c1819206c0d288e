#include "kit/layout/Solver.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace ovix::kit::layout {

namespace {

bool allDummies(const Tableau& tableau, const Row& row) {
    return std::all_of(row.cells().begin(), row.cells().end(),
                       [&](const Row::Cell& c) { return tableau.kind(c.symbol) == SymbolKind::Dummy; });
}

}  // namespace

std::string_view describe(SolverResult result) {
    switch (result) {
        case SolverResult::Ok:
            return "ok";
        case SolverResult::DuplicateConstraint:
            return "duplicate constraint";
        case SolverResult::UnsatisfiableConstraint:
            return "unsatisfiable constraint";
        case SolverResult::UnknownConstraint:
            return "unknown constraint";
        case SolverResult::DuplicateEditVariable:
            return "duplicate edit variable";
        case SolverResult::UnknownEditVariable:
            return "unknown edit variable";
        case SolverResult::BadRequiredStrength:
            return "edit variables cannot be required";
    }
    return "unknown result";
}

SolverResult Solver::addConstraint(const Constraint& constraint) {
    if (records_.contains(constraint)) {
        return SolverResult::DuplicateConstraint;
    }
    return add(constraint);
}

SolverResult Solver::removeConstraint(const Constraint& constraint) {
    if (!records_.contains(constraint)) {
        return SolverResult::UnknownConstraint;
    }
    return remove(constraint);
}

bool Solver::hasConstraint(const Constraint& constraint) const {
    return records_.contains(constraint);
}

SolverResult Solver::setConstant(const Constraint& constraint, double newConstant) {
    auto it = records_.find(constraint);
    if (it == records_.end()) {
        return SolverResult::UnknownConstraint;
    }
    return changeConstant(it->second, constraint, newConstant);
}

SolverResult Solver::addEditVariable(const Variable& variable, double strength) {
    if (edits_.contains(variable)) {
        return SolverResult::DuplicateEditVariable;
    }
    if (strength >= strength::required) {
        return SolverResult::BadRequiredStrength;
    }
    // Starting at the current solution means adding the edit moves nothing.
    Constraint constraint(Expression(variable) - solvedValue(variable), Relation::Equal, strength);
    SolverResult result = add(constraint);
    if (result == SolverResult::Ok) {
        edits_.emplace(variable, Edit{constraint});
    }
    return result;
}

SolverResult Solver::removeEditVariable(const Variable& variable) {
    auto it = edits_.find(variable);
    if (it == edits_.end()) {
        return SolverResult::UnknownEditVariable;
    }
    Constraint constraint = it->second.constraint;
    edits_.erase(it);
    return remove(constraint);
}

bool Solver::hasEditVariable(const Variable& variable) const {
    return edits_.contains(variable);
}

SolverResult Solver::suggestValue(const Variable& variable, double value) {
    auto it = edits_.find(variable);
    if (it == edits_.end()) {
        return SolverResult::UnknownEditVariable;
    }
    const Constraint& constraint = it->second.constraint;
    return changeConstant(records_.at(constraint), constraint, -value);
}

void Solver::updateVariables() {
    for (Symbol s : tableau_.takeChangedExternals()) {
        if (s < variableOf_.size() && variableOf_[s]) {
            variableOf_[s]->setValue(tableau_.value(s) + 0.0);  // no -0
        }
    }
}

void Solver::reset() {
    tableau_.clear();
    records_.clear();
    variables_.clear();
    variableOf_.clear();
    edits_.clear();
}

std::size_t Solver::constraintCount() const {
    return records_.size() - edits_.size();
}

double Solver::solvedValue(const Variable& variable) const {
    auto it = variables_.find(variable);
    return it == variables_.end() ? variable.value() : tableau_.value(it->second.symbol);
}

Symbol Solver::symbolFor(const Variable& variable, std::vector<Variable>& created) {
    auto it = variables_.find(variable);
    if (it != variables_.end()) {
        return it->second.symbol;
    }
    Symbol symbol = tableau_.newSymbol(SymbolKind::External);
    variables_.emplace(variable, VariableInfo{symbol, 0});
    if (variableOf_.size() <= symbol) {
        variableOf_.resize(symbol + 1);
    }
    variableOf_[symbol] = variable;
    created.push_back(variable);
    return symbol;
}

void Solver::retainVariables(const std::vector<Variable>& variables) {
    for (const Variable& v : variables) {
        ++variables_.at(v).uses;
    }
}

void Solver::releaseVariables(const std::vector<Variable>& variables) {
    for (const Variable& v : variables) {
        auto it = variables_.find(v);
        if (--it->second.uses == 0) {
            variableOf_[it->second.symbol].reset();
            tableau_.releaseSymbol(it->second.symbol);
            variables_.erase(it);
        }
    }
}

SolverResult Solver::add(const Constraint& constraint) {
    const Expression& expression = constraint.expression();
    std::vector<Variable> created;
    Record record{};
    record.required = constraint.isRequired();
    record.weights = strength::levels(constraint.strength());
    record.constant = expression.constant;
    record.other = noSymbol;
    record.otherSign = 0;
    // A refused constraint must leave no trace, down to the symbol ids later pivots compare.
    tableau_.begin();

    // The expression in terms of parametric symbols only.
    Row row(expression.constant);
    for (const Term& term : expression.terms) {
        Symbol symbol = symbolFor(term.variable, created);
        if (tableau_.isBasic(symbol)) {
            row.insert(tableau_.row(symbol), term.coefficient);
        } else {
            row.insert(symbol, term.coefficient);
        }
        if (std::find(record.variables.begin(), record.variables.end(), term.variable) ==
            record.variables.end()) {
            record.variables.push_back(term.variable);
        }
    }

    // expression <= 0 becomes expression + slack = 0, >= 0 becomes expression - slack = 0; a weaker
    // one also gets an error that lets it give way. An equality gets a pinned dummy when required,
    // otherwise a pair of errors for either direction.
    if (constraint.relation() == Relation::Equal) {
        if (record.required) {
            record.marker = tableau_.newSymbol(SymbolKind::Dummy);
            record.markerSign = 1;
        } else {
            record.marker = tableau_.newSymbol(SymbolKind::Error);
            record.markerSign = -1;
            record.other = tableau_.newSymbol(SymbolKind::Error);
            record.otherSign = 1;
        }
    } else {
        record.marker = tableau_.newSymbol(SymbolKind::Slack);
        record.markerSign = constraint.relation() == Relation::LessOrEqual ? 1 : -1;
        if (!record.required) {
            record.other = tableau_.newSymbol(SymbolKind::Error);
            record.otherSign = -record.markerSign;
        }
    }
    row.insert(record.marker, record.markerSign);
    if (record.other != noSymbol) {
        row.insert(record.other, record.otherSign);
        if (tableau_.kind(record.marker) == SymbolKind::Error) {
            tableau_.addToObjective(record.marker, record.weights, 1);
        }
        tableau_.addToObjective(record.other, record.weights, 1);
    }
    if (row.constant() < 0) {
        row.negate();
    }

    // Subject: an external symbol if any (external rows never limit optimisation), else a fresh
    // slack or error that comes out >= 0.
    Symbol subject = noSymbol;
    for (const Row::Cell& cell : row.cells()) {
        if (tableau_.kind(cell.symbol) == SymbolKind::External) {
            subject = cell.symbol;
            break;
        }
    }
    if (subject == noSymbol) {
        for (Symbol fresh : {record.marker, record.other}) {
            if (fresh != noSymbol && tableau_.kind(fresh) != SymbolKind::Dummy &&
                row.coefficient(fresh) < 0) {
                subject = fresh;
                break;
            }
        }
    }

    bool added = true;
    if (subject == noSymbol && allDummies(tableau_, row)) {
        // Only required equalities are involved: consistent exactly when the constant cancels.
        added = std::fabs(row.constant()) < 1e-8;
        subject = added ? record.marker : noSymbol;
    }
    if (subject != noSymbol) {
        row.solveFor(subject);
        tableau_.addRow(subject, std::move(row));
    } else if (added) {
        added = tableau_.addRowThroughArtificial(row);
    }
    if (!added) {
        tableau_.rollback();
        for (const Variable& v : created) {
            variableOf_[variables_.at(v).symbol].reset();
            variables_.erase(v);
        }
        return SolverResult::UnsatisfiableConstraint;
    }
    tableau_.commit();
    tableau_.optimize();
    retainVariables(record.variables);
    records_.emplace(constraint, std::move(record));
    return SolverResult::Ok;
}

SolverResult Solver::remove(const Constraint& constraint) {
    auto it = records_.find(constraint);
    Record record = std::move(it->second);
    records_.erase(it);

    if (!record.required) {
        if (tableau_.kind(record.marker) == SymbolKind::Error) {
            tableau_.addToObjective(record.marker, record.weights, -1);
        }
        tableau_.addToObjective(record.other, record.weights, -1);
    }
    if (!tableau_.isBasic(record.marker)) {
        Symbol leaving = tableau_.leavingRowForMarker(record.marker);
        if (leaving != noSymbol) {
            tableau_.pivot(record.marker, leaving);
        }
    }
    tableau_.releaseSymbol(record.marker);
    if (record.other != noSymbol) {
        tableau_.releaseSymbol(record.other);
    }
    releaseVariables(record.variables);
    tableau_.optimize();
    return SolverResult::Ok;
}

SolverResult Solver::changeConstant(Record& record, const Constraint& constraint, double newConstant) {
    double delta = newConstant - record.constant;
    if (delta == 0) {
        return SolverResult::Ok;
    }
    // Moving the constant by delta is the same as moving the marker (or the other error) by
    // delta / its coefficient; the basic one is cheaper to move.
    Symbol symbol = record.marker;
    double sign = record.markerSign;
    if (!tableau_.isBasic(symbol) && record.other != noSymbol && tableau_.isBasic(record.other)) {
        symbol = record.other;
        sign = record.otherSign;
    }
    tableau_.begin();
    if (!tableau_.shift(symbol, delta / sign) || !tableau_.dualOptimize()) {
        tableau_.rollback();
        return SolverResult::UnsatisfiableConstraint;
    }
    tableau_.commit();
    record.constant = newConstant;
    Constraint handle = constraint;
    handle.setConstant(newConstant);
    return SolverResult::Ok;
}

}  // namespace ovix::kit::layout
