#pragma once

#include <memory>

#include "ovix/kit/host/UserContentController.h"

namespace ovix::kit::host {

/// How a web view is set up when it is made. Web views keep their data in the engine's default
/// website data store.
struct WebViewConfiguration {
    /// The message channels pages may post to; shared with whoever registered the handlers.
    std::shared_ptr<UserContentController> userContentController = UserContentController::create();
};

}  // namespace ovix::kit::host
