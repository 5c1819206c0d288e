#pragma once

#include <filesystem>
#include <vector>

#include "platform/posix/ExecutableResourceBundle.h"

namespace ovix::platform::desktop {

/// Resources of a GTK desktop game: found as for any program on Linux (`ExecutableResourceBundle`:
/// OVIX_SDK_DIR, beside the executable, the prefix it is installed in), then in `candidates`, where the
/// desktop library may keep its bundle (where it was installed, the tree it was built from).
///
/// Threading: any thread; the directories are chosen once, at construction.
class InstalledResourceBundle : public ExecutableResourceBundle {
  public:
    explicit InstalledResourceBundle(const std::vector<std::filesystem::path>& candidates)
        : ExecutableResourceBundle(candidates) {}
};

}  // namespace ovix::platform::desktop
