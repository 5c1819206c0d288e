#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace ovix::kit {

/// Posted on the main thread after the device turned (the screen's orientation has changed).
inline constexpr std::string_view deviceOrientationDidChangeNotification =
    "UIDeviceOrientationDidChangeNotification";

/// Named notifications within the process's UI, delivered synchronously on the posting (main)
/// thread in registration order.
///
/// An observer may be tied to an owner held weakly: once the owner is gone the observer is dropped
/// and never called, so a view that registers itself and never unregisters is safe.
class NotificationCenter {
  public:
    using Token = std::uint64_t;

    static NotificationCenter& defaultCenter();

    Token addObserver(std::string name, std::weak_ptr<const void> owner, std::function<void()> block);
    /// An observer with no owner: it lives until removed.
    Token addObserver(std::string name, std::function<void()> block);
    void removeObserver(Token token);
    void post(std::string_view name);
    /// Live observers of `name`.
    std::size_t observerCount(std::string_view name);

  private:
    struct Observer {
        Token token;
        std::string name;
        bool owned;
        std::weak_ptr<const void> owner;
        std::function<void()> block;
    };
    void prune();

    std::vector<Observer> observers_;
    Token next_ = 1;
};

}  // namespace ovix::kit
