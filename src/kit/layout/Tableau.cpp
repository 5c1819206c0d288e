#include "kit/layout/Tableau.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace ovix::kit::layout {

namespace {

// Tolerance for signs of constants, coefficients and ratios that went through pivots.
constexpr double kEps = 1e-8;
// Smallest coefficient worth pivoting on: below it a coefficient is more likely round-off than
// structure, and dividing by it would blow the tableau up.
constexpr double kPivot = 1e-7;

// Lexicographic sign of an objective coefficient spread over the three strength levels.
bool lexNegative(const std::array<double, 3>& c) {
    for (double v : c) {
        if (v < -kEps) {
            return true;
        }
        if (v > kEps) {
            return false;
        }
    }
    return false;
}

bool lexLess(const std::array<double, 3>& a, const std::array<double, 3>& b) {
    for (std::size_t i = 0; i < a.size(); ++i) {
        double tolerance = kEps * (1 + std::fabs(b[i]));
        if (a[i] < b[i] - tolerance) {
            return true;
        }
        if (a[i] > b[i] + tolerance) {
            return false;
        }
    }
    return false;
}

}  // namespace

Symbol Tableau::newSymbol(SymbolKind kind) {
    Symbol symbol;
    if (!released_.empty()) {
        rememberReleased();
        symbol = released_.back();
        released_.pop_back();
        rememberRow(symbol);
        symbols_[symbol] = SymbolInfo{};
    } else {
        symbol = static_cast<Symbol>(symbols_.size());
        symbols_.emplace_back();
    }
    symbols_[symbol].kind = kind;
    noteChanged(symbol);
    return symbol;
}

void Tableau::releaseSymbol(Symbol symbol) {
    if (isBasic(symbol)) {
        takeRow(symbol);
    }
    eraseEverywhere(symbol);
    rememberRow(symbol);
    rememberReleased();
    symbols_[symbol] = SymbolInfo{};
    released_.push_back(symbol);
}

void Tableau::clear() {
    *this = Tableau();
}

const SymbolList& Tableau::column(Symbol symbol) {
    SymbolInfo& info = symbols_[symbol];
    if (info.staleEntries > 0) {
        SymbolList& col = info.column;
        std::sort(col.begin(), col.end());
        col.erase(std::unique(col.begin(), col.end()), col.end());
        col.erase(std::remove_if(col.begin(), col.end(),
                                 [&](Symbol b) {
                                     return b >= symbols_.size() || !symbols_[b].basic ||
                                            !symbols_[b].row.contains(symbol);
                                 }),
                  col.end());
        info.staleEntries = 0;
    }
    return info.column;
}

void Tableau::noteDependents(Symbol basic, const std::vector<Symbol>& symbols) {
    for (Symbol s : symbols) {
        symbols_[s].column.push_back(basic);
    }
}

void Tableau::noteStale(Symbol symbol) {
    SymbolInfo& info = symbols_[symbol];
    // Clean once stale entries could make up a third of the list, so it stays proportional to the
    // rows that really depend on the symbol.
    if (++info.staleEntries > info.column.size() / 2 + 32) {
        column(symbol);
    }
}

void Tableau::noteChanged(Symbol symbol) {
    SymbolInfo& info = symbols_[symbol];
    if (info.kind == SymbolKind::External && !info.changed) {
        info.changed = true;
        changedExternals_.push_back(symbol);
    }
}

void Tableau::takeChangedExternals(std::vector<Symbol>& changed) {
    changed.clear();
    changed.swap(changedExternals_);
    for (Symbol s : changed) {
        if (s < symbols_.size()) {
            symbols_[s].changed = false;
        }
    }
}

void Tableau::checkRow(Symbol basic) {
    noteChanged(basic);
    const SymbolInfo& info = symbols_[basic];
    double k = info.row.constant();
    if (info.kind == SymbolKind::Dummy) {
        if (std::fabs(k) > kEps) {
            pinnedBroken_ = true;
        }
    } else if (info.kind != SymbolKind::External && k < -kEps) {
        rememberInfeasible();
        infeasible_.insert(basic);
    }
}

