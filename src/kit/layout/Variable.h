#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

namespace ovix::kit::layout {

/// One unknown of a layout system (a view's left edge, a width...).
///
/// A cheap handle: copies share the same unknown, and two handles compare equal only when they are
/// copies of each other, whatever their names. The value is whatever the last
/// `Solver::updateVariables()` wrote (0 before that). Not thread-safe: use on the main queue.
class Variable {
  public:
    explicit Variable(std::string name = {});

    const std::string& name() const { return data_->name; }
    double value() const { return data_->value; }
    /// Written by the solver; callers may also seed a value (an edit variable starts from it).
    void setValue(double value) { data_->value = value; }

    bool operator==(const Variable& other) const { return data_ == other.data_; }
    std::size_t hash() const { return std::hash<const void*>()(data_.get()); }

  private:
    struct Data {
        std::string name;
        double value = 0;
    };
    std::shared_ptr<Data> data_;
};

}  // namespace ovix::kit::layout

template <>
struct std::hash<ovix::kit::layout::Variable> {
    std::size_t operator()(const ovix::kit::layout::Variable& v) const { return v.hash(); }
};
