#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "platform/cairo/KitRenderer.h"
#include "ui/overlay/AccountPopup.h"
#include "ui/overlay/OverlayTestSupport.h"
#include "ui/overlay/PopupTabEvents.h"

namespace ovix::test {
namespace {

// Pictures for a person to look at, not comparisons: each test only checks that its file was written.
class OverlaySnapshotTest : public OverlayTest {
  protected:
    void turn(bool landscape) {
        if (landscape) {
            h.application->rotate(kit::DeviceOrientation::landscapeLeft);
        }
    }
    void snap(const std::string& name) {
        window()->layoutIfNeeded();
        const auto dir = std::filesystem::path(OVIX_SNAPSHOT_DIR);
        std::filesystem::create_directories(dir);
        platform::gtk::KitRenderer renderer;
        EXPECT_TRUE(renderer.writePng(*window(), h.mainQueue->now(), 3, dir / (name + ".png")));
    }
};

TEST_F(OverlaySnapshotTest, AccountPopup) {
    for (bool landscape : {false, true}) {
        turn(landscape);
        auto popup = AccountPopup::create(window()->bounds());
        popup->updateInfo(
            {{"Username", Value("nguyenvana")}, {"Email", Value("")}, {"PhoneNumber", Value(84912)}});
        window()->addSubview(popup);
        snap(std::string("account-popup-") + (landscape ? "landscape" : "portrait"));
        popup->removeFromSuperview();
    }
}

TEST_F(OverlaySnapshotTest, EventsTab) {
    server.on(feedPath, LoopbackServer::Reply{200, R"({"Data":[
        {"Title":"Sự kiện nạp thẻ nhân đôi cuối tuần","NewsUrl":"https://a.vn/1","IsEvent":1,"CreatedAt":1700000000999},
        {"Title":"Giải đấu bang hội mùa 3 chính thức khởi tranh với tổng giải thưởng lớn nhất từ trước đến nay",
         "NewsUrl":"https://a.vn/2","IsEvent":1,"IsNews":1,"CreatedAt":1700100000000},
        {"Title":"Bảo trì máy chủ","NewsUrl":"https://a.vn/3","IsEvent":1,"CreatedAt":1700200000000}]})"});
    for (bool landscape : {false, true}) {
        turn(landscape);
        const auto lines = h.console->lines().size();
        auto tab = PopupTabEvents::create(window()->bounds());
        window()->addSubview(tab);
        ASSERT_TRUE(h.mainQueue->runUntil([&] { return h.console->lines().size() >= lines + 2; }));
        snap(std::string("events-tab-") + (landscape ? "landscape" : "portrait"));
        tab->removeFromSuperview();
    }
}

}  // namespace
}  // namespace ovix::test
