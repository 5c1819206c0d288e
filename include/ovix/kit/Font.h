#pragma once

#include <ostream>

namespace ovix::kit {

enum class FontWeight { regular, medium, semibold, bold };

/// The system font at a size and weight. Metrics are fixed ratios of the size so layout is the same
/// headless and on screen; the renderer picks the face.
class Font {
  public:
    constexpr Font() = default;
    constexpr explicit Font(double pointSize, FontWeight weight = FontWeight::regular)
        : pointSize_(pointSize), weight_(weight) {}

    static constexpr Font systemFont(double size, FontWeight weight = FontWeight::regular) {
        return Font(size, weight);
    }
    static constexpr Font boldSystemFont(double size) { return Font(size, FontWeight::bold); }

    constexpr double pointSize() const { return pointSize_; }
    constexpr FontWeight weight() const { return weight_; }
    constexpr bool isBold() const { return weight_ == FontWeight::bold || weight_ == FontWeight::semibold; }
    /// Height of one line of text.
    constexpr double lineHeight() const { return pointSize_ * 1.2; }

    friend constexpr bool operator==(const Font&, const Font&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Font& f) {
        return out << (f.isBold() ? "bold " : "") << f.pointSize_ << "pt";
    }

  private:
    double pointSize_ = 17;
    FontWeight weight_ = FontWeight::regular;
};

}  // namespace ovix::kit
