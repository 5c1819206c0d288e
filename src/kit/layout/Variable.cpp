#include "kit/layout/Variable.h"

#include <utility>

namespace ovix::kit::layout {

Variable::Variable(std::string name) : data_(std::make_shared<Data>(Data{std::move(name), 0})) {}

}  // namespace ovix::kit::layout
