#include "platform/plist/PropertyListNesting.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace ovix::platform {

namespace {

constexpr std::string_view kBinaryMagic = "bplist00";
constexpr std::size_t kTrailerSize = 32;

std::optional<std::uint64_t> readBigEndian(std::string_view bytes, std::uint64_t at, std::size_t width) {
    if (width == 0 || width > 8 || at > bytes.size() || bytes.size() - at < width) {
        return std::nullopt;
    }
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < width; ++i) {
        value = (value << 8) | static_cast<unsigned char>(bytes[at + i]);
    }
    return value;
}

bool startsWithName(std::string_view text, std::size_t at, std::string_view name) {
    if (at >= text.size() || text.compare(at, name.size(), name) != 0 || at + name.size() >= text.size()) {
        return false;
    }
    const char next = text[at + name.size()];
    return next == '>' || next == '/' || next == ' ' || next == '\t' || next == '\r' || next == '\n';
}

// The binary format's object table: where each object starts and how wide its references are.
struct BinaryTable {
    std::string_view bytes;
    std::uint64_t count = 0;
    std::uint64_t top = 0;
    std::uint64_t offsets = 0;
    std::size_t offsetWidth = 0;
    std::size_t refWidth = 0;

    static std::optional<BinaryTable> read(std::string_view bytes) {
        if (bytes.size() < kBinaryMagic.size() + kTrailerSize) {
            return std::nullopt;
        }
        const std::uint64_t trailer = bytes.size() - kTrailerSize;
        BinaryTable t;
        t.bytes = bytes;
        t.offsetWidth = static_cast<unsigned char>(bytes[trailer + 6]);
        t.refWidth = static_cast<unsigned char>(bytes[trailer + 7]);
        auto count = readBigEndian(bytes, trailer + 8, 8);
        auto top = readBigEndian(bytes, trailer + 16, 8);
        auto offsets = readBigEndian(bytes, trailer + 24, 8);
        if (!count || !top || !offsets || *top >= *count || t.offsetWidth == 0 || t.offsetWidth > 8 ||
            t.refWidth == 0 || t.refWidth > 8 || *count > trailer / t.offsetWidth || *offsets > trailer ||
            trailer - *offsets < *count * t.offsetWidth) {
            return std::nullopt;
        }
        t.count = *count;
        t.top = *top;
        t.offsets = *offsets;
        return t;
    }

    struct Node {
        bool container = false;
        std::vector<std::uint64_t> children;  // a dictionary's keys first
        std::uint64_t keys = 0;
    };

    // A UTF-16 string holding U+0000 as a dictionary key passes libplist's parser and then fails an
    // assertion when the key is read; such a list is treated as broken.
    bool keyIsReadable(std::uint64_t object) const {
        auto start = readBigEndian(bytes, offsets + object * offsetWidth, offsetWidth);
        if (!start || *start >= bytes.size() || (static_cast<unsigned char>(bytes[*start]) >> 4) != 0x6) {
            return true;  // ASCII keys are read up to a NUL; anything else libplist refuses itself
        }
        auto length = lengthAt(*start);
        if (!length) {
            return false;
        }
        for (std::uint64_t i = 0; i < length->first; ++i) {
            auto unit = readBigEndian(bytes, length->second + 2 * i, 2);
            if (!unit || *unit == 0) {
                return false;
            }
        }
        return true;
    }

    // The element count of the object at `start` and where its contents begin.
    std::optional<std::pair<std::uint64_t, std::uint64_t>> lengthAt(std::uint64_t start) const {
        std::uint64_t length = static_cast<unsigned char>(bytes[start]) & 0x0F;
        std::uint64_t at = start + 1;
        if (length == 0x0F) {  // the length follows as an integer object
            auto intMarker = readBigEndian(bytes, at, 1);
            if (!intMarker || (*intMarker >> 4) != 0x1 || (*intMarker & 0x0F) > 3) {
                return std::nullopt;
            }
            const std::size_t width = std::size_t{1} << (*intMarker & 0x0F);
            auto n = readBigEndian(bytes, at + 1, width);
            if (!n) {
                return std::nullopt;
            }
            length = *n;
            at += 1 + width;
        }
        return std::make_pair(length, at);
    }

