#pragma once

#include <memory>
#include <string>

#include "ovix/kit/Font.h"
#include "ovix/kit/View.h"

namespace ovix::kit {

enum class TextAlignment { natural, left, center, right, justified };

enum class LineBreakMode {
    byWordWrapping,
    byCharWrapping,
    byClipping,
    byTruncatingHead,
    byTruncatingTail,
    byTruncatingMiddle
};

/// Read-only text. Its intrinsic size is the measured text (`TextMeasurer`): one line by default;
/// with `numberOfLines` other than 1 the text wraps at `preferredMaxLayoutWidth`, or at the current
/// width once laid out. Not interactive by default.
class Label : public View {
  public:
    static std::shared_ptr<Label> create(std::string text = {});
    explicit Label(std::string text = {});

    const std::string& text() const { return text_; }
    void setText(std::string text);
    const Font& font() const { return font_; }
    void setFont(Font font);
    Color textColor() const { return textColor_; }
    void setTextColor(Color color) { textColor_ = color; }
    TextAlignment textAlignment() const { return alignment_; }
    void setTextAlignment(TextAlignment alignment) { alignment_ = alignment; }
    /// 0 means no limit.
    int numberOfLines() const { return numberOfLines_; }
    void setNumberOfLines(int lines);
    LineBreakMode lineBreakMode() const { return lineBreakMode_; }
    void setLineBreakMode(LineBreakMode mode) { lineBreakMode_ = mode; }
    double preferredMaxLayoutWidth() const { return preferredMaxLayoutWidth_; }
    void setPreferredMaxLayoutWidth(double width);

    Size intrinsicContentSize() const override;
    Size intrinsicContentSizeForWidth(double width) const override;
    Size sizeThatFits(Size size) const override;
    std::string className() const override { return "Label"; }
    std::string debugName() const override;

  protected:
    void boundsSizeDidChange(Size oldSize) override;

  private:
    Size measure(double wrapWidth) const;

    std::string text_;
    Font font_ = Font::systemFont(17);
    Color textColor_ = Color::label();
    TextAlignment alignment_ = TextAlignment::natural;
    int numberOfLines_ = 1;
    LineBreakMode lineBreakMode_ = LineBreakMode::byTruncatingTail;
    double preferredMaxLayoutWidth_ = 0;
};

}  // namespace ovix::kit
