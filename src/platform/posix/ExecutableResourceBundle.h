#pragma once

#include <filesystem>
#include <vector>

#include "ovix/platform/ResourceBundle.h"

namespace ovix::platform {

/// Resources of a program on desktop Linux: the host's next to its executable; the SDK's in the first
/// of these directories that holds "OvixSdkResources.bundle":
///   - OVIX_SDK_DIR when set, taken as it is (the developer's explicit choice, even when it turns out
///     empty);
///   - the executable's directory (a game that ships the bundle beside itself);
///   - the data directory of the prefix the executable is installed in (`<exe dir>/../share/ovix`):
///     the library is static, so its code is in the game's executable, and a prefix moved as a whole
///     keeps this path;
///   - the library's own candidates, in order (where it was installed when it was configured).
/// When none has it, the executable's directory (and the SDK finds no images, as with a missing
/// bundle anywhere).
///
/// Threading: any thread; the directories are chosen once, at construction.
class ExecutableResourceBundle : public ResourceBundle {
  public:
    /// Candidates: where this build of the library installs its images.
    ExecutableResourceBundle();
    /// `libraryDirs`: where the library may keep its bundle, in order of preference.
    explicit ExecutableResourceBundle(const std::vector<std::filesystem::path>& libraryDirs);

    Bundle mainBundle() const override { return Bundle(main_); }
    Bundle codeBundle() const override { return Bundle(code_); }

    /// The SDK's code directory for a program in `programDir`, by the rules above.
    static std::filesystem::path sdkDirectory(const std::filesystem::path& programDir,
                                              const std::vector<std::filesystem::path>& libraryDirs);
    /// The running program's directory (the working directory when /proc is not readable).
    static std::filesystem::path programDirectory();

  private:
    std::filesystem::path main_;
    std::filesystem::path code_;
};

}  // namespace ovix::platform
