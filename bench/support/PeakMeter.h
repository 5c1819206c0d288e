#pragma once

#include <malloc.h>

#include <fstream>
#include <string>

namespace ovix::bench {

/// The rise of resident memory from `start()` to its highest point since (Linux: the high-water
/// mark is reset through /proc/self/clear_refs). What earlier runs freed is returned to the system
/// first, so that a run cannot reuse it unseen.
class PeakMeter {
  public:
    void start() {
        malloc_trim(0);
        std::ofstream("/proc/self/clear_refs") << "5";
        before_ = statusKb("VmRSS:");
    }
    long riseBytes() const { return (statusKb("VmHWM:") - before_) * 1024; }

  private:
    static long statusKb(const char* field) {
        std::ifstream status("/proc/self/status");
        std::string line;
        while (std::getline(status, line)) {
            if (line.rfind(field, 0) == 0) {
                return std::stol(line.substr(std::string(field).size()));
            }
        }
        return 0;
    }

    long before_ = 0;
};

}  // namespace ovix::bench
