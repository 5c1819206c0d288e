#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "KitTest.h"
#include "ovix/kit/TextField.h"
#include "ovix/kit/TextView.h"
#include "ovix/kit/ViewController.h"

namespace ovix::test {
namespace {

using kit::Key;
using kit::KeyModifiers;
using kit::TextSelection;

constexpr KeyModifiers shift{true, false};
constexpr KeyModifiers control{false, true};
constexpr KeyModifiers shiftControl{true, true};

struct Press {
    Key key;
    KeyModifiers modifiers = {};
};

class Keyboard : public KitTest {
  protected:
    std::shared_ptr<kit::TextField> focusedField(const std::string& text) {
        auto field = kit::TextField::create({20, 100, 300, 44});
        window()->addSubview(field);
        field->setText(text);
        EXPECT_TRUE(field->becomeFirstResponder());
        return field;
    }
    void press(const std::vector<Press>& keys) {
        for (const auto& p : keys) {
            window()->keyDown(p.key, p.modifiers);
        }
    }
};

// "Lỗi" precomposed is L (1 byte), ỗ (3 bytes), i; decomposed, the ỗ is o + two combining marks
// (5 bytes), which the caret steps over as one character.
TEST_F(Keyboard, TheCaretStepsOverWholeCharacters) {
    const std::string composed = "Lỗi mạng";
    const std::string decomposed = "Lo\xCC\x82\xCC\x83i";
    struct Row {
        const char* name;
        std::string text;
        std::vector<Press> keys;
        TextSelection expected;
    };
    const std::vector<Row> rows = {
        {"left from the end", composed, {{Key::left}}, TextSelection::at(11)},
        {"left over ạ", composed, {{Key::left}, {Key::left}, {Key::left}}, TextSelection::at(7)},
        {"home then right over ỗ", composed, {{Key::home}, {Key::right}, {Key::right}}, TextSelection::at(4)},
        {"left at the start stays", composed, {{Key::home}, {Key::left}}, TextSelection::at(0)},
        {"right at the end stays", composed, {{Key::right}}, TextSelection::at(12)},
        {"control-left: a word", composed, {{Key::left, control}}, TextSelection::at(6)},
        {"control-left twice: the start",
         composed,
         {{Key::left, control}, {Key::left, control}},
         TextSelection::at(0)},
        {"control-right from home: past Lỗi",
         composed,
         {{Key::home}, {Key::right, control}},
         TextSelection::at(5)},
        {"shift-left selects ng", composed, {{Key::left, shift}, {Key::left, shift}}, {12, 10}},
        {"shift-home selects all", composed, {{Key::home, shift}}, {12, 0}},
        {"left collapses a selection to its start",
         composed,
         {{Key::home, shift}, {Key::left}},
         TextSelection::at(0)},
        {"right collapses it to its end",
         composed,
         {{Key::left, shift}, {Key::left, shift}, {Key::right}},
         TextSelection::at(12)},
        {"up and down: the field's ends", composed, {{Key::up}, {Key::right}, {Key::down, shift}}, {1, 12}},
        {"decomposed ỗ is one step", decomposed, {{Key::left}, {Key::left}}, TextSelection::at(1)},
        {"and one step forward", decomposed, {{Key::home}, {Key::right}, {Key::right}}, TextSelection::at(6)},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        auto field = focusedField(row.text);
        press(row.keys);
        EXPECT_EQ(field->selection(), row.expected);
        field->removeFromSuperview();
    }
}

TEST_F(Keyboard, EditingReplacesTheSelectionAndRemovesWholeCharacters) {
    struct Row {
        const char* name;
        std::vector<Press> keys;
        const char* typed;  // then typed, if not null
        std::string text;
        TextSelection selection;
        int changes;  // editingChanged events
    };
    const std::vector<Row> rows = {
        {"typing replaces the selected word",
         {{Key::left, shiftControl}},
         "kết nối",
         "Lỗi kết nối",
         TextSelection::at(17),
         1},
        {"typing at the caret inserts",
         {{Key::home}, {Key::right}},
         "!",
         "L!ỗi mạng",
         TextSelection::at(2),
         1},
        {"backspace removes ỗ whole",
         {{Key::home}, {Key::right}, {Key::right}, {Key::backspace}},
         nullptr,
         "Li mạng",
         TextSelection::at(1),
         1},
        {"delete removes ạ whole",
         {{Key::left}, {Key::left}, {Key::left}, {Key::deleteForward}},
         nullptr,
         "Lỗi mng",
         TextSelection::at(7),
         1},
        {"backspace removes the selection",
         {{Key::home, shift}, {Key::backspace}},
         nullptr,
         "",
         TextSelection::at(0),
         1},
        {"control-backspace removes a word",
         {{Key::backspace, control}},
         nullptr,
         "Lỗi ",
         TextSelection::at(6),
         1},
        {"backspace at the start does nothing",
         {{Key::home}, {Key::backspace}},
         nullptr,
         "Lỗi mạng",
         TextSelection::at(0),
         0},
        {"delete at the end does nothing",
         {{Key::deleteForward}},
         nullptr,
         "Lỗi mạng",
         TextSelection::at(12),
         0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        auto field = focusedField("Lỗi mạng");
        int changes = 0;
        field->addTarget([&] { ++changes; }, kit::ControlEvent::editingChanged);
        press(row.keys);
        if (row.typed) {
            window()->insertText(row.typed);
        }
        EXPECT_EQ(field->text(), row.text);
        EXPECT_EQ(field->selection(), row.selection);
        EXPECT_EQ(changes, row.changes);
        field->removeFromSuperview();
    }
}

class Refusing : public kit::TextFieldDelegate {
  public:
    bool shouldChangeCharacters(kit::TextField&, std::string_view) override { return false; }
    bool textFieldShouldReturn(kit::TextField&) override { return false; }
};

TEST_F(Keyboard, EnterEndsAFieldsEditingUnlessTheDelegateSaysNoAndBreaksATextViewsLine) {
    auto field = focusedField("Lỗi");
    std::vector<std::string> events;
    field->addTarget([&] { events.push_back("exit"); }, kit::ControlEvent::editingDidEndOnExit);
    field->addTarget([&] { events.push_back("end"); }, kit::ControlEvent::editingDidEnd);
    auto refusing = std::make_shared<Refusing>();
    field->setDelegate(refusing);
    EXPECT_TRUE(window()->keyDown(Key::enter));
    press({{Key::home, shift}, {Key::backspace}});
    window()->insertText("x");
    EXPECT_TRUE(field->isEditing()) << "the delegate kept it";
    EXPECT_EQ(field->text(), "Lỗi") << "and refused every change";
    field->setDelegate(nullptr);
    EXPECT_TRUE(window()->keyDown(Key::enter));
    EXPECT_FALSE(field->isEditing());
    EXPECT_EQ(events, (std::vector<std::string>{"exit", "end"}));
    EXPECT_FALSE(window()->keyDown(Key::left)) << "nothing focused: the key is not used";

    auto view = kit::TextView::create({0, 200, 300, 200});
    window()->addSubview(view);
    view->setText("Mô tả lỗi");
    ASSERT_TRUE(view->becomeFirstResponder());
    press({{Key::left, control}, {Key::enter}, {Key::up}, {Key::end}, {Key::down, shift}});
    EXPECT_EQ(view->text(), "Mô tả \nlỗi");
    // End of the first line (column 6), then down: the second line has only 3 characters, so its end.
    EXPECT_EQ(view->selection(), (TextSelection{9, 15}));
    press({{Key::home}, {Key::up}, {Key::right}, {Key::right}, {Key::down}});
    EXPECT_EQ(view->selection(), TextSelection::at(14)) << "column 2 of the second line, after ỗ";
    press({{Key::home, control}, {Key::end, shift}});
    EXPECT_EQ(view->selection(), (TextSelection{0, 9}))
        << "end: the line's end, control-home: the text's start";
}

TEST_F(Keyboard, TabMovesFocusThroughTheTextInputsInTreeOrder) {
    auto form = kit::View::create({0, 0, 390, 600});
    window()->addSubview(form);
    auto title = kit::TextField::create({0, 0, 300, 40});
    auto hidden = kit::TextField::create({0, 50, 300, 40});
    hidden->setHidden(true);
    auto readOnly = kit::TextView::create({0, 100, 300, 100});
    readOnly->setEditable(false);
    auto group = kit::View::create({0, 200, 390, 300});
    auto description = kit::TextView::create({0, 0, 300, 100});
    auto server = kit::TextField::create({0, 150, 300, 40});
    group->addSubview(description);
    group->addSubview(server);
    for (const auto& v : std::vector<std::shared_ptr<kit::View>>{title, hidden, readOnly, group}) {
        form->addSubview(v);
    }

    EXPECT_FALSE(window()->keyDown(Key::tab)) << "nothing focused: Tab is the game's";
    ASSERT_TRUE(title->becomeFirstResponder());
    std::vector<std::shared_ptr<kit::View>> seen;
    for (int i = 0; i < 4; ++i) {
        EXPECT_TRUE(window()->keyDown(Key::tab));
        seen.push_back(window()->firstResponder());
    }
    EXPECT_EQ(seen, (std::vector<std::shared_ptr<kit::View>>{description, server, title, description}));
    EXPECT_TRUE(window()->keyDown(Key::tab, shift));
    EXPECT_TRUE(window()->keyDown(Key::tab, shift));
    EXPECT_EQ(window()->firstResponder(), server) << "shift-tab goes back, wrapping";
    EXPECT_FALSE(title->isEditing());
}

TEST_F(Keyboard, EscapeDismissesAPresentedSheetOnly) {
    window()->setRootViewController(std::make_shared<kit::ViewController>());
    auto root = window()->rootViewController();
    struct Row {
        const char* name;
        kit::ModalPresentationStyle style;
        bool dismissed;
    };
    const Row rows[] = {
        {"form sheet", kit::ModalPresentationStyle::formSheet, true},
        {"page sheet", kit::ModalPresentationStyle::pageSheet, true},
        {"over full screen", kit::ModalPresentationStyle::overFullScreen, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        auto sheet = std::make_shared<kit::ViewController>();
        sheet->setModalPresentationStyle(row.style);
        root->present(sheet, false);
        ASSERT_EQ(root->presentedViewController(), sheet);
        EXPECT_EQ(window()->keyDown(Key::escape), row.dismissed);
        EXPECT_EQ(root->presentedViewController() == nullptr, row.dismissed);
        root->dismiss(false);
        queue().advance(1);
    }
    EXPECT_FALSE(window()->keyDown(Key::escape)) << "nothing presented";
}

}  // namespace
}  // namespace ovix::test
