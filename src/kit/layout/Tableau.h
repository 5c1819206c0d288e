#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "kit/layout/Row.h"
#include "kit/layout/Strength.h"
#include "kit/layout/SymbolList.h"

namespace ovix::kit::layout {

/// External variables are unrestricted; slack, error and dummy variables are >= 0, dummies pinned
/// at 0 (they only mark required equalities so those can be found again).
enum class SymbolKind : std::uint8_t { External, Slack, Error, Dummy };

/// The simplex tableau behind `Solver`: basic symbols with their rows, a column index (which rows
/// depend on a parametric symbol), a three-level objective, and the primal and dual simplex steps.
///
/// Invariant kept by the solver: rows of restricted basic symbols and the objective depend on
/// restricted symbols only, so optimising never has to bound an external variable. Failed required
/// changes are undone through a journal (`begin`/`rollback`).
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

    /// Replaces `changed` by the external symbols whose value may have changed since the last call
    /// (new ones included). Buffers are swapped, so a caller that passes the same vector each time
    /// costs no allocation.
    void takeChangedExternals(std::vector<Symbol>& changed);

    /// Journals every change from here on, so that `rollback()` can bring back this exact state.
    /// Costs a copy of each row the change touches; `commit()` drops the journal (its buffers are
    /// kept for the next one). Cheap to begin: nothing is copied until something changes.
    void begin();
    void commit();
    void rollback();

    /// Describes the first broken tableau invariant, or returns "" (for tests and diagnostics).
    std::string invariantViolation() const;

  private:
    struct SymbolInfo {
        SymbolKind kind = SymbolKind::External;
        bool basic = false;
        Row row;
        // Basic symbols whose rows depend on this one, in no particular order. Rows that stop
        // depending on it leave stale (possibly later repeated) entries; `staleEntries` counts
        // them, and `column()` cleans them out before anyone reads the list.
        SymbolList column;
        std::size_t staleEntries = 0;
        std::uint64_t savedIn = 0;  // journal that already holds this row's first state
        bool changed = false;       // listed in changedExternals_
    };
    struct Journal {
        struct Entry {
            Symbol symbol;
            bool constantOnly;
            SymbolKind kind;
            bool basic;
            Row row;
        };
        std::uint64_t id = 0;
        std::size_t symbolCount = 0;
        std::vector<Entry> entries;
        std::optional<std::vector<Symbol>> released;
        std::optional<std::array<Row, 3>> objective;
        std::optional<std::array<double, 3>> objectiveConstants;
        std::optional<std::set<Symbol>> infeasible;
    };

    void rememberRow(Symbol symbol, bool constantOnly = false);
    void rememberObjective(bool constantsOnly = false);
    void rememberReleased();
    void rememberInfeasible();

    const SymbolList& column(Symbol symbol);
    void noteDependents(Symbol basic, const std::vector<Symbol>& symbols);
    void noteStale(Symbol symbol);
    void noteChanged(Symbol symbol);
    void substituteEverywhere(Symbol symbol, const Row& replacement);
    void eraseEverywhere(Symbol symbol);
    void checkRow(Symbol basic);
    bool restrictedRow(Symbol basic) const;
    bool optimizeAgainst(bool artificial);
    Symbol enteringFor(bool artificial, Symbol from) const;
    Symbol leavingFor(Symbol entering);
    std::size_t pivotBudget() const;

    std::vector<SymbolInfo> symbols_;
    std::vector<Symbol> released_;
    std::array<Row, 3> objective_;
    std::optional<Row> artificial_;
    std::set<Symbol> infeasible_;
    bool pinnedBroken_ = false;
    std::vector<Symbol> scratch_;
    std::vector<Symbol> scratchRemoved_;
    std::vector<Symbol> changedExternals_;
    Journal journal_;
    bool journaling_ = false;
    std::uint64_t journalCount_ = 0;
};

}  // namespace ovix::kit::layout
