#include "platform/cairo/KitRenderer.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>

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

struct Pixel {
    double r, g, b, a;
};
using Ink = std::function<bool(const Pixel&)>;

const Ink anyInk = [](const Pixel& p) { return p.a > 0.05; };
/// Opaque enough to judge the hue: red, green and blue dominant, or neutral dark.
const Ink reddish = [](const Pixel& p) { return p.a > 0.5 && p.r > 0.6 && p.g < 0.4 && p.b < 0.4; };
const Ink greenish = [](const Pixel& p) { return p.a > 0.5 && p.g > 0.6 && p.r < 0.4 && p.b < 0.4; };
const Ink bluish = [](const Pixel& p) { return p.a > 0.5 && p.b > 0.6 && p.r < 0.4 && p.g < 0.6; };
const Ink blackish = [](const Pixel& p) { return p.a > 0.5 && p.r < 0.2 && p.g < 0.2 && p.b < 0.2; };

/// A transparent ARGB surface `scale` pixels per point with `root` drawn on it.
class Canvas {
  public:
    Canvas(const kit::View& root, double scale = 3) : scale_(scale) {
        const auto size = root.bounds().size;
        surface_ = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, static_cast<int>(size.width * scale),
                                              static_cast<int>(size.height * scale));
        cairo_t* cr = cairo_create(surface_);
        cairo_scale(cr, scale, scale);
        cairo_translate(cr, -root.frame().origin.x, -root.frame().origin.y);
        platform::gtk::KitRenderer().draw(cr, root, 0);
        cairo_destroy(cr);
        cairo_surface_flush(surface_);
    }
    ~Canvas() { cairo_surface_destroy(surface_); }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    /// Pixels of `ink` in `area` (points); with `outside`, those in the rest of the canvas instead.
    int count(const Ink& ink, Rect area, bool outside = false) const {
        const int width = cairo_image_surface_get_width(surface_),
                  height = cairo_image_surface_get_height(surface_);
        int n = 0;
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const double px = (x + 0.5) / scale_, py = (y + 0.5) / scale_;
                const bool in =
                    px >= area.origin.x && px < area.maxX() && py >= area.origin.y && py < area.maxY();
                n += (in != outside) && ink(at(x, y));
            }
        }
        return n;
    }
    bool write(const std::filesystem::path& file) const {
        return cairo_surface_write_to_png(surface_, file.c_str()) == CAIRO_STATUS_SUCCESS;
    }

  private:
    Pixel at(int x, int y) const {
        const auto* row =
            cairo_image_surface_get_data(surface_) + y * cairo_image_surface_get_stride(surface_);
        const std::uint32_t v = reinterpret_cast<const std::uint32_t*>(row)[x];
        const double a = (v >> 24) / 255.0;
        auto channel = [&](int shift) { return a > 0 ? ((v >> shift) & 0xFF) / 255.0 / a : 0.0; };
        return {channel(16), channel(8), channel(0), a};
    }

    double scale_;
    cairo_surface_t* surface_;
};

class KitRendering : public KitTest {};

// All symbols on one sheet at 3x, written into the build tree for a person to look at; each glyph
// has tinted ink inside its image rect, none outside it, and a shape of its own.
TEST_F(KitRendering, SymbolsDrawTintedInsideTheirImageRectEachItsOwnShape) {
    const auto names = kit::Image::systemSymbolNames();
    auto sheet = kit::View::create(Rect{0, 0, 60.0 * names.size(), 60});
    std::vector<Rect> rects;
    for (std::size_t i = 0; i < names.size(); ++i) {
        auto view = kit::ImageView::create(kit::Image::systemNamed(names[i]));
        view->setFrame({60.0 * i + 10, 10, 40, 40});
        view->setTintColor(Color::systemRed());
        sheet->addSubview(view);
        rects.push_back(view->frame());
    }
    Canvas canvas(*sheet);
    ASSERT_TRUE(canvas.write(OVIX_RENDER_OUTPUT "/symbols@3x.png"));
    std::vector<std::vector<bool>> shapes;
    for (std::size_t i = 0; i < names.size(); ++i) {
        SCOPED_TRACE(std::string(names[i]));
        const Rect r = rects[i];
        EXPECT_GT(canvas.count(reddish, r), 0.08 * r.size.width * r.size.height * 9) << "tinted ink";
        EXPECT_EQ(canvas.count(anyInk, {r.origin.x - 10, 0, 60, 60}) - canvas.count(anyInk, r), 0)
            << "ink outside the image rect";
        std::vector<bool> shape;  // which cells of a 10 x 10 grid over the rect are mostly ink
        for (int cell = 0; cell < 100; ++cell) {
            const Rect part{r.origin.x + cell % 10 * 4, r.origin.y + cell / 10 * 4, 4, 4};
            shape.push_back(canvas.count(anyInk, part) > 72);
        }
        for (std::size_t j = 0; j < shapes.size(); ++j) {
            int differing = 0;
            for (std::size_t cell = 0; cell < shape.size(); ++cell) {
                differing += shape[cell] != shapes[j][cell];
            }
            EXPECT_GE(differing, 4) << "looks like " << names[j];
        }
        shapes.push_back(shape);
    }
}