void Tableau::substituteEverywhere(Symbol symbol, const Row& replacement) {
    // The column ends empty (no row will depend on the symbol); lend its buffer to the loop, which
    // never touches it, so nothing is copied.
    column(symbol);
    SymbolList dependents;
    std::swap(dependents, symbols_[symbol].column);
    for (Symbol b : dependents) {
        rememberRow(b);
        scratch_.clear();
        scratchRemoved_.clear();
        symbols_[b].row.substitute(symbol, replacement, &scratch_, &scratchRemoved_);
        noteDependents(b, scratch_);
        for (Symbol gone : scratchRemoved_) {
            noteStale(gone);
        }
        checkRow(b);
    }
    rememberObjective();
    for (Row& level : objective_) {
        level.substitute(symbol, replacement);
    }
    if (artificial_) {
        artificial_->substitute(symbol, replacement);
    }
    dependents.clear();
    std::swap(symbols_[symbol].column, dependents);
    symbols_[symbol].staleEntries = 0;
}

void Tableau::eraseEverywhere(Symbol symbol) {
    for (Symbol b : column(symbol)) {
        rememberRow(b);
        symbols_[b].row.erase(symbol);
    }
    rememberObjective();
    for (Row& level : objective_) {
        level.erase(symbol);
    }
    if (artificial_) {
        artificial_->erase(symbol);
    }
    symbols_[symbol].column.clear();
    symbols_[symbol].staleEntries = 0;
}

void Tableau::addRow(Symbol subject, Row row) {
    substituteEverywhere(subject, row);
    rememberRow(subject);
    SymbolInfo& info = symbols_[subject];
    info.basic = true;
    info.row = std::move(row);
    for (const Row::Cell& cell : info.row.cells()) {
        symbols_[cell.symbol].column.push_back(subject);
    }
    checkRow(subject);
}

Row Tableau::takeRow(Symbol basic) {
    rememberRow(basic);
    noteChanged(basic);
    SymbolInfo& info = symbols_[basic];
    info.basic = false;
    Row row = std::move(info.row);
    info.row = Row();
    if (infeasible_.contains(basic)) {
        rememberInfeasible();
        infeasible_.erase(basic);
    }
    for (const Row::Cell& cell : row.cells()) {
        noteStale(cell.symbol);
    }
    return row;
}

void Tableau::pivot(Symbol entering, Symbol leaving) {
    Row row = takeRow(leaving);
    row.solveFor(leaving, entering);
    addRow(entering, std::move(row));
}

void Tableau::addToObjective(Symbol symbol, const strength::Levels& weights, double sign) {
    rememberObjective();
    const double w[3] = {weights.strong, weights.medium, weights.weak};
    for (std::size_t i = 0; i < objective_.size(); ++i) {
        if (w[i] == 0) {
            continue;
        }
        if (isBasic(symbol)) {
            objective_[i].insert(row(symbol), sign * w[i]);
        } else {
            objective_[i].insert(symbol, sign * w[i]);
        }
    }
}

std::size_t Tableau::pivotBudget() const {
    return 1000 + 50 * symbols_.size();
}

Symbol Tableau::enteringFor(bool artificial, Symbol from) const {
    auto pivotable = [&](Symbol s) {
        SymbolKind k = kind(s);
        return k == SymbolKind::Slack || k == SymbolKind::Error;
    };
    if (artificial) {
        for (const Row::Cell& cell : artificial_->cells()) {
            if (cell.symbol >= from && cell.coefficient < -kEps && pivotable(cell.symbol)) {
                return cell.symbol;
            }
        }
        return noSymbol;
    }
    std::array<std::size_t, 3> at{0, 0, 0};
    for (;;) {
        Symbol s = noSymbol;
        for (std::size_t i = 0; i < 3; ++i) {
            if (at[i] < objective_[i].cells().size()) {
                s = std::min(s, objective_[i].cells()[at[i]].symbol);
            }
        }
        if (s == noSymbol) {
            return noSymbol;
        }
        std::array<double, 3> cost{0, 0, 0};
        for (std::size_t i = 0; i < 3; ++i) {
            const auto& cells = objective_[i].cells();
            if (at[i] < cells.size() && cells[at[i]].symbol == s) {
                cost[i] = cells[at[i]++].coefficient;
            }
        }
        if (s >= from && pivotable(s) && lexNegative(cost)) {
            return s;
        }
    }
}

