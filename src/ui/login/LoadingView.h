#pragma once

#include <memory>

#include "ovix/kit/ImageView.h"
#include "ovix/kit/ProgressView.h"
#include "ovix/kit/View.h"

namespace ovix {

/// The login screen's overlay while its first page loads: the SDK logo beside a thin red progress
/// bar, centred on the view's own centre. The view has no size of its own; its owner positions its
/// centre, shows and hides it, and drives `progressView`. A missing logo leaves the icon empty.
/// Main thread only.
class LoadingView : public kit::View {
  public:
    static constexpr double spacing = 16;
    static constexpr kit::Size iconSize{100, 100};
    static constexpr kit::Size progressSize{120, 8};

    static std::shared_ptr<LoadingView> create(kit::Rect frame = {});
    explicit LoadingView(kit::Rect frame);

    const std::shared_ptr<kit::ImageView>& iconView() const { return iconView_; }
    const std::shared_ptr<kit::ProgressView>& progressView() const { return progressView_; }

    std::string className() const override { return "LoadingView"; }

  private:
    static std::shared_ptr<kit::ImageView> makeIconView();
    static std::shared_ptr<kit::ProgressView> makeProgressView();
    void setupLayout();

    std::shared_ptr<kit::ImageView> iconView_;
    std::shared_ptr<kit::ProgressView> progressView_;
};

}  // namespace ovix
