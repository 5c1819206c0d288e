#pragma once

#include <string>

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

}  // namespace ovix::kit::utf8
