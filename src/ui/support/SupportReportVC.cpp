#include "ui/support/SupportReportVC.h"

#include <algorithm>

#include "api/APIRequest.h"
#include "api/APIService.h"
#include "ovix/kit/Button.h"
#include "ovix/kit/NavigationController.h"
#include "ovix/platform/Platform.h"
#include "ui/support/MultiSelectVC.h"

namespace ovix {

namespace {

constexpr double thumbnailCornerRadius = 6;
constexpr double deleteButtonCornerRadius = 12;
constexpr double deleteButtonInset = 4;
constexpr double deleteButtonAlpha = 0.6;

std::string joined(const std::vector<std::string>& parts, std::string_view separator) {
    std::string out;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (i > 0) {
            out += separator;
        }
        out += parts[i];
    }
    return out;
}

/// `["a", "b"]`, `[]` when empty: the list as the report line shows it. Built by appending: g++ 12
/// at -O3 misreads `"[" + ... + "]"` here as an overlapping copy (GCC bug 105329).
std::string listText(const std::vector<std::string>& entries) {
    std::string out = "[";
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (i > 0) {
            out += ", ";
        }
        out += '"';
        out += entries[i];
        out += '"';
    }
    out += ']';
    return out;
}

/// The address inside an upload answer: the string "ImageUrl" of the object "Data".
const std::string* uploadedAddress(const std::optional<Dictionary>& response) {
    if (!response || response->empty()) {
        return nullptr;
    }
    const auto data = response->find("Data");
    const Dictionary* payload = data == response->end() ? nullptr : data->second.asObject();
    if (payload == nullptr) {
        return nullptr;
    }
    const auto url = payload->find("ImageUrl");
    return url == payload->end() ? nullptr : url->second.asString();
}

}  // namespace

SupportReportVC::SupportReportVC() : reportView_(SupportReportView::create()) {}

void SupportReportVC::loadView() {
    setView(reportView_);
}

void SupportReportVC::viewDidLoad() {
    reportView_->txtTypeFalse()->setDelegate(self<SupportReportVC>());
    const std::weak_ptr<SupportReportVC> weak = self<SupportReportVC>();
    reportView_->onAttachTapped = [weak] {
        if (auto screen = weak.lock()) {
            platform::current()->console->printLine("Attach tapped ✅");
            screen->openImagePicker();
        }
    };
    reportView_->onClose = [weak] {
        if (auto screen = weak.lock()) {
            platform::current()->console->printLine("Close tapped ❌");
            screen->dismiss(true);
        }
    };
    reportView_->onSendReport = [weak] {
        if (auto screen = weak.lock()) {
            screen->logReport();
            screen->dismiss(true);
        }
    };
}

bool SupportReportVC::textFieldShouldBeginEditing(kit::TextField& textField) {
    if (&textField == reportView_->txtTypeFalse().get()) {
        openTypeList();
        return false;
    }
    return true;
}

void SupportReportVC::openTypeList() {
    auto list = MultiSelectVC::create();
    list->items = items_;
    list->selected = selected_;
    const std::weak_ptr<SupportReportVC> weak = self<SupportReportVC>();
    // The list owns this closure: it refers back to the list weakly too.
    const std::weak_ptr<MultiSelectVC> weakList = list;
    list->onDone = [weak, weakList](std::vector<std::string> chosen) {
        auto screen = weak.lock();
        auto shown = weakList.lock();
        if (!screen || !shown) {
            return;
        }
        screen->reportView_->txtTypeFalse()->setText(joined(chosen, ", "));
        screen->selected_ = shown->selected;
    };
    auto navigation = kit::NavigationController::create(list);
    navigation->setModalPresentationStyle(kit::ModalPresentationStyle::formSheet);
    present(navigation, true);
}

void SupportReportVC::logReport() const {
    auto console = platform::current()->console;
    console->printLine("Type: " + reportView_->txtTypeFalse()->text());
    console->printLine("Title: " + reportView_->txtTitle()->text());
    console->printLine("Server: " + reportView_->txtServer()->text());
    console->printLine("Name: " + reportView_->txtName()->text());
    console->printLine("Description: " + reportView_->txtDescription()->text());
    console->printLine("Image URLs: " + listText(uploadedImageUrls_));
}

void SupportReportVC::openImagePicker() {
    const std::weak_ptr<SupportReportVC> weak = self<SupportReportVC>();
    platform::ImagePickerConfiguration configuration;
    configuration.selectionLimit = pickerSelectionLimit;
    configuration.filter = platform::ImagePickerFilter::images;
    platform::current()->imagePicker->present(
        configuration, [weak](std::vector<std::shared_ptr<platform::ImagePickerItem>> results) {
            if (auto screen = weak.lock()) {
                screen->pickerDidFinishPicking(results);
            }
        });
}

void SupportReportVC::pickerDidFinishPicking(
    const std::vector<std::shared_ptr<platform::ImagePickerItem>>& results) {
    for (const auto& item : results) {
        // Items that are no image (a video, a document) are passed over without a word.
        if (item && item->canLoadImage()) {
            loadPicked(item);
        }
    }
}

