#pragma once

#include <cstdint>
#include <limits>
#include <vector>

namespace ovix::kit::layout {

/// Identifies a tableau variable. Ids are handed out in creation order (reused after release), and
/// every pivoting tie is broken by the lower id, never by an address.
using Symbol = std::uint32_t;
inline constexpr Symbol noSymbol = std::numeric_limits<Symbol>::max();

/// One linear row of the tableau: constant + sum of coefficient * symbol, cells sorted by symbol.
/// Coefficients that cancel to (almost) zero are dropped, so "contains" means "depends on".
class Row {
  public:
    struct Cell {
        Symbol symbol;
        double coefficient;
    };

    Row() = default;
    explicit Row(double constant) : constant_(constant) {}

    double constant() const { return constant_; }
    void addToConstant(double delta) { constant_ += delta; }
    void setConstant(double constant) { constant_ = constant; }
    const std::vector<Cell>& cells() const { return cells_; }
    bool empty() const { return cells_.empty(); }
    void reserve(std::size_t cells) { cells_.reserve(cells); }
    double coefficient(Symbol symbol) const;
    bool contains(Symbol symbol) const { return coefficient(symbol) != 0; }

    /// Adds `coefficient * symbol`.
    void insert(Symbol symbol, double coefficient);
    /// Adds `factor * other`. Symbols that were absent and are now present are appended to `added`,
    /// those that cancelled out to `removed`.
    void insert(const Row& other, double factor, std::vector<Symbol>* added = nullptr,
                std::vector<Symbol>* removed = nullptr);
    void erase(Symbol symbol);
    void negate();
    /// The row read as `0 = row`; afterwards it reads `symbol = row` (symbol must be present).
    void solveFor(Symbol symbol);
    /// The row read as `basic = row`; afterwards it reads `entering = row`.
    void solveFor(Symbol basic, Symbol entering);
    /// Replaces `symbol` by `replacement`; false when the row did not depend on it.
    bool substitute(Symbol symbol, const Row& replacement, std::vector<Symbol>* added = nullptr,
                    std::vector<Symbol>* removed = nullptr);

  private:
    std::vector<Cell>::const_iterator find(Symbol symbol) const;

    double constant_ = 0;
    std::vector<Cell> cells_;
};

}  // namespace ovix::kit::layout
