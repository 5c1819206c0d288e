#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "ovix/kit/Button.h"
#include "ovix/kit/View.h"

namespace ovix {

/// The overlay's panel: an 80-point menu strip on the left (logo, three tab buttons, close button)
/// and a content area showing one tab: 0 home tiles, 1 events and news, 2 report; any other index a
/// plain "Khác" label. The tab last chosen (`selectedIndex`) is remembered for the process, so a new
/// panel opens on it; every switch builds the tab afresh.
///
/// Actions leave through `onClose` (the owner removes the panel). The home tab's account tile closes
/// the panel, fetches the user information and fades an `AccountPopup` in over the first window; the
/// report tab's button closes the panel and presents the support form over the first window's root
/// controller. Both hold the panel weakly and go on without it when it has gone.
///
/// Failures: a tab symbol missing from the symbol table, or a selected index outside the three tab
/// buttons, is a programming fault: a message on stderr, then the process aborts. A missing close
/// symbol leaves the close button blank. Main thread only.
class SidebarPopup : public kit::View {
  public:
    static constexpr double menuWidth = 80;
    static constexpr double menuPadding = 16;
    static constexpr double logoSide = 40;
    static constexpr double buttonSide = 48;
    static constexpr kit::Color menuColor = kit::Color::rgb255(47, 45, 45);
    static constexpr const char* tabSymbols[] = {"list.dash", "calendar", "exclamationmark.circle"};
    static constexpr const char* closeSymbol = "multiply.circle";
    static constexpr const char* otherTabText = "Khác";
    static constexpr double accountFadeDuration = 0.25;

    /// The tab last shown, shared by every panel for the life of the process; starts at 0.
    static inline std::int64_t selectedIndex = 0;

    static std::shared_ptr<SidebarPopup> create(kit::Rect frame);
    explicit SidebarPopup(kit::Rect frame);

    /// Called when the panel is to close (close button, account and report actions).
    std::function<void()> onClose;

    const std::shared_ptr<kit::View>& menuView() const { return menuView_; }
    const std::shared_ptr<kit::View>& contentView() const { return contentView_; }
    /// The three tab buttons in menu order; each one's tag is its index.
    const std::vector<std::shared_ptr<kit::Button>>& menuButtons() const { return menuButtons_; }
    const std::shared_ptr<kit::Button>& closeButton() const { return closeButton_; }

    /// A tab button's action: switches to the sender's tab unless it is already the selected one.
    void menuButtonTapped(kit::Button& sender);
    /// The close button's action: calls `onClose` if set.
    void closeTapped();

    std::string className() const override { return "SidebarPopup"; }

  private:
    void setupLayout();
    std::vector<std::shared_ptr<kit::View>> makeMenuItems();
    std::shared_ptr<kit::Button> makeMenuButton(const char* symbol, std::optional<kit::Color> tint);
    void showContent(std::int64_t index);
    std::shared_ptr<kit::View> makeContent(std::int64_t index);
    void highlight(const kit::Button& selected);
    std::function<void()> accountAction();
    std::function<void()> reportAction();

    std::shared_ptr<kit::View> menuView_;
    std::shared_ptr<kit::View> contentView_;
    std::vector<std::shared_ptr<kit::Button>> menuButtons_;
    std::shared_ptr<kit::Button> closeButton_;
};

}  // namespace ovix
