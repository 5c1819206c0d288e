#pragma once

#include "platform/unsupported/Unsupported.h"

namespace ovix::platform {

/// HTTP on a platform without a transport: every request fails with "unsupported".
class UnsupportedHttpClient : public HttpClient {
  public:
    void send(HttpRequest, Completion completion) override {
        unsupported::later([completion = std::move(completion)] {
            completion(HttpResult{std::nullopt, unsupported::message("HTTP")});
        });
    }
};

}  // namespace ovix::platform
