#include "ovix/kit/Image.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <fstream>
#include <utility>

#include "ovix/kit/Screen.h"
#include "ovix/kit/host/Application.h"
#include "ovix/platform/Platform.h"

namespace ovix::kit {

namespace {

struct Symbol {
    std::string_view name;
    Size size;
};

// The system symbols the SDK's screens use, at their default point size. Anything else is absent.
constexpr std::array<Symbol, 9> kSymbols{{
    {"calendar", {20, 18}},
    {"checkmark.seal.fill", {20, 20}},
    {"clock", {20, 20}},
    {"exclamationmark.circle", {20, 20}},
    {"list.dash", {20, 14}},
    {"multiply.circle", {20, 20}},
    {"phone.fill", {20, 20}},
    {"xmark.circle.fill", {20, 20}},
    {"xmark.seal.fill", {20, 20}},
}};

std::uint32_t bigEndian32(const unsigned char* p) {
    return (std::uint32_t{p[0]} << 24) | (std::uint32_t{p[1]} << 16) | (std::uint32_t{p[2]} << 8) | p[3];
}

/// Pixel size from a PNG's header chunk or a JPEG's start-of-frame segment; nullopt otherwise.
std::optional<std::pair<double, double>> pixelSize(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::string head(64 * 1024, '\0');
    in.read(head.data(), static_cast<std::streamsize>(head.size()));
    head.resize(static_cast<std::size_t>(in.gcount()));
    const auto* b = reinterpret_cast<const unsigned char*>(head.data());
    const std::size_t n = head.size();
    if (n >= 24 && head.compare(0, 8, "\x89PNG\r\n\x1a\n") == 0 && head.compare(12, 4, "IHDR") == 0) {
        return std::pair<double, double>(bigEndian32(b + 16), bigEndian32(b + 20));
    }
    if (n < 4 || b[0] != 0xFF || b[1] != 0xD8) {
        return std::nullopt;
    }
    std::size_t i = 2;
    while (i + 9 < n) {
        if (b[i] != 0xFF) {
            return std::nullopt;
        }
        unsigned marker = b[i + 1];
        std::size_t length = (std::size_t{b[i + 2]} << 8) | b[i + 3];
        bool startOfFrame =
            marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
        if (startOfFrame) {
            double height = (b[i + 5] << 8) | b[i + 6];
            double width = (b[i + 7] << 8) | b[i + 8];
            return std::pair<double, double>(width, height);
        }
        i += 2 + length;
    }
    return std::nullopt;
}

double scaleOf(const std::filesystem::path& file) {
    std::string stem = file.stem().string();
    if (stem.ends_with("@3x")) {
        return 3;
    }
    if (stem.ends_with("@2x")) {
        return 2;
    }
    return 1;
}

}  // namespace

std::shared_ptr<const Image> Image::named(std::string_view name) {
    return named(name, platform::current()->sdkBundle());
}

std::shared_ptr<const Image> Image::named(std::string_view name, const platform::Bundle& bundle) {
    // A platform without an application (a console tool) has no screen; 1x is as good as any.
    const auto& application = platform::current()->application;
    const auto screen = application ? application->mainScreen() : nullptr;
    return named(name, bundle, screen ? screen->scale() : 1);
}

std::shared_ptr<const Image> Image::named(std::string_view name, const platform::Bundle& bundle,
                                          double scale) {
    auto file = bundle.imagePath(name, scale);
    if (!file) {
        return nullptr;
    }
    auto image = std::make_shared<Image>(Private{});
    image->name_ = std::string(name);
    image->path_ = *file;
    image->scale_ = scaleOf(*file);
    if (auto px = pixelSize(*file)) {
        image->size_ = {px->first / image->scale_, px->second / image->scale_};
    }
    return image;
}

std::shared_ptr<const Image> Image::systemNamed(std::string_view name) {
    auto it = std::find_if(kSymbols.begin(), kSymbols.end(), [&](const Symbol& s) { return s.name == name; });
    if (it == kSymbols.end()) {
        return nullptr;
    }
    auto image = std::make_shared<Image>(Private{});
    image->name_ = std::string(name);
    image->symbol_ = true;
    image->size_ = it->size;
    return image;
}

std::vector<std::string_view> Image::systemSymbolNames() {
    std::vector<std::string_view> names;
    for (const auto& s : kSymbols) {
        names.push_back(s.name);
    }
    return names;
}

std::shared_ptr<const Image> Image::fromPixels(platform::RgbaImage pixels, double scale) {
    if (pixels.empty() || scale <= 0) {
        return nullptr;
    }
    auto image = std::make_shared<Image>(Private{});
    image->scale_ = scale;
    image->size_ = {pixels.width / scale, pixels.height / scale};
    image->pixels_ = std::make_shared<const platform::RgbaImage>(std::move(pixels));
    return image;
}

std::shared_ptr<const Image> Image::fromData(std::string_view bytes) {
    auto decoded = platform::current()->imageCodec->decode(bytes);
    return decoded ? fromPixels(std::move(*decoded)) : nullptr;
}

std::shared_ptr<const Image> Image::withRenderingMode(ImageRenderingMode mode) const {
    auto copy = std::make_shared<Image>(*this);
    copy->mode_ = mode;
    return copy;
}

}  // namespace ovix::kit
