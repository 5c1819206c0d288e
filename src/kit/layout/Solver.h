#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "kit/layout/Constraint.h"
#include "kit/layout/HandleMap.h"
#include "kit/layout/Tableau.h"
#include "kit/layout/Variable.h"

namespace ovix::kit::layout {

enum class SolverResult {
    Ok,
    DuplicateConstraint,
    UnsatisfiableConstraint,
    UnknownConstraint,
    DuplicateEditVariable,
    UnknownEditVariable,
    BadRequiredStrength,
};

/// A short English name for logs ("unsatisfiable constraint").
std::string_view describe(SolverResult result);

/// Incremental constraint solver (Cassowary: an incremental simplex over a tableau with slack, error
/// and dummy variables, re-optimised by dual simplex after constants or edit suggestions change).
///
/// Required constraints hold exactly after every successful call; the others minimise their weighted
/// error, level by level (see `strength`). A call that fails returns its error and leaves the solver
/// as it was: it never throws and never prints. Results are deterministic: the same sequence of calls
/// gives the same values. Solved values reach the variables only through `updateVariables()`.
/// Not thread-safe: one solver belongs to one thread (the main queue).
class Solver {
  public:
    /// UnsatisfiableConstraint when a required constraint cannot hold together with the others.
    SolverResult addConstraint(const Constraint& constraint);
    SolverResult removeConstraint(const Constraint& constraint);
    bool hasConstraint(const Constraint& constraint) const;
    /// Changes the constant of an added constraint's expression in place and re-optimises. Fails with
    /// UnsatisfiableConstraint (constant left as it was) when a required constraint could not hold.
    SolverResult setConstant(const Constraint& constraint, double newConstant);

    /// Lets `suggestValue` pull `variable` at `strength` (must be below required). The variable starts
    /// at its current solved value.
    SolverResult addEditVariable(const Variable& variable, double strength);
    SolverResult removeEditVariable(const Variable& variable);
    bool hasEditVariable(const Variable& variable) const;
    SolverResult suggestValue(const Variable& variable, double value);

    /// Writes the solved values into `Variable::value()`: every variable whose value may have changed
    /// since the last call, and every variable added since. Cost follows what changed, not the size.
    void updateVariables();
    /// Forgets every constraint and edit variable (variables keep their last written values).
    void reset();
    /// Constraints added through `addConstraint` (edit variables are not counted).
    std::size_t constraintCount() const;

    /// "" while the internal bookkeeping is consistent; otherwise what broke (tests, diagnostics).
    std::string invariantViolation() const { return tableau_.invariantViolation(); }

  private:
    struct Record {
        Symbol marker;
        Symbol other;       // second error variable of a non-required constraint, or noSymbol
        double markerSign;  // coefficient of the marker in `expression + ... = 0`
        double otherSign;
        strength::Levels weights;
        bool required;
        double constant;  // the expression's constant the tableau currently reflects
    };
    struct VariableInfo {
        Symbol symbol;
        std::size_t uses;  // terms of added constraints that name the variable
    };
    struct Edit {
        Constraint constraint;
    };

    SolverResult add(const Constraint& constraint);
    SolverResult remove(const Constraint& constraint);
    SolverResult changeConstant(Record& record, const Constraint& constraint, double newConstant);
    Symbol symbolFor(const Variable& variable);
    /// Builds the row of `expression <relation> 0` in the record's fresh marker (and error) symbols.
    Row rowFor(const Constraint& constraint, Record& record);
    Symbol chooseSubject(const Row& row, const Record& record) const;
    void retainVariables(const Expression& expression);
    void releaseVariables(const Expression& expression);
    /// Forgets the variables a refused constraint introduced (those no added constraint names).
    void forgetUnusedVariables(const Expression& expression);
    double solvedValue(const Variable& variable) const;

    Tableau tableau_;
    HandleMap<Constraint, Record> records_;
    HandleMap<Variable, VariableInfo> variables_;
    std::vector<std::optional<Variable>> variableOf_;  // by symbol
    std::unordered_map<Variable, Edit> edits_;
    std::vector<Symbol> changed_;  // reused by updateVariables
};

}  // namespace ovix::kit::layout
