#include "platform/kit/layout/Row.h"

#include <algorithm>
#include <cmath>

namespace ovix::kit::layout {

namespace {

// Coefficients below this are round-off left behind by cancelling terms.
constexpr double kPrune = 1e-9;
constexpr double kCancel = 1e-9;

bool negligible(double v) {
    return std::fabs(v) < kPrune;
}

}  // namespace

std::vector<Row::Cell>::const_iterator Row::find(Symbol symbol) const {
    auto it = std::lower_bound(cells_.begin(), cells_.end(), symbol,
                               [](const Cell& c, Symbol s) { return c.symbol < s; });
    return (it != cells_.end() && it->symbol == symbol) ? it : cells_.end();
}

double Row::coefficient(Symbol symbol) const {
    auto it = find(symbol);
    return it == cells_.end() ? 0.0 : it->coefficient;
}

void Row::insert(Symbol symbol, double coefficient) {
    auto it = std::lower_bound(cells_.begin(), cells_.end(), symbol,
                               [](const Cell& c, Symbol s) { return c.symbol < s; });
    if (it != cells_.end() && it->symbol == symbol) {
        it->coefficient += coefficient;
        if (negligible(it->coefficient)) {
            cells_.erase(it);
        }
    } else if (!negligible(coefficient)) {
        cells_.insert(it, Cell{symbol, coefficient});
    }
}

void Row::insert(const Row& other, double factor, std::vector<Symbol>* added, std::vector<Symbol>* removed) {
    constant_ += factor * other.constant_;
    // Merge of two sorted cell lists into a reused buffer, so long rows cost no allocation.
    thread_local std::vector<Cell> merged;
    merged.clear();
    merged.reserve(cells_.size() + other.cells_.size());
    auto a = cells_.begin();
    auto b = other.cells_.begin();
    while (a != cells_.end() || b != other.cells_.end()) {
        if (b == other.cells_.end() || (a != cells_.end() && a->symbol < b->symbol)) {
            merged.push_back(*a++);
        } else if (a == cells_.end() || b->symbol < a->symbol) {
            double c = factor * b->coefficient;
            if (!negligible(c)) {
                merged.push_back(Cell{b->symbol, c});
                if (added) {
                    added->push_back(b->symbol);
                }
            }
            ++b;
        } else {
            double added = factor * b->coefficient;
            double c = a->coefficient + added;
            // Near-total cancellation is round-off, whatever the magnitudes involved.
            if (!negligible(c) && std::fabs(c) > kCancel * (std::fabs(a->coefficient) + std::fabs(added))) {
                merged.push_back(Cell{a->symbol, c});
            } else if (removed) {
                removed->push_back(a->symbol);
            }
            ++a;
            ++b;
        }
    }
    cells_.swap(merged);
}

void Row::erase(Symbol symbol) {
    auto it = find(symbol);
    if (it != cells_.end()) {
        cells_.erase(it);
    }
}

void Row::negate() {
    constant_ = -constant_;
    for (Cell& c : cells_) {
        c.coefficient = -c.coefficient;
    }
}

void Row::solveFor(Symbol symbol) {
    auto it = find(symbol);
    double factor = -1.0 / it->coefficient;
    cells_.erase(it);
    constant_ *= factor;
    for (Cell& c : cells_) {
        c.coefficient *= factor;
    }
}

void Row::solveFor(Symbol basic, Symbol entering) {
    insert(basic, -1.0);
    solveFor(entering);
}

bool Row::substitute(Symbol symbol, const Row& replacement, std::vector<Symbol>* added,
                     std::vector<Symbol>* removed) {
    auto it = find(symbol);
    if (it == cells_.end()) {
        return false;
    }
    double coefficient = it->coefficient;
    cells_.erase(it);
    insert(replacement, coefficient, added, removed);
    return true;
}

}  // namespace ovix::kit::layout
