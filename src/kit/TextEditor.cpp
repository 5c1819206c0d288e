#include "kit/TextEditor.h"

#include "kit/Utf8.h"

namespace ovix::kit {

namespace {

bool isSpace(char c) {
    return c == ' ' || c == '\n' || c == '\t';
}

}  // namespace

std::size_t TextEditor::lineStart(std::size_t at) const {
    const auto newline = at == 0 ? std::string_view::npos : text_.rfind('\n', at - 1);
    return newline == std::string_view::npos ? 0 : newline + 1;
}

std::size_t TextEditor::lineEnd(std::size_t at) const {
    const auto newline = text_.find('\n', at);
    return newline == std::string_view::npos ? text_.size() : newline;
}

std::size_t TextEditor::wordBefore(std::size_t at) const {
    while (at > 0 && isSpace(text_[at - 1])) {
        --at;
    }
    while (at > 0 && !isSpace(text_[at - 1])) {
        at = utf8::previousBoundary(text_, at);
    }
    return at;
}

std::size_t TextEditor::wordAfter(std::size_t at) const {
    while (at < text_.size() && isSpace(text_[at])) {
        ++at;
    }
    while (at < text_.size() && !isSpace(text_[at])) {
        at = utf8::nextBoundary(text_, at);
    }
    return at;
}

std::size_t TextEditor::verticalMove(std::size_t at, int lines) const {
    const std::size_t start = lineStart(at);
    std::size_t column = 0;
    for (std::size_t i = start; i < at; i = utf8::nextBoundary(text_, i)) {
        ++column;
    }
    std::size_t target = 0;
    if (lines < 0) {
        if (start == 0) {
            return 0;  // on the first line: to the text's start
        }
        target = lineStart(start - 1);
    } else {
        const std::size_t end = lineEnd(at);
        if (end == text_.size()) {
            return end;  // on the last line: to the text's end
        }
        target = end + 1;
    }
    const std::size_t targetEnd = lineEnd(target);
    for (; column > 0 && target < targetEnd; --column) {
        target = utf8::nextBoundary(text_, target);
    }
    return target;
}

std::optional<std::size_t> TextEditor::target(TextSelection s, Key key, KeyModifiers m) const {
    const std::size_t caret = s.caret;
    // Without shift, a selection collapses to the side the arrow points at.
    const bool collapse = !m.shift && !s.isEmpty();
    const bool whole = m.control || !multiline_;
    switch (key) {
        case Key::left:
            if (collapse) {
                return s.start();
            }
            return m.control ? wordBefore(caret) : utf8::previousBoundary(text_, caret);
        case Key::right:
            if (collapse) {
                return s.end();
            }
            return m.control ? wordAfter(caret) : utf8::nextBoundary(text_, caret);
        case Key::home:
            return whole ? 0 : lineStart(caret);
        case Key::end:
            return whole ? text_.size() : lineEnd(caret);
        case Key::up:
            return multiline_ ? verticalMove(collapse ? s.start() : caret, -1) : 0;
        case Key::down:
            return multiline_ ? verticalMove(collapse ? s.end() : caret, +1) : text_.size();
        default:
            return std::nullopt;
    }
}

std::optional<TextSelection> TextEditor::moved(TextSelection selection, Key key,
                                               KeyModifiers modifiers) const {
    const auto to = target(selection, key, modifiers);
    if (!to) {
        return std::nullopt;
    }
    return modifiers.shift ? TextSelection{selection.anchor, *to} : TextSelection::at(*to);
}

TextSelection TextEditor::erased(TextSelection s, Key key, KeyModifiers m) const {
    if (!s.isEmpty()) {
        return {s.start(), s.end()};
    }
    const std::size_t caret = s.caret;
    if (key == Key::backspace) {
        return {m.control ? wordBefore(caret) : utf8::previousBoundary(text_, caret), caret};
    }
    if (key == Key::deleteForward) {
        return {caret, m.control ? wordAfter(caret) : utf8::nextBoundary(text_, caret)};
    }
    return TextSelection::at(caret);
}

}  // namespace ovix::kit
