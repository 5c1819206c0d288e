#pragma once

#include <string_view>

namespace ovix::kit {

class TextView;

/// Editing decisions and notifications for a text view. Held weakly. Every method is optional.
class TextViewDelegate {
  public:
    virtual ~TextViewDelegate() = default;
    virtual bool textViewShouldBeginEditing(TextView& textView) {
        (void)textView;
        return true;
    }
    virtual void textViewDidBeginEditing(TextView& textView) { (void)textView; }
    virtual void textViewDidEndEditing(TextView& textView) { (void)textView; }
    virtual bool shouldChangeText(TextView& textView, std::string_view replacement) {
        (void)textView;
        (void)replacement;
        return true;
    }
    virtual void textViewDidChange(TextView& textView) { (void)textView; }
};

}  // namespace ovix::kit
