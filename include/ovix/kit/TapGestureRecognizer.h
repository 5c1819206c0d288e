#pragma once

#include <functional>
#include <memory>

#include "ovix/kit/GestureRecognizer.h"

namespace ovix::kit {

/// Recognises a single tap: a touch lifted within `allowableMovement` points of where it began.
/// Reports `ended` once.
class TapGestureRecognizer : public GestureRecognizer {
  public:
    static constexpr double allowableMovement = 10;

    static std::shared_ptr<TapGestureRecognizer> create(
        std::function<void(TapGestureRecognizer&)> action = {});

    void touchMoved(const Touch& touch) override;
    void touchEnded(const Touch& touch) override;

    TapGestureRecognizer() = default;
};

}  // namespace ovix::kit
