#pragma once

#include <memory>
#include <string>

#include "ovix/kit/Label.h"
#include "ovix/kit/View.h"

namespace ovix {

/// The panel's content for a tab index it has no tab for: one white label of system font 20,
/// centred in the view at its own natural size. Made with a zero frame; its owner sizes it.
/// Main thread only.
class UILabelContent : public kit::View {
  public:
    static constexpr double fontSize = 20;

    static std::shared_ptr<UILabelContent> create(std::string text);
    UILabelContent();

    const std::shared_ptr<kit::Label>& label() const { return label_; }

    std::string className() const override { return "UILabelContent"; }

  private:
    void setupLayout(std::string text);

    std::shared_ptr<kit::Label> label_;
};

}  // namespace ovix
