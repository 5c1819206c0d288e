#include "core/UrlSyntax.h"

namespace ovix {

namespace {

bool isAlpha(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
bool isHex(char c) {
    return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

}  // namespace

std::size_t UrlSyntax::schemeEnd(std::string_view text) {
    const auto colon = text.find(':');
    if (colon == std::string_view::npos || colon == 0 || !isAlpha(text[0])) {
        return std::string_view::npos;
    }
    for (char c : text.substr(1, colon - 1)) {
        if (!isAlpha(c) && !isDigit(c) && c != '+' && c != '-' && c != '.') {
            return std::string_view::npos;
        }
    }
    return colon;
}

bool UrlSyntax::isEscapeAt(std::string_view text, std::size_t i) {
    return i + 2 < text.size() && text[i] == '%' && isHex(text[i + 1]) && isHex(text[i + 2]);
}

bool UrlSyntax::isUriCharacter(char c) {
    return isAlpha(c) || isDigit(c) ||
           std::string_view("-._~:/?#[]@!$&'()*+,;=").find(c) != std::string_view::npos;
}

}  // namespace ovix
