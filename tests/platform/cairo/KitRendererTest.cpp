#include "platform/cairo/KitRenderer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <numeric>

#include "kit/KitTest.h"
#include "ovix/kit/ImageView.h"
#include "ovix/kit/Label.h"
#include "ovix/kit/ScrollView.h"
#include "ovix/kit/TableViewCell.h"
#include "ovix/kit/TextField.h"
#include "support/ScratchDirectory.h"

namespace ovix::test {
namespace {

using kit::Color;
using kit::Rect;

/// What a pixel shows: 'r', 'g', 'b' (that hue, opaque enough to judge), 'k' (black), 'p' (the faint
/// grey of a placeholder), '?' (other ink) or ' ' (nothing).
char kind(double r, double g, double b, double a) {
    if (a <= 0.05) {
        return ' ';
    }
    if (a > 0.1 && a < 0.4 && b >= r && b - r < 0.15 && r < 0.5) {
        return 'p';
    }
    if (a < 0.5 || std::min({r, g, b}) > 0.4) {
        return '?';
    }
    if (std::max({r, g, b}) < 0.2) {
        return 'k';
    }
    return r > 0.6 && g < 0.4 ? 'r' : g > 0.6 && r < 0.4 ? 'g' : b > 0.6 && r < 0.4 ? 'b' : '?';
}

/// Counts pixels of a kind (any ink for '*') in `root` drawn at `scale` pixels per point.
class Canvas {
  public:
    explicit Canvas(const kit::View& root, double scale = 3) : scale_(scale) {
        const auto size = root.bounds().size;
        surface_.reset(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, static_cast<int>(size.width * scale),
                                                  static_cast<int>(size.height * scale)));
        cairo_t* cr = cairo_create(surface_.get());
        cairo_scale(cr, scale, scale);
        platform::gtk::KitRenderer().draw(cr, root, 0);
        cairo_destroy(cr);
        cairo_surface_flush(surface_.get());
    }

    /// In `area` (points), or with `outside` in the rest of the canvas.
    int count(char k, Rect a, bool outside = false) const {
        const int stride = cairo_image_surface_get_stride(surface_.get());
        const int width = cairo_image_surface_get_width(surface_.get());
        const int height = cairo_image_surface_get_height(surface_.get());
        auto px = [&](double points, int limit) {
            return std::clamp(static_cast<int>(points * scale_), 0, limit);
        };
        int n = 0;
        for (int y = outside ? 0 : px(a.origin.y, height); y < (outside ? height : px(a.maxY(), height));
             ++y) {
            for (int x = outside ? 0 : px(a.origin.x, width); x < (outside ? width : px(a.maxX(), width));
                 ++x) {
                const bool in = x >= px(a.origin.x, width) && x < px(a.maxX(), width) &&
                                y >= px(a.origin.y, height) && y < px(a.maxY(), height);
                const auto* row = cairo_image_surface_get_data(surface_.get()) + y * stride;
                const std::uint32_t v = reinterpret_cast<const std::uint32_t*>(row)[x];
                const double alpha = (v >> 24) / 255.0;
                auto c = [&](int shift) { return alpha > 0 ? ((v >> shift) & 0xFF) / 255.0 / alpha : 0.0; };
                const char seen = kind(c(16), c(8), c(0), alpha);
                n += in != outside && (k == '*' ? seen != ' ' : seen == k);
            }
        }
        return n;
    }

  private:
    double scale_;
    std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)> surface_{nullptr,
                                                                                cairo_surface_destroy};
};

class KitRendering : public KitTest {};

