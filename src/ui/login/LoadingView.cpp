#include "ui/login/LoadingView.h"

#include "ovix/kit/StackView.h"

namespace ovix {

std::shared_ptr<LoadingView> LoadingView::create(kit::Rect frame) {
    auto view = std::make_shared<LoadingView>(frame);
    // Constraints refer to their views weakly: lay out once the view is owned.
    view->setupLayout();
    return view;
}

LoadingView::LoadingView(kit::Rect frame)
    : kit::View(frame), iconView_(makeIconView()), progressView_(makeProgressView()) {}

std::shared_ptr<kit::ImageView> LoadingView::makeIconView() {
    auto icon = kit::ImageView::create(kit::Image::named("ic_sdk_splash"));
    icon->setContentMode(kit::ContentMode::scaleAspectFit);
    icon->setTranslatesAutoresizingMaskIntoConstraints(false);
    return icon;
}

std::shared_ptr<kit::ProgressView> LoadingView::makeProgressView() {
    auto bar = kit::ProgressView::create(kit::ProgressViewStyle::defaultStyle);
    bar->setTrackTintColor(kit::Color::lightGray().withAlphaComponent(0.3));
    bar->setProgressTintColor(kit::Color::red());
    bar->layer().setCornerRadius(4);
    bar->setClipsToBounds(true);
    bar->setTranslatesAutoresizingMaskIntoConstraints(false);
    return bar;
}

void LoadingView::setupLayout() {
    auto stack = kit::StackView::create({iconView_, progressView_});
    stack->setAxis(kit::LayoutAxis::horizontal);
    stack->setSpacing(spacing);
    stack->setAlignment(kit::StackViewAlignment::center);
    stack->setTranslatesAutoresizingMaskIntoConstraints(false);
    addSubview(stack);

    kit::LayoutConstraint::activate({
        stack->centerXAnchor().constraintEqualTo(centerXAnchor()),
        stack->centerYAnchor().constraintEqualTo(centerYAnchor()),
        iconView_->widthAnchor().constraintEqualToConstant(iconSize.width),
        iconView_->heightAnchor().constraintEqualToConstant(iconSize.height),
        progressView_->widthAnchor().constraintEqualToConstant(progressSize.width),
        progressView_->heightAnchor().constraintEqualToConstant(progressSize.height),
    });
}

}  // namespace ovix
