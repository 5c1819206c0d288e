#pragma once

#include <optional>
#include <string_view>

#include "ovix/kit/Key.h"
#include "ovix/kit/TextSelection.h"

namespace ovix::kit {

/// Caret arithmetic of an editable text, shared by text fields and text views: where a navigation
/// key takes the caret and what Backspace and Delete remove, on UTF-8 character boundaries
/// (combining marks stay with their letter). It reads the text and changes nothing.
///
/// Left and Right step a character (a word with control); without shift they first collapse a
/// selection to its near side. Home and End go to the line's ends (the text's ends with control, or
/// always in one-line text); Up and Down go to the same character column of the line above or
/// below (the text's ends in one-line text). Shift keeps the anchor, so the selection grows.
class TextEditor {
  public:
    TextEditor(std::string_view text, bool multiline) : text_(text), multiline_(multiline) {}

    /// The selection after a navigation key; nullopt for keys that do not navigate.
    std::optional<TextSelection> moved(TextSelection selection, Key key, KeyModifiers modifiers) const;
    /// The bytes Backspace or Delete removes: the selection, else the character (word with control)
    /// before or after the caret; an empty selection at the text's edge.
    TextSelection erased(TextSelection selection, Key key, KeyModifiers modifiers) const;
    /// What a text input does with Backspace, Delete and the navigation keys: a non-empty erased
    /// range goes to `erase` (the input's own replacement, which updates its selection), a
    /// navigation key moves `selection`; other keys change nothing.
    template <typename Erase>
    void apply(TextSelection& selection, Key key, KeyModifiers modifiers, Erase&& erase) const {
        if (key == Key::backspace || key == Key::deleteForward) {
            if (const auto range = erased(selection, key, modifiers); !range.isEmpty()) {
                erase(range);
            }
        } else if (const auto next = moved(selection, key, modifiers)) {
            selection = *next;
        }
    }

  private:
    std::size_t lineStart(std::size_t at) const;
    std::size_t lineEnd(std::size_t at) const;
    std::size_t wordBefore(std::size_t at) const;
    std::size_t wordAfter(std::size_t at) const;
    /// Moves `lines` lines (-1 up, +1 down) keeping the character column.
    std::size_t verticalMove(std::size_t at, int lines) const;
    std::optional<std::size_t> target(TextSelection selection, Key key, KeyModifiers modifiers) const;

    std::string_view text_;
    bool multiline_;
};

}  // namespace ovix::kit
