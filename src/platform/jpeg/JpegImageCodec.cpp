#include "platform/jpeg/JpegImageCodec.h"

// jpeglib.h needs size_t and FILE declared first.
#include <cstddef>
#include <cstdio>

#include <jpeglib.h>

#include <algorithm>
#include <cmath>
#include <csetjmp>
#include <new>

namespace ovix::platform {

namespace {

// libjpeg reports fatal errors through error_exit, which must not return: jump back to the call.
struct ErrorManager {
    jpeg_error_mgr base;
    std::jmp_buf jump;
};

[[noreturn]] void onFatalError(j_common_ptr info) {
    std::longjmp(reinterpret_cast<ErrorManager*>(info->err)->jump, 1);
}
void onMessage(j_common_ptr) {}  // warnings (e.g. a truncated stream) stay quiet

void useErrorManager(ErrorManager& errors) {
    jpeg_std_error(&errors.base);
    errors.base.error_exit = onFatalError;
    errors.base.output_message = onMessage;
}

// Appends the compressed stream to a string through a small staging buffer, so the string grows in
// place (its capacity reserved by the caller) and never holds a second copy.
struct StringDestination {
    jpeg_destination_mgr base;
    std::string* out = nullptr;
    bool outOfMemory = false;
    JOCTET buffer[16384];

    static StringDestination& of(j_compress_ptr info) {
        return *reinterpret_cast<StringDestination*>(info->dest);
    }

    static void init(j_compress_ptr info) {
        auto& d = of(info);
        d.base.next_output_byte = d.buffer;
        d.base.free_in_buffer = sizeof d.buffer;
    }

    static bool flush(j_compress_ptr info, std::size_t length) {
        auto& d = of(info);
        try {
            d.out->append(reinterpret_cast<const char*>(d.buffer), length);
        } catch (const std::bad_alloc&) {
            d.outOfMemory = true;
        }
        if (d.outOfMemory) {
            onFatalError(reinterpret_cast<j_common_ptr>(info));
        }
        return true;
    }

    static boolean empty(j_compress_ptr info) {
        flush(info, sizeof(StringDestination::buffer));
        init(info);
        return TRUE;
    }

    static void term(j_compress_ptr info) {
        auto& d = of(info);
        flush(info, sizeof d.buffer - d.base.free_in_buffer);
    }
};

// Kept apart from any object with a destructor: longjmp skips destructors.
bool compress(const RgbaImage& image, int quality, std::string& out) {
    jpeg_compress_struct info;
    ErrorManager errors;
    StringDestination destination;
    destination.out = &out;
    destination.base.init_destination = &StringDestination::init;
    destination.base.empty_output_buffer = &StringDestination::empty;
    destination.base.term_destination = &StringDestination::term;

    info.err = nullptr;
    useErrorManager(errors);
    info.err = &errors.base;
    if (setjmp(errors.jump) != 0) {
        jpeg_destroy_compress(&info);
        return false;
    }
    jpeg_create_compress(&info);
    info.dest = &destination.base;
    info.image_width = static_cast<JDIMENSION>(image.width);
    info.image_height = static_cast<JDIMENSION>(image.height);
    info.input_components = 4;
    info.in_color_space = JCS_EXT_RGBA;
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, quality, TRUE);
    jpeg_start_compress(&info, TRUE);
    const auto stride = static_cast<std::size_t>(image.width) * 4;
    while (info.next_scanline < info.image_height) {
        JSAMPROW row = const_cast<JSAMPROW>(image.pixels.data() + info.next_scanline * stride);
        jpeg_write_scanlines(&info, &row, 1);
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    return true;
}

struct Decoded {
    int width = 0;
    int height = 0;
};

// Like `compress`, holds no object with a destructor of its own.
bool decompress(std::string_view bytes, std::vector<std::uint8_t>& pixels, Decoded& size) {
    jpeg_decompress_struct info;
    ErrorManager errors;
    useErrorManager(errors);
    info.err = &errors.base;
    if (setjmp(errors.jump) != 0) {
        jpeg_destroy_decompress(&info);
        return false;
    }
    jpeg_create_decompress(&info);
    jpeg_mem_src(&info, reinterpret_cast<const unsigned char*>(bytes.data()),
                 static_cast<unsigned long>(bytes.size()));
    if (jpeg_read_header(&info, TRUE) != JPEG_HEADER_OK) {
        jpeg_destroy_decompress(&info);
        return false;
    }
    if (static_cast<long long>(info.image_width) * info.image_height > JpegImageCodec::maxPixels ||
        (info.jpeg_color_space != JCS_GRAYSCALE && info.jpeg_color_space != JCS_YCbCr &&
         info.jpeg_color_space != JCS_RGB)) {
        jpeg_destroy_decompress(&info);
        return false;
    }
    info.out_color_space = JCS_EXT_RGBA;
    jpeg_start_decompress(&info);
    size.width = static_cast<int>(info.output_width);
    size.height = static_cast<int>(info.output_height);
    const auto stride = static_cast<std::size_t>(info.output_width) * 4;
    // A vector that throws here would skip jpeg_destroy: size it inside a guard.
    bool sized = true;
    try {
        pixels.resize(stride * info.output_height);
    } catch (const std::bad_alloc&) {
        sized = false;
    }
    if (!sized) {
        jpeg_destroy_decompress(&info);
        return false;
    }
    while (info.output_scanline < info.output_height) {
        JSAMPROW row = pixels.data() + info.output_scanline * stride;
        jpeg_read_scanlines(&info, &row, 1);
    }
    jpeg_finish_decompress(&info);
    jpeg_destroy_decompress(&info);
    return true;
}

}  // namespace

int JpegImageCodec::libjpegQuality(double quality) {
    if (!(quality >= 0)) {
        quality = 0;  // NaN and negatives
    }
    return std::max(1, static_cast<int>(std::lround(std::min(quality, 1.0) * 100.0)));
}

std::optional<RgbaImage> JpegImageCodec::decode(std::string_view bytes) const {
    // Every JPEG stream starts with a start-of-image marker.
    if (bytes.size() < 3 || static_cast<unsigned char>(bytes[0]) != 0xFF ||
        static_cast<unsigned char>(bytes[1]) != 0xD8) {
        return std::nullopt;
    }
    RgbaImage image;
    Decoded size;
    if (!decompress(bytes, image.pixels, size)) {
        return std::nullopt;
    }
    image.width = size.width;
    image.height = size.height;
    return image;
}

std::optional<std::string> JpegImageCodec::encodeJpeg(const RgbaImage& image, double quality) const {
    std::string out;
    if (!appendJpeg(image, quality, out)) {
        return std::nullopt;
    }
    return out;
}

bool JpegImageCodec::appendJpeg(const RgbaImage& image, double quality, std::string& out) const {
    // JPEG dimensions are at most 65500.
    if (image.empty() || image.width > JPEG_MAX_DIMENSION || image.height > JPEG_MAX_DIMENSION ||
        image.pixels.size() !=
            static_cast<std::size_t>(image.width) * static_cast<std::size_t>(image.height) * 4) {
        return false;
    }
    const auto kept = out.size();
    if (!compress(image, libjpegQuality(quality), out)) {
        out.resize(kept);
        return false;
    }
    return true;
}

}  // namespace ovix::platform
