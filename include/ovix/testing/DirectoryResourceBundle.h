#pragma once

#include <filesystem>

#include "ovix/platform/ResourceBundle.h"

namespace ovix::testing {

/// Resources rooted at chosen directories: the host application's and the SDK code's.
class DirectoryResourceBundle : public platform::ResourceBundle {
  public:
    DirectoryResourceBundle(std::filesystem::path mainDirectory, std::filesystem::path codeDirectory)
        : main_(std::move(mainDirectory)), code_(std::move(codeDirectory)) {}

    platform::Bundle mainBundle() const override { return platform::Bundle(main_); }
    platform::Bundle codeBundle() const override { return platform::Bundle(code_); }

  private:
    std::filesystem::path main_;
    std::filesystem::path code_;
};

}  // namespace ovix::testing
