#include "api/APIRequest.h"

#include <array>

#include "core/Endpoints.h"
#include "core/SessionManager.h"
#include "core/UrlSyntax.h"
#include "ovix/platform/Platform.h"

namespace ovix {

namespace {

using platform::HttpRequest;

constexpr std::string_view kCrlf = "\r\n";

std::string clientId() {
    return SessionManager::readString(SessionManager::shared().clientIdKey);
}

// `UrlSyntax::isUriCharacter` for every byte, worked out once: the check runs on each character of
// every URL sent, and looking its punctuation up in a string costs a search per character.
bool isUriByte(char c) {
    static const auto table = [] {
        std::array<bool, 256> t{};
        for (int i = 0; i < 256; ++i) {
            t[static_cast<std::size_t>(i)] = UrlSyntax::isUriCharacter(static_cast<char>(i));
        }
        return t;
    }();
    return table[static_cast<unsigned char>(c)];
}

// The JSON conventions every request except the eligibility check carries.
HttpRequest jsonRequest(std::string url) {
    HttpRequest request;
    request.url = std::move(url);
    request.headers.reserve(3);  // with "Authorization" and "ClientID", the most any request has
    request.headers.emplace_back("Content-Type", "application/json");
    return request;
}

void addClientId(HttpRequest& request, const std::string& id) {
    if (!id.empty()) {
        request.headers.emplace_back("ClientID", id);
    }
}

}  // namespace

bool APIRequest::isValidUrl(std::string_view text) {
    const auto colon = UrlSyntax::schemeEnd(text);
    if (colon == std::string_view::npos) {
        return false;
    }
    if (text.substr(colon + 1, 2) != "//") {
        return false;
    }
    const auto authorityStart = colon + 3;
    const auto authorityEnd = std::min(text.find_first_of("/?#", authorityStart), text.size());
    const auto authority = text.substr(authorityStart, authorityEnd - authorityStart);
    const auto hostStart = authority.rfind('@') == std::string_view::npos ? 0 : authority.rfind('@') + 1;
    if (hostStart >= authority.size() || authority[hostStart] == ':') {
        return false;  // no host
    }
    bool inFragment = false;
    for (std::size_t i = authorityStart; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '%') {
            if (!UrlSyntax::isEscapeAt(text, i)) {
                return false;
            }
            i += 2;
        } else if (c == '[' || c == ']') {
            // Only an IP literal host is bracketed.
            if (i >= authorityEnd) {
                return false;
            }
        } else if (c == '#') {
            if (inFragment) {
                return false;
            }
            inFragment = true;
        } else if (!isUriByte(c)) {
            return false;
        }
    }
    return true;
}

std::optional<HttpRequest> APIRequest::userInfo() {
    const auto token = SessionManager::readString(SessionManager::shared().tokenKey);
    if (token.empty()) {
        return std::nullopt;
    }
    auto url = Endpoints::shared().urlString +
               "/auth-connect/api/v2.0/oauth2/auth/userinfo?fields=" + std::string(userInfoFields);
    if (!isValidUrl(url)) {
        return std::nullopt;
    }
    auto request = jsonRequest(std::move(url));
    request.headers.emplace_back("Authorization", "Bearer " + token);
    addClientId(request, clientId());
    return request;
}

std::optional<HttpRequest> APIRequest::newsFeed() {
    auto url = Endpoints::shared().urlGraph + "/game/online/api/v2.0/client/all-news?clientId=" + clientId() +
               "&isNews=1&isEvent=0&isTutorial=0&pageSize=100&pageIndex=1";
    if (!isValidUrl(url)) {
        return std::nullopt;
    }
    auto request = jsonRequest(std::move(url));
    addClientId(request, clientId());
    return request;
}

std::optional<HttpRequest> APIRequest::eligibility(std::string_view productId) {
    auto url = Endpoints::shared().urlString + "/billing/check?productId=" + std::string(productId);
    if (!isValidUrl(url)) {
        return std::nullopt;
    }
    HttpRequest request;
    request.url = std::move(url);
    return request;
}

std::optional<HttpRequest> APIRequest::imageUpload(const platform::RgbaImage& picture) {
    auto p = platform::current();
    const std::string boundary = "Boundary-" + p->crypto->randomUuid();
    const std::string head = "--" + boundary + std::string(kCrlf) +
                             "Content-Disposition: form-data; name=\"image\"; filename=\"image\"" +
                             std::string(kCrlf) + "Content-Type: image/jpeg" + std::string(kCrlf) +
                             std::string(kCrlf);
    const std::string tail = std::string(kCrlf) + "--" + boundary + "--" + std::string(kCrlf);

    HttpRequest request;
    // Room for any JPEG of this size, so that the body never moves while the encoder writes into it;
    // pages that stay unwritten cost address space only.
    const auto pixels = static_cast<std::size_t>(std::max(picture.width, 0)) *
                        static_cast<std::size_t>(std::max(picture.height, 0));
    request.body.reserve(head.size() + pixels * 3 + 4096 + tail.size());
    request.body += head;
    if (!p->imageCodec->appendJpeg(picture, uploadJpegQuality, request.body)) {
        return std::nullopt;
    }
    request.body += tail;

    request.url = Endpoints::shared().urlGraph + "/inside/image/api/v2.0/upload";
    if (!isValidUrl(request.url)) {
        return std::nullopt;
    }
    request.method = "POST";
    request.headers.emplace_back("Content-Type", "multipart/form-data; boundary=" + boundary);
    addClientId(request, clientId());
    return request;
}

}  // namespace ovix
