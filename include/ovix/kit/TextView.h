#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "ovix/kit/Font.h"
#include "ovix/kit/Label.h"
#include "ovix/kit/ScrollView.h"
#include "ovix/kit/TextSelection.h"
#include "ovix/kit/TextViewDelegate.h"

namespace ovix::kit {

/// Multi-line editable text.
///
/// A tap focuses it (the delegate may refuse), calling `textViewDidBeginEditing`; typed text and
/// line feeds (Enter too) replace the selection or go in at the caret; Backspace (`deleteBackward`)
/// and Delete remove the selection or one character beside the caret; the arrows, Home and End move
/// the caret by characters and lines (see `TextEditor`), with shift they select. The delegate's
/// `shouldChangeText` may refuse a change; each change calls `textViewDidChange`. Tab and Escape are
/// left to the window. Losing focus calls `textViewDidEndEditing`. With scrolling off, its
/// intrinsic height is its wrapped text (at least one line) plus `textContainerInset`, so it grows
/// with its text in a constraint layout.
class TextView : public ScrollView {
  public:
    /// Horizontal padding of each line inside the text container.
    static constexpr double linePadding = 5;

    static std::shared_ptr<TextView> create(Rect frame = {});
    explicit TextView(Rect frame = {});

    const std::string& text() const { return text_; }
    /// Puts the caret at the end of the new text.
    void setText(std::string text);
    /// The caret or selection, byte offsets into `text()`.
    TextSelection selection() const { return selection_; }
    /// Clamped to the text, each end moved back onto a character boundary.
    void setSelection(TextSelection selection);
    Color textColor() const { return textColor_; }
    void setTextColor(Color color) { textColor_ = color; }
    const Font& font() const { return font_; }
    void setFont(Font font);
    TextAlignment textAlignment() const { return alignment_; }
    void setTextAlignment(TextAlignment alignment) { alignment_ = alignment; }
    bool isEditable() const { return editable_; }
    void setEditable(bool editable) { editable_ = editable; }
    EdgeInsets textContainerInset() const { return inset_; }
    void setTextContainerInset(EdgeInsets inset);
    void setScrollEnabled(bool enabled) override;

    void setDelegate(const std::shared_ptr<TextViewDelegate>& delegate) { delegate_ = delegate; }
    std::shared_ptr<TextViewDelegate> delegate() const { return delegate_.lock(); }
    bool isEditing() const { return editing_; }

    bool canBecomeFirstResponder() const override { return editable_; }
    bool becomeFirstResponder() override;
    bool resignFirstResponder() override;
    void insertText(std::string_view text) override;
    void deleteBackward() override;
    bool keyDown(Key key, KeyModifiers modifiers) override;
    void touchesEnded(const Touch& touch) override;

    Size intrinsicContentSize() const override { return intrinsicContentSizeForWidth(bounds().size.width); }
    Size intrinsicContentSizeForWidth(double width) const override;
    std::string className() const override { return "TextView"; }

  protected:
    void boundsSizeDidChange(Size oldSize) override;

  private:
    void replace(TextSelection range, std::string_view text);

    std::string text_;
    TextSelection selection_;
    Color textColor_ = Color::label();
    Font font_ = Font::systemFont(12);
    TextAlignment alignment_ = TextAlignment::natural;
    bool editable_ = true;
    EdgeInsets inset_{8, 0, 8, 0};
    std::weak_ptr<TextViewDelegate> delegate_;
    bool editing_ = false;
};

}  // namespace ovix::kit
