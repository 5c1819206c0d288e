#include "FilePicker.h"

#include <fstream>
#include <sstream>

#include "ovix/platform/MainQueue.h"
#include "ovix/platform/Platform.h"

namespace demo {

namespace {

class FileItem : public ovix::platform::ImagePickerItem {
  public:
    explicit FileItem(std::filesystem::path path) : path_(std::move(path)) {}
    bool canLoadImage() const override { return true; }
    void loadImage(LoadCompletion completion) override {
        auto platform = ovix::platform::current();
        platform->mainQueue->async([path = path_, codec = platform->imageCodec, completion] {
            std::ifstream file(path, std::ios::binary);
            std::stringstream bytes;
            bytes << file.rdbuf();
            auto image = file ? codec->decode(bytes.str()) : std::nullopt;
            if (image) {
                completion({std::move(image), std::nullopt});
            } else {
                completion({std::nullopt, "cannot read an image from " + path.string()});
            }
        });
    }

  private:
    std::filesystem::path path_;
};

}  // namespace

void FilePicker::present(const ovix::platform::ImagePickerConfiguration& configuration, Finish finish) {
    ++presentCount_;
    std::vector<std::shared_ptr<ovix::platform::ImagePickerItem>> items;
    for (const auto& file : files_) {
        if (configuration.selectionLimit > 0 &&
            static_cast<int>(items.size()) >= configuration.selectionLimit) {
            break;
        }
        items.push_back(std::make_shared<FileItem>(file));
    }
    ovix::platform::current()->mainQueue->async(
        [finish = std::move(finish), items = std::move(items)] { finish(items); });
}

}  // namespace demo
