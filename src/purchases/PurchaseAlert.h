#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace ovix::kit {
class ViewController;
}

namespace ovix {

/// The alert a purchase shows when the backend refuses it or cannot be asked: the title
/// "Giao dịch thất bại", the reason, one "OK" button that only closes it.
class PurchaseAlert {
  public:
    static constexpr std::string_view title = "Giao dịch thất bại";
    static constexpr std::string_view notEligibleMessage = "Không đủ điều kiện để thực hiện giao dịch";
    static constexpr std::string_view failedMessage = "Có lỗi xảy ra vui lòng thử lại";

    /// From any thread: shows the alert with `message` on a later turn of the installed platform's
    /// main queue (never at once, even on the main thread).
    static void post(std::string message);
    /// Main thread: presents the alert (animated) from `presentingController()`; nothing when there is none.
    static void show(const std::string& message);
    /// Main thread: the root view controller of the first window of the application's first connected
    /// scene; null when there is no scene, the scene has no window or the window has no root.
    static std::shared_ptr<kit::ViewController> presentingController();
};

}  // namespace ovix
