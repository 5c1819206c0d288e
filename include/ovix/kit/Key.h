#pragma once

namespace ovix::kit {

/// The editing and navigation keys the kit handles; printable characters arrive as text
/// (`Window::insertText`), never as keys.
enum class Key {
    left,
    right,
    up,
    down,
    home,
    end,
    backspace,
    deleteForward,
    enter,
    tab,
    escape,
};

/// Modifiers held with a key: shift extends a selection (and Tab goes backwards), control moves by
/// words on the arrow keys and to the text's ends on Home/End.
struct KeyModifiers {
    bool shift = false;
    bool control = false;
};

}  // namespace ovix::kit
