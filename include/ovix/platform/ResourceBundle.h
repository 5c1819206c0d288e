#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

namespace ovix::platform {

/// A directory of resources: files found by name and type, images by name.
class Bundle {
  public:
    explicit Bundle(std::filesystem::path directory) : directory_(std::move(directory)) {}

    /// The bundle at `directory`, or nullopt when it is not a readable directory.
    static std::optional<Bundle> open(const std::filesystem::path& directory);

    const std::filesystem::path& directory() const { return directory_; }
    /// `<name>.<type>` in the bundle (`<name>` alone when `type` is empty), if it is a regular file.
    std::optional<std::filesystem::path> pathForResource(std::string_view name, std::string_view type) const;
    /// An image by name, the PNG variant drawn for `scale` pixels per point when there is one
    /// (`<name>.png`, `<name>@2x.png`, `<name>@3x.png`), else the nearest scale (the larger on a tie,
    /// since shrinking stays crisp), else `<name>.jpg`. Nullopt when none is a regular file.
    std::optional<std::filesystem::path> imagePath(std::string_view name, double scale = 1) const;

  private:
    std::filesystem::path directory_;
};

/// Where the host application's and the SDK's own resources live.
/// Threading: any thread.
class ResourceBundle {
  public:
    virtual ~ResourceBundle() = default;
    /// The host application's own resources (looked at first for the push options file).
    virtual Bundle mainBundle() const = 0;
    /// The directory holding the SDK's code; the SDK's resource bundle "OvixSdkResources.bundle" is
    /// looked for inside it.
    virtual Bundle codeBundle() const = 0;
};

}  // namespace ovix::platform
