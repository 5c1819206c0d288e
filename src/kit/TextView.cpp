#include "ovix/kit/TextView.h"

#include <cmath>

#include "kit/TextEditor.h"
#include "kit/Utf8.h"
#include "ovix/kit/TextMeasurer.h"

namespace ovix::kit {

std::shared_ptr<TextView> TextView::create(Rect frame) {
    auto view = std::make_shared<TextView>(frame);
    view->setUpScrolling();
    return view;
}

TextView::TextView(Rect frame) : ScrollView(frame) {
    setBackgroundColor(Color::white());
}

void TextView::setText(std::string text) {
    if (text != text_) {
        text_ = std::move(text);
        invalidateIntrinsicContentSize();
    }
    selection_ = TextSelection::at(text_.size());
}

void TextView::setSelection(TextSelection selection) {
    selection_ = {utf8::boundaryAtOrBefore(text_, selection.anchor),
                  utf8::boundaryAtOrBefore(text_, selection.caret)};
}

void TextView::setFont(Font font) {
    font_ = font;
    invalidateIntrinsicContentSize();
}

void TextView::setTextContainerInset(EdgeInsets inset) {
    inset_ = inset;
    invalidateIntrinsicContentSize();
}

void TextView::setScrollEnabled(bool enabled) {
    ScrollView::setScrollEnabled(enabled);
    invalidateIntrinsicContentSize();
}

Size TextView::intrinsicContentSizeForWidth(double width) const {
    if (isScrollEnabled()) {
        return {noIntrinsicMetric, noIntrinsicMetric};
    }
    double wrap = width - inset_.left - inset_.right - 2 * linePadding;
    Size text = TextMeasurer::current().measure(text_, font_, wrap > 0 ? wrap : 0, 0);
    // An empty view, or one ending in a line feed, still shows a line for the caret.
    double lines = std::max(text.height, font_.lineHeight());
    if (!text_.empty() && text_.back() == '\n') {
        lines += font_.lineHeight();
    }
    return {noIntrinsicMetric, std::ceil(lines) + inset_.top + inset_.bottom};
}

void TextView::boundsSizeDidChange(Size oldSize) {
    if (!isScrollEnabled() && oldSize.width != bounds().size.width) {
        invalidateIntrinsicContentSize();
    }
}

bool TextView::becomeFirstResponder() {
    if (isFirstResponder()) {
        return true;
    }
    auto keep = self<TextView>();
    if (auto d = delegate(); d && !d->textViewShouldBeginEditing(*this)) {
        return false;
    }
    if (!ScrollView::becomeFirstResponder()) {
        return false;
    }
    editing_ = true;
    if (auto d = delegate()) {
        d->textViewDidBeginEditing(*this);
    }
    return true;
}

bool TextView::resignFirstResponder() {
    if (!isFirstResponder()) {
        return true;
    }
    auto keep = self<TextView>();
    ScrollView::resignFirstResponder();
    editing_ = false;
    if (auto d = delegate()) {
        d->textViewDidEndEditing(*this);
    }
    return true;
}

void TextView::replace(TextSelection range, std::string_view text) {
    if (auto d = delegate(); d && !d->shouldChangeText(*this, text)) {
        return;
    }
    text_.replace(range.start(), range.end() - range.start(), text);
    selection_ = TextSelection::at(range.start() + text.size());
    invalidateIntrinsicContentSize();
    if (auto d = delegate()) {
        d->textViewDidChange(*this);
    }
}

void TextView::insertText(std::string_view text) {
    if (editing_) {
        replace(selection_, text);
    }
}

void TextView::deleteBackward() {
    keyDown(Key::backspace, {});
}

bool TextView::keyDown(Key key, KeyModifiers modifiers) {
    if (!editing_ || key == Key::tab || key == Key::escape) {
        return false;
    }
    const TextEditor editor(text_, true);
    if (key == Key::enter) {
        replace(selection_, "\n");
    } else {
        editor.apply(selection_, key, modifiers, [this](TextSelection range) { replace(range, ""); });
    }
    return true;
}

void TextView::touchesEnded(const Touch& touch) {
    if (pointInside(touch.location(this))) {
        becomeFirstResponder();
    }
}

}  // namespace ovix::kit
