#pragma once

#include <string>
#include <string_view>

namespace ovix::emulator {

/// The emulator's own sign-in page, served at the authorisation path.
///
/// The page shows a form; it posts {"username", "password", "client_id"} as JSON to
/// `signInPath` and shows the answer's "message" on a refusal. On success it hands
/// {"data": <token>} to the app through `window.webkit.messageHandlers.OvixLoginSuccess`, or,
/// opened in a plain browser, shows the token instead. It defines `window.onReceiveDeviceInfo`,
/// which shows the record the SDK injects and posts it to `devicePath` for the emulator to keep.
class LoginPage {
  public:
    static constexpr std::string_view authorizationPath = "/auth-connect/api/v2.0/oauth2/auth";
    static constexpr std::string_view signInPath = "/auth-connect/api/v2.0/oauth2/auth/signin";
    static constexpr std::string_view devicePath = "/auth-connect/api/v2.0/oauth2/auth/device";
    /// The app's message channel for the token.
    static constexpr std::string_view messageHandlerName = "OvixLoginSuccess";

    /// The page for `clientId` (already checked to be a known client).
    static std::string html(std::string_view clientId);
    /// A page that says why the sign-in cannot start (an unknown or missing client).
    static std::string errorPage(std::string_view message);

    /// `text` with &, <, >, " and ' as character references.
    static std::string escapeHtml(std::string_view text);
    /// `text` as a JSON string literal that is safe inside a script element.
    static std::string scriptString(std::string_view text);
};

}  // namespace ovix::emulator
