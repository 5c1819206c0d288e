#pragma once

#include <cstddef>
#include <string>
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
    /// The origin of an absolute URL with an authority, as "scheme://host:port": scheme and host
    /// lower-cased, user information dropped, the port written out (80 for http, 443 for https when
    /// none is given). "" when `url` has no scheme or no authority, or an http(s) URL no port.
    static std::string origin(std::string_view url);
};

}  // namespace ovix
