#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "ovix/kit/Button.h"
#include "ovix/kit/Label.h"
#include "ovix/kit/ScrollView.h"
#include "ovix/kit/StackView.h"
#include "ovix/kit/TextField.h"
#include "ovix/kit/TextFieldDelegate.h"
#include "ovix/kit/TextView.h"
#include "ovix/kit/TextViewDelegate.h"
#include "ovix/kit/View.h"

namespace ovix {

/// The support form: a vertically scrolling white page, kept between the safe area's top and bottom,
/// holding one centred column (300 to 600 wide, 20 below the top) with the title, the error-type field, three
/// text fields, the description, the attachment section and the send and close buttons.
///
/// The view decides nothing: each user action goes to its owner through `onClose`, `onSendReport`
/// and `onAttachTapped` (unset closures make the action a no-op). Owners that the closures refer back
/// to must be held weakly. The text fields outline themselves in blue while edited; the description
/// shows "Mô tả chi tiết" in light gray while empty, as ordinary text that a reader of `text()` sees.
/// Main thread only.
class SupportReportView : public kit::View, public kit::TextFieldDelegate, public kit::TextViewDelegate {
  public:
    static constexpr std::string_view descriptionPlaceholder = "Mô tả chi tiết";
    static constexpr double columnTop = 20;
    static constexpr double columnSideMargin = 20;
    static constexpr double columnMinWidth = 300;
    static constexpr double columnMaxWidth = 600;
    static constexpr double columnSpacing = 16;
    static constexpr double fieldHeight = 44;
    static constexpr double fieldTextInset = 12;
    static constexpr double descriptionMinHeight = 100;
    static constexpr double attachStripHeight = 120;
    static constexpr double buttonHeight = 44;

    static std::shared_ptr<SupportReportView> create(kit::Rect frame = {});
    explicit SupportReportView(kit::Rect frame);

    std::function<void()> onClose;
    std::function<void()> onSendReport;
    std::function<void()> onAttachTapped;

    const std::shared_ptr<kit::ScrollView>& scrollView() const { return scrollView_; }
    const std::shared_ptr<kit::StackView>& container() const { return container_; }
    const std::shared_ptr<kit::Label>& lblTitle() const { return lblTitle_; }
    const std::shared_ptr<kit::TextField>& txtTypeFalse() const { return txtTypeFalse_; }
    const std::shared_ptr<kit::TextField>& txtTitle() const { return txtTitle_; }
    const std::shared_ptr<kit::TextField>& txtServer() const { return txtServer_; }
    const std::shared_ptr<kit::TextField>& txtName() const { return txtName_; }
    const std::shared_ptr<kit::TextView>& txtDescription() const { return txtDescription_; }
    const std::shared_ptr<kit::StackView>& attachContainer() const { return attachContainer_; }
    const std::shared_ptr<kit::Label>& attachTitle() const { return attachTitle_; }
    const std::shared_ptr<kit::ScrollView>& attachScroll() const { return attachScroll_; }
    const std::shared_ptr<kit::StackView>& attachImages() const { return attachImages_; }
    const std::shared_ptr<kit::Button>& btnSend() const { return btnSend_; }
    const std::shared_ptr<kit::Button>& btnClose() const { return btnClose_; }

    /// Targets of the buttons and of the attachment section's tap: each calls its closure if set.
    void closeTapped();
    void handleAttachTap();
    void sendReport();

    /// Field outline: system blue while a text field is edited, light gray otherwise.
    void textFieldDidBeginEditing(kit::TextField& textField) override;
    void textFieldDidEndEditing(kit::TextField& textField) override;
    /// The description's placeholder: cleared (black text) when editing begins on it, put back
    /// when editing ends on an empty text.
    void textViewDidBeginEditing(kit::TextView& textView) override;
    void textViewDidEndEditing(kit::TextView& textView) override;

    std::string className() const override { return "SupportReportView"; }

  private:
    static std::shared_ptr<kit::TextField> makeField(std::string placeholder);
    static std::shared_ptr<kit::Button> makeButton(std::string title, kit::Color background);
    void setUpPage();
    void setUpColumn(const std::shared_ptr<kit::View>& content);
    void setUpFields();
    void setUpDescription();
    void setUpAttachments();
    std::shared_ptr<kit::StackView> makeButtonRow();

    std::shared_ptr<kit::ScrollView> scrollView_;
    std::shared_ptr<kit::StackView> container_;
    std::shared_ptr<kit::Label> lblTitle_;
    std::shared_ptr<kit::TextField> txtTypeFalse_;
    std::shared_ptr<kit::TextField> txtTitle_;
    std::shared_ptr<kit::TextField> txtServer_;
    std::shared_ptr<kit::TextField> txtName_;
    std::shared_ptr<kit::TextView> txtDescription_;
    std::shared_ptr<kit::StackView> attachContainer_;
    std::shared_ptr<kit::Label> attachTitle_;
    std::shared_ptr<kit::ScrollView> attachScroll_;
    std::shared_ptr<kit::StackView> attachImages_;
    std::shared_ptr<kit::Button> btnSend_;
    std::shared_ptr<kit::Button> btnClose_;
};

}  // namespace ovix
