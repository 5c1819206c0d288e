#pragma once

#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "ovix/OvixSdkListener.h"

namespace ovix::test {

/// Remembers every event it receives, with its payload and thread. Safe from any thread.
class RecordingListener : public OvixSdkListener {
  public:
    struct Received {
        std::string event;
        Value data;
        std::thread::id thread;
    };

    void onEventReceived(const std::string& event, const Value& data) override {
        std::lock_guard lock(mutex_);
        received_.push_back({event, data, std::this_thread::get_id()});
    }

    std::vector<Received> received() const {
        std::lock_guard lock(mutex_);
        return received_;
    }

    std::vector<std::string> names() const {
        std::vector<std::string> out;
        for (const auto& r : received()) {
            out.push_back(r.event);
        }
        return out;
    }

  private:
    mutable std::mutex mutex_;
    std::vector<Received> received_;
};

}  // namespace ovix::test
