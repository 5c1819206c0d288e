#include "emulator/BackendRoutes.h"

#include <httplib.h>
#include <openssl/rand.h>

#include <algorithm>
#include <charconv>

#include "emulator/LoginPage.h"

namespace ovix::emulator {

namespace {

using nlohmann::json;

void answer(httplib::Response& response, int status, const json& body) {
    response.status = status;
    response.set_content(body.dump(-1, ' ', false, json::error_handler_t::replace), "application/json");
}

void refuse(httplib::Response& response, int status, const std::string& message) {
    answer(response, status, {{"Message", message}});
}

std::string randomToken() {
    unsigned char random[20];
    if (RAND_bytes(random, sizeof random) != 1) {
        return {};
    }
    static constexpr char kHex[] = "0123456789abcdef";
    std::string token = "emu_";
    for (unsigned char byte : random) {
        token += kHex[byte >> 4];
        token += kHex[byte & 0xf];
    }
    return token;
}

int intParam(const httplib::Request& request, const char* name, int fallback, int low, int high) {
    const auto text = request.get_param_value(name);
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || error != std::errc{} || end != text.data() + text.size()) {
        return fallback;
    }
    return std::clamp(value, low, high);
}

bool isJpeg(const std::string& bytes) {
    return bytes.size() >= 4 && static_cast<unsigned char>(bytes[0]) == 0xFF &&
           static_cast<unsigned char>(bytes[1]) == 0xD8 && static_cast<unsigned char>(bytes[2]) == 0xFF &&
           static_cast<unsigned char>(bytes[bytes.size() - 2]) == 0xFF &&
           static_cast<unsigned char>(bytes[bytes.size() - 1]) == 0xD9;
}

}  // namespace

BackendRoutes::BackendRoutes(EmulatorConfig config, const std::filesystem::path& dataDirectory)
    : config_(std::move(config)), images_(dataDirectory / "images") {}

bool BackendRoutes::knownClient(const std::string& clientId) const {
    return !clientId.empty() && (config_.clients.empty() || config_.clients.contains(clientId));
}

const EmulatorConfig::Account* BackendRoutes::accountForToken(const std::string& token) const {
    if (token.empty()) {
        return nullptr;
    }
    for (const auto& account : config_.accounts) {
        if (!account.token.empty() && account.token == token) {
            return &account;
        }
    }
    std::lock_guard lock(mutex_);
    auto it = issuedTokens_.find(token);
    return it == issuedTokens_.end() ? nullptr : config_.findAccount(it->second);
}

void BackendRoutes::loginPage(const httplib::Request& request, httplib::Response& response) {
    const auto clientId = request.get_param_value("client_id");
    if (!knownClient(clientId)) {
        response.status = 400;
        response.set_content(
            LoginPage::errorPage(clientId.empty() ? "No client_id was given."
                                                  : "Unknown client_id \"" + clientId + "\"."),
            "text/html; charset=utf-8");
        return;
    }
    response.set_content(LoginPage::html(clientId), "text/html; charset=utf-8");
}

void BackendRoutes::signIn(const httplib::Request& request, httplib::Response& response) {
    const json body = json::parse(request.body, nullptr, false);
    if (!body.is_object() || !body.value("username", json()).is_string() ||
        !body.value("password", json()).is_string() || !body.value("client_id", json()).is_string()) {
        answer(response, 400, {{"message", "Expected {\"username\", \"password\", \"client_id\"}"}});
        return;
    }
    if (!knownClient(body["client_id"].get<std::string>())) {
        answer(response, 403, {{"message", "Ứng dụng không hợp lệ"}});
        return;
    }
    const auto* account = config_.findAccount(body["username"].get<std::string>());
    if (account == nullptr || account->password != body["password"].get<std::string>()) {
        answer(response, 401, {{"message", "Sai tên đăng nhập hoặc mật khẩu"}});
        return;
    }
    const auto token = randomToken();
    if (token.empty()) {
        answer(response, 500, {{"message", "No token could be made"}});
        return;
    }
    {
        std::lock_guard lock(mutex_);
        issuedTokens_[token] = account->username;
    }
    answer(response, 200, {{"token", token}, {"username", account->username}});
}

void BackendRoutes::deviceRecord(const httplib::Request& request, httplib::Response& response) {
    const auto clientId = request.get_param_value("client_id");
    json record = json::parse(request.body, nullptr, false);
    if (!knownClient(clientId) || !record.is_object()) {
        refuse(response, 400, "Expected a known client_id and a JSON object");
        return;
    }
    {
        std::lock_guard lock(mutex_);
        devices_[clientId] = std::move(record);
    }
    response.status = 204;
}