TEST_F(KitRendering, SymbolsFollowContentModeAndRenderingMode) {
    struct Case {
        const char* what;
        kit::ContentMode mode;
        kit::ImageRenderingMode rendering;
        Rect inkArea;  // where all the ink must be, in the 80 x 40 view
        const Ink& ink;
    };
    const Case cases[] = {
        {"stretched over the view",
         kit::ContentMode::scaleToFill,
         kit::ImageRenderingMode::automatic,
         {0, 0, 80, 40},
         greenish},
        {"aspect fit: the middle square",
         kit::ContentMode::scaleAspectFit,
         kit::ImageRenderingMode::automatic,
         {20, 0, 40, 40},
         greenish},
        {"centred at its own size",
         kit::ContentMode::center,
         kit::ImageRenderingMode::automatic,
         {30, 10, 20, 20},
         greenish},
        {"original colours ignore the tint",
         kit::ContentMode::scaleAspectFit,
         kit::ImageRenderingMode::alwaysOriginal,
         {20, 0, 40, 40},
         blackish},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        auto holder = kit::View::create(Rect{0, 0, 80, 40});
        holder->setTintColor(Color::systemGreen());  // inherited by the image view
        auto view = kit::ImageView::create(
            kit::Image::systemNamed("multiply.circle")->withRenderingMode(c.rendering));
        view->setFrame({0, 0, 80, 40});
        view->setContentMode(c.mode);
        holder->addSubview(view);
        Canvas canvas(*holder);
        EXPECT_GT(canvas.count(c.ink, c.inkArea), 100);
        EXPECT_EQ(canvas.count(anyInk, c.inkArea, true), 0);
        EXPECT_GT(canvas.count(c.ink, {0, 0, 80, 40}), canvas.count(anyInk, {0, 0, 80, 40}) / 3)
            << "ink in the expected colour";
    }
}

TEST_F(KitRendering, TextFieldShowsPlaceholderOnlyWhenEmptyAndCaretOnlyInAVisibleTint) {
    const Ink placeholderGrey = [](const Pixel& p) {
        return p.a > 0.1 && p.a < 0.4 && p.b >= p.r && p.b - p.r < 0.15 && p.r < 0.5;
    };
    struct Case {
        const char* text;
        bool editing;
        Color tint;
        bool placeholderShown, textShown, caretShown;
    };
    const Case cases[] = {
        {"", false, Color::systemBlue(), true, false, false},
        {"Server 1", false, Color::systemBlue(), false, true, false},
        {"Server 1", true, Color::clear(), false, true, false},
        {"Server 1", true, Color::systemBlue(), false, true, true},
        {"", true, Color::systemBlue(), true, false, true},
    };
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
        if (c.editing) {
            ASSERT_TRUE(field->becomeFirstResponder());
        }
        Canvas canvas(*field);
        EXPECT_EQ(canvas.count(placeholderGrey, {0, 0, 200, 44}) > 20, c.placeholderShown);
        EXPECT_EQ(canvas.count(reddish, {0, 0, 200, 44}) > 20, c.textShown);
        EXPECT_EQ(canvas.count(bluish, {0, 0, 200, 44}) > 20, c.caretShown);
        EXPECT_EQ(canvas.count(anyInk, {0, 0, 12, 44}), 0) << "text starts after the left view";
        field->removeFromSuperview();
    }
}

