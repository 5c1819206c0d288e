#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "ovix/kit/Control.h"
#include "ovix/kit/Font.h"
#include "ovix/kit/Label.h"
#include "ovix/kit/TextFieldDelegate.h"
#include "ovix/kit/TextSelection.h"

namespace ovix::kit {

enum class TextFieldViewMode { never, whileEditing, unlessEditing, always };
enum class TextBorderStyle { none, line, bezel, roundedRect };

/// One line of editable text.
///
/// A tap (touch-up inside) asks for focus: the delegate's `textFieldShouldBeginEditing` may refuse;
/// otherwise the field becomes the window's first responder, calls `textFieldDidBeginEditing` and
/// sends `editingDidBegin`. Text typed into the window replaces the selection, or goes in at the
/// caret (`editingChanged`); the delegate's `shouldChangeCharacters` may refuse any change. The
/// return key ("\n" or `Key::enter`) asks `textFieldShouldReturn` and is not inserted: when the
/// delegate agrees (or there is none) the field sends `editingDidEndOnExit` and ends editing.
/// Backspace (`deleteBackward`) and Delete remove the selection or one character beside the caret;
/// the arrows, Home and End move the caret (see `TextEditor`), with shift they select. Tab and
/// Escape are left to the window. Losing focus calls `textFieldDidEndEditing` and sends
/// `editingDidEnd`. The left view sits at the left edge, vertically centred, in the modes that show
/// it; text starts after it.
class TextField : public Control {
  public:
    static std::shared_ptr<TextField> create(Rect frame = {});
    explicit TextField(Rect frame = {});

    const std::string& text() const { return text_; }
    /// Setting the text sends no events and puts the caret at its end.
    void setText(std::string text);
    /// The caret or selection, byte offsets into `text()`.
    TextSelection selection() const { return selection_; }
    /// Clamped to the text, each end moved back onto a character boundary.
    void setSelection(TextSelection selection);
    const std::string& placeholder() const { return placeholder_; }
    void setPlaceholder(std::string placeholder);
    const Font& font() const { return font_; }
    void setFont(Font font);
    Color textColor() const { return textColor_; }
    void setTextColor(Color color) { textColor_ = color; }
    TextAlignment textAlignment() const { return alignment_; }
    void setTextAlignment(TextAlignment alignment) { alignment_ = alignment; }
    TextBorderStyle borderStyle() const { return borderStyle_; }
    void setBorderStyle(TextBorderStyle style) { borderStyle_ = style; }
    bool isSecureTextEntry() const { return secure_; }
    void setSecureTextEntry(bool secure) { secure_ = secure; }

    const std::shared_ptr<View>& leftView() const { return leftView_; }
    void setLeftView(std::shared_ptr<View> view);
    TextFieldViewMode leftViewMode() const { return leftViewMode_; }
    void setLeftViewMode(TextFieldViewMode mode);
    /// Whether the left view shows in the current editing state.
    bool isLeftViewShown() const;

    void setDelegate(const std::shared_ptr<TextFieldDelegate>& delegate) { delegate_ = delegate; }
    std::shared_ptr<TextFieldDelegate> delegate() const { return delegate_.lock(); }
    bool isEditing() const { return editing_; }
    /// Where text is drawn: the bounds right of the left view.
    Rect textRect() const;

    bool canBecomeFirstResponder() const override { return true; }
    bool becomeFirstResponder() override;
    bool resignFirstResponder() override;
    void insertText(std::string_view text) override;
    void deleteBackward() override;
    bool keyDown(Key key, KeyModifiers modifiers) override;
    void touchesEnded(const Touch& touch) override;

    Size intrinsicContentSize() const override;
    void layoutSubviews() override;
    std::string className() const override { return "TextField"; }

  private:
    /// Puts `text` in place of `range` if the delegate agrees; the caret after it.
    void replace(TextSelection range, std::string_view text);
    void returnKey();

    std::string text_;
    TextSelection selection_;
    std::string placeholder_;
    Font font_ = Font::systemFont(17);
    Color textColor_ = Color::label();
    TextAlignment alignment_ = TextAlignment::natural;
    TextBorderStyle borderStyle_ = TextBorderStyle::none;
    bool secure_ = false;
    std::shared_ptr<View> leftView_;
    TextFieldViewMode leftViewMode_ = TextFieldViewMode::never;
    std::weak_ptr<TextFieldDelegate> delegate_;
    bool editing_ = false;
};

}  // namespace ovix::kit
