#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "kit/layout/Row.h"

namespace ovix::kit::layout {

/// A list of symbols that holds its first few entries inline and moves to the heap only beyond
/// them. Most symbols of a layout are named by a handful of rows, so a tableau keeps one of these
/// per symbol without one allocation each. Copies are deep; a moved-from list is empty.
class SymbolList {
  public:
    static constexpr std::size_t kInline = 5;

    SymbolList() = default;
    SymbolList(const SymbolList& other) { *this = other; }
    SymbolList(SymbolList&& other) noexcept { *this = std::move(other); }
    SymbolList& operator=(const SymbolList& other) {
        if (this != &other) {
            clear();
            reserve(other.size_);
            std::copy(other.begin(), other.end(), data());
            size_ = other.size_;
        }
        return *this;
    }
    SymbolList& operator=(SymbolList&& other) noexcept {
        if (this != &other) {
            heap_ = std::move(other.heap_);
            capacity_ = other.capacity_;
            size_ = other.size_;
            std::copy(other.inline_, other.inline_ + kInline, inline_);
            other.capacity_ = kInline;
            other.size_ = 0;
        }
        return *this;
    }

    Symbol* begin() { return data(); }
    Symbol* end() { return data() + size_; }
    const Symbol* begin() const { return data(); }
    const Symbol* end() const { return data() + size_; }
    std::size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }

    void push_back(Symbol symbol) {
        if (size_ == capacity_) {
            reserve(std::size_t{capacity_} * 2);
        }
        data()[size_++] = symbol;
    }
    /// Keeps the entries before `newEnd` (an iterator of this list), as after std::remove_if.
    void erase(Symbol* newEnd, Symbol* oldEnd) { size_ -= static_cast<std::uint32_t>(oldEnd - newEnd); }
    /// Empties the list; a heap buffer is kept for the next entries.
    void clear() { size_ = 0; }

  private:
    Symbol* data() { return heap_ ? heap_.get() : inline_; }
    const Symbol* data() const { return heap_ ? heap_.get() : inline_; }
    void reserve(std::size_t capacity) {
        if (capacity <= capacity_) {
            return;
        }
        auto grown = std::make_unique_for_overwrite<Symbol[]>(capacity);
        std::copy(begin(), end(), grown.get());
        heap_ = std::move(grown);
        capacity_ = static_cast<std::uint32_t>(capacity);
    }

    std::unique_ptr<Symbol[]> heap_;
    std::uint32_t size_ = 0;
    std::uint32_t capacity_ = kInline;
    Symbol inline_[kInline]{};
};

}  // namespace ovix::kit::layout
