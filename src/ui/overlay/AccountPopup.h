#pragma once

#include <functional>
#include <memory>
#include <string>

#include "ovix/Value.h"
#include "ovix/kit/Button.h"
#include "ovix/kit/LayoutConstraint.h"
#include "ovix/kit/ScrollView.h"
#include "ovix/kit/StackView.h"
#include "ovix/kit/View.h"

namespace ovix {

/// The full-window account panel: a card with the heading "Tài khoản" and three rows (user name,
/// e-mail, phone), each value with a green "set" or red "missing" mark, and one close button.
///
/// It only renders the dictionary it is given (`updateInfo`): a row's value counts when it is a
/// non-empty string; anything else reads "Chưa cập nhật". Which close button shows follows the main
/// screen: the round top-right one in landscape (height < width), the wide "Đóng" at the card's
/// bottom otherwise; the popup re-checks on every device-orientation notification for as long as it
/// lives. Either button only calls `onClose`; the presenter removes the popup. Main thread only.
class AccountPopup : public kit::View {
  public:
    static constexpr const char* notSetText = "Chưa cập nhật";

    /// Built with an empty dictionary: every row reads "Chưa cập nhật".
    static std::shared_ptr<AccountPopup> create(kit::Rect frame);
    explicit AccountPopup(kit::Rect frame);

    /// Called by either close button; set by the presenter. Hold the presenter weakly.
    std::function<void()> onClose;

    /// Replaces the card's content with rows for `userInfo` ("Username", "Email", "PhoneNumber").
    void updateInfo(const Dictionary& userInfo);
    /// Shows the close button that suits the main screen's current shape.
    void updateCloseButtons();

    const std::shared_ptr<kit::ScrollView>& scrollView() const { return scrollView_; }
    const std::shared_ptr<kit::View>& container() const { return container_; }
    const std::shared_ptr<kit::Button>& closeButtonBottom() const { return closeButtonBottom_; }
    const std::shared_ptr<kit::Button>& closeButtonTop() const { return closeButtonTop_; }
    /// The card's stack: the heading, then one row per field.
    const std::shared_ptr<kit::StackView>& contentStack() const { return contentStack_; }

    std::string className() const override { return "AccountPopup"; }

  private:
    void buildFrame();
    void buildContent(const Dictionary& userInfo);
    static std::shared_ptr<kit::StackView> makeInfoRow(const std::string& title, const Value* value);
    void closeTapped();

    std::shared_ptr<kit::ScrollView> scrollView_;
    std::shared_ptr<kit::View> container_;
    std::shared_ptr<kit::Button> closeButtonBottom_;
    std::shared_ptr<kit::Button> closeButtonTop_;
    std::shared_ptr<kit::StackView> contentStack_;
    std::shared_ptr<kit::LayoutConstraint> bottomConstraint_;
    std::shared_ptr<kit::LayoutConstraint> topRightConstraint_;
};

}  // namespace ovix
