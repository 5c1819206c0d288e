#include <gtest/gtest.h>

#include "ovix/kit/NavigationController.h"
#include "ui/support/MultiSelectVC.h"
#include "ui/support/SupportTestSupport.h"

namespace ovix::test {
namespace {

class SupportReportVCTest : public SupportFormTest {
  protected:
    /// The console without the response bodies the HTTP layer prints.
    std::vector<std::string> lines() const {
        auto all = h.console->lines();
        std::erase_if(all, [](const std::string& line) { return line.starts_with("{"); });
        return all;
    }
    /// Replaces the presented form with a new one.
    void freshForm() {
        if (root->presentedViewController()) {
            root->dismiss(false);
        }
        form = SupportReportVC::create();
        root->present(form, false);
        h.mainQueue->runUntilIdle();
        window()->layoutIfNeeded();
        h.console->clear();
    }
};

TEST_F(SupportReportVCTest, SendPrintsTheSixFieldsAsTheyStandAndCloses) {
    struct Case {
        const char* name;
        std::string title, server, name_, description;  // typed; empty leaves the field untouched
        std::vector<std::string> expected;
    };
    const std::vector<Case> cases{
        {"untouched form: the description's placeholder is read as its text",
         "",
         "",
         "",
         "",
         {"Type: ", "Title: ", "Server: ", "Name: ", "Description: Mô tả chi tiết", "Image URLs: []"}},
        {"typed fields, the placeholder replaced by the player's words",
         "Mất đồ",
         "S1",
         "Rồng Đỏ",
         "Túi đồ trống",
         {"Type: ", "Title: Mất đồ", "Server: S1", "Name: Rồng Đỏ", "Description: Túi đồ trống",
          "Image URLs: []"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        freshForm();
        const std::vector<std::pair<std::shared_ptr<kit::View>, std::string>> typing{
            {formView().txtTitle(), c.title},
            {formView().txtServer(), c.server},
            {formView().txtName(), c.name_},
            {formView().txtDescription(), c.description}};
        for (const auto& [field, text] : typing) {
            if (!text.empty()) {
                tapCentre(*field);
                window()->insertText(text);
            }
        }
        tapCentre(*formView().btnSend());
        EXPECT_EQ(lines(), c.expected);
        EXPECT_EQ(root->presentedViewController(), nullptr) << "the form stays after sending";
        h.mainQueue->advance(1);
    }
}

TEST_F(SupportReportVCTest, TheTypeFieldOpensTheListAndNeverEdits) {
    tapCentre(*formView().txtTypeFalse());

    EXPECT_FALSE(formView().txtTypeFalse()->isEditing());
    EXPECT_EQ(window()->firstResponder(), nullptr);
    EXPECT_EQ(formView().txtTypeFalse()->layer().borderColor(), kit::Color::lightGray());
    auto navigation = std::dynamic_pointer_cast<kit::NavigationController>(form->presentedViewController());
    ASSERT_NE(navigation, nullptr);
    EXPECT_EQ(navigation->modalPresentationStyle(), kit::ModalPresentationStyle::formSheet);
    auto list = std::dynamic_pointer_cast<MultiSelectVC>(navigation->topViewController());
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->items, form->items());
    EXPECT_EQ(list->selected, form->selected());

    // Any other field takes focus and is outlined in blue until it gives it up.
    list->cancelTapped();
    h.mainQueue->advance(1);
    tapCentre(*formView().txtServer());
    EXPECT_EQ(window()->firstResponder(), formView().txtServer());
    EXPECT_EQ(formView().txtServer()->layer().borderColor(), kit::Color::systemBlue());
    tapCentre(*formView().txtName());
    EXPECT_EQ(formView().txtServer()->layer().borderColor(), kit::Color::lightGray());
    EXPECT_EQ(formView().txtName()->layer().borderColor(), kit::Color::systemBlue());
}

TEST_F(SupportReportVCTest, TheListsAnswerSetsTheTypeTextAndFlags) {
    enum class Leave { ok, cancel };
    struct Case {
        const char* name;
        std::vector<int> taps;
        Leave leave;
        std::string text;
        std::vector<bool> flags;
    };
    // Each case starts from an earlier choice of "UI Bug", so "Hủy" has something to keep.
    const std::vector<Case> cases{
        {"untick the earlier choice, tick Crash and Khác",
         {0, 1, 2},
         Leave::ok,
         "Crash, Khác",
         {false, true, true}},
        {"nothing ticked: an empty text", {0}, Leave::ok, "", {false, false, false}},
        {"a row tapped twice keeps its tick", {2, 2}, Leave::ok, "UI Bug", {true, false, false}},
        {"cancel after ticking changes nothing", {1, 2}, Leave::cancel, "UI Bug", {true, false, false}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        freshForm();
        auto openList = [&] {
            tapCentre(*formView().txtTypeFalse());
            auto navigation =
                std::dynamic_pointer_cast<kit::NavigationController>(form->presentedViewController());
            return navigation ? std::dynamic_pointer_cast<MultiSelectVC>(navigation->topViewController())
                              : nullptr;
        };
        auto first = openList();
        ASSERT_NE(first, nullptr);
        first->tableView()->delegate()->didSelectRowAt(*first->tableView(), kit::IndexPath::forRow(0));
        first->navigationItem().rightBarButtonItem()->trigger();
        h.mainQueue->advance(1);

        auto list = openList();
        ASSERT_NE(list, nullptr);
        for (int row : c.taps) {
            list->tableView()->layoutIfNeeded();
            tapCentre(*list->tableView()->cellForRow(kit::IndexPath::forRow(row)));
        }
        const auto& item = c.leave == Leave::ok ? list->navigationItem().rightBarButtonItem()
                                                : list->navigationItem().leftBarButtonItem();
        item->trigger();
        h.mainQueue->advance(1);

        EXPECT_EQ(formView().txtTypeFalse()->text(), c.text);
        EXPECT_EQ(form->selected(), c.flags);
        EXPECT_EQ(form->presentedViewController(), nullptr);
    }
}

TEST_F(SupportReportVCTest, TwoOpeningsOfFiveUploadInCompletionOrder) {
    pickThroughForm(pictures(0, 5));
    EXPECT_TRUE(h.console->hasLine("Attach tapped ✅"));
    ASSERT_TRUE(h.imagePicker->configuration());
    EXPECT_EQ(h.imagePicker->configuration()->selectionLimit, 5);
    EXPECT_EQ(h.imagePicker->configuration()->filter, platform::ImagePickerFilter::images);
    ASSERT_TRUE(server.waitForRequests(5));
    answerInOrder({3, 0, 4, 1, 2});

    // A second opening adds to the first: there is no overall cap.
    pickThroughForm(pictures(5, 5));
    answerInOrder({9, 5, 8, 7, 6});

    std::vector<std::string> expected;
    for (int n : {3, 0, 4, 1, 2, 9, 5, 8, 7, 6}) {
        expected.push_back(pictureUrl(n));
    }
    EXPECT_EQ(form->uploadedImageUrls(), expected);
    EXPECT_EQ(server.countFor(uploadPath), 10u);
    // Each thumbnail shows its own picture, fetched back from its address.
    ASSERT_TRUE(h.mainQueue->runUntil([&] {
        auto shown = thumbnails();
        return std::all_of(shown.begin(), shown.end(), [](auto& t) { return t && t->image(); });
    }));
    auto shown = thumbnails();
    ASSERT_EQ(shown.size(), 10u);
    for (std::size_t i = 0; i < shown.size(); ++i) {
        SCOPED_TRACE(expected[i]);
        const auto* pixels = shown[i]->image()->pixels();
        ASSERT_NE(pixels, nullptr);
        EXPECT_EQ(expected[i], pictureUrl(static_cast<int>(std::lround((pixels->pixels[0] - 10) / 20.0))));
        EXPECT_EQ(shown[i]->frame().size, (kit::Size{100, 100}));
    }
}

TEST_F(SupportReportVCTest, OnlyAnAnswerWithAnImageAddressAddsAThumbnail) {
    struct Case {
        const char* name;
        LoopbackServer::Reply reply;
        bool reported;
    };
    const std::vector<Case> cases{
        {"no Data", {200, R"({"Message":"ok"})"}, true},
        {"Data not an object", {200, R"({"Data":"https://cdn/1.jpg"})"}, true},
        {"ImageUrl not a string", {200, R"({"Data":{"ImageUrl":7}})"}, true},
        {"no ImageUrl", {200, R"({"Data":{"Url":"https://cdn/1.jpg"}})"}, true},
        {"empty object", {200, "{}"}, true},
        {"server error", {500, R"({"Data":{"ImageUrl":"https://cdn/1.jpg"}})"}, true},
        {"an address that is no URL: silently dropped", {200, R"({"Data":{"ImageUrl":"not a url"}})"}, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        server.on(uploadPath, c.reply);
        h.console->clear();
        const auto before = server.countFor(uploadPath);
        pickThroughForm(pictures(0, 1));
        ASSERT_TRUE(h.mainQueue->runUntil([&] { return server.countFor(uploadPath) > before; }));
        // The answer's effect is either a line or, for the bad address, nothing: wait for the hop.
        h.mainQueue->runUntil([&] { return h.console->hasLine("❌ Lỗi upload Image"); },
                              std::chrono::milliseconds(c.reported ? 5000 : 500));
        EXPECT_EQ(h.console->hasLine("❌ Lỗi upload Image"), c.reported);
        EXPECT_TRUE(form->uploadedImageUrls().empty());
        EXPECT_TRUE(thumbnails().empty());
    }
}

TEST_F(SupportReportVCTest, PicksThatGiveNoImageUploadNothing) {
    gate->releaseAll();
    pickThroughForm({testing::ScriptedPick::notAnImage(),
                     testing::ScriptedPick::failingLoad("the file is gone"),
                     testing::ScriptedPick::picture(picture(4))});
    ASSERT_TRUE(h.mainQueue->runUntil([&] { return form->uploadedImageUrls().size() == 1; }));

    EXPECT_EQ(form->uploadedImageUrls(), std::vector<std::string>{pictureUrl(4)});
    EXPECT_EQ(server.countFor(uploadPath), 1u);
    EXPECT_EQ(lines(), (std::vector<std::string>{"Attach tapped ✅", "❌ Lỗi load image: the file is gone"}));
}

TEST_F(SupportReportVCTest, DeletingRemovesItsThumbnailAndTheFirstEqualAddressOnly) {
    // Two uploads answered with the same address, then one of another.
    gate->releaseAll();
    server.on(uploadPath, [&](const LoopbackServer::Request& request) {
        const int n = pictureIn(request.body) == 2 ? 2 : 1;
        return LoopbackServer::Reply{200, R"({"Data":{"ImageUrl":")" + pictureUrl(n) + R"("}})"};
    });
    pickThroughForm(pictures(0, 1));
    ASSERT_TRUE(h.mainQueue->runUntil([&] { return form->uploadedImageUrls().size() == 1; }));
    pickThroughForm(pictures(1, 1));
    ASSERT_TRUE(h.mainQueue->runUntil([&] { return form->uploadedImageUrls().size() == 2; }));
    pickThroughForm(pictures(2, 1));
    ASSERT_TRUE(h.mainQueue->runUntil([&] { return form->uploadedImageUrls().size() == 3; }));
    const auto before = thumbnails();
    h.console->clear();

    // The player taps the "✕" of the second thumbnail: the tap is the button's, not the section's.
    auto remove = std::dynamic_pointer_cast<kit::Button>(before[1]->subviews().back());
    ASSERT_NE(remove, nullptr);
    EXPECT_EQ(remove->currentTitle(), "✕");
    tapCentre(*remove);

    EXPECT_EQ(form->uploadedImageUrls(), (std::vector<std::string>{pictureUrl(1), pictureUrl(2)}));
    EXPECT_EQ(thumbnails(), (std::vector<std::shared_ptr<kit::ImageView>>{before[0], before[2]}));
    EXPECT_FALSE(h.imagePicker->isPresented());
    window()->layoutIfNeeded();
    EXPECT_EQ(before[2]->frame().origin.x, 108) << "the next thumbnail moves into the gap";

    // A thumbnail whose address is no longer recorded removes no other entry.
    tapCentre(*std::dynamic_pointer_cast<kit::Button>(before[0]->subviews().back()));
    EXPECT_EQ(form->uploadedImageUrls(), (std::vector<std::string>{pictureUrl(2)}));
}

TEST_F(SupportReportVCTest, AFailedThumbnailFetchKeepsItsAddress) {
    gate->releaseAll();
    const std::string missing = server.url("/img/missing.jpg");
    server.on(uploadPath, LoopbackServer::Reply{200, R"({"Data":{"ImageUrl":")" + missing + R"("}})"});
    pickThroughForm(pictures(0, 1));
    ASSERT_TRUE(h.mainQueue->runUntil([&] { return form->uploadedImageUrls().size() == 1; }));
    ASSERT_TRUE(server.waitForRequests(2));
    h.mainQueue->runUntil([] { return false; }, std::chrono::milliseconds(300));

    EXPECT_EQ(form->uploadedImageUrls(), std::vector<std::string>{missing});
    ASSERT_EQ(thumbnails().size(), 1u);
    EXPECT_EQ(thumbnails()[0]->image(), nullptr);
}

TEST_F(SupportReportVCTest, AFormClosedWhileUploadingIgnoresTheAnswers) {
    pickThroughForm(pictures(0, 3));
    ASSERT_TRUE(server.waitForRequests(3));
    tapCentre(*formView().btnClose());
    EXPECT_TRUE(h.console->hasLine("Close tapped ❌"));
    h.mainQueue->advance(1);
    EXPECT_EQ(root->presentedViewController(), nullptr);
    const std::weak_ptr<SupportReportVC> closed = form;
    form.reset();
    ASSERT_TRUE(closed.expired()) << "something still holds the closed form";

    h.console->clear();
    gate->releaseAll();
    // The answers arrive and are dropped: no thumbnail is fetched, nothing is printed.
    h.mainQueue->runUntil([] { return false; }, std::chrono::milliseconds(500));
    EXPECT_EQ(server.countFor("/img/0.jpg") + server.countFor("/img/1.jpg") + server.countFor("/img/2.jpg"),
              0u);
    EXPECT_TRUE(lines().empty());
}

TEST_F(SupportReportVCTest, AFormClosedBeforeItsPicturesLoadedUploadsNothing) {
    formView().handleAttachTap();
    ASSERT_TRUE(h.imagePicker->pick(pictures(0, 2)));
    // Queued behind the picker's answer, ahead of the loads that answer starts.
    h.mainQueue->async([&] {
        root->dismiss(false);
        form.reset();
    });
    h.console->clear();
    h.mainQueue->runUntilIdle();
    ASSERT_EQ(form, nullptr);
    h.mainQueue->runUntil([] { return false; }, std::chrono::milliseconds(300));
    EXPECT_EQ(server.countFor(uploadPath), 0u);
    EXPECT_TRUE(lines().empty());
}

}  // namespace
}  // namespace ovix::test
