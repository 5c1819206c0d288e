#include <gtest/gtest.h>

#include "ui/overlay/PanelTestSupport.h"
#include "ui/overlay/PopupTabReport.h"

namespace ovix::test {
namespace {

class PopupTabReportTest : public PanelTest {
  protected:
    /// The report tab as the panel shows it in portrait: the content area of a 390 x 400 sheet at
    /// the bottom of the window (so the window's 34-point bottom safe area reaches into it).
    std::shared_ptr<PopupTabReport> laidOut() {
        auto tab = PopupTabReport::create({80, 444, 310, 400});
        window()->addSubview(tab);
        window()->layoutIfNeeded();
        return tab;
    }
};

TEST_F(PopupTabReportTest, TheButtonOverhangsItsHolderAndTheSecondDividerNeverShows) {
    auto tab = laidOut();
    const auto holder = tab->buttonHolder()->convertTo(tab->buttonHolder()->bounds(), tab.get());
    const auto button = tab->reportButton()->convertTo(tab->reportButton()->bounds(), tab.get());
    EXPECT_EQ(holder.height(), 20);
    // 16 above the safe area, which the window's 34-point home-indicator inset sets 34 above the end.
    EXPECT_NEAR(holder.maxY(), 400 - 34 - 16, 1e-9);
    EXPECT_NEAR(button.y(), holder.y() - 12, 1e-9);
    EXPECT_NEAR(button.midX(), 155, 1e-9);
    EXPECT_EQ(tab->hiddenDivider()->frame(), (kit::Rect{}));
}

TEST_F(PopupTabReportTest, OnlyTheButtonReportsAndOnlyDidTapHotlineDials) {
    struct Row {
        const char* name;
        bool onReportSet;
        bool telOpenable;
        void (*act)(PopupTabReport&, kit::Window&);
        int reports;
        std::vector<std::string> opened;
    };
    auto tapButton = [](PopupTabReport& tab, kit::Window&) {
        tab.reportButton()->sendActions(kit::ControlEvent::touchUpInside);
    };
    auto tapHotlineText = [](PopupTabReport& tab, kit::Window& window) {
        const auto& label = *tab.hotlineLabel();
        window.tap(
            label.convertTo(kit::Point{label.bounds().width() / 2, label.bounds().height() / 2}, nullptr));
    };
    auto dial = [](PopupTabReport& tab, kit::Window&) { tab.didTapHotline(); };
    // The hotline text takes touches, so a tap on it lands there and does nothing.
    const Row rows[] = {
        {"button with onReport", true, true, tapButton, 1, {}},
        {"button without onReport", false, true, tapButton, 0, {}},
        {"hotline text tapped", true, true, tapHotlineText, 0, {}},
        {"dial where tel: opens", true, true, dial, 0, {"tel://00000000000"}},
        {"dial where tel: does not open", true, false, dial, 0, {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        start();
        h.application->setOpenableSchemes(row.telOpenable ? std::vector<std::string>{"https", "tel"}
                                                          : std::vector<std::string>{"https"});
        auto tab = laidOut();
        int reports = 0;
        if (row.onReportSet) {
            tab->onReport = [&] { ++reports; };
        }
        row.act(*tab, *window());
        EXPECT_EQ(reports, row.reports);
        EXPECT_EQ(h.application->openedUrls(), row.opened);
    }
}

}  // namespace
}  // namespace ovix::test
