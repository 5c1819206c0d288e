#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace ovix::kit::utf8 {

/// Removes the last character (a whole UTF-8 sequence) of `text`; nothing when empty.
inline void popBack(std::string& text) {
    while (!text.empty()) {
        unsigned char c = static_cast<unsigned char>(text.back());
        text.pop_back();
        if ((c & 0xC0) != 0x80) {
            break;  // reached the lead byte
        }
    }
}

inline bool isContinuation(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

/// The code point starting at `at` (a lead byte); malformed bytes read as themselves.
inline char32_t decodeAt(std::string_view text, std::size_t at) {
    const auto lead = static_cast<unsigned char>(text[at]);
    const int extra = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC0 ? 1 : 0;
    char32_t point = extra == 0 ? lead : lead & (0x3F >> extra);
    for (int i = 1; i <= extra && at + i < text.size() && isContinuation(text[at + i]); ++i) {
        point = (point << 6) | (static_cast<unsigned char>(text[at + i]) & 0x3F);
    }
    return point;
}

/// Combining marks ride on the character before them: Vietnamese typed decomposed ("o" + U+0302 +
/// U+0303) is one character to the caret.
inline bool isCombiningMark(char32_t point) {
    return (point >= 0x0300 && point <= 0x036F) || (point >= 0x1AB0 && point <= 0x1AFF) ||
           (point >= 0x1DC0 && point <= 0x1DFF) || (point >= 0x20D0 && point <= 0x20FF) ||
           (point >= 0xFE20 && point <= 0xFE2F);
}

/// The start of the code point holding byte `at` (at most the text's size).
inline std::size_t codePointStart(std::string_view text, std::size_t at) {
    at = std::min(at, text.size());
    while (at > 0 && at < text.size() && isContinuation(text[at])) {
        --at;
    }
    return at;
}

/// The character boundary after `at` (a boundary): past one code point and its combining marks.
inline std::size_t nextBoundary(std::string_view text, std::size_t at) {
    if (at >= text.size()) {
        return text.size();
    }
    do {
        ++at;
        while (at < text.size() && isContinuation(text[at])) {
            ++at;
        }
    } while (at < text.size() && isCombiningMark(decodeAt(text, at)));
    return at;
}

/// The character boundary before `at` (a boundary).
inline std::size_t previousBoundary(std::string_view text, std::size_t at) {
    while (at > 0) {
        at = codePointStart(text, at - 1);
        if (at == 0 || !isCombiningMark(decodeAt(text, at))) {
            break;
        }
    }
    return at;
}

/// `at` moved back onto the nearest character boundary (clamped to the text).
inline std::size_t boundaryAtOrBefore(std::string_view text, std::size_t at) {
    at = codePointStart(text, at);
    while (at > 0 && at < text.size() && isCombiningMark(decodeAt(text, at))) {
        at = codePointStart(text, at - 1);
    }
    return at;
}

/// Code points in `text` (what a secure field shows one bullet for).
inline std::size_t countCodePoints(std::string_view text) {
    std::size_t count = 0;
    for (char c : text) {
        count += isContinuation(c) ? 0 : 1;
    }
    return count;
}

}  // namespace ovix::kit::utf8
