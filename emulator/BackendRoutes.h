#pragma once

#include <nlohmann/json.hpp>

#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <string>

#include "emulator/EmulatorConfig.h"
#include "emulator/ImageStore.h"

namespace httplib {
struct Request;
struct Response;
}  // namespace httplib

namespace ovix::emulator {

/// The publisher backend's answers, one member per route: what the SDK's requests and its login
/// screen receive. Faults, logging and the choice of server are the caller's (`EmulatorServer`).
///
/// Answers are JSON with the payload under "Data", except the sign-in page (HTML), its form's
/// endpoint ({"token"} or {"message"}) and the stored images (JPEG). Threading: the handlers run on
/// the servers' worker threads, any number at once; the issued tokens and the device records are
/// guarded by one mutex, taken only around their tables.
class BackendRoutes {
  public:
    /// `imageBaseUrl` is the graph host's address as the SDK reaches it: uploaded images are answered
    /// as `imageBaseUrl` + `imagePathPrefix` + id + ".jpg".
    BackendRoutes(EmulatorConfig config, const std::filesystem::path& dataDirectory);

    static constexpr std::string_view imagePathPrefix = "/inside/image/files/";

    void setImageBaseUrl(std::string url) { imageBaseUrl_ = std::move(url); }

    // Accounts host.
    void loginPage(const httplib::Request& request, httplib::Response& response);
    void signIn(const httplib::Request& request, httplib::Response& response);
    void deviceRecord(const httplib::Request& request, httplib::Response& response);
    void userInfo(const httplib::Request& request, httplib::Response& response);
    void eligibility(const httplib::Request& request, httplib::Response& response);
    // Graph host.
    void news(const httplib::Request& request, httplib::Response& response);
    void upload(const httplib::Request& request, httplib::Response& response);
    void image(const httplib::Request& request, httplib::Response& response);

    /// The last device record the login page posted for each client id.
    std::map<std::string, nlohmann::json> deviceRecords() const;
    const ImageStore& images() const { return images_; }

  private:
    bool knownClient(const std::string& clientId) const;
    /// The account a bearer token belongs to: a fixed token from the accounts file or one issued by
    /// a sign-in. nullptr when unknown.
    const EmulatorConfig::Account* accountForToken(const std::string& token) const;
    /// Why the upload is not one JPEG part named "image" with file name "image"; "" when it is.
    static std::string uploadProblem(const httplib::Request& request);

    const EmulatorConfig config_;
    ImageStore images_;
    std::string imageBaseUrl_;
    mutable std::mutex mutex_;
    std::map<std::string, std::string> issuedTokens_;  // token -> username
    std::map<std::string, nlohmann::json> devices_;    // client id -> last record
};

}  // namespace ovix::emulator
