#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "ovix/platform/SandboxStore.h"

namespace ovix::platform {

/// Reads the sandbox store's catalog format (see the README): products, per-product purchase
/// outcomes, entitlements with their dates, and the store's settings. Strict on purpose: an unknown
/// key, a value of the wrong kind or an impossible date is an error whose text names the place, so
/// that a typo in a catalog file is reported rather than silently meaning "none".
class SandboxCatalog {
  public:
    /// The catalog in JSON text; nullopt with `*error` set (when given) if the text is not one.
    static std::optional<SandboxStore::Catalog> parse(std::string_view json, std::string* error = nullptr);
    /// The catalog in a file; nullopt with `*error` set (when given) if it cannot be read or parsed,
    /// the parse error then prefixed with the file's path.
    static std::optional<SandboxStore::Catalog> load(const std::filesystem::path& file,
                                                     std::string* error = nullptr);
};

}  // namespace ovix::platform
