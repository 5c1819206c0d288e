#pragma once

#include <memory>
#include <string>

namespace ovix::test {

/// A private X server for tests that need a display: started on a free display number when the
/// environment has no DISPLAY, stopped when this object goes.
class XvfbDisplay {
  public:
    /// Leaves an existing DISPLAY alone (returns null, `problem` empty). Otherwise starts Xvfb and sets
    /// DISPLAY; on failure returns null with `problem` saying why (`notInstalled` when there is no
    /// Xvfb on PATH).
    static std::unique_ptr<XvfbDisplay> startIfNeeded(std::string& problem, bool& notInstalled);

    ~XvfbDisplay();
    XvfbDisplay(const XvfbDisplay&) = delete;
    XvfbDisplay& operator=(const XvfbDisplay&) = delete;

    const std::string& display() const { return display_; }

  private:
    XvfbDisplay(int pid, std::string display) : pid_(pid), display_(std::move(display)) {}

    int pid_;
    std::string display_;
};

}  // namespace ovix::test
