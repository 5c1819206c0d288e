#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/kit/layout/Row.h"
#include "platform/kit/layout/Strength.h"

namespace ovix::kit::layout {

/// External variables are unrestricted; slack, error and dummy variables are >= 0, dummies pinned
/// at 0 (they only mark required equalities so those can be found again).
enum class SymbolKind : std::uint8_t { External, Slack, Error, Dummy };

/// The simplex tableau behind `Solver`: basic symbols with their rows, a column index (which rows
/// depend on a parametric symbol), a three-level objective, and the primal and dual simplex steps.
///
/// Invariant kept by the solver: rows of restricted basic symbols and the objective depend on
/// restricted symbols only, so optimising never has to bound an external variable. A copy is a
/// full snapshot (used to undo a failed required addition).
class Tableau {
  public:
    Symbol newSymbol(SymbolKind kind);
    /// Forgets a symbol that no row should depend on any more (round-off leftovers are erased).
    void releaseSymbol(Symbol symbol);
    void clear();

    SymbolKind kind(Symbol symbol) const { return symbols_[symbol].kind; }
    bool isBasic(Symbol symbol) const { return symbols_[symbol].basic; }
    const Row& row(Symbol basic) const { return symbols_[basic].row; }
    double value(Symbol symbol) const { return isBasic(symbol) ? row(symbol).constant() : 0.0; }

    /// Makes `subject` basic with `row` (reading `subject = row`), substituting it everywhere.
    void addRow(Symbol subject, Row row);
    /// Removes the basic row of `basic` and returns it; `basic` becomes parametric.
    Row takeRow(Symbol basic);
    void pivot(Symbol entering, Symbol leaving);

    /// objective += sign * weights * symbol, per level.
    void addToObjective(Symbol symbol, const strength::Levels& weights, double sign);

    /// Minimises the objective (primal simplex, lowest-id entering and leaving symbols).
    bool optimize();
    /// Adds `row` (reading `0 = row`, constant >= 0, no external symbols) through an artificial
    /// variable that is minimised; false when the row cannot reach 0 (tableau then needs restoring).
    bool addRowThroughArtificial(const Row& row);
    /// Substitutes `symbol + delta` for `symbol` everywhere (the effect of moving a constraint's
    /// constant). False when a pinned row stopped holding; infeasible rows are queued.
    bool shift(Symbol symbol, double delta);
    /// Restores feasibility after `shift` (dual simplex). False when no pivot can (required conflict).
    bool dualOptimize();
    /// The row to pivot `marker` into before dropping its constraint, keeping the others feasible.
    Symbol leavingRowForMarker(Symbol marker);

    /// Describes the first broken tableau invariant, or returns "" (for tests and diagnostics).
    std::string invariantViolation() const;

  private:
    struct SymbolInfo {
        SymbolKind kind = SymbolKind::External;
        bool basic = false;
        Row row;
        // Basic symbols whose rows may depend on this one: may hold stale or repeated entries,
        // cleaned by `column()`.
        std::vector<Symbol> column;
        std::size_t cleanColumnSize = 0;
    };

    const std::vector<Symbol>& column(Symbol symbol);
    void noteDependents(Symbol basic, const std::vector<Symbol>& symbols);
    void substituteEverywhere(Symbol symbol, const Row& replacement);
    void eraseEverywhere(Symbol symbol);
    void checkRow(Symbol basic);
    bool restrictedRow(Symbol basic) const;
    bool optimizeAgainst(bool artificial);
    Symbol enteringFor(bool artificial) const;
    Symbol leavingFor(Symbol entering);
    std::size_t pivotBudget() const;

    std::vector<SymbolInfo> symbols_;
    std::vector<Symbol> released_;
    std::array<Row, 3> objective_;
    std::optional<Row> artificial_;
    std::set<Symbol> infeasible_;
    bool pinnedBroken_ = false;
    std::vector<Symbol> scratch_;
};

}  // namespace ovix::kit::layout
