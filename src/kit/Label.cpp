#include "ovix/kit/Label.h"

#include "ovix/kit/TextMeasurer.h"

namespace ovix::kit {

std::shared_ptr<Label> Label::create(std::string text) {
    return std::make_shared<Label>(std::move(text));
}

Label::Label(std::string text) : text_(std::move(text)) {
    setUserInteractionEnabled(false);
}

void Label::setText(std::string text) {
    if (text != text_) {
        text_ = std::move(text);
        invalidateIntrinsicContentSize();
    }
}

void Label::setFont(Font font) {
    if (font != font_) {
        font_ = font;
        invalidateIntrinsicContentSize();
    }
}

void Label::setNumberOfLines(int lines) {
    if (lines != numberOfLines_) {
        numberOfLines_ = lines < 0 ? 0 : lines;
        invalidateIntrinsicContentSize();
    }
}

void Label::setPreferredMaxLayoutWidth(double width) {
    if (width != preferredMaxLayoutWidth_) {
        preferredMaxLayoutWidth_ = width;
        invalidateIntrinsicContentSize();
    }
}

Size Label::measure(double wrapWidth) const {
    return TextMeasurer::current().measure(text_, font_, numberOfLines_ == 1 ? 0 : wrapWidth, numberOfLines_);
}

Size Label::intrinsicContentSize() const {
    double wrap = preferredMaxLayoutWidth_ > 0 ? preferredMaxLayoutWidth_ : bounds().size.width;
    return measure(wrap);
}

Size Label::intrinsicContentSizeForWidth(double width) const {
    return measure(preferredMaxLayoutWidth_ > 0 ? preferredMaxLayoutWidth_ : width);
}

Size Label::sizeThatFits(Size size) const {
    return measure(size.width);
}

void Label::boundsSizeDidChange(Size oldSize) {
    // A wrapping label's height depends on its width.
    if (numberOfLines_ != 1 && preferredMaxLayoutWidth_ <= 0 && oldSize.width != bounds().size.width) {
        invalidateIntrinsicContentSize();
    }
}

std::string Label::debugName() const {
    return "Label(\"" + text_.substr(0, 24) + "\")";
}

}  // namespace ovix::kit
