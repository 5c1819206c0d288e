#pragma once

#include <functional>
#include <memory>

#include "ovix/kit/Button.h"
#include "ovix/kit/ImageView.h"
#include "ovix/kit/Label.h"
#include "ovix/kit/StackView.h"
#include "ovix/kit/View.h"

namespace ovix {

/// The overlay's report tab: a "Báo cáo" title, the support hotline, a thank-you and help text, and
/// a red "Báo lỗi" button that only calls `onReport` (the panel closes itself and opens the support
/// form).
///
/// The hotline label takes touches but has no recogniser: tapping it does nothing. `didTapHotline`
/// dials the support number for a caller that wires it. The button (160 x 44) sits centred on a
/// 20-high holder 16 above the safe area's bottom, overhanging it on both sides; a second divider
/// is added without constraints and so never shows. Main thread only.
class PopupTabReport : public kit::View {
  public:
    static constexpr const char* titleText = "Báo cáo";
    static constexpr const char* hotlineText = "Hotline: 000 00000000";
    static constexpr const char* messageText =
        "Cảm ơn bạn đã sử dụng dịch vụ của Ovix.\n"
        "Trong quá trình trải nghiệm nếu gặp lỗi, bạn vui lòng gửi thông tin tại đây để được hỗ trợ "
        "nhanh nhất. \n"
        "Thời gian tiếp nhận và phản hồi là 24h. \n"
        "Hotline hỗ trợ: (000) 00000000";
    static constexpr const char* buttonTitle = "Báo lỗi";
    static constexpr const char* dialUrl = "tel://00000000000";
    static constexpr double spacing = 16.0;
    static constexpr double titleHeight = 60;
    static constexpr double hotlineBoxHeight = 48;
    static constexpr double phoneIconSide = 24;
    static constexpr double holderHeight = 20;
    static constexpr kit::Size buttonSize{160, 44};
    static constexpr kit::Color buttonColor = kit::Color::rgb255(211, 47, 47);

    static std::shared_ptr<PopupTabReport> create(kit::Rect frame = {});
    explicit PopupTabReport(kit::Rect frame);

    /// Called when "Báo lỗi" is tapped; nothing happens while unset.
    std::function<void()> onReport;

    /// The button's action.
    void reportTapped();
    /// Opens "tel://00000000000" when the application can open it (no options, no completion);
    /// otherwise nothing.
    void didTapHotline();

    const std::shared_ptr<kit::Label>& titleLabel() const { return titleLabel_; }
    const std::shared_ptr<kit::View>& divider() const { return divider_; }
    const std::shared_ptr<kit::StackView>& contentStack() const { return contentStack_; }
    const std::shared_ptr<kit::View>& hotlineBox() const { return hotlineBox_; }
    const std::shared_ptr<kit::ImageView>& phoneIcon() const { return phoneIcon_; }
    const std::shared_ptr<kit::Label>& hotlineLabel() const { return hotlineLabel_; }
    const std::shared_ptr<kit::Label>& messageLabel() const { return messageLabel_; }
    const std::shared_ptr<kit::View>& buttonHolder() const { return buttonHolder_; }
    const std::shared_ptr<kit::Button>& reportButton() const { return reportButton_; }
    const std::shared_ptr<kit::View>& hiddenDivider() const { return hiddenDivider_; }

    std::string className() const override { return "PopupTabReport"; }

  private:
    static std::shared_ptr<kit::Label> makeLabel(const char* text, kit::Font font, kit::Color color);
    static std::shared_ptr<kit::View> makeDivider();
    void setupLayout();
    void setupHotlineBox();
    void setupButton();

    std::shared_ptr<kit::Label> titleLabel_;
    std::shared_ptr<kit::View> divider_;
    std::shared_ptr<kit::StackView> contentStack_;
    std::shared_ptr<kit::View> hotlineBox_;
    std::shared_ptr<kit::ImageView> phoneIcon_;
    std::shared_ptr<kit::Label> hotlineLabel_;
    std::shared_ptr<kit::Label> messageLabel_;
    std::shared_ptr<kit::View> buttonHolder_;
    std::shared_ptr<kit::Button> reportButton_;
    std::shared_ptr<kit::View> hiddenDivider_;
};

}  // namespace ovix
