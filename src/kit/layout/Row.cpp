#include "kit/layout/Row.h"

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

// Near-total cancellation is round-off, whatever the magnitudes involved.
bool cancels(double a, double b) {
    double sum = a + b;
    return negligible(sum) || std::fabs(sum) <= kCancel * (std::fabs(a) + std::fabs(b));
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
    if (other.cells_.size() * 16 < cells_.size()) {
        // A few cells into a long row (the objective, typically): update in place.
        for (const Cell& cell : other.cells_) {
            double add = factor * cell.coefficient;
            auto it = std::lower_bound(cells_.begin(), cells_.end(), cell.symbol,
                                       [](const Cell& c, Symbol s) { return c.symbol < s; });
            if (it == cells_.end() || it->symbol != cell.symbol) {
                if (negligible(add)) {
                    continue;
                }
                cells_.insert(it, Cell{cell.symbol, add});
                if (added) {
                    added->push_back(cell.symbol);
                }
            } else if (cancels(it->coefficient, add)) {
                cells_.erase(it);
                if (removed) {
                    removed->push_back(cell.symbol);
                }
            } else {
                it->coefficient += add;
            }
        }
        return;
    }
    // Merge of two sorted cell lists in place, from the back: the row grows like any vector and
    // needs no second buffer. Cells that fold or cancel leave a gap, closed at the end.
    const std::size_t kept = cells_.size();
    cells_.resize(kept + other.cells_.size());
    Cell* first = cells_.data();
    Cell* a = first + kept;  // one past the next own cell to place
    const Cell* b = other.cells_.data() + other.cells_.size();
    const Cell* bFirst = other.cells_.data();
    Cell* out = first + cells_.size();  // cells from here on are final
    while (b != bFirst) {
        const Cell& theirs = b[-1];
        if (a != first && a[-1].symbol > theirs.symbol) {
            *--out = *--a;
            continue;
        }
        double add = factor * theirs.coefficient;
        --b;
        if (a != first && a[-1].symbol == theirs.symbol) {
            --a;
            if (!cancels(a->coefficient, add)) {
                *--out = Cell{a->symbol, a->coefficient + add};
            } else if (removed) {
                removed->push_back(a->symbol);
            }
        } else if (!negligible(add)) {
            *--out = Cell{theirs.symbol, add};
            if (added) {
                added->push_back(theirs.symbol);
            }
        }
    }
    // Own cells below the lowest of `other` are already in place; move the merged tail down to them.
    Cell* tail = std::move(out, first + cells_.size(), a);
    cells_.erase(cells_.begin() + (tail - first), cells_.end());
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
