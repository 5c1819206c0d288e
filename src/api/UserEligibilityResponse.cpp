#include "api/UserEligibilityResponse.h"

namespace ovix {

std::optional<UserEligibilityResponse> UserEligibilityResponse::decode(const Value& json) {
    const Value* member = json.find("eligible");
    if (member == nullptr) {
        return std::nullopt;
    }
    auto flag = member->asBool();
    if (!flag) {
        return std::nullopt;
    }
    return UserEligibilityResponse{*flag};
}

Value UserEligibilityResponse::encode() const {
    return Value(Dictionary{{"eligible", Value(eligible)}});
}

}  // namespace ovix
