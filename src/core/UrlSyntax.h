#pragma once

#include <cstddef>
#include <string_view>

namespace ovix {

/// The pieces of URL syntax that the SDK's URL checks share (ASCII only; no percent-decoding).
struct UrlSyntax {
    /// The position of the colon ending a well-formed scheme (a letter, then letters, digits, "+",
    /// "-" or "."), or npos when `text` does not start with one.
    static std::size_t schemeEnd(std::string_view text);
    /// Whether `text[i]` is "%" followed by two hexadecimal digits.
    static bool isEscapeAt(std::string_view text, std::size_t i);
    /// Unreserved characters, sub-delimiters and general delimiters, brackets included.
    static bool isUriCharacter(char c);
};

}  // namespace ovix
