#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "api/UserEligibilityResponse.h"
#include "ovix/Value.h"
#include "ovix/platform/HttpClient.h"
#include "ovix/platform/ImageCodec.h"

namespace ovix {

/// Sends the backend's requests and turns their responses into results. No state of its own; every
/// call goes through the installed platform's HTTP client and prints on its console.
///
/// Threading: call from any thread. Completions run exactly once, on the HTTP client's callback
/// thread (never on the main queue; hop there yourself before touching views), except where a call
/// says it completes at once on the calling thread. No failure is thrown or told apart: each ends in
/// nil, with at most a console line as its trace. Nothing is retried or cached.
class APIService {
  public:
    using DictionaryCompletion = std::function<void(std::optional<Dictionary>)>;
    using ItemsCompletion = std::function<void(std::optional<std::vector<Dictionary>>)>;
    using EligibilityCompletion = std::function<void(std::optional<UserEligibilityResponse>)>;

    /// The largest response body accepted (32 MiB); a larger one ends as a transport failure.
    static constexpr std::size_t maxResponseBytes = std::size_t{32} << 20;

    /// Sends `request` and parses a JSON object: the body is printed when it is UTF-8 text; a status
    /// outside 200-299 prints "❌ HTTP error: <status>". Completes with the top-level object, or nil
    /// for a transport failure, such a status, a body that is not JSON or JSON that is not an object.
    static void sendAndParse(platform::HttpRequest request, DictionaryCompletion completion);

    /// The signed-in player's profile: the object under "Data" of the user-info response, nil for
    /// anything else. With no stored token completes with nil at once, on the calling thread, and
    /// sends nothing.
    static void getUserInfo(DictionaryCompletion completion);

    /// The news feed: the array under "Data", in feed order, when each element is an object; nil
    /// for a failed request and for any other shape ("Data" missing, null, an object, or an array
    /// holding a non-object).
    static void loadNews(ItemsCompletion completion);

    /// Asks the accounts host whether the player may buy `productId` (see
    /// `APIRequest::eligibility` for how the id goes into the URL). Completes with the decoded
    /// answer, or nil after "❌ API error: <description>" was printed for an invalid URL, a transport
    /// failure, a status outside 200-299 or a body without a boolean "eligible". An invalid URL
    /// completes at once, on the calling thread, and sends nothing.
    static void checkEligibility(const std::string& productId, EligibilityCompletion completion);

    /// Uploads `picture` as JPEG (quality 0.8) to the graph host; completes with the whole response
    /// object (the address is the string "ImageUrl" inside the object "Data") or nil. When the picture
    /// cannot be encoded or the URL is invalid, completes with nil at once, on the calling thread,
    /// and sends nothing.
    static void uploadImage(const platform::RgbaImage& picture, DictionaryCompletion completion);

  private:
    template <typename T, typename Extract>
    static void sendBuilt(std::optional<platform::HttpRequest> request,
                          std::function<void(std::optional<T>)> completion, Extract extract);
};

}  // namespace ovix
