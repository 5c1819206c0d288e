#pragma once

#include <string_view>

namespace ovix::kit {

class TextField;

/// Editing decisions and notifications for a text field. Held weakly. Every method is optional.
class TextFieldDelegate {
  public:
    virtual ~TextFieldDelegate() = default;
    /// false keeps the field from taking focus (no editing, no caret).
    virtual bool textFieldShouldBeginEditing(TextField& textField) {
        (void)textField;
        return true;
    }
    virtual void textFieldDidBeginEditing(TextField& textField) { (void)textField; }
    virtual bool textFieldShouldEndEditing(TextField& textField) {
        (void)textField;
        return true;
    }
    virtual void textFieldDidEndEditing(TextField& textField) { (void)textField; }
    /// false rejects typed text (appended at the end; the headless field has no selection).
    virtual bool shouldChangeCharacters(TextField& textField, std::string_view replacement) {
        (void)textField;
        (void)replacement;
        return true;
    }
    /// The return key.
    virtual bool textFieldShouldReturn(TextField& textField) {
        (void)textField;
        return true;
    }
};

}  // namespace ovix::kit
