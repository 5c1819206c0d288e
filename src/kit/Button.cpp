#include "ovix/kit/Button.h"

#include "ovix/kit/TextMeasurer.h"

namespace ovix::kit {

std::shared_ptr<Button> Button::create(ButtonType type, Rect frame) {
    auto button = std::make_shared<Button>(type, frame);
    button->setUp();
    return button;
}

Button::Button(ButtonType type, Rect frame)
    : Control(frame), type_(type), titleLabel_(Label::create()), imageView_(ImageView::create()) {}

void Button::setUp() {
    titleLabel_->setFont(Font::systemFont(15));
    titleLabel_->setTextAlignment(TextAlignment::center);
    imageView_->setContentMode(ContentMode::scaleAspectFit);
    addSubview(imageView_);
    addSubview(titleLabel_);
    refresh();
}

void Button::setTitle(std::optional<std::string> title, ControlState state) {
    if (title) {
        titles_[state] = std::move(*title);
    } else {
        titles_.erase(state);
    }
    refresh();
}

std::optional<std::string> Button::title(ControlState state) const {
    return lookup(titles_, state);
}

void Button::setTitleColor(std::optional<Color> color, ControlState state) {
    if (color) {
        titleColors_[state] = *color;
    } else {
        titleColors_.erase(state);
    }
    refresh();
}

std::optional<Color> Button::titleColor(ControlState state) const {
    return lookup(titleColors_, state);
}

Color Button::currentTitleColor() const {
    if (auto color = titleColor(state())) {
        return *color;
    }
    return type_ == ButtonType::system ? tintColor() : Color::white();
}

void Button::setImage(std::shared_ptr<const Image> image, ControlState state) {
    if (image) {
        images_[state] = std::move(image);
    } else {
        images_.erase(state);
    }
    refresh();
}

std::shared_ptr<const Image> Button::image(ControlState state) const {
    return lookup(images_, state).value_or(nullptr);
}

void Button::setContentEdgeInsets(EdgeInsets insets) {
    contentInsets_ = insets;
    invalidateIntrinsicContentSize();
}

void Button::refresh() {
    std::string text = currentTitle().value_or("");
    bool sizeChanged = text != titleLabel_->text() || currentImage() != imageView_->image();
    titleLabel_->setText(text);
    titleLabel_->setHidden(text.empty());
    titleLabel_->setTextColor(currentTitleColor());
    imageView_->setImage(currentImage());
    imageView_->setHidden(!currentImage());
    if (sizeChanged) {
        invalidateIntrinsicContentSize();
    }
}

Size Button::intrinsicContentSize() const {
    auto image = currentImage();
    Size imageSize = image ? image->size() : Size{};
    Size titleSize = titleLabel_->intrinsicContentSize();
    return {imageSize.width + titleSize.width + contentInsets_.left + contentInsets_.right,
            std::max(imageSize.height, titleSize.height) + contentInsets_.top + contentInsets_.bottom};
}

void Button::layoutSubviews() {
    Rect content = contentInsets_.inset(bounds());
    auto image = currentImage();
    Size imageSize = image ? image->size() : Size{};
    // An image larger than the content area is scaled down into it.
    imageSize.width = std::min(imageSize.width, content.size.width);
    imageSize.height = std::min(imageSize.height, content.size.height);
    Size titleSize = titleLabel_->text().empty() ? Size{} : titleLabel_->intrinsicContentSize();
    titleSize.width = std::min(titleSize.width, std::max(0.0, content.size.width - imageSize.width));
    double x = content.origin.x + (content.size.width - imageSize.width - titleSize.width) / 2;
    double midY = content.origin.y + content.size.height / 2;
    imageView_->setFrame({x, midY - imageSize.height / 2, imageSize.width, imageSize.height});
    titleLabel_->setFrame(
        {x + imageSize.width, midY - titleSize.height / 2, titleSize.width, titleSize.height});
}

std::string Button::debugName() const {
    auto t = title();
    return t ? "Button(\"" + t->substr(0, 24) + "\")" : View::debugName();
}

}  // namespace ovix::kit
