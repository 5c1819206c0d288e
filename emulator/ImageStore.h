#pragma once

#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace ovix::emulator {

/// Uploaded pictures, one file each under `<data dir>/images/`, named by a random id.
///
/// Threading: any thread. A file is written under a temporary name and renamed into place, so a
/// reader never sees half an image.
class ImageStore {
  public:
    /// Creates the directory if needed; throws std::filesystem::filesystem_error when it cannot.
    explicit ImageStore(std::filesystem::path directory);

    /// Stores `bytes`; returns the new id (32 lower-case hex digits), or nullopt when writing failed.
    std::optional<std::string> store(std::string_view bytes);
    /// The bytes stored under `id`; nullopt for an id not of the stored form or not stored.
    std::optional<std::string> load(std::string_view id) const;
    const std::filesystem::path& directory() const { return directory_; }

    static bool isId(std::string_view id);

  private:
    const std::filesystem::path directory_;
    std::mutex mutex_;  // guards the random generator only
};

}  // namespace ovix::emulator
