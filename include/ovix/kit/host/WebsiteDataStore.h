#pragma once

#include <functional>
#include <set>

#include "ovix/Value.h"

namespace ovix::kit::host {

/// The kinds of data web pages leave behind.
enum class WebsiteDataType {
    Cookies,
    SessionStorage,
    LocalStorage,
    IndexedDBDatabases,
    WebSQLDatabases,
    DiskCache,
    MemoryCache,
};

/// Where web views keep their cookies, storage and caches.
///
/// Threading: main thread only; the completion runs later on the main thread, never inline. A store
/// outlives the removal it started: the completion runs even if the caller dropped its reference.
class WebsiteDataStore {
  public:
    virtual ~WebsiteDataStore() = default;

    /// Every type above, for wiping all of it.
    static std::set<WebsiteDataType> allWebsiteDataTypes() {
        return {WebsiteDataType::Cookies,         WebsiteDataType::SessionStorage,
                WebsiteDataType::LocalStorage,    WebsiteDataType::IndexedDBDatabases,
                WebsiteDataType::WebSQLDatabases, WebsiteDataType::DiskCache,
                WebsiteDataType::MemoryCache};
    }

    /// Removes data of `types` modified at or after `modifiedSince` (the epoch: all of it), then runs
    /// `completion`. A type the engine does not keep is simply absent. Pages already shown keep what
    /// they hold in memory; later loads see the removal.
    virtual void removeData(const std::set<WebsiteDataType>& types, Date modifiedSince,
                            std::function<void()> completion) = 0;
};

}  // namespace ovix::kit::host
