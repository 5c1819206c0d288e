#include "emulator/FaultInjector.h"

#include <stdexcept>

namespace ovix::emulator {

FaultInjector::FaultInjector(std::set<std::string> routes) : routes_(std::move(routes)) {}

void FaultInjector::set(const std::string& route, const Fault& fault) {
    if (!routes_.contains(route)) {
        std::string known;
        for (const auto& name : routes_) {
            known += (known.empty() ? "" : ", ") + name;
        }
        throw std::invalid_argument("unknown route \"" + route + "\" (routes: " + known + ")");
    }
    std::lock_guard lock(mutex_);
    faults_[route] = fault;
}

void FaultInjector::setFromText(std::string_view routeAndFault) {
    const auto equals = routeAndFault.find('=');
    if (equals == std::string_view::npos) {
        throw std::invalid_argument("a fault is route=fault, e.g. news=status:503");
    }
    set(std::string(routeAndFault.substr(0, equals)), Fault::parse(routeAndFault.substr(equals + 1)));
}

bool FaultInjector::clear(const std::string& route) {
    std::lock_guard lock(mutex_);
    return faults_.erase(route) > 0;
}

void FaultInjector::clearAll() {
    std::lock_guard lock(mutex_);
    faults_.clear();
}

std::optional<Fault> FaultInjector::take(const std::string& route) {
    std::lock_guard lock(mutex_);
    auto it = faults_.find(route);
    if (it == faults_.end()) {
        return std::nullopt;
    }
    Fault fault = it->second;
    if (it->second.times > 0 && --it->second.times == 0) {
        faults_.erase(it);
    }
    return fault;
}

std::map<std::string, Fault> FaultInjector::snapshot() const {
    std::lock_guard lock(mutex_);
    return faults_;
}

}  // namespace ovix::emulator
