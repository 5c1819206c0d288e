#pragma once

#include <optional>

#include "ovix/Value.h"

namespace ovix {

/// The backend's answer to "may this player buy this product now?".
struct UserEligibilityResponse {
    bool eligible = false;

    /// Strict: `json` must be an object whose "eligible" member is a boolean (not a number, not a
    /// string). Other members are ignored. nullopt otherwise.
    static std::optional<UserEligibilityResponse> decode(const Value& json);
    /// {"eligible": <bool>}.
    Value encode() const;
};

}  // namespace ovix
