#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ovix/kit/Geometry.h"
#include "ovix/platform/ImageCodec.h"
#include "ovix/platform/ResourceBundle.h"

namespace ovix::kit {

enum class ImageRenderingMode {
    automatic,       ///< symbols draw as templates, other images as they are
    alwaysOriginal,  ///< the image's own colours
    alwaysTemplate,  ///< only the alpha channel, filled with the view's tint colour
};

/// An immutable image: a file from a bundle, a system symbol from the fixed table, or decoded pixels.
///
/// Bundle images are located at once but not decoded; their size comes from the file header
/// ("@2x"/"@3x" names give the scale). Threading: creation and use on any thread; images are
/// immutable and shared.
class Image {
  public:
    /// The image `name` in the SDK's resource bundle (`platform::current()->sdkBundle()`); null when
    /// the bundle has no such image. The file is the variant for the main screen's scale (or the
    /// nearest there is); `size()` is in points whichever was found.
    static std::shared_ptr<const Image> named(std::string_view name);
    static std::shared_ptr<const Image> named(std::string_view name, const platform::Bundle& bundle);
    /// The same for a display of `scale` pixels per point.
    static std::shared_ptr<const Image> named(std::string_view name, const platform::Bundle& bundle,
                                              double scale);
    /// A system symbol; null for a name outside the table (callers decide whether that is fatal).
    static std::shared_ptr<const Image> systemNamed(std::string_view name);
    /// Names in the system symbol table, sorted.
    static std::vector<std::string_view> systemSymbolNames();
    /// Decoded pixels shown at `scale` pixels per point; null for an empty image.
    static std::shared_ptr<const Image> fromPixels(platform::RgbaImage pixels, double scale = 1);
    /// Encoded bytes decoded with the platform's image codec; null when they are not an image (or
    /// the platform cannot decode).
    static std::shared_ptr<const Image> fromData(std::string_view bytes);

    /// Bundle or symbol name; empty for decoded images.
    const std::string& name() const { return name_; }
    bool isSymbol() const { return symbol_; }
    /// The file of a bundle image.
    const std::optional<std::filesystem::path>& path() const { return path_; }
    /// Size in points; zero when a bundle file's header could not be read.
    Size size() const { return size_; }
    double scale() const { return scale_; }
    ImageRenderingMode renderingMode() const { return mode_; }
    /// Whether the image draws as a template (tinted) when shown.
    bool isTemplate() const {
        return mode_ == ImageRenderingMode::alwaysTemplate ||
               (mode_ == ImageRenderingMode::automatic && symbol_);
    }
    /// A copy of this image drawn in `mode`.
    std::shared_ptr<const Image> withRenderingMode(ImageRenderingMode mode) const;
    /// Decoded pixels of images made from pixels or data; null otherwise.
    const platform::RgbaImage* pixels() const { return pixels_.get(); }

  private:
    struct Private {};

  public:
    explicit Image(Private) {}

  private:
    std::string name_;
    bool symbol_ = false;
    std::optional<std::filesystem::path> path_;
    Size size_;
    double scale_ = 1;
    ImageRenderingMode mode_ = ImageRenderingMode::automatic;
    std::shared_ptr<const platform::RgbaImage> pixels_;
};

}  // namespace ovix::kit
