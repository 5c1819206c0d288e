#pragma once

#include <memory>

#include "ovix/kit/Image.h"
#include "ovix/kit/View.h"

namespace ovix::kit {

/// Shows an image according to its content mode (scale to fill by default). Its intrinsic size is
/// the image's size; with no image it has none. Not interactive by default.
class ImageView : public View {
  public:
    static std::shared_ptr<ImageView> create(std::shared_ptr<const Image> image = nullptr);
    explicit ImageView(std::shared_ptr<const Image> image = nullptr);

    const std::shared_ptr<const Image>& image() const { return image_; }
    void setImage(std::shared_ptr<const Image> image);

    /// Where the image is drawn inside the bounds for the current content mode (may overflow the
    /// bounds for aspect fill; clipping is the view's `clipsToBounds`). Empty without an image.
    Rect imageRect() const;

    Size intrinsicContentSize() const override;
    std::string className() const override { return "ImageView"; }

  private:
    std::shared_ptr<const Image> image_;
};

}  // namespace ovix::kit
