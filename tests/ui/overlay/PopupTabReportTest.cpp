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

TEST_F(PopupTabReportTest, TheTextsAreExact) {
    auto tab = laidOut();
    EXPECT_EQ(tab->titleLabel()->text(), "Báo cáo");
    EXPECT_EQ(tab->hotlineLabel()->text(), "Hotline: 000 00000000");
    EXPECT_EQ(
        tab->messageLabel()->text(),
        "Cảm ơn bạn đã sử dụng dịch vụ của Ovix.\nTrong quá trình trải nghiệm nếu gặp lỗi, bạn vui lòng "
        "gửi thông tin tại đây để được hỗ trợ nhanh nhất. \nThời gian tiếp nhận và phản hồi là 24h. "
        "\nHotline hỗ trợ: (000) 00000000");
    EXPECT_EQ(tab->reportButton()->currentTitle(), "Báo lỗi");
    EXPECT_EQ(tab->messageLabel()->numberOfLines(), 0);
    // The hotline text takes touches (a tap on it lands on it, and does nothing: see below).
    const auto& label = *tab->hotlineLabel();
    EXPECT_EQ(window()->hitTest(label.convertTo(kit::Point{5, 5}, nullptr)), tab->hotlineLabel());
    EXPECT_TRUE(label.gestureRecognizers().empty());
}

TEST_F(PopupTabReportTest, TheButtonOverhangsItsHolderAndTheSecondDividerNeverShows) {
    auto tab = laidOut();
    const auto holder = tab->buttonHolder()->convertTo(tab->buttonHolder()->bounds(), tab.get());
    const auto button = tab->reportButton()->convertTo(tab->reportButton()->bounds(), tab.get());
    EXPECT_EQ(holder.height(), 20);
    // 16 above the safe area, which the window's 34-point home-indicator inset sets 34 above the end.
    EXPECT_NEAR(holder.maxY(), 400 - 34 - 16, 1e-9);
    EXPECT_EQ(holder.width(), 310);
    EXPECT_EQ(button.size, (kit::Size{160, 44}));
    EXPECT_NEAR(button.y(), holder.y() - 12, 1e-9);
    EXPECT_NEAR(button.midX(), 155, 1e-9);
    EXPECT_EQ(tab->reportButton()->backgroundColor(), kit::Color::rgb255(211, 47, 47));

    EXPECT_EQ(tab->divider()->frame(), (kit::Rect{0, 60, 310, 1}));
    EXPECT_EQ(tab->hiddenDivider()->superview(), tab);
    EXPECT_EQ(tab->hiddenDivider()->frame(), (kit::Rect{}));
    EXPECT_EQ(tab->hotlineBox()->frame().height(), 48);
    EXPECT_EQ(tab->phoneIcon()->frame().size, (kit::Size{24, 24}));
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
