#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ovix/Value.h"
#include "ovix/kit/ImageView.h"
#include "ovix/kit/TextFieldDelegate.h"
#include "ovix/kit/ViewController.h"
#include "ovix/platform/ImagePicker.h"
#include "ui/support/SupportReportView.h"

namespace ovix {

/// The support-ticket screen: its view is a `SupportReportView`.
///
/// - The error-type field never takes focus; a tap opens `MultiSelectVC` (in a navigation controller,
///   as a form sheet) over the current `items` and `selected`. Its "OK" writes the chosen titles,
///   joined by ", ", into the field and copies the flags back; "Hủy" changes nothing.
/// - The attachment section opens the platform's image picker (at most 5 images per opening, images
///   only). Every picked image is uploaded at once; each answer carrying "Data" → "ImageUrl" adds a
///   thumbnail and records the address in `uploadedImageUrls`, in the order the answers arrive.
///   Failures are printed only: "❌ Lỗi load image: <description>", "❌ Lỗi upload Image". An address
///   that is not a valid URL adds nothing. A thumbnail's picture is fetched with the platform's HTTP
///   client and decoded off the main thread; a failed fetch leaves it blank, its address recorded.
///   Its "✕" removes it and the first equal entry of `uploadedImageUrls`.
/// - "Gửi Hỗ trợ" prints the six fields (no validation, no request) and dismisses; "Đóng" dismisses.
///
/// Every completion holds the screen weakly and does nothing once it has gone. Main thread only,
/// except `handleUploadResponse`'s callers, which may be on any thread.
class SupportReportVC : public kit::ViewController, public kit::TextFieldDelegate {
  public:
    static constexpr int pickerSelectionLimit = 5;
    static constexpr double thumbnailSize = 100;
    static constexpr double deleteButtonSize = 24;

    static std::shared_ptr<SupportReportVC> create() { return std::make_shared<SupportReportVC>(); }
    SupportReportVC();

    const std::shared_ptr<SupportReportView>& reportView() const { return reportView_; }
    /// The error types, fixed.
    const std::vector<std::string>& items() const { return items_; }
    /// One flag per item; changed only by the error-type list's "OK".
    const std::vector<bool>& selected() const { return selected_; }
    /// Addresses of the uploaded images, in the order their uploads answered.
    const std::vector<std::string>& uploadedImageUrls() const { return uploadedImageUrls_; }

    /// Refuses focus to the error-type field (opening the list instead); other fields may edit.
    bool textFieldShouldBeginEditing(kit::TextField& textField) override;
    /// The picker's finish: starts loading every item that can give an image, in order.
    void pickerDidFinishPicking(const std::vector<std::shared_ptr<platform::ImagePickerItem>>& results);

    std::string className() const override { return "SupportReportVC"; }

  protected:
    void loadView() override;
    void viewDidLoad() override;

  private:
    void openTypeList();
    void openImagePicker();
    void logReport() const;
    void loadPicked(const std::shared_ptr<platform::ImagePickerItem>& item);
    void uploadResponseArrived(const std::optional<Dictionary>& response);
    void addThumbnail(const std::string& url);
    std::shared_ptr<kit::Button> makeDeleteButton(const std::shared_ptr<kit::ImageView>& thumbnail,
                                                  const std::string& url);
    void removeUploadedUrl(const std::string& url);
    static void fetchThumbnail(const std::shared_ptr<kit::ImageView>& thumbnail, const std::string& url);

    std::shared_ptr<SupportReportView> reportView_;
    const std::vector<std::string> items_{"UI Bug", "Crash", "Khác"};
    std::vector<bool> selected_{false, false, false};
    std::vector<std::string> uploadedImageUrls_;
};

}  // namespace ovix
