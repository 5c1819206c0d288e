#pragma once

#include <filesystem>
#include <vector>

#include "ovix/platform/ResourceBundle.h"

namespace ovix::platform::desktop {

/// Resources of a desktop game: the game's own next to its executable; the SDK's in the first of
/// these directories that holds "OvixSdkResources.bundle": OVIX_SDK_DIR when set, the executable's
/// directory (a game that ships the bundle beside itself), then where the library was installed and
/// the tree it was built from. When none has it, the executable's directory (and the SDK finds no
/// images, as with a missing bundle anywhere).
///
/// Threading: any thread; the directories are chosen once, at construction.
class InstalledResourceBundle : public ResourceBundle {
  public:
    /// `candidates`: where the library may keep its bundle, in order of preference.
    explicit InstalledResourceBundle(std::vector<std::filesystem::path> candidates);
    Bundle mainBundle() const override { return Bundle(main_); }
    Bundle codeBundle() const override { return Bundle(code_); }

  private:
    std::filesystem::path main_;
    std::filesystem::path code_;
};

}  // namespace ovix::platform::desktop