    // What an object refers to; nullopt when the bytes are broken.
    std::optional<Node> node(std::uint64_t object) const {
        auto start = readBigEndian(bytes, offsets + object * offsetWidth, offsetWidth);
        if (!start || *start >= bytes.size()) {
            return std::nullopt;
        }
        const auto marker = static_cast<unsigned char>(bytes[*start]);
        const unsigned type = marker >> 4;
        if (type != 0xA && type != 0xC && type != 0xD) {
            return Node{};
        }
        auto counted = lengthAt(*start);
        if (!counted) {
            return std::nullopt;
        }
        const auto [length, at] = *counted;
        const std::uint64_t refs = type == 0xD ? length * 2 : length;
        if (refs > (bytes.size() - std::min<std::uint64_t>(at, bytes.size())) / refWidth) {
            return std::nullopt;
        }
        Node out{true, {}, type == 0xD ? length : 0};
        out.children.reserve(refs);
        for (std::uint64_t i = 0; i < refs; ++i) {
            auto ref = readBigEndian(bytes, at + i * refWidth, refWidth);
            if (!ref || *ref >= count) {
                return std::nullopt;
            }
            if (i < out.keys && !keyIsReadable(*ref)) {
                return std::nullopt;
            }
            out.children.push_back(*ref);
        }
        return out;
    }
};

}  // namespace

std::optional<std::size_t> PropertyListNesting::measure(std::string_view bytes, std::size_t limit) {
    if (bytes.substr(0, kBinaryMagic.size()) == kBinaryMagic) {
        return measureBinary(bytes, limit);
    }
    return measureXml(bytes, limit);
}

std::size_t PropertyListNesting::measureXml(std::string_view text, std::size_t limit) {
    std::size_t depth = 0;
    std::size_t deepest = 0;
    for (std::size_t at = text.find('<'); at != std::string_view::npos && deepest <= limit;
         at = text.find('<', at + 1)) {
        if (text.compare(at, 4, "<!--") == 0) {
            at = text.find("-->", at);
        } else if (text.compare(at, 9, "<![CDATA[") == 0) {
            at = text.find("]]>", at);
        } else if (startsWithName(text, at + 1, "array") || startsWithName(text, at + 1, "dict")) {
            const std::size_t end = text.find('>', at);
            if (end != std::string_view::npos && text[end - 1] != '/') {
                deepest = std::max(deepest, ++depth);
            }
        } else if ((startsWithName(text, at + 2, "array") || startsWithName(text, at + 2, "dict")) &&
                   text[at + 1] == '/' && depth > 0) {
            --depth;
        }
        if (at == std::string_view::npos) {
            break;
        }
    }
    return deepest;
}

std::optional<std::size_t> PropertyListNesting::measureBinary(std::string_view bytes, std::size_t limit) {
    auto table = BinaryTable::read(bytes);
    if (!table) {
        return std::nullopt;
    }
    // Depth-first with an explicit stack; each object's depth is kept, so shared objects are measured
    // once, and meeting an object still on the stack means the list refers back into itself.
    enum : std::uint8_t { Unseen, Open, Done };
    std::vector<std::uint8_t> state(table->count, Unseen);
    std::vector<std::size_t> depth(table->count, 0);
    struct Frame {
        std::uint64_t object;
        std::vector<std::uint64_t> children;
        std::size_t next = 0;
    };
    std::vector<Frame> stack;
    auto enter = [&](std::uint64_t object) -> bool {
        auto node = table->node(object);
        if (!node) {
            return false;
        }
        state[object] = Open;
        depth[object] = node->container ? 1 : 0;
        stack.push_back({object, std::move(node->children)});
        return true;
    };
    if (!enter(table->top)) {
        return std::nullopt;
    }
    while (!stack.empty()) {
        Frame& frame = stack.back();
        if (frame.next == frame.children.size()) {
            state[frame.object] = Done;
            const auto finished = frame.object;
            stack.pop_back();
            if (!stack.empty()) {
                depth[stack.back().object] = std::max(depth[stack.back().object], depth[finished] + 1);
            }
            continue;
        }
        const std::uint64_t child = frame.children[frame.next++];
        if (state[child] == Open) {
            return std::nullopt;
        }
        if (state[child] == Done) {
            depth[frame.object] = std::max(depth[frame.object], depth[child] + 1);
        } else if (stack.size() > limit) {
            return stack.size();
        } else if (!enter(child)) {
            return std::nullopt;
        }
    }
    return depth[table->top];
}

}  // namespace ovix::platform
