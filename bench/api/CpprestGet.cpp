#include "api/CpprestGet.h"

#include <cpprest/http_client.h>

namespace ovix::bench {

namespace http = web::http;

struct CpprestGet::State {
    http::client::http_client client;
    std::string pathAndQuery;
    std::vector<std::pair<std::string, std::string>> headers;

    State(const std::string& base, std::string path, std::vector<std::pair<std::string, std::string>> h)
        : client(utility::conversions::to_string_t(base)),
          pathAndQuery(std::move(path)),
          headers(std::move(h)) {}
};

CpprestGet::CpprestGet(const std::string& base, std::string pathAndQuery,
                       std::vector<std::pair<std::string, std::string>> headers)
    : state_(std::make_unique<State>(base, std::move(pathAndQuery), std::move(headers))) {}

CpprestGet::~CpprestGet() = default;

long CpprestGet::get(std::string& body) {
    // A request is sent once: each GET builds its own, as a caller of the library would.
    http::http_request request(http::methods::GET);
    request.set_request_uri(utility::conversions::to_string_t(state_->pathAndQuery));
    for (const auto& [name, value] : state_->headers) {
        request.headers().add(name, value);
    }
    return state_->client.request(request)
        .then([&body](http::http_response response) {
            return response.extract_utf8string(true).then(
                [&body, status = response.status_code()](std::string text) {
                    body = std::move(text);
                    return static_cast<long>(status);
                });
        })
        .get();
}

}  // namespace ovix::bench