void SupportReportVC::loadPicked(const std::shared_ptr<platform::ImagePickerItem>& item) {
    const std::weak_ptr<SupportReportVC> weak = self<SupportReportVC>();
    item->loadImage([weak](platform::ImageLoadResult loaded) {
        // Any thread: only look whether the screen is still there; locking here could make this
        // thread the one that destroys it.
        if (weak.expired()) {
            return;
        }
        if (!loaded.image) {
            platform::current()->console->printLine("❌ Lỗi load image: " + loaded.error.value_or(""));
            return;
        }
        APIService::uploadImage(*loaded.image, [weak](std::optional<Dictionary> response) {
            platform::current()->mainQueue->async([weak, response = std::move(response)] {
                if (auto screen = weak.lock()) {
                    screen->uploadResponseArrived(response);
                }
            });
        });
    });
}

void SupportReportVC::uploadResponseArrived(const std::optional<Dictionary>& response) {
    const std::string* url = uploadedAddress(response);
    if (url == nullptr) {
        platform::current()->console->printLine("❌ Lỗi upload Image");
        return;
    }
    addThumbnail(*url);
}

void SupportReportVC::addThumbnail(const std::string& url) {
    if (!APIRequest::isValidUrl(url)) {
        return;
    }
    uploadedImageUrls_.push_back(url);
    auto thumbnail = kit::ImageView::create();
    thumbnail->setContentMode(kit::ContentMode::scaleAspectFill);
    thumbnail->setClipsToBounds(true);
    thumbnail->layer().setCornerRadius(thumbnailCornerRadius);
    thumbnail->setUserInteractionEnabled(true);
    thumbnail->setTranslatesAutoresizingMaskIntoConstraints(false);
    auto remove = makeDeleteButton(thumbnail, url);
    thumbnail->addSubview(remove);
    kit::LayoutConstraint::activate({
        thumbnail->widthAnchor().constraintEqualToConstant(thumbnailSize),
        thumbnail->heightAnchor().constraintEqualToConstant(thumbnailSize),
        remove->widthAnchor().constraintEqualToConstant(deleteButtonSize),
        remove->heightAnchor().constraintEqualToConstant(deleteButtonSize),
        remove->topAnchor().constraintEqualTo(thumbnail->topAnchor(), deleteButtonInset),
        remove->trailingAnchor().constraintEqualTo(thumbnail->trailingAnchor(), -deleteButtonInset),
    });
    reportView_->attachImages()->addArrangedSubview(thumbnail);
    fetchThumbnail(thumbnail, url);
}

std::shared_ptr<kit::Button> SupportReportVC::makeDeleteButton(
    const std::shared_ptr<kit::ImageView>& thumbnail, const std::string& url) {
    auto button = kit::Button::create(kit::ButtonType::custom);
    button->setTitle("✕");
    button->setTitleColor(kit::Color::white());
    button->setBackgroundColor(kit::Color::black().withAlphaComponent(deleteButtonAlpha));
    button->layer().setCornerRadius(deleteButtonCornerRadius);
    button->setTranslatesAutoresizingMaskIntoConstraints(false);
    const std::weak_ptr<kit::ImageView> weakThumbnail = thumbnail;
    const std::weak_ptr<SupportReportVC> weak = self<SupportReportVC>();
    button->addTarget(
        [weakThumbnail, weak, url] {
            if (auto shown = weakThumbnail.lock()) {
                shown->removeFromSuperview();
            }
            if (auto screen = weak.lock()) {
                screen->removeUploadedUrl(url);
            }
        },
        kit::ControlEvent::touchUpInside);
    return button;
}

void SupportReportVC::removeUploadedUrl(const std::string& url) {
    const auto it = std::find(uploadedImageUrls_.begin(), uploadedImageUrls_.end(), url);
    if (it != uploadedImageUrls_.end()) {
        uploadedImageUrls_.erase(it);
    }
}

void SupportReportVC::fetchThumbnail(const std::shared_ptr<kit::ImageView>& thumbnail,
                                     const std::string& url) {
    auto p = platform::current();
    platform::HttpRequest request;
    request.url = url;
    const std::weak_ptr<kit::ImageView> weakThumbnail = thumbnail;
    p->http->send(std::move(request),
                  [weakThumbnail, codec = p->imageCodec, queue = p->mainQueue](platform::HttpResult result) {
                      if (!result.response) {
                          return;  // the thumbnail stays blank; its address stays recorded
                      }
                      // Decoded here, on the transport's thread, so the main thread only swaps the picture
                      // in.
                      auto pixels = codec->decode(result.response->body);
                      if (!pixels) {
                          return;
                      }
                      auto image = kit::Image::fromPixels(std::move(*pixels));
                      queue->async([weakThumbnail, image = std::move(image)] {
                          if (auto shown = weakThumbnail.lock()) {
                              shown->setImage(image);
                          }
                      });
                  });
}

}  // namespace ovix