// All symbols on one sheet at 3x, also written into the build tree for a person to look at: each
// glyph has tinted ink inside its image rect, none outside it, and a shape of its own.
TEST_F(KitRendering, SymbolsDrawTintedInsideTheirImageRectEachItsOwnShape) {
    const auto names = kit::Image::systemSymbolNames();
    auto sheet = kit::View::create(Rect{0, 0, 60.0 * names.size(), 60});
    for (std::size_t i = 0; i < names.size(); ++i) {
        auto view = kit::ImageView::create(kit::Image::systemNamed(names[i]));
        view->setFrame({60.0 * i + 10, 10, 40, 40});
        view->setTintColor(Color::systemRed());
        sheet->addSubview(view);
    }
    ASSERT_TRUE(platform::gtk::KitRenderer().writePng(*sheet, 0, 3, OVIX_RENDER_OUTPUT "/symbols@3x.png"));
    Canvas canvas(*sheet);
    std::vector<std::vector<bool>> shapes;
    for (std::size_t i = 0; i < names.size(); ++i) {
        SCOPED_TRACE(std::string(names[i]));
        const Rect r{60.0 * i + 10, 10, 40, 40};
        EXPECT_GT(canvas.count('r', r), 0.08 * 40 * 40 * 9) << "tinted ink";
        EXPECT_EQ(canvas.count('*', {r.origin.x - 10, 0, 60, 60}) - canvas.count('*', r), 0) << "ink outside";
        std::vector<bool> shape;  // which cells of a 10 x 10 grid over the rect are mostly ink
        for (int cell = 0; cell < 100; ++cell) {
            shape.push_back(canvas.count('*', {r.origin.x + cell % 10 * 4, 10.0 + cell / 10 * 4, 4, 4}) > 72);
        }
        for (std::size_t j = 0; j < shapes.size(); ++j) {
            auto differing = std::inner_product(shape.begin(), shape.end(), shapes[j].begin(), 0,
                                                std::plus<>(), std::not_equal_to<>());
            EXPECT_GE(differing, 4) << "looks like " << names[j];
        }
        shapes.push_back(shape);
    }
}

TEST_F(KitRendering, SymbolsFollowContentModeAndRenderingMode) {
    struct Case {
        kit::ContentMode mode;
        kit::ImageRenderingMode rendering;
        Rect inkArea;  // where all the ink must be, in the 80 x 40 view
        char ink;
    };
    const Case cases[] = {
        {kit::ContentMode::scaleAspectFit, kit::ImageRenderingMode::automatic, {20, 0, 40, 40}, 'g'},
        {kit::ContentMode::center, kit::ImageRenderingMode::automatic, {30, 10, 20, 20}, 'g'},
        {kit::ContentMode::scaleAspectFit, kit::ImageRenderingMode::alwaysOriginal, {20, 0, 40, 40}, 'k'}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.ink);
        auto holder = kit::View::create(Rect{0, 0, 80, 40});
        holder->setTintColor(Color::systemGreen());  // inherited by the image view
        auto view = kit::ImageView::create(kit::Image::systemNamed("clock")->withRenderingMode(c.rendering));
        view->setFrame({0, 0, 80, 40});
        view->setContentMode(c.mode);
        holder->addSubview(view);
        Canvas canvas(*holder);
        EXPECT_GT(canvas.count(c.ink, c.inkArea), canvas.count('*', c.inkArea) / 3) << "mostly this colour";
        EXPECT_EQ(canvas.count('*', c.inkArea, true), 0);
    }
}

TEST_F(KitRendering, TextFieldShowsPlaceholderOnlyWhenEmptyAndCaretOnlyInAVisibleTint) {
    struct Case {
        const char* text;
        bool editing;
        Color tint;
        bool placeholderShown, textShown, caretShown;
    };
    const Case cases[] = {{"", false, Color::systemBlue(), true, false, false},
                          {"Server 1", false, Color::systemBlue(), false, true, false},
                          {"Server 1", true, Color::clear(), false, true, false},
                          {"Server 1", true, Color::systemBlue(), false, true, true},
                          {"", true, Color::systemBlue(), true, false, true}};
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string("text \"") + c.text + "\" editing " + std::to_string(c.editing));
        auto field = kit::TextField::create(Rect{0, 0, 200, 44});
        field->setPlaceholder("Tiêu đề");
        field->setText(c.text);
        field->setTextColor(Color::systemRed());
        field->setTintColor(c.tint);
        field->setLeftView(kit::View::create(Rect{0, 0, 12, 44}));
        field->setLeftViewMode(kit::TextFieldViewMode::always);
        window()->addSubview(field);
        ASSERT_EQ(c.editing, c.editing && field->becomeFirstResponder());
        Canvas canvas(*field);
        EXPECT_EQ(canvas.count('p', {0, 0, 200, 44}) > 20, c.placeholderShown);
        EXPECT_EQ(canvas.count('r', {0, 0, 200, 44}) > 20, c.textShown);
        EXPECT_EQ(canvas.count('b', {0, 0, 200, 44}) > 20, c.caretShown);
        EXPECT_EQ(canvas.count('*', {0, 0, 12, 44}), 0) << "text starts after the left view";
        field->removeFromSuperview();
    }
}

