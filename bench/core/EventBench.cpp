// Raising an event to a live listener, beside the least a weakly held listener can cost: a weak_ptr
// lock and one virtual call with the same arguments, and beside the slot as it was before (a mutex
// around the weak reference, the name copied into a new string on every raise). The sides run
// alternately in one benchmark, which reports each mean, "raise_over_baseline" and
// "before_over_baseline".
//
//   build/<dir>/bench/core/ovix_event_bench
#include <benchmark/benchmark.h>

#include <chrono>
#include <memory>
#include <mutex>
#include <string>

#include "core/EventSlot.h"
#include "ovix/OvixEvents.h"
#include "ovix/OvixSdkListener.h"

namespace {

class CountingListener : public ovix::OvixSdkListener {
  public:
    void onEventReceived(const std::string& event, const ovix::Value& data) override {
        benchmark::DoNotOptimize(event.data());
        benchmark::DoNotOptimize(&data);
        ++count;
    }
    long count = 0;
};

// The previous slot, kept here only to be measured against.
class PreviousSlot {
  public:
    void setListener(const std::shared_ptr<ovix::OvixSdkListener>& listener) {
        std::lock_guard lock(mutex_);
        listener_ = listener;
    }
    void raise(std::string_view event, const ovix::Value& data) const {
        std::shared_ptr<ovix::OvixSdkListener> target;
        {
            std::lock_guard lock(mutex_);
            target = listener_.lock();
        }
        if (target) {
            target->onEventReceived(std::string(event), data);
        }
    }

  private:
    mutable std::mutex mutex_;
    std::weak_ptr<ovix::OvixSdkListener> listener_;
};

using Clock = std::chrono::steady_clock;

// One batch of each side per benchmark iteration, timed separately; batches keep the clock's cost out.
constexpr int kBatch = 1000;

void BM_RaiseVsVirtualCall(benchmark::State& state) {
    auto listener = std::make_shared<CountingListener>();
    ovix::EventSlot::shared().setListener(listener);
    std::weak_ptr<ovix::OvixSdkListener> weak = listener;
    const std::string name(ovix::OvixEvents::PURCHASE_UPDATED);
    PreviousSlot previous;
    previous.setListener(listener);
    const ovix::Value data;
    Clock::duration raiseTime{}, baselineTime{}, beforeTime{};

    for (auto _ : state) {
        auto start = Clock::now();
        for (int i = 0; i < kBatch; ++i) {
            ovix::EventSlot::shared().raise(ovix::OvixEvents::PURCHASE_UPDATED, data);
        }
        auto middle = Clock::now();
        for (int i = 0; i < kBatch; ++i) {
            benchmark::DoNotOptimize(weak);
            if (auto target = weak.lock()) {
                target->onEventReceived(name, data);
            }
        }
        auto end = Clock::now();
        for (int i = 0; i < kBatch; ++i) {
            previous.raise(ovix::OvixEvents::PURCHASE_UPDATED, data);
        }
        auto last = Clock::now();
        raiseTime += middle - start;
        baselineTime += end - middle;
        beforeTime += last - end;
    }
    ovix::EventSlot::shared().setListener(nullptr);
    if (listener->count != 3 * kBatch * static_cast<long>(state.iterations())) {
        state.SkipWithError("the listener missed events");
        return;
    }
    const double calls = static_cast<double>(state.iterations()) * kBatch;
    const double raiseNs = std::chrono::duration<double, std::nano>(raiseTime).count() / calls;
    const double baselineNs = std::chrono::duration<double, std::nano>(baselineTime).count() / calls;
    state.counters["raise_ns"] = raiseNs;
    state.counters["baseline_ns"] = baselineNs;
    const double beforeNs = std::chrono::duration<double, std::nano>(beforeTime).count() / calls;
    state.counters["raise_over_baseline"] = raiseNs / baselineNs;
    state.counters["before_ns"] = beforeNs;
    state.counters["before_over_baseline"] = beforeNs / baselineNs;
}
BENCHMARK(BM_RaiseVsVirtualCall);

}  // namespace
