#include "api/APIService.h"

#include <memory>

#include "api/APIRequest.h"
#include "ovix/platform/Platform.h"

namespace ovix {

namespace {

using platform::HttpRequest;
using platform::HttpResult;

bool isContinuation(unsigned char c) {
    return (c & 0xC0) == 0x80;
}

// Strict UTF-8: no overlong forms, no surrogates, nothing above U+10FFFF.
bool isUtf8(std::string_view text) {
    const auto* s = reinterpret_cast<const unsigned char*>(text.data());
    const std::size_t n = text.size();
    std::size_t i = 0;
    while (i < n) {
        const unsigned char c = s[i];
        if (c < 0x80) {
            ++i;
            continue;
        }
        std::size_t length = 0;
        unsigned char low = 0x80;
        unsigned char high = 0xBF;
        if (c >= 0xC2 && c <= 0xDF) {
            length = 2;
        } else if (c >= 0xE0 && c <= 0xEF) {
            length = 3;
            low = c == 0xE0 ? 0xA0 : 0x80;
            high = c == 0xED ? 0x9F : 0xBF;
        } else if (c >= 0xF0 && c <= 0xF4) {
            length = 4;
            low = c == 0xF0 ? 0x90 : 0x80;
            high = c == 0xF4 ? 0x8F : 0xBF;
        } else {
            return false;
        }
        if (n - i < length || s[i + 1] < low || s[i + 1] > high) {
            return false;
        }
        for (std::size_t k = 2; k < length; ++k) {
            if (!isContinuation(s[i + k])) {
                return false;
            }
        }
        i += length;
    }
    return true;
}

bool isSuccess(long status) {
    return status >= 200 && status <= 299;
}

// The member "Data" of a parsed envelope, which gives it up.
Value* dataMember(std::optional<Dictionary>& envelope) {
    if (!envelope) {
        return nullptr;
    }
    auto data = envelope->find("Data");
    return data == envelope->end() ? nullptr : &data->second;
}

std::optional<Dictionary> dataObject(std::optional<Dictionary>& envelope) {
    Value* data = dataMember(envelope);
    if (data == nullptr || data->asObject() == nullptr) {
        return std::nullopt;
    }
    return std::move(*data->asObject());
}

std::optional<std::vector<Dictionary>> dataItems(std::optional<Dictionary>& envelope) {
    Value* data = dataMember(envelope);
    if (data == nullptr || data->asArray() == nullptr) {
        return std::nullopt;
    }
    std::vector<Dictionary> items;
    items.reserve(data->asArray()->size());
    for (auto& element : *data->asArray()) {
        if (element.asObject() == nullptr) {
            return std::nullopt;
        }
        items.push_back(std::move(*element.asObject()));
    }
    return items;
}

// The decoded answer of an eligibility check, or nullopt with `why` saying what went wrong.
std::optional<UserEligibilityResponse> eligibilityAnswer(const HttpResult& result, std::string& why) {
    if (!result.response) {
        why = result.error.value_or("the request failed");
        return std::nullopt;
    }
    const auto& response = *result.response;
    if (!isSuccess(response.status)) {
        why = "the server answered with HTTP status " + std::to_string(response.status);
        return std::nullopt;
    }
    auto json = Value::fromJson(response.body);
    if (!json) {
        why = "the response is not valid JSON";
        return std::nullopt;
    }
    auto decoded = UserEligibilityResponse::decode(*json);
    if (!decoded) {
        why = "the response has no boolean \"eligible\"";
    }
    return decoded;
}

}  // namespace

// Completes with nil at once when there is no request to send, otherwise with what `extract` makes
// of the parsed envelope.
template <typename T, typename Extract>
void APIService::sendBuilt(std::optional<HttpRequest> request,
                           std::function<void(std::optional<T>)> completion, Extract extract) {
    if (!request) {
        completion(std::nullopt);
        return;
    }
    sendAndParse(std::move(*request),
                 [completion = std::move(completion), extract](std::optional<Dictionary> envelope) {
                     completion(extract(envelope));
                 });
}

void APIService::sendAndParse(HttpRequest request, DictionaryCompletion completion) {
    auto p = platform::current();
    request.maxResponseBytes = maxResponseBytes;
    p->http->send(std::move(request),
                  [console = p->console, completion = std::move(completion)](HttpResult result) {
                      if (!result.response) {
                          completion(std::nullopt);
                          return;
                      }
                      const auto& response = *result.response;
                      if (isUtf8(response.body)) {
                          console->printLine(response.body);
                      }
                      if (!isSuccess(response.status)) {
                          console->printLine("❌ HTTP error: " + std::to_string(response.status));
                          completion(std::nullopt);
                          return;
                      }
                      auto json = Value::fromJson(response.body);
                      if (!json || json->asObject() == nullptr) {
                          completion(std::nullopt);
                          return;
                      }
                      completion(std::move(*json->asObject()));
                  });
}

void APIService::getUserInfo(DictionaryCompletion completion) {
    sendBuilt(APIRequest::userInfo(), std::move(completion), &dataObject);
}

void APIService::loadNews(ItemsCompletion completion) {
    sendBuilt(APIRequest::newsFeed(), std::move(completion), &dataItems);
}

void APIService::checkEligibility(const std::string& productId, EligibilityCompletion completion) {
    auto p = platform::current();
    auto request = APIRequest::eligibility(productId);
    if (!request) {
        p->console->printLine("❌ API error: bad URL: the product id \"" + productId +
                              "\" does not make a valid URL");
        completion(std::nullopt);
        return;
    }
    request->maxResponseBytes = maxResponseBytes;
    p->http->send(std::move(*request),
                  [console = p->console, completion = std::move(completion)](HttpResult result) {
                      std::string why;
                      auto answer = eligibilityAnswer(result, why);
                      if (!answer) {
                          console->printLine("❌ API error: " + why);
                      }
                      completion(answer);
                  });
}

void APIService::uploadImage(const platform::RgbaImage& picture, DictionaryCompletion completion) {
    sendBuilt(APIRequest::imageUpload(picture), std::move(completion),
              [](std::optional<Dictionary>& envelope) { return std::move(envelope); });
}

}  // namespace ovix
