#pragma once

#include "ovix/platform/ResourceBundle.h"

namespace ovix::platform {

/// Resources next to the running program: the host's in the executable's directory, the SDK's code
/// directory there too unless OVIX_SDK_DIR names another.
class ExecutableResourceBundle : public ResourceBundle {
  public:
    ExecutableResourceBundle();
    Bundle mainBundle() const override { return Bundle(main_); }
    Bundle codeBundle() const override { return Bundle(code_); }

  private:
    std::filesystem::path main_;
    std::filesystem::path code_;
};

}  // namespace ovix::platform
