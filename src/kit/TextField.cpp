#include "ovix/kit/TextField.h"

#include "kit/TextEditor.h"
#include "kit/Utf8.h"
#include "ovix/kit/TextMeasurer.h"

namespace ovix::kit {

std::shared_ptr<TextField> TextField::create(Rect frame) {
    return std::make_shared<TextField>(frame);
}

TextField::TextField(Rect frame) : Control(frame) {}

void TextField::setText(std::string text) {
    if (text != text_) {
        text_ = std::move(text);
        invalidateIntrinsicContentSize();
    }
    selection_ = TextSelection::at(text_.size());
}

void TextField::setSelection(TextSelection selection) {
    selection_ = {utf8::boundaryAtOrBefore(text_, selection.anchor),
                  utf8::boundaryAtOrBefore(text_, selection.caret)};
}

void TextField::setPlaceholder(std::string placeholder) {
    placeholder_ = std::move(placeholder);
    invalidateIntrinsicContentSize();
}

void TextField::setFont(Font font) {
    font_ = font;
    invalidateIntrinsicContentSize();
}

void TextField::setLeftView(std::shared_ptr<View> view) {
    if (leftView_) {
        leftView_->removeFromSuperview();
    }
    leftView_ = std::move(view);
    if (leftView_) {
        addSubview(leftView_);
    }
    layoutSubviews();
    invalidateIntrinsicContentSize();
}

void TextField::setLeftViewMode(TextFieldViewMode mode) {
    leftViewMode_ = mode;
    layoutSubviews();
    invalidateIntrinsicContentSize();
}

bool TextField::isLeftViewShown() const {
    if (!leftView_) {
        return false;
    }
    switch (leftViewMode_) {
        case TextFieldViewMode::always:
            return true;
        case TextFieldViewMode::whileEditing:
            return editing_;
        case TextFieldViewMode::unlessEditing:
            return !editing_;
        case TextFieldViewMode::never:
            break;
    }
    return false;
}

Rect TextField::textRect() const {
    Rect b = bounds();
    double left = isLeftViewShown() ? leftView_->frame().maxX() : 0;
    return {b.origin.x + left, b.origin.y, std::max(0.0, b.size.width - left), b.size.height};
}

void TextField::layoutSubviews() {
    if (!leftView_) {
        return;
    }
    leftView_->setHidden(!isLeftViewShown());
    Size s = leftView_->bounds().size;
    leftView_->setFrame({0, (bounds().size.height - s.height) / 2, s.width, s.height});
}

Size TextField::intrinsicContentSize() const {
    Size text = TextMeasurer::current().measure(text_.empty() ? placeholder_ : text_, font_, 0, 1);
    double left = isLeftViewShown() ? leftView_->bounds().size.width : 0;
    return {text.width + left, std::max(font_.lineHeight(), text.height)};
}

bool TextField::becomeFirstResponder() {
    if (isFirstResponder()) {
        return true;
    }
    auto keep = self<TextField>();
    if (auto d = delegate(); d && !d->textFieldShouldBeginEditing(*this)) {
        return false;
    }
    if (!Control::becomeFirstResponder()) {
        return false;
    }
    editing_ = true;
    layoutSubviews();
    if (auto d = delegate()) {
        d->textFieldDidBeginEditing(*this);
    }
    sendActions(ControlEvent::editingDidBegin);
    return true;
}

bool TextField::resignFirstResponder() {
    if (!isFirstResponder()) {
        return true;
    }
    auto keep = self<TextField>();
    if (auto d = delegate(); d && !d->textFieldShouldEndEditing(*this)) {
        return false;
    }
    Control::resignFirstResponder();
    editing_ = false;
    layoutSubviews();
    if (auto d = delegate()) {
        d->textFieldDidEndEditing(*this);
    }
    sendActions(ControlEvent::editingDidEnd);
    return true;
}

void TextField::replace(TextSelection range, std::string_view text) {
    if (auto d = delegate(); d && !d->shouldChangeCharacters(*this, text)) {
        return;
    }
    text_.replace(range.start(), range.end() - range.start(), text);
    selection_ = TextSelection::at(range.start() + text.size());
    invalidateIntrinsicContentSize();
    sendActions(ControlEvent::editingChanged);
}

void TextField::returnKey() {
    auto keep = self<TextField>();
    auto d = delegate();
    if (!d || d->textFieldShouldReturn(*this)) {
        sendActions(ControlEvent::editingDidEndOnExit);
        resignFirstResponder();
    }
}

void TextField::insertText(std::string_view text) {
    if (!editing_) {
        return;
    }
    if (text == "\n") {
        returnKey();
        return;
    }
    replace(selection_, text);
}

void TextField::deleteBackward() {
    keyDown(Key::backspace, {});
}

bool TextField::keyDown(Key key, KeyModifiers modifiers) {
    if (!editing_ || key == Key::tab || key == Key::escape) {
        return false;
    }
    const TextEditor editor(text_, false);
    if (key == Key::enter) {
        returnKey();
    } else {
        editor.apply(selection_, key, modifiers, [this](TextSelection range) { replace(range, ""); });
    }
    return true;
}

void TextField::touchesEnded(const Touch& touch) {
    bool inside = pointInside(touch.location(this));
    Control::touchesEnded(touch);
    if (inside && isEnabled()) {
        becomeFirstResponder();
    }
}

}  // namespace ovix::kit
