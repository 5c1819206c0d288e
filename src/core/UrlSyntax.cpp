#include "core/UrlSyntax.h"

#include <algorithm>

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

std::string UrlSyntax::origin(std::string_view url) {
    const std::size_t colon = schemeEnd(url);
    if (colon == std::string_view::npos || url.substr(colon + 1, 2) != "//") {
        return {};
    }
    auto lower = [](std::string_view text) {
        std::string out(text);
        for (char& c : out) {
            if (c >= 'A' && c <= 'Z') {
                c = static_cast<char>(c - 'A' + 'a');
            }
        }
        return out;
    };
    const std::string scheme = lower(url.substr(0, colon));
    std::string_view authority = url.substr(colon + 3);
    authority = authority.substr(0, authority.find_first_of("/?#"));
    if (const auto at = authority.rfind('@'); at != std::string_view::npos) {
        authority.remove_prefix(at + 1);
    }
    // The port follows the last colon that is not inside an IPv6 literal's brackets.
    const auto close = authority.rfind(']');
    auto portColon = authority.rfind(':');
    if (portColon != std::string_view::npos && close != std::string_view::npos && portColon < close) {
        portColon = std::string_view::npos;
    }
    std::string_view host = authority.substr(0, portColon);
    std::string port(portColon == std::string_view::npos ? "" : authority.substr(portColon + 1));
    if (port.empty()) {
        port = scheme == "https" ? "443" : scheme == "http" ? "80" : "";
    }
    if (host.empty() || port.empty()) {
        return {};
    }
    for (char c : port) {
        if (!isDigit(c)) {
            return {};
        }
    }
    port.erase(0, std::min(port.find_first_not_of('0'), port.size() - 1));
    return scheme + "://" + lower(host) + ":" + port;
}

}  // namespace ovix
