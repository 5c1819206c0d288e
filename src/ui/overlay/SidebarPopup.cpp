#include "ui/overlay/SidebarPopup.h"

#include <cstdio>
#include <cstdlib>
#include <string>

#include "api/APIService.h"
#include "ovix/kit/Application.h"
#include "ovix/kit/Image.h"
#include "ovix/kit/ImageView.h"
#include "ovix/kit/StackView.h"
#include "ovix/kit/Window.h"
#include "ovix/platform/Platform.h"
#include "ui/overlay/AccountPopup.h"
#include "ui/overlay/PopupTabEvents.h"
#include "ui/overlay/PopupTabHome.h"
#include "ui/overlay/PopupTabReport.h"
#include "ui/overlay/UILabelContent.h"
#include "ui/support/SupportReportVC.h"

namespace ovix {

namespace {

// The panel cannot be built without its tab images or with a tab it has no button for.
[[noreturn]] void fatal(const std::string& message) {
    std::fprintf(stderr, "SidebarPopup: %s\n", message.c_str());
    std::fflush(stderr);
    std::abort();
}

void pinEdges(const std::shared_ptr<kit::View>& view, const std::shared_ptr<kit::View>& to) {
    kit::LayoutConstraint::activate({
        view->topAnchor().constraintEqualTo(to->topAnchor()),
        view->bottomAnchor().constraintEqualTo(to->bottomAnchor()),
        view->leadingAnchor().constraintEqualTo(to->leadingAnchor()),
        view->trailingAnchor().constraintEqualTo(to->trailingAnchor()),
    });
}

}  // namespace

std::shared_ptr<SidebarPopup> SidebarPopup::create(kit::Rect frame) {
    auto popup = std::make_shared<SidebarPopup>(frame);
    // Button actions and tab closures refer back to the panel weakly: build once it is owned.
    popup->setupLayout();
    return popup;
}

SidebarPopup::SidebarPopup(kit::Rect frame)
    : kit::View(frame), menuView_(kit::View::create()), contentView_(kit::View::create()) {}

void SidebarPopup::setupLayout() {
    setBackgroundColor(kit::Color::clear());

    menuView_->setBackgroundColor(menuColor);
    menuView_->setTranslatesAutoresizingMaskIntoConstraints(false);
    addSubview(menuView_);
    contentView_->setBackgroundColor(kit::Color::black());
    contentView_->setTranslatesAutoresizingMaskIntoConstraints(false);
    addSubview(contentView_);
    kit::LayoutConstraint::activate({
        menuView_->topAnchor().constraintEqualTo(topAnchor()),
        menuView_->bottomAnchor().constraintEqualTo(bottomAnchor()),
        menuView_->leadingAnchor().constraintEqualTo(leadingAnchor()),
        menuView_->widthAnchor().constraintEqualToConstant(menuWidth),
        contentView_->topAnchor().constraintEqualTo(topAnchor()),
        contentView_->bottomAnchor().constraintEqualTo(bottomAnchor()),
        contentView_->leadingAnchor().constraintEqualTo(menuView_->trailingAnchor()),
        contentView_->trailingAnchor().constraintEqualTo(trailingAnchor()),
    });

    auto stack = kit::StackView::create(makeMenuItems());
    stack->setAxis(kit::LayoutAxis::vertical);
    stack->setAlignment(kit::StackViewAlignment::center);
    stack->setDistribution(kit::StackViewDistribution::equalSpacing);
    stack->setTranslatesAutoresizingMaskIntoConstraints(false);
    menuView_->addSubview(stack);
    kit::LayoutConstraint::activate({
        stack->topAnchor().constraintEqualTo(menuView_->topAnchor(), menuPadding),
        stack->bottomAnchor().constraintEqualTo(menuView_->bottomAnchor(), -menuPadding),
        stack->leadingAnchor().constraintEqualTo(menuView_->leadingAnchor()),
        stack->trailingAnchor().constraintEqualTo(menuView_->trailingAnchor()),
    });

    showContent(selectedIndex);
    if (selectedIndex < 0 || selectedIndex >= static_cast<std::int64_t>(menuButtons_.size())) {
        fatal("selected tab " + std::to_string(selectedIndex) + " has no menu button");
    }
    highlight(*menuButtons_[static_cast<std::size_t>(selectedIndex)]);
}

std::vector<std::shared_ptr<kit::View>> SidebarPopup::makeMenuItems() {
    auto logo = kit::ImageView::create(kit::Image::named("ic_sdk_float"));
    logo->setContentMode(kit::ContentMode::scaleAspectFit);
    kit::LayoutConstraint::activate({
        logo->widthAnchor().constraintEqualToConstant(logoSide),
        logo->heightAnchor().constraintEqualToConstant(logoSide),
    });
    std::vector<std::shared_ptr<kit::View>> items{logo};

    std::weak_ptr<SidebarPopup> weak = self<SidebarPopup>();
    for (int index = 0; index < static_cast<int>(std::size(tabSymbols)); ++index) {
        if (!kit::Image::systemNamed(tabSymbols[index])) {
            fatal(std::string("tab symbol \"") + tabSymbols[index] + "\" is missing");
        }
        auto button = makeMenuButton(tabSymbols[index], kit::Color::white());
        button->setTag(index);
        button->addTarget(
            [weak](kit::Control& sender) {
                if (auto popup = weak.lock()) {
                    popup->menuButtonTapped(static_cast<kit::Button&>(sender));
                }
            },
            kit::ControlEvent::touchUpInside);
        menuButtons_.push_back(button);
        items.push_back(button);
    }
    items.push_back(kit::View::create());

    closeButton_ = makeMenuButton(closeSymbol, kit::Color::gray());
    closeButton_->addTarget(
        [weak] {
            if (auto popup = weak.lock()) {
                popup->closeTapped();
            }
        },
        kit::ControlEvent::touchUpInside);
    items.push_back(closeButton_);
    return items;
}

std::shared_ptr<kit::Button> SidebarPopup::makeMenuButton(const char* symbol,
                                                          std::optional<kit::Color> tint) {
    auto button = kit::Button::create(kit::ButtonType::system);
    if (auto image = kit::Image::systemNamed(symbol)) {
        button->setImage(image->withRenderingMode(kit::ImageRenderingMode::alwaysTemplate));
    }
    button->setTintColor(tint);
    kit::LayoutConstraint::activate({
        button->widthAnchor().constraintEqualToConstant(buttonSide),
        button->heightAnchor().constraintEqualToConstant(buttonSide),
    });
    return button;
}

void SidebarPopup::menuButtonTapped(kit::Button& sender) {
    if (sender.tag() == selectedIndex) {
        return;
    }
    highlight(sender);
    showContent(sender.tag());
    selectedIndex = sender.tag();
}

void SidebarPopup::closeTapped() {
    if (onClose) {
        onClose();
    }
}

void SidebarPopup::highlight(const kit::Button& selected) {
    for (const auto& button : menuButtons_) {
        button->setTintColor(button.get() == &selected ? kit::Color::systemBlue() : kit::Color::gray());
    }
}

void SidebarPopup::showContent(std::int64_t index) {
    // Copy: removal edits the list being walked.
    auto old = contentView_->subviews();
    for (const auto& view : old) {
        view->removeFromSuperview();
    }
    auto content = makeContent(index);
    content->setTranslatesAutoresizingMaskIntoConstraints(false);
    contentView_->addSubview(content);
    pinEdges(content, contentView_);
}

std::shared_ptr<kit::View> SidebarPopup::makeContent(std::int64_t index) {
    switch (index) {
        case 0: {
            auto home = PopupTabHome::create();
            home->onSelectAccount = accountAction();
            return home;
        }
        case 1:
            return PopupTabEvents::create();
        case 2: {
            auto report = PopupTabReport::create();
            report->onReport = reportAction();
            return report;
        }
        default:
            return UILabelContent::create(otherTabText);
    }
}

std::function<void()> SidebarPopup::accountAction() {
    std::weak_ptr<SidebarPopup> weak = self<SidebarPopup>();
    return [weak] {
        if (auto popup = weak.lock(); popup && popup->onClose) {
            popup->onClose();
        }
        APIService::getUserInfo([](std::optional<Dictionary> info) {
            platform::current()->mainQueue->async([info = std::move(info)] {
                if (!info) {
                    return;
                }
                auto windows = kit::Application::shared().windows();
                if (windows.empty()) {
                    return;
                }
                const auto& window = windows.front();
                auto account = AccountPopup::create(window->bounds());
                std::weak_ptr<AccountPopup> weakAccount = account;
                account->onClose = [weakAccount] {
                    if (auto shown = weakAccount.lock()) {
                        shown->removeFromSuperview();
                    }
                };
                account->updateInfo(*info);
                account->setAlpha(0);
                window->addSubview(account);
                kit::View::animate(accountFadeDuration, [account] { account->setAlpha(1); });
            });
        });
    };
}

std::function<void()> SidebarPopup::reportAction() {
    std::weak_ptr<SidebarPopup> weak = self<SidebarPopup>();
    return [weak] {
        if (auto popup = weak.lock(); popup && popup->onClose) {
            popup->onClose();
        }
        auto windows = kit::Application::shared().windows();
        if (windows.empty()) {
            return;
        }
        auto root = windows.front()->rootViewController();
        if (!root) {
            return;
        }
        auto form = SupportReportVC::create();
        form->setModalPresentationStyle(kit::ModalPresentationStyle::overFullScreen);
        form->setModalTransitionStyle(kit::ModalTransitionStyle::crossDissolve);
        root->present(form, true);
    };
}

}  // namespace ovix