TEST_F(KitRendering, CheckmarkAccessoryOnlyOnCheckedRows) {
    for (auto accessory :
         {kit::TableViewCellAccessoryType::checkmark, kit::TableViewCellAccessoryType::none}) {
        const bool checked = accessory == kit::TableViewCellAccessoryType::checkmark;
        SCOPED_TRACE(checked ? "checked" : "unchecked");
        auto cell = kit::TableViewCell::create();
        cell->setFrame({0, 0, 320, 44});
        cell->setTintColor(Color::systemBlue());
        cell->textLabel()->setText("Lỗi nạp thẻ");
        cell->setAccessoryType(accessory);
        cell->layoutSubviews();
        Canvas canvas(*cell);
        const Rect strip{320 - kit::TableViewCell::accessoryWidth, 0, kit::TableViewCell::accessoryWidth, 44};
        EXPECT_EQ(canvas.count(bluish, strip) > 50, checked);
        EXPECT_EQ(canvas.count(bluish, strip, true), 0) << "nothing tinted over the row's text";
        EXPECT_GT(canvas.count(blackish, {0, 0, 280, 44}), 50) << "the row's text is drawn";
    }
}

TEST_F(KitRendering, ScrollViewShowsItsContentAtTheOffsetClipped) {
    struct Case {
        double offset;
        Rect redShown;  // in the 100 x 200 root; the scroll view is its top half
    };
    const Case cases[] = {{0, {}}, {120, {0, 30, 100, 50}}, {180, {0, 0, 100, 20}}};
    for (const auto& c : cases) {
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
        EXPECT_EQ(canvas.count(reddish, c.redShown), c.redShown.size.width * c.redShown.size.height);
        EXPECT_EQ(canvas.count(anyInk, c.redShown, true), 0);
    }
}

// Labels are sized by the kit's fixed metrics; the face drawn may run a little wider, and a short
// title must then still show whole rather than as "Xo…".
TEST_F(KitRendering, SingleLineLabelsAtTheirMeasuredWidthShowTheWholeText) {
    for (const char* text : {"Xong", "Đóng", "Gửi Hỗ trợ"}) {
        SCOPED_TRACE(text);
        auto label = kit::Label::create(text);
        label->setFont(kit::Font::boldSystemFont(17));
        label->setTextColor(Color::black());
        auto inkAtWidth = [&](double width) {
            label->setFrame({0, 0, width, 30});
            return Canvas(*label).count(anyInk, {0, 0, width, 30});
        };
        const int roomy = inkAtWidth(400);
        EXPECT_GT(inkAtWidth(label->intrinsicContentSize().width), 0.85 * roomy);
    }
}

class BundleVariants : public KitRendering {
  protected:
    testing::HeadlessPlatform::Options options() override {
        testing::HeadlessPlatform::Options o;
        o.application.scale = screenScale;
        return o;
    }
    /// `name<suffix>.png`: a square of 10 points at `scale`, one colour per variant.
    void write(const std::string& file, int scale, Color colour) {
        cairo_surface_t* s = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 10 * scale, 10 * scale);
        cairo_t* cr = cairo_create(s);
        cairo_set_source_rgb(cr, colour.r(), colour.g(), colour.b());
        cairo_paint(cr);
        cairo_destroy(cr);
        cairo_surface_write_to_png(s, (dir / file).c_str());
        cairo_surface_destroy(s);
    }
    double screenScale = 1;
    ScratchDirectory dir{"ovix-render-variants"};
};

// The file follows the screen's scale (else the nearest), the point size stays 10 x 10, and a 3x
// snapshot draws the @3x pixels whichever file the image came from.
TEST_F(BundleVariants, TheVariantForTheScaleIsChosenAndDrawn) {
    struct Case {
        double scale;
        bool withThree;
        const char* file;
        const Ink& drawnAt3x;
    };
    const Case cases[] = {
        {1, true, "icon.png", bluish},    {2, true, "icon@2x.png", bluish},
        {3, true, "icon@3x.png", bluish}, {3, false, "icon@2x.png", greenish},
        {1, false, "icon.png", greenish},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.file + std::string(" at ") + std::to_string(c.scale));
        std::filesystem::remove_all(dir.path());
        std::filesystem::create_directories(dir.path());
        write("icon.png", 1, Color::red());
        write("icon@2x.png", 2, Color::green());
        if (c.withThree) {
            write("icon@3x.png", 3, Color::blue());
        }
        screenScale = c.scale;
        SetUp();  // a platform with this screen
        auto image = kit::Image::named("icon", platform::Bundle(dir.path()));
        ASSERT_NE(image, nullptr);
        EXPECT_EQ(image->path()->filename(), c.file);
        EXPECT_EQ(image->size(), (kit::Size{10, 10}));
        auto view = kit::ImageView::create(image);
        view->setFrame({0, 0, 10, 10});
        Canvas canvas(*view, 3);
        EXPECT_EQ(canvas.count(c.drawnAt3x, {0, 0, 10, 10}), 900);
    }
}

}  // namespace
}  // namespace ovix::test
