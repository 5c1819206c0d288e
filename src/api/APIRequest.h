#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "ovix/platform/HttpClient.h"
#include "ovix/platform/ImageCodec.h"

namespace ovix {

/// Builds the backend's requests, reading the base addresses from `OvixCore::shared()` and the token
/// and client id from the session store at the moment of the call.
///
/// Every request has a 60-second time-out. "ClientID" is left out entirely when the stored id is
/// empty or missing. A builder answers nullopt when its URL text is not a valid URL (see
/// `isValidUrl`); nothing is sent then. Safe from any thread.
class APIRequest {
  public:
    /// "avatar,frame,gender,username,address,dob": the user-info fields asked for, in this order.
    static constexpr std::string_view userInfoFields = "avatar,frame,gender,username,address,dob";
    /// The JPEG quality of uploaded pictures, on the codec's 0...1 scale.
    static constexpr double uploadJpegQuality = 0.8;

    /// GET accounts host "/auth-connect/api/v2.0/oauth2/auth/userinfo?fields=..." with "Content-Type",
    /// "Authorization: Bearer <token>" and "ClientID". nullopt as well when no token is stored.
    static std::optional<platform::HttpRequest> userInfo();
    /// GET graph host "/game/online/api/v2.0/client/all-news?clientId=<id>&isNews=1&isEvent=0&
    /// isTutorial=0&pageSize=100&pageIndex=1" with "Content-Type" and "ClientID"; no "Authorization".
    static std::optional<platform::HttpRequest> newsFeed();
    /// GET accounts host "/billing/check?productId=" + `productId` exactly as given (nothing is
    /// percent-encoded), with no header at all. An id holding a space, a control or non-ASCII
    /// character, a malformed "%" escape or another character a URL cannot carry makes the URL invalid:
    /// nullopt. An id holding "&", "=" or "?" stays a valid URL and reaches the server as further
    /// query text; one holding "#" is cut there, since a fragment never leaves the client.
    static std::optional<platform::HttpRequest> eligibility(std::string_view productId);
    /// POST graph host "/inside/image/api/v2.0/upload": one multipart part named "image" holding the
    /// picture as JPEG at quality 0.8, under a fresh "Boundary-<UUID>", with "Content-Type" and
    /// "ClientID" only. The JPEG is encoded straight into the body, the only buffer that holds it.
    /// nullopt when the picture cannot be encoded (nothing else is built then) or the URL is invalid.
    static std::optional<platform::HttpRequest> imageUpload(const platform::RgbaImage& picture);

    /// Whether `text` is an absolute URL we can send: a scheme, "//", a host, then only characters a
    /// URL may carry (unreserved, reserved, well-formed "%XX" escapes; brackets only around the host;
    /// at most one "#").
    static bool isValidUrl(std::string_view text);
};

}  // namespace ovix