// The caret stands at the selection's moving end, a selection is a faint highlight instead, and a
// text longer than the field slides so that the caret stays inside it.
TEST_F(KitRendering, TheFocusedFieldShowsItsCaretWhereTheSelectionIs) {
    struct Case {
        const char* name;
        std::string text;
        kit::TextSelection selection;
        Rect caretArea;      // where the caret's blue is, if anywhere
        Rect highlightArea;  // where the highlight is, if anywhere
    };
    const std::string longText = "Không kết nối được máy chủ, vui lòng thử lại sau ít phút";
    const Case cases[] = {
        {"caret at the start", "Lỗi mạng", kit::TextSelection::at(0), {0, 0, 4, 44}, {}},
        {"caret after Lỗi", "Lỗi mạng", kit::TextSelection::at(5), {8, 0, 22, 44}, {}},
        {"Lỗi selected", "Lỗi mạng", {0, 5}, {}, {0, 0, 18, 44}},
        {"long text, caret at its end",
         longText,
         kit::TextSelection::at(longText.size()),
         {190, 0, 10, 44},
         {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        auto field = kit::TextField::create(Rect{0, 0, 200, 44});
        field->setText(c.text);
        field->setTextColor(Color::systemRed());
        field->setTintColor(Color::systemBlue());
        window()->addSubview(field);
        ASSERT_TRUE(field->becomeFirstResponder());
        field->setSelection(c.selection);
        Canvas canvas(*field);
        const Rect all{0, 0, 200, 44};
        EXPECT_EQ(canvas.count('b', all) > 20, !c.caretArea.isEmpty());
        EXPECT_EQ(canvas.count('b', c.caretArea, true), 0) << "no caret elsewhere";
        if (!c.highlightArea.isEmpty()) {
            const int behind = canvas.count('?', c.highlightArea);
            EXPECT_GT(behind, 0.3 * 18 * 20 * 9) << "a highlight behind Lỗi";
            EXPECT_GT(behind, 3 * canvas.count('?', {30, 0, 18, 44})) << "only edges of ink behind mạng";
        }
        field->removeFromSuperview();
    }
}

TEST_F(KitRendering, CheckmarkAccessoryOnlyOnCheckedRows) {
    for (bool checked : {true, false}) {
        SCOPED_TRACE(checked);
        auto cell = kit::TableViewCell::create();
        cell->setFrame({0, 0, 320, 44});
        cell->setTintColor(Color::systemBlue());
        cell->textLabel()->setText("Lỗi nạp thẻ");
        cell->setAccessoryType(checked ? kit::TableViewCellAccessoryType::checkmark
                                       : kit::TableViewCellAccessoryType::none);
        cell->layoutSubviews();
        Canvas canvas(*cell);
        const Rect strip{320 - kit::TableViewCell::accessoryWidth, 0, kit::TableViewCell::accessoryWidth, 44};
        EXPECT_EQ(canvas.count('b', strip) > 50, checked);
        EXPECT_EQ(canvas.count('b', strip, true), 0) << "nothing tinted over the row's text";
        EXPECT_GT(canvas.count('k', {0, 0, 280, 44}), 50) << "the row's text is drawn";
    }
}

TEST_F(KitRendering, ScrollViewShowsItsContentAtTheOffsetClipped) {
    struct Case {
        double offset;
        Rect redShown;  // in the 100 x 200 root; the scroll view is its top half
    };
    for (const auto& c : {Case{0, {}}, Case{120, {0, 30, 100, 50}}, Case{180, {0, 0, 100, 20}}}) {
        SCOPED_TRACE(c.offset);
        auto root = kit::View::create(Rect{0, 0, 100, 200});
        auto scroll = kit::ScrollView::create(Rect{0, 0, 100, 100});
        scroll->setContentSize({100, 300});
        auto block = kit::View::create(Rect{0, 150, 100, 50});
        block->setBackgroundColor(Color::red());
        scroll->addSubview(block);
        root->addSubview(scroll);
        scroll->setContentOffset({0, c.offset});
        Canvas canvas(*root, 1);
        EXPECT_EQ(canvas.count('r', c.redShown), c.redShown.size.width * c.redShown.size.height);
        EXPECT_EQ(canvas.count('*', c.redShown, true), 0);
    }
}

// Labels are sized by the kit's fixed metrics; the face drawn may run a little wider, and a short
// title must then still show whole rather than as "Xo…".
TEST_F(KitRendering, SingleLineLabelsAtTheirMeasuredWidthShowTheWholeText) {
    for (const char* text : {"Xong", "Đóng", "Gửi Hỗ trợ"}) {
        SCOPED_TRACE(text);
        auto label = kit::Label::create(text);
        label->setFont(kit::Font::boldSystemFont(17));
        auto inkAtWidth = [&](double width) {
            label->setFrame({0, 0, width, 30});
            return Canvas(*label).count('*', {0, 0, width, 30});
        };
        const int roomy = inkAtWidth(400);
        EXPECT_GT(inkAtWidth(label->intrinsicContentSize().width), 0.85 * roomy);
    }
}

// The file follows the scale (else the nearest), the size stays 10 x 10 points, and a 3x drawing
// shows the @3x pixels whichever file the image came from. The headless main screen is 3x.
TEST_F(KitRendering, BundleImagesUseTheVariantForTheScale) {
    ScratchDirectory dir{"ovix-render-variants"};
    std::filesystem::create_directories(dir / "all");
    std::filesystem::create_directories(dir / "no3x");
    auto write = [&](const std::string& file, double scale, Color colour) {
        auto square = kit::View::create(Rect{0, 0, 10, 10});
        square->setBackgroundColor(colour);  // the colour tells which file was drawn
        ASSERT_TRUE(platform::gtk::KitRenderer().writePng(*square, 0, scale, dir / file));
    };
    write("all/icon.png", 1, Color::red());
    write("all/icon@2x.png", 2, Color::green());
    write("all/icon@3x.png", 3, Color::blue());
    write("no3x/icon.png", 1, Color::red());
    write("no3x/icon@2x.png", 2, Color::green());
    struct Case {
        const char* folder;
        double scale;  // 0: the main screen's
        const char* file;
        char drawnAt3x;
    };
    for (const auto& c : {Case{"all", 1, "icon.png", 'b'}, Case{"all", 2, "icon@2x.png", 'b'},
                          Case{"all", 0, "icon@3x.png", 'b'}, Case{"no3x", 0, "icon@2x.png", 'g'},
                          Case{"no3x", 1, "icon.png", 'g'}}) {
        SCOPED_TRACE(std::string(c.folder) + " at " + std::to_string(c.scale));
        const platform::Bundle bundle(dir / c.folder);
        auto image = c.scale ? kit::Image::named("icon", bundle, c.scale) : kit::Image::named("icon", bundle);
        ASSERT_NE(image, nullptr);
        EXPECT_EQ(image->path()->filename(), c.file);
        EXPECT_EQ(image->size(), (kit::Size{10, 10}));
        Canvas canvas(*kit::ImageView::create(image), 3);
        EXPECT_EQ(canvas.count(c.drawnAt3x, {0, 0, 10, 10}), 900);
    }
}

}  // namespace
}  // namespace ovix::test

// Fontconfig keeps its font cache for the life of the process and never frees it.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libfontconfig.so\n";
}
