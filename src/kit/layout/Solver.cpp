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
    Record* record = records_.find(constraint);
    if (record == nullptr) {
        return SolverResult::UnknownConstraint;
    }
    return changeConstant(*record, constraint, newConstant);
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
    return changeConstant(*records_.find(constraint), constraint, -value);
}

void Solver::updateVariables() {
    tableau_.takeChangedExternals(changed_);
    for (Symbol s : changed_) {
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
    const VariableInfo* info = variables_.find(variable);
    return info == nullptr ? variable.value() : tableau_.value(info->symbol);
}

Symbol Solver::symbolFor(const Variable& variable) {
    auto [info, inserted] = variables_.tryEmplace(variable, VariableInfo{noSymbol, 0});
    if (!inserted) {
        return info->symbol;
    }
    Symbol symbol = tableau_.newSymbol(SymbolKind::External);
    info->symbol = symbol;
    if (variableOf_.size() <= symbol) {
        variableOf_.resize(symbol + 1);
    }
    variableOf_[symbol] = variable;
    return symbol;
}

void Solver::retainVariables(const Expression& expression) {
    for (const Term& term : expression.terms) {
        ++variables_.find(term.variable)->uses;
    }
}

void Solver::releaseVariables(const Expression& expression) {
    for (const Term& term : expression.terms) {
        VariableInfo* info = variables_.find(term.variable);
        if (--info->uses == 0) {
            variableOf_[info->symbol].reset();
            tableau_.releaseSymbol(info->symbol);
            variables_.erase(term.variable);
        }
    }
}

void Solver::forgetUnusedVariables(const Expression& expression) {
    for (const Term& term : expression.terms) {
        VariableInfo* info = variables_.find(term.variable);
        if (info != nullptr && info->uses == 0) {
            variableOf_[info->symbol].reset();
            variables_.erase(term.variable);
        }
    }
}

Row Solver::rowFor(const Constraint& constraint, Record& record) {
    const Expression& expression = constraint.expression();
    // The expression in terms of parametric symbols only.
    Row row(expression.constant);
    row.reserve(expression.terms.size() + 2);
    for (const Term& term : expression.terms) {
        Symbol symbol = symbolFor(term.variable);
        if (tableau_.isBasic(symbol)) {
            row.insert(tableau_.row(symbol), term.coefficient);
        } else {
            row.insert(symbol, term.coefficient);
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
    }
    if (row.constant() < 0) {
        row.negate();
    }
    return row;
}

Symbol Solver::chooseSubject(const Row& row, const Record& record) const {
    // An external symbol if any (external rows never limit optimisation), else a fresh slack or
    // error that comes out >= 0.
    for (const Row::Cell& cell : row.cells()) {
        if (tableau_.kind(cell.symbol) == SymbolKind::External) {
            return cell.symbol;
        }
    }
    for (Symbol fresh : {record.marker, record.other}) {
        if (fresh != noSymbol && tableau_.kind(fresh) != SymbolKind::Dummy && row.coefficient(fresh) < 0) {
            return fresh;
        }
    }
    if (allDummies(tableau_, row) && std::fabs(row.constant()) < 1e-8) {
        // Only required equalities are involved and the constant cancels: nothing new to hold.
        return record.marker;
    }
    return noSymbol;
}

SolverResult Solver::add(const Constraint& constraint) {
    Record record{};
    record.required = constraint.isRequired();
    record.weights = strength::levels(constraint.strength());
    record.constant = constraint.expression().constant;
    record.other = noSymbol;
    record.otherSign = 0;
    // A refused constraint must leave no trace, down to the symbol ids later pivots compare. Only
    // the path through an artificial variable can refuse, so a row with a subject drops the journal
    // before the tableau's rows change and pays for no copies.
    tableau_.begin();
    Row row = rowFor(constraint, record);
    Symbol subject = chooseSubject(row, record);
    if (subject != noSymbol) {
        tableau_.commit();
    }
    if (record.other != noSymbol) {
        if (tableau_.kind(record.marker) == SymbolKind::Error) {
            tableau_.addToObjective(record.marker, record.weights, 1);
        }
        tableau_.addToObjective(record.other, record.weights, 1);
    }
    if (subject != noSymbol) {
        row.solveFor(subject);
        tableau_.addRow(subject, std::move(row));
    } else {
        bool refused = allDummies(tableau_, row) || !tableau_.addRowThroughArtificial(row);
        if (refused) {
            tableau_.rollback();
            forgetUnusedVariables(constraint.expression());
            return SolverResult::UnsatisfiableConstraint;
        }
        tableau_.commit();
    }
    tableau_.optimize();
    retainVariables(constraint.expression());
    records_.tryEmplace(constraint, record);
    return SolverResult::Ok;
}

SolverResult Solver::remove(const Constraint& constraint) {
    Record record = *records_.find(constraint);
    records_.erase(constraint);

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
    releaseVariables(constraint.expression());
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
