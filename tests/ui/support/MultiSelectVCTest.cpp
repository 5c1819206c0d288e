#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "ovix/kit/NavigationController.h"
#include "ovix/kit/Window.h"
#include "ovix/testing/HeadlessPlatform.h"
#include "ui/support/MultiSelectVC.h"

namespace ovix::test {
namespace {

/// The list on its own, in a navigation controller presented as a form sheet over a plain screen.
class MultiSelectVCTest : public ::testing::Test {
  protected:
    MultiSelectVCTest() {
        h = testing::HeadlessPlatform::create({});
        h.install();
        root = kit::ViewController::create();
        window()->setRootViewController(root);
    }

    std::shared_ptr<kit::Window> window() const { return h.application->windows().front(); }

    std::shared_ptr<MultiSelectVC> show(std::vector<std::string> items, std::vector<bool> flags) {
        auto list = MultiSelectVC::create();
        list->items = std::move(items);
        list->selected = std::move(flags);
        auto navigation = kit::NavigationController::create(list);
        navigation->setModalPresentationStyle(kit::ModalPresentationStyle::formSheet);
        root->present(navigation, false);
        h.mainQueue->runUntilIdle();
        window()->layoutIfNeeded();
        return list;
    }
    void tapRow(MultiSelectVC& list, int row) {
        window()->layoutIfNeeded();
        auto cell = list.tableView()->cellForRow(kit::IndexPath::forRow(row));
        ASSERT_NE(cell, nullptr);
        const kit::Rect r = cell->convertTo(cell->bounds(), nullptr);
        window()->tap({r.midX(), r.midY()});
    }
    static std::vector<bool> ticks(MultiSelectVC& list) {
        std::vector<bool> shown;
        for (int row = 0; row < list.tableView()->numberOfRows(0); ++row) {
            shown.push_back(list.tableView()->cellForRow(kit::IndexPath::forRow(row))->accessoryType() ==
                            kit::TableViewCellAccessoryType::checkmark);
        }
        return shown;
    }

    testing::HeadlessPlatform h;
    std::shared_ptr<kit::ViewController> root;
};

TEST_F(MultiSelectVCTest, FlagsThatDoNotMatchTheItemsAreReadPairwise) {
    struct Case {
        const char* name;
        std::vector<bool> flags;
        std::vector<int> taps;
        std::vector<bool> ticks;  // shown after the taps
        std::vector<std::string> chosen;
        bool listening = true;  // without an answer to give, OK still closes
    };
    const std::vector<Case> cases{
        {"fewer flags: a row without one shows no tick and a tap on it changes nothing",
         {true},
         {2},
         {true, false, false},
         {"UI Bug"}},
        {"no flags at all", {}, {0, 1}, {false, false, false}, {}},
        {"more flags than items: the extra ones are ignored",
         {false, true, true, true},
         {},
         {false, true, true},
         {"Crash", "Khác"}},
        {"the second and third ticked",
         {false, false, false},
         {1, 2},
         {false, true, true},
         {"Crash", "Khác"}},
        {"nobody listening", {true}, {}, {true, false, false}, {}, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        auto list = show({"UI Bug", "Crash", "Khác"}, c.flags);
        std::vector<std::vector<std::string>> answers;
        if (c.listening) {
            list->onDone = [&](std::vector<std::string> chosen) { answers.push_back(std::move(chosen)); };
        }
        for (int row : c.taps) {
            tapRow(*list, row);
        }
        EXPECT_EQ(ticks(*list), c.ticks);
        list->navigationItem().rightBarButtonItem()->trigger();
        EXPECT_EQ(answers.size(), c.listening ? 1u : 0u);
        if (c.listening) {
            EXPECT_EQ(answers.front(), c.chosen);
        }
        h.mainQueue->advance(1);
        EXPECT_EQ(root->presentedViewController(), nullptr);
    }
}

TEST_F(MultiSelectVCTest, TheRowsStartBelowTheBarAndClearOfTheNotch) {
    for (bool landscape : {false, true}) {
        SCOPED_TRACE(landscape ? "landscape" : "portrait");
        if (landscape) {
            h.application->rotate(kit::DeviceOrientation::landscapeLeft);
        }
        auto list = show({"UI Bug", "Crash", "Khác"}, {true, false, false});
        auto bar = list->navigationController()->navigationBar();
        const kit::Rect barRect = bar->convertTo(bar->bounds(), nullptr);
        auto first = list->tableView()->cellForRow(kit::IndexPath::forRow(0));
        const kit::Rect row = first->convertTo(first->bounds(), nullptr);
        EXPECT_GT(row.minY(), barRect.maxY()) << "the first row is under the bar";
        const auto safe = window()->safeAreaInsets();
        EXPECT_GE(row.minX(), safe.left);
        EXPECT_LE(row.maxX(), window()->bounds().size.width - safe.right);
        // The bar's buttons are not under the notch either.
        for (const auto& button : bar->subviews()) {
            const kit::Rect b = button->convertTo(button->bounds(), nullptr);
            if (!button->isHidden() && b.size.width > 0) {
                EXPECT_GE(b.minX(), safe.left);
                EXPECT_LE(b.maxX(), window()->bounds().size.width - safe.right);
            }
        }
        list->cancelTapped();
        h.mainQueue->advance(1);
    }
}

}  // namespace
}  // namespace ovix::test