Symbol Tableau::leavingFor(Symbol entering) {
    Symbol best = noSymbol;
    double bestRatio = std::numeric_limits<double>::infinity();
    for (Symbol b : column(entering)) {
        if (kind(b) == SymbolKind::External) {
            continue;
        }
        double a = row(b).coefficient(entering);
        if (a >= -kPivot) {
            continue;
        }
        double ratio = std::max(row(b).constant(), 0.0) / -a;
        if (ratio < bestRatio || (ratio == bestRatio && b < best)) {
            bestRatio = ratio;
            best = b;
        }
    }
    return best;
}

bool Tableau::optimizeAgainst(bool artificial) {
    const std::size_t budget = pivotBudget();
    for (std::size_t step = 0;; ++step) {
        // Lowest-id improving symbol that some row can take (Bland's rule: no cycling). One that
        // only round-off limits is passed over: moving it cannot improve anything measurable.
        Symbol entering = enteringFor(artificial, 0);
        Symbol leaving = noSymbol;
        while (entering != noSymbol && (leaving = leavingFor(entering)) == noSymbol) {
            entering = enteringFor(artificial, entering + 1);
        }
        if (entering == noSymbol) {
            return true;
        }
        if (step >= budget) {
            return false;
        }
        pivot(entering, leaving);
    }
}

bool Tableau::optimize() {
    return optimizeAgainst(false);
}

bool Tableau::addRowThroughArtificial(const Row& row) {
    Symbol art = newSymbol(SymbolKind::Slack);
    artificial_ = row;
    addRow(art, row);
    bool reachedZero =
        optimizeAgainst(true) && std::fabs(artificial_->constant()) <= kEps * std::max(1.0, row.constant());
    artificial_.reset();
    if (!reachedZero) {
        return false;
    }
    if (isBasic(art)) {
        const Row& artRow = this->row(art);
        // A degenerate pivot (the row's value is 0): prefer a symbol that may move, then the
        // largest coefficient. A row of round-off only is simply dropped.
        Symbol entering = noSymbol;
        double best = kPivot;
        bool movable = false;
        for (const Row::Cell& cell : artRow.cells()) {
            bool canMove = kind(cell.symbol) != SymbolKind::Dummy;
            double size = std::fabs(cell.coefficient);
            if (size > kPivot && (canMove > movable || (canMove == movable && size > best))) {
                entering = cell.symbol;
                best = size;
                movable = canMove;
            }
        }
        if (entering != noSymbol) {
            pivot(entering, art);
        }
    }
    releaseSymbol(art);
    return true;
}

bool Tableau::shift(Symbol symbol, double delta) {
    pinnedBroken_ = false;
    if (isBasic(symbol)) {
        rememberRow(symbol, true);
        symbols_[symbol].row.addToConstant(-delta);
        checkRow(symbol);
        return !pinnedBroken_;
    }
    for (Symbol b : column(symbol)) {
        rememberRow(b, true);
        Row& r = symbols_[b].row;
        r.addToConstant(r.coefficient(symbol) * delta);
        checkRow(b);
    }
    rememberObjective(true);
    for (Row& level : objective_) {
        level.addToConstant(level.coefficient(symbol) * delta);
    }
    return !pinnedBroken_;
}

bool Tableau::dualOptimize() {
    const std::size_t budget = pivotBudget();
    std::size_t steps = 0;
    while (!infeasible_.empty()) {
        Symbol leaving = *infeasible_.begin();
        if (!isBasic(leaving) || row(leaving).constant() >= -kEps) {
            rememberInfeasible();
            infeasible_.erase(infeasible_.begin());
            continue;
        }
        if (kind(leaving) == SymbolKind::Dummy || steps++ >= budget) {
            return false;
        }
        Symbol entering = noSymbol;
        std::array<double, 3> best{};
        for (const Row::Cell& cell : row(leaving).cells()) {
            SymbolKind k = kind(cell.symbol);
            if (cell.coefficient <= kPivot || (k != SymbolKind::Slack && k != SymbolKind::Error)) {
                continue;
            }
            std::array<double, 3> ratio{};
            for (std::size_t i = 0; i < 3; ++i) {
                ratio[i] = objective_[i].coefficient(cell.symbol) / cell.coefficient;
            }
            if (entering == noSymbol || lexLess(ratio, best)) {
                entering = cell.symbol;
                best = ratio;
            }
        }
        if (entering == noSymbol) {
            return false;
        }
        rememberInfeasible();
        infeasible_.erase(infeasible_.begin());
        pivot(entering, leaving);
    }
    return true;
}