std::map<std::string, json> BackendRoutes::deviceRecords() const {
    std::lock_guard lock(mutex_);
    return devices_;
}

void BackendRoutes::userInfo(const httplib::Request& request, httplib::Response& response) {
    const auto authorization = request.get_header_value("Authorization");
    constexpr std::string_view bearer = "Bearer ";
    const auto* account =
        authorization.starts_with(bearer) ? accountForToken(authorization.substr(bearer.size())) : nullptr;
    if (account == nullptr) {
        refuse(response, 401, "Unauthorized");
        return;
    }
    if (request.has_header("ClientID") && !knownClient(request.get_header_value("ClientID"))) {
        refuse(response, 403, "Unknown ClientID");
        return;
    }
    json data = json::object();
    const auto fields = request.get_param_value("fields");
    for (const auto& [key, value] : account->profile.items()) {
        // Only the fields asked for, when a list is given.
        const bool wanted = fields.empty() || ("," + fields + ",").find("," + key + ",") != std::string::npos;
        if (wanted) {
            data[key] = value;
        }
    }
    answer(response, 200, {{"Data", data}, {"Message", "Success"}});
}

void BackendRoutes::eligibility(const httplib::Request& request, httplib::Response& response) {
    if (!request.has_param("productId")) {
        refuse(response, 400, "productId is missing");
        return;
    }
    const auto& rule = config_.ruleFor(request.get_param_value("productId"));
    switch (rule.kind) {
        case EmulatorConfig::Rule::Kind::Allow:
            answer(response, 200, {{"eligible", true}});
            return;
        case EmulatorConfig::Rule::Kind::Refuse:
            answer(response, 200, {{"eligible", false}});
            return;
        case EmulatorConfig::Rule::Kind::Status:
            refuse(response, rule.status, "Eligibility rule: status " + std::to_string(rule.status));
            return;
    }
}

void BackendRoutes::news(const httplib::Request& request, httplib::Response& response) {
    const int pageSize = intParam(request, "pageSize", 100, 1, 1000);
    const int pageIndex = intParam(request, "pageIndex", 1, 1, 1000000);
    const auto total = config_.newsItems.size();
    const auto first = std::min<std::size_t>(total, static_cast<std::size_t>(pageIndex - 1) * pageSize);
    const auto last = std::min<std::size_t>(total, first + static_cast<std::size_t>(pageSize));
    json page = json::array();
    for (auto i = first; i < last; ++i) {
        page.push_back(config_.newsItems[i]);
    }
    answer(response, 200, {{"Data", page}, {"Total", total}, {"Message", "Success"}});
}

std::string BackendRoutes::uploadProblem(const httplib::Request& request) {
    if (!request.is_multipart_form_data()) {
        return "expected a multipart/form-data body";
    }
    if (request.files.size() != 1) {
        return "expected exactly one part, got " + std::to_string(request.files.size());
    }
    const auto& part = request.files.begin()->second;
    if (part.name != "image" || part.filename != "image") {
        return "expected a part named \"image\" with file name \"image\"";
    }
    if (part.content_type != "image/jpeg") {
        return "expected Content-Type image/jpeg in the part, got \"" + part.content_type + "\"";
    }
    if (!isJpeg(part.content)) {
        return "the part is not JPEG data";
    }
    return {};
}

void BackendRoutes::upload(const httplib::Request& request, httplib::Response& response) {
    if (const auto problem = uploadProblem(request); !problem.empty()) {
        refuse(response, 400, problem);
        return;
    }
    const auto id = images_.store(request.files.begin()->second.content);
    if (!id) {
        refuse(response, 500, "The image could not be stored");
        return;
    }
    const auto url = imageBaseUrl_ + std::string(imagePathPrefix) + *id + ".jpg";
    answer(response, 200, {{"Data", {{"ImageUrl", url}}}, {"Message", "Success"}});
}

void BackendRoutes::image(const httplib::Request& request, httplib::Response& response) {
    const auto bytes = request.matches.size() > 1 ? images_.load(request.matches[1].str()) : std::nullopt;
    if (!bytes) {
        refuse(response, 404, "No such image");
        return;
    }
    response.set_content(*bytes, "image/jpeg");
}

}  // namespace ovix::emulator
