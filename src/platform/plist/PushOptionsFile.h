#pragma once

#include <filesystem>
#include <optional>

#include "ovix/platform/PushClient.h"

namespace ovix::platform {

/// The push service's options file: a property list (XML or binary) whose root dictionary names the
/// app ("GOOGLE_APP_ID") and its project.
class PushOptionsFile {
  public:
    /// The options in the file at `path`; nullopt when the file is missing, unreadable, not a
    /// property list, not a dictionary, or has no non-empty "GOOGLE_APP_ID" string.
    static std::optional<PushOptions> read(const std::filesystem::path& path);
};

}  // namespace ovix::platform
