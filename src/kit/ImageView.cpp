#include "ovix/kit/ImageView.h"

#include <algorithm>

namespace ovix::kit {

std::shared_ptr<ImageView> ImageView::create(std::shared_ptr<const Image> image) {
    return std::make_shared<ImageView>(std::move(image));
}

ImageView::ImageView(std::shared_ptr<const Image> image) : View(image ? Rect{{}, image->size()} : Rect{}) {
    image_ = std::move(image);
    setUserInteractionEnabled(false);
}

void ImageView::setImage(std::shared_ptr<const Image> image) {
    Size before = image_ ? image_->size() : Size{noIntrinsicMetric, noIntrinsicMetric};
    image_ = std::move(image);
    Size after = image_ ? image_->size() : Size{noIntrinsicMetric, noIntrinsicMetric};
    if (before != after) {
        invalidateIntrinsicContentSize();
    }
}

Size ImageView::intrinsicContentSize() const {
    return image_ ? image_->size() : Size{noIntrinsicMetric, noIntrinsicMetric};
}

Rect ImageView::imageRect() const {
    if (!image_) {
        return {};
    }
    Rect b = bounds();
    Size is = image_->size();
    double w = b.size.width;
    double h = b.size.height;
    auto fit = [&](bool fill) {
        if (is.width <= 0 || is.height <= 0) {
            return Rect{b.origin, b.size};
        }
        double sx = w / is.width;
        double sy = h / is.height;
        double s = fill ? std::max(sx, sy) : std::min(sx, sy);
        Size size{is.width * s, is.height * s};
        return Rect{b.origin.x + (w - size.width) / 2, b.origin.y + (h - size.height) / 2, size.width,
                    size.height};
    };
    // Unscaled modes pin the image's own size to an edge or the centre.
    double cx = b.origin.x + (w - is.width) / 2;
    double cy = b.origin.y + (h - is.height) / 2;
    double left = b.origin.x;
    double right = b.origin.x + w - is.width;
    double top = b.origin.y;
    double bottom = b.origin.y + h - is.height;
    switch (contentMode()) {
        case ContentMode::scaleToFill:
            return b;
        case ContentMode::scaleAspectFit:
            return fit(false);
        case ContentMode::scaleAspectFill:
            return fit(true);
        case ContentMode::center:
            return {cx, cy, is.width, is.height};
        case ContentMode::top:
            return {cx, top, is.width, is.height};
        case ContentMode::bottom:
            return {cx, bottom, is.width, is.height};
        case ContentMode::left:
            return {left, cy, is.width, is.height};
        case ContentMode::right:
            return {right, cy, is.width, is.height};
        case ContentMode::topLeft:
            return {left, top, is.width, is.height};
        case ContentMode::topRight:
            return {right, top, is.width, is.height};
        case ContentMode::bottomLeft:
            return {left, bottom, is.width, is.height};
        case ContentMode::bottomRight:
            return {right, bottom, is.width, is.height};
    }
    return b;
}

}  // namespace ovix::kit
