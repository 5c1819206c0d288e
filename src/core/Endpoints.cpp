#include "core/Endpoints.h"

#include "ovix/platform/Platform.h"

namespace ovix {

const Endpoints& Endpoints::shared() {
    static const Endpoints instance;
    return instance;
}

Endpoints::Endpoints()
    : urlString(platform::current()->environment.accountsBaseUrl),
      urlGraph(platform::current()->environment.graphBaseUrl) {}

}  // namespace ovix
