#include "emulator/LoginPage.h"

#include <nlohmann/json.hpp>

namespace ovix::emulator {

namespace {

constexpr std::string_view kStyle = R"CSS(
body { margin: 0; font-family: "DejaVu Sans", sans-serif; background: #0f1d3a; color: #1d2433; }
main { max-width: 420px; margin: 0 auto; padding: 32px 20px; }
.card { background: #fff; border-radius: 14px; padding: 24px; box-shadow: 0 6px 24px rgba(0,0,0,.25); }
h1 { font-size: 22px; margin: 0 0 4px; }
.sub { color: #6b7385; font-size: 13px; margin: 0 0 20px; }
label { display: block; font-size: 13px; margin: 12px 0 4px; }
input { width: 100%; box-sizing: border-box; padding: 10px 12px; font-size: 16px;
        border: 1px solid #c9cfdb; border-radius: 8px; }
button { width: 100%; margin-top: 20px; padding: 12px; font-size: 16px; border: 0; border-radius: 8px;
         background: #2f6df6; color: #fff; }
#error { color: #c62828; font-size: 14px; min-height: 18px; margin-top: 12px; }
#status { color: #2e7d32; font-size: 14px; margin-top: 12px; word-break: break-all; }
details { margin-top: 20px; color: #dfe6f5; font-size: 12px; }
pre { white-space: pre-wrap; word-break: break-all; background: #172a52; padding: 10px; border-radius: 8px; }
)CSS";

constexpr std::string_view kScript = R"JS(
(function () {
  var form = document.getElementById('signin');
  var error = document.getElementById('error');
  var status = document.getElementById('status');
  window.onReceiveDeviceInfo = function (record) {
    document.getElementById('device').textContent = JSON.stringify(record, null, 2);
    fetch(DEVICE_PATH + '?client_id=' + encodeURIComponent(CLIENT_ID), {
      method: 'POST', headers: {'Content-Type': 'application/json'}, body: JSON.stringify(record)
    }).catch(function () {});
  };
  form.addEventListener('submit', function (event) {
    event.preventDefault();
    error.textContent = '';
    status.textContent = '';
    var body = {username: form.username.value, password: form.password.value, client_id: CLIENT_ID};
    fetch(SIGNIN_PATH, {method: 'POST', headers: {'Content-Type': 'application/json'},
                        body: JSON.stringify(body)})
      .then(function (response) {
        return response.json().then(function (answer) { return {ok: response.ok, answer: answer}; });
      })
      .then(function (result) {
        if (!result.ok || typeof result.answer.token !== 'string') {
          error.textContent = result.answer.message || 'Sign-in failed';
          return;
        }
        var handlers = window.webkit && window.webkit.messageHandlers;
        if (handlers && handlers[HANDLER]) {
          status.textContent = 'Signed in';
          handlers[HANDLER].postMessage({data: result.answer.token});
        } else {
          status.textContent = 'Signed in outside the app; token: ' + result.answer.token;
        }
      })
      .catch(function () { error.textContent = 'The emulator did not answer'; });
  });
})();
)JS";

void replaceAll(std::string& text, std::string_view from, std::string_view to) {
    for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
}

}  // namespace

std::string LoginPage::escapeHtml(std::string_view text) {
    std::string out;
    for (char c : text) {
        switch (c) {
            case '&':
                out += "&amp;";
                break;
            case '<':
                out += "&lt;";
                break;
            case '>':
                out += "&gt;";
                break;
            case '"':
                out += "&quot;";
                break;
            case '\'':
                out += "&#39;";
                break;
            default:
                out += c;
        }
    }
    return out;
}

std::string LoginPage::scriptString(std::string_view text) {
    // Invalid UTF-8 is replaced rather than refused: the id comes from the address bar.
    std::string out =
        nlohmann::json(std::string(text)).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
    // A "</script>" inside the literal would end the element.
    replaceAll(out, "<", "\\u003c");
    return out;
}

std::string LoginPage::html(std::string_view clientId) {
    std::string page = R"HTML(<!DOCTYPE html>
<html lang="vi"><head><meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>Ovix emulator sign-in</title><style>)HTML";
    page += kStyle;
    page += R"HTML(</style></head><body><main>
<div class="card">
<h1>Ovix sign-in</h1>
<p class="sub">Local emulator &middot; client <b id="client">)HTML";
    page += escapeHtml(clientId);
    page += R"HTML(</b></p>
<form id="signin" autocomplete="off">
<label for="username">Username</label><input id="username" name="username" autocapitalize="none">
<label for="password">Password</label><input id="password" name="password" type="password">
<button id="submit" type="submit">Sign in</button>
<div id="error" role="alert"></div><div id="status"></div>
</form></div>
<details open><summary>Device record from the SDK</summary><pre id="device">Waiting for the device record...</pre></details>
</main><script>
var CLIENT_ID = )HTML";
    page += scriptString(clientId);
    page += ";\nvar SIGNIN_PATH = " + scriptString(signInPath) +
            ";\nvar DEVICE_PATH = " + scriptString(devicePath) +
            ";\nvar HANDLER = " + scriptString(messageHandlerName) + ";";
    page += kScript;
    page += "</script></body></html>\n";
    return page;
}

std::string LoginPage::errorPage(std::string_view message) {
    std::string page = R"HTML(<!DOCTYPE html>
<html lang="vi"><head><meta charset="utf-8"><title>Ovix emulator: cannot sign in</title><style>)HTML";
    page += kStyle;
    page += R"HTML(</style></head><body><main><div class="card"><h1>Cannot sign in</h1><p id="error">)HTML";
    page += escapeHtml(message);
    page += "</p></div></main></body></html>\n";
    return page;
}

}  // namespace ovix::emulator
