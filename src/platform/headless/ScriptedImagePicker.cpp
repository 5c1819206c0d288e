#include "ovix/testing/ScriptedImagePicker.h"

#include <utility>

namespace ovix::testing {

namespace {

/// A scripted pick as the caller sees it: its load answers on the main queue.
class ScriptedItem : public platform::ImagePickerItem {
  public:
    ScriptedItem(ScriptedPick pick, std::shared_ptr<platform::MainQueue> queue)
        : pick_(std::move(pick)), queue_(std::move(queue)) {}

    bool canLoadImage() const override { return pick_.kind != ScriptedPick::Kind::notAnImage; }

    void loadImage(LoadCompletion completion) override {
        platform::ImageLoadResult result;
        switch (pick_.kind) {
            case ScriptedPick::Kind::image:
                result.image = pick_.image;
                break;
            case ScriptedPick::Kind::notAnImage:
                result.error = "the item is not an image";
                break;
            case ScriptedPick::Kind::failingLoad:
                result.error = pick_.error;
                break;
        }
        queue_->async([completion = std::move(completion), result = std::move(result)]() mutable {
            completion(std::move(result));
        });
    }

  private:
    ScriptedPick pick_;
    std::shared_ptr<platform::MainQueue> queue_;
};

}  // namespace

ScriptedImagePicker::ScriptedImagePicker(std::shared_ptr<platform::MainQueue> queue)
    : queue_(std::move(queue)) {}

void ScriptedImagePicker::present(const platform::ImagePickerConfiguration& configuration, Finish finish) {
    {
        std::lock_guard lock(mutex_);
        if (!open_) {
            open_ = std::move(finish);
            configuration_ = configuration;
            ++presentCount_;
            return;
        }
    }
    queue_->async([finish = std::move(finish)] { finish({}); });
}

bool ScriptedImagePicker::isPresented() const {
    std::lock_guard lock(mutex_);
    return static_cast<bool>(open_);
}

int ScriptedImagePicker::presentCount() const {
    std::lock_guard lock(mutex_);
    return presentCount_;
}

std::optional<platform::ImagePickerConfiguration> ScriptedImagePicker::configuration() const {
    std::lock_guard lock(mutex_);
    return configuration_;
}

bool ScriptedImagePicker::pick(std::vector<ScriptedPick> picks) {
    Finish finish;
    std::size_t limit = 0;
    {
        std::lock_guard lock(mutex_);
        if (!open_) {
            return false;
        }
        finish = std::exchange(open_, nullptr);
        limit = configuration_->selectionLimit > 0 ? static_cast<std::size_t>(configuration_->selectionLimit)
                                                   : picks.size();
    }
    std::vector<std::shared_ptr<platform::ImagePickerItem>> items;
    for (std::size_t i = 0; i < picks.size() && i < limit; ++i) {
        items.push_back(std::make_shared<ScriptedItem>(std::move(picks[i]), queue_));
    }
    queue_->async([finish = std::move(finish), items = std::move(items)] { finish(items); });
    return true;
}

bool ScriptedImagePicker::cancel() {
    return pick({});
}

}  // namespace ovix::testing
