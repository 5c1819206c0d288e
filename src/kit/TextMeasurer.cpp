#include "ovix/kit/TextMeasurer.h"

#include <cmath>
#include <string>
#include <vector>

namespace ovix::kit {

namespace {

/// Fixed advance per character, so widths never depend on installed fonts.
class EstimatingTextMeasurer : public TextMeasurer {
  public:
    Size measure(std::string_view text, const Font& font, double maxWidth, int maxLines) const override {
        if (text.empty()) {
            return {};
        }
        const double advance = font.pointSize() * (font.isBold() ? 0.58 : 0.55);
        std::vector<double> lines;
        std::size_t start = 0;
        while (start <= text.size()) {
            std::size_t end = text.find('\n', start);
            if (end == std::string_view::npos) {
                end = text.size();
            }
            wrap(text.substr(start, end - start), advance, maxWidth, lines);
            start = end + 1;
        }
        if (maxLines > 0 && static_cast<int>(lines.size()) > maxLines) {
            lines.resize(static_cast<std::size_t>(maxLines));
        }
        double width = 0;
        for (double w : lines) {
            width = std::max(width, w);
        }
        return {std::ceil(width), std::ceil(font.lineHeight() * static_cast<double>(lines.size()))};
    }

  private:
    static std::size_t codePoints(std::string_view s) {
        std::size_t n = 0;
        for (unsigned char c : s) {
            n += (c & 0xC0) != 0x80 ? 1 : 0;
        }
        return n;
    }

    /// Greedy word wrap of one paragraph; a word longer than the line gets a line of its own.
    static void wrap(std::string_view paragraph, double advance, double maxWidth,
                     std::vector<double>& lines) {
        const double spaceWidth = advance;
        if (maxWidth <= 0) {
            lines.push_back(advance * static_cast<double>(codePoints(paragraph)));
            return;
        }
        double line = -1;  // -1: the line has no word yet
        std::size_t pos = 0;
        while (pos <= paragraph.size()) {
            std::size_t space = paragraph.find(' ', pos);
            if (space == std::string_view::npos) {
                space = paragraph.size();
            }
            double word = advance * static_cast<double>(codePoints(paragraph.substr(pos, space - pos)));
            if (line < 0) {
                line = word;
            } else if (line + spaceWidth + word <= maxWidth) {
                line += spaceWidth + word;
            } else {
                lines.push_back(line);
                line = word;
            }
            pos = space + 1;
        }
        lines.push_back(std::max(line, 0.0));
    }
};

std::shared_ptr<const TextMeasurer>& installed() {
    static std::shared_ptr<const TextMeasurer> measurer = std::make_shared<EstimatingTextMeasurer>();
    return measurer;
}

}  // namespace

const TextMeasurer& TextMeasurer::current() {
    return *installed();
}

void TextMeasurer::install(std::shared_ptr<const TextMeasurer> measurer) {
    installed() = measurer ? std::move(measurer) : std::make_shared<EstimatingTextMeasurer>();
}

}  // namespace ovix::kit