Symbol Tableau::leavingRowForMarker(Symbol marker) {
    // A pinned row takes the marker at no cost. Otherwise prefer a restricted row that the marker
    // lowers (smallest ratio), then one it raises, and only then an external row: the remaining rows
    // stay feasible and restricted rows keep depending on restricted symbols only. Ties go to the
    // lower id.
    constexpr double inf = std::numeric_limits<double>::infinity();
    struct Best {
        Symbol symbol = noSymbol;
        double ratio = inf;
        void offer(Symbol s, double r) {
            if (r < ratio || (r == ratio && s < symbol)) {
                symbol = s;
                ratio = r;
            }
        }
    };
    Best pinned, lowers, raises, external;
    for (Symbol b : column(marker)) {
        double a = row(b).coefficient(marker);
        double k = row(b).constant();
        if (std::fabs(a) <= kPivot) {
            continue;
        }
        switch (kind(b)) {
            case SymbolKind::Dummy:
                pinned.offer(b, 0);
                break;
            case SymbolKind::External:
                external.offer(b, 0);
                break;
            default:
                (a < 0 ? lowers : raises).offer(b, std::fabs(k / a));
        }
    }
    for (const Best& choice : {pinned, lowers, raises, external}) {
        if (choice.symbol != noSymbol) {
            return choice.symbol;
        }
    }
    return noSymbol;
}

void Tableau::begin() {
    journal_.id = ++journalCount_;
    journal_.symbolCount = symbols_.size();
    journaling_ = true;
}

void Tableau::commit() {
    journaling_ = false;
    journal_.entries.clear();
    journal_.released.reset();
    journal_.objective.reset();
    journal_.objectiveConstants.reset();
    journal_.infeasible.reset();
}

void Tableau::rollback() {
    journaling_ = false;
    Journal& journal = journal_;
    // Oldest entries last, so each symbol ends in its first remembered state.
    for (auto it = journal.entries.rbegin(); it != journal.entries.rend(); ++it) {
        if (it->symbol >= journal.symbolCount) {
            continue;
        }
        SymbolInfo& info = symbols_[it->symbol];
        for (const Row::Cell& cell : info.row.cells()) {
            if (cell.symbol < journal.symbolCount) {
                ++symbols_[cell.symbol].staleEntries;
            }
        }
        noteChanged(it->symbol);
        if (it->constantOnly) {
            info.row.setConstant(it->row.constant());
        } else {
            info.kind = it->kind;
            info.basic = it->basic;
            info.row = std::move(it->row);
        }
    }
    for (Symbol s = static_cast<Symbol>(journal.symbolCount); s < symbols_.size(); ++s) {
        for (const Row::Cell& cell : symbols_[s].row.cells()) {
            if (cell.symbol < journal.symbolCount) {
                ++symbols_[cell.symbol].staleEntries;
            }
        }
    }
    symbols_.resize(journal.symbolCount);
    // Columns were never journalled: entries may be stale (filtered on use) but restored rows must
    // be listed again.
    for (const Journal::Entry& entry : journal.entries) {
        if (entry.symbol < symbols_.size() && symbols_[entry.symbol].basic) {
            for (const Row::Cell& cell : symbols_[entry.symbol].row.cells()) {
                symbols_[cell.symbol].column.push_back(entry.symbol);
                ++symbols_[cell.symbol].staleEntries;  // may repeat an entry that survived
            }
        }
    }
    if (journal.released) {
        released_ = std::move(*journal.released);
    }
    if (journal.objective) {
        objective_ = std::move(*journal.objective);
    }
    if (journal.objectiveConstants) {  // taken before any structural change, so it wins
        for (std::size_t i = 0; i < objective_.size(); ++i) {
            objective_[i].setConstant((*journal.objectiveConstants)[i]);
        }
    }
    if (journal.infeasible) {
        infeasible_ = std::move(*journal.infeasible);
    }
    artificial_.reset();
    commit();
}

