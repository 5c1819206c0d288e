#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "ovix/kit/Font.h"
#include "ovix/kit/Label.h"
#include "ovix/kit/ScrollView.h"
#include "ovix/kit/TextViewDelegate.h"

namespace ovix::kit {

/// Multi-line editable text.
///
/// A tap focuses it (the delegate may refuse), calling `textViewDidBeginEditing`; typed text and
/// line feeds are appended, `deleteBackward` removes the last character, each change calls
/// `textViewDidChange`; losing focus calls `textViewDidEndEditing`. With scrolling off, its
/// intrinsic height is its wrapped text (at least one line) plus `textContainerInset`, so it grows
/// with its text in a constraint layout.
class TextView : public ScrollView {
  public:
    /// Horizontal padding of each line inside the text container.
    static constexpr double linePadding = 5;

    static std::shared_ptr<TextView> create(Rect frame = {});
    explicit TextView(Rect frame = {});

    const std::string& text() const { return text_; }
    void setText(std::string text);
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
    void touchesEnded(const Touch& touch) override;

    Size intrinsicContentSize() const override { return intrinsicContentSizeForWidth(bounds().size.width); }
    Size intrinsicContentSizeForWidth(double width) const override;
    std::string className() const override { return "TextView"; }

  protected:
    void boundsSizeDidChange(Size oldSize) override;

  private:
    void changed();

    std::string text_;
    Color textColor_ = Color::label();
    Font font_ = Font::systemFont(12);
    TextAlignment alignment_ = TextAlignment::natural;
    bool editable_ = true;
    EdgeInsets inset_{8, 0, 8, 0};
    std::weak_ptr<TextViewDelegate> delegate_;
    bool editing_ = false;
};

}  // namespace ovix::kit
