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

  private:
    explicit XvfbDisplay(int pid) : pid_(pid) {}

    int pid_;
};

}  // namespace ovix::test