void Tableau::rememberRow(Symbol symbol, bool constantOnly) {
    if (!journaling_ || symbol >= journal_.symbolCount) {
        return;
    }
    SymbolInfo& info = symbols_[symbol];
    if (info.savedIn == journal_.id) {
        return;
    }
    if (constantOnly) {
        journal_.entries.push_back({symbol, true, info.kind, info.basic, Row(info.row.constant())});
        return;  // a later structural change still gets its own entry
    }
    info.savedIn = journal_.id;
    journal_.entries.push_back({symbol, false, info.kind, info.basic, info.row});
}

void Tableau::rememberObjective(bool constantsOnly) {
    if (!journaling_ || journal_.objective) {
        return;
    }
    if (!constantsOnly) {
        journal_.objective = objective_;
    } else if (!journal_.objectiveConstants) {
        journal_.objectiveConstants = {objective_[0].constant(), objective_[1].constant(),
                                       objective_[2].constant()};
    }
}

void Tableau::rememberReleased() {
    if (journaling_ && !journal_.released) {
        journal_.released = released_;
    }
}

void Tableau::rememberInfeasible() {
    if (journaling_ && !journal_.infeasible) {
        journal_.infeasible = infeasible_;
    }
}

std::string Tableau::invariantViolation() const {
    auto name = [](Symbol s) { return std::to_string(s); };
    for (Symbol b = 0; b < symbols_.size(); ++b) {
        const SymbolInfo& info = symbols_[b];
        if (!info.basic) {
            continue;
        }
        if (info.kind != SymbolKind::External && info.row.constant() < -1e-6) {
            return "restricted row " + name(b) + " is infeasible";
        }
        if (info.kind == SymbolKind::Dummy && std::fabs(info.row.constant()) > 1e-6) {
            return "pinned row " + name(b) + " is not zero";
        }
        for (const Row::Cell& cell : info.row.cells()) {
            const SymbolInfo& dep = symbols_[cell.symbol];
            if (dep.basic) {
                return "row " + name(b) + " depends on basic " + name(cell.symbol);
            }
            if (info.kind == SymbolKind::Dummy && dep.kind != SymbolKind::Dummy) {
                return "pinned row " + name(b) + " depends on " + name(cell.symbol);
            }
            if (info.kind != SymbolKind::External && dep.kind == SymbolKind::External) {
                return "restricted row " + name(b) + " depends on external " + name(cell.symbol);
            }
            if (std::find(dep.column.begin(), dep.column.end(), b) == dep.column.end()) {
                return "column of " + name(cell.symbol) + " misses row " + name(b);
            }
            if (std::find(released_.begin(), released_.end(), cell.symbol) != released_.end()) {
                return "row " + name(b) + " depends on released " + name(cell.symbol);
            }
        }
    }
    for (Symbol s = 0; s < symbols_.size(); ++s) {
        const SymbolInfo& info = symbols_[s];
        if (info.staleEntries > 0) {
            continue;
        }
        std::vector<Symbol> sorted(info.column.begin(), info.column.end());
        std::sort(sorted.begin(), sorted.end());
        if (std::adjacent_find(sorted.begin(), sorted.end()) != sorted.end()) {
            return "column of " + name(s) + " repeats an entry";
        }
        for (Symbol b : sorted) {
            if (b >= symbols_.size() || !symbols_[b].basic || !symbols_[b].row.contains(s)) {
                return "column of " + name(s) + " lists " + name(b) + " without counting it stale";
            }
        }
    }
    for (const Row& level : objective_) {
        for (const Row::Cell& cell : level.cells()) {
            if (symbols_[cell.symbol].basic || symbols_[cell.symbol].kind == SymbolKind::External) {
                return "objective depends on " + name(cell.symbol);
            }
        }
    }
    return "";
}

}  // namespace ovix::kit::layout
