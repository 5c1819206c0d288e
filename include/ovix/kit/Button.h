#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>

#include "ovix/kit/Control.h"
#include "ovix/kit/Image.h"
#include "ovix/kit/ImageView.h"
#include "ovix/kit/Label.h"

namespace ovix::kit {

enum class ButtonType {
    custom,  ///< title white by default; images drawn as they are
    system,  ///< title in the tint colour by default; template images tinted
};

/// A control with a title and an image per control state (unset states fall back to normal).
///
/// The title label and image view are subviews made with the button; the button centres image then
/// title inside its bounds minus `contentEdgeInsets`. Its intrinsic size is that content.
class Button : public Control {
  public:
    static std::shared_ptr<Button> create(ButtonType type = ButtonType::system, Rect frame = {});
    Button(ButtonType type, Rect frame);

    ButtonType buttonType() const { return type_; }

    void setTitle(std::optional<std::string> title, ControlState state = ControlState::normal);
    std::optional<std::string> title(ControlState state = ControlState::normal) const;
    std::optional<std::string> currentTitle() const { return title(state()); }
    void setTitleColor(std::optional<Color> color, ControlState state = ControlState::normal);
    std::optional<Color> titleColor(ControlState state = ControlState::normal) const;
    /// The colour the title is drawn in now (explicit, else tint for system buttons, else white).
    Color currentTitleColor() const;
    void setImage(std::shared_ptr<const Image> image, ControlState state = ControlState::normal);
    std::shared_ptr<const Image> image(ControlState state = ControlState::normal) const;
    std::shared_ptr<const Image> currentImage() const { return image(state()); }

    /// The label showing the title (set its font here).
    const std::shared_ptr<Label>& titleLabel() const { return titleLabel_; }
    const std::shared_ptr<ImageView>& imageView() const { return imageView_; }
    EdgeInsets contentEdgeInsets() const { return contentInsets_; }
    void setContentEdgeInsets(EdgeInsets insets);

    Size intrinsicContentSize() const override;
    void layoutSubviews() override;
    std::string className() const override { return "Button"; }
    std::string debugName() const override;

  protected:
    /// Adds the image view and the title label; `create` (a subclass's too) calls it once the button
    /// is owned by a shared_ptr.
    void setUp();
    void stateDidChange() override { refresh(); }
    void tintColorDidChange() override { refresh(); }
    void didMoveToSuperview() override { refresh(); }  // the inherited tint may differ

  private:
    template <class T>
    static std::optional<T> lookup(const std::map<ControlState, T>& table, ControlState state) {
        auto it = table.find(state);
        if (it == table.end()) {
            it = table.find(ControlState::normal);
        }
        return it == table.end() ? std::nullopt : std::optional<T>(it->second);
    }
    void refresh();

    ButtonType type_;
    std::map<ControlState, std::string> titles_;
    std::map<ControlState, Color> titleColors_;
    std::map<ControlState, std::shared_ptr<const Image>> images_;
    std::shared_ptr<Label> titleLabel_;
    std::shared_ptr<ImageView> imageView_;
    EdgeInsets contentInsets_;
};

}  // namespace ovix::kit
