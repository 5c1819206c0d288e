#include <gtest/gtest.h>

#include "KitTest.h"
#include "ovix/kit/Button.h"
#include "ovix/kit/Image.h"
#include "ovix/kit/ImageView.h"
#include "ovix/kit/Label.h"
#include "ovix/kit/TextMeasurer.h"
#include "support/ScratchDirectory.h"

namespace ovix::test {
namespace {

using kit::Color;
using kit::Rect;
using kit::Size;

/// The first bytes of a PNG of the given pixel size: enough for its header to be read.
std::string pngHeader(unsigned width, unsigned height) {
    std::string bytes("\x89PNG\r\n\x1a\n\0\0\0\x0dIHDR", 16);
    for (unsigned v : {width, height}) {
        for (int shift = 24; shift >= 0; shift -= 8) {
            bytes.push_back(static_cast<char>((v >> shift) & 0xFF));
        }
    }
    bytes += std::string("\x08\x06\0\0\0", 5);
    return bytes;
}

class Appearance : public KitTest {
  protected:
    testing::HeadlessPlatform::Options options() override {
        dir.write("OvixSdkResources.bundle/ic_sdk_float.png", pngHeader(96, 48));
        dir.write("OvixSdkResources.bundle/user@2x.png", pngHeader(60, 60));
        dir.write("OvixSdkResources.bundle/broken.png", "not an image");
        testing::HeadlessPlatform::Options o;
        o.codeResources = dir.path();
        return o;
    }

    ScratchDirectory dir{"ovix-kit-images"};
};

TEST_F(Appearance, BundleImagesByNameWithTheirPointSize) {
    auto logo = kit::Image::named("ic_sdk_float");
    ASSERT_NE(logo, nullptr);
    EXPECT_EQ(logo->size(), (Size{96, 48}));
    EXPECT_FALSE(logo->isTemplate());
    auto user = kit::Image::named("user");
    ASSERT_NE(user, nullptr);
    EXPECT_EQ(user->scale(), 2);
    EXPECT_EQ(user->size(), (Size{30, 30}));
    auto broken = kit::Image::named("broken");
    ASSERT_NE(broken, nullptr) << "a file that is there is found, even if unreadable";
    EXPECT_EQ(broken->size(), (Size{0, 0}));
    EXPECT_EQ(kit::Image::named("ic_sdk_splash"), nullptr);
    EXPECT_EQ(kit::Image::named(""), nullptr);
}

TEST_F(Appearance, SystemSymbolsAreTemplatesFoundByExactName) {
    ASSERT_FALSE(kit::Image::systemSymbolNames().empty());
    for (auto name : kit::Image::systemSymbolNames()) {
        auto symbol = kit::Image::systemNamed(name);
        ASSERT_NE(symbol, nullptr) << name;
        EXPECT_TRUE(symbol->isSymbol());
        EXPECT_TRUE(symbol->isTemplate());
        EXPECT_GT(symbol->size().width, 0);
    }
    EXPECT_EQ(kit::Image::systemNamed("star"), nullptr);
    EXPECT_EQ(kit::Image::systemNamed("Clock"), nullptr);
    auto original =
        kit::Image::systemNamed("clock")->withRenderingMode(kit::ImageRenderingMode::alwaysOriginal);
    EXPECT_FALSE(original->isTemplate());
    EXPECT_TRUE(kit::Image::systemNamed("clock")->isTemplate()) << "the copy does not change the original";
    auto logo = kit::Image::named("ic_sdk_float")->withRenderingMode(kit::ImageRenderingMode::alwaysTemplate);
    EXPECT_TRUE(logo->isTemplate());
}

// Animated colours pass through here; the named colours themselves are constants.
TEST_F(Appearance, ColoursInterpolateEveryChannel) {
    EXPECT_EQ(Color::black().interpolated(Color::white(0.5, 0.5), 0.5), Color(0.25, 0.25, 0.25, 0.75));
}

TEST_F(Appearance, LabelsMeasureTheirTextAndWrapWhenAllowed) {
    auto label = kit::Label::create("Menu");
    label->setFont(kit::Font::boldSystemFont(20));
    Size one = label->intrinsicContentSize();
    EXPECT_EQ(one.height, std::ceil(20 * 1.2));
    EXPECT_GT(one.width, 0);
    label->setText("Menu Menu");
    EXPECT_GT(label->intrinsicContentSize().width, 2 * one.width);

    auto message = kit::Label::create("one two three four five six seven");
    message->setNumberOfLines(0);
    Size unwrapped = message->intrinsicContentSize();
    message->setPreferredMaxLayoutWidth(unwrapped.width / 2);
    Size wrapped = message->intrinsicContentSize();
    EXPECT_LE(wrapped.width, unwrapped.width / 2);
    EXPECT_GE(wrapped.height, 2 * unwrapped.height);
    message->setNumberOfLines(2);
    EXPECT_EQ(message->intrinsicContentSize().height, std::ceil(2 * kit::Font::systemFont(17).lineHeight()));
    EXPECT_EQ(kit::Label::create()->intrinsicContentSize(), (Size{0, 0}));
    EXPECT_FALSE(label->isUserInteractionEnabled());
}

TEST_F(Appearance, ButtonStatesFallBackToNormal) {
    auto button = kit::Button::create(kit::ButtonType::system, {0, 0, 200, 44});
    button->setTitle("Báo lỗi");
    button->setTitleColor(Color::white(), kit::ControlState::normal);
    button->setTitleColor(Color::gray(), kit::ControlState::disabled);
    EXPECT_EQ(button->titleLabel()->text(), "Báo lỗi");
    EXPECT_EQ(button->currentTitleColor(), Color::white());
    button->setEnabled(false);
    EXPECT_EQ(button->currentTitleColor(), Color::gray());
    EXPECT_EQ(button->currentTitle(), "Báo lỗi") << "no disabled title: the normal one";
    button->setHighlighted(true);
    button->setSelected(true);
    EXPECT_EQ(button->state(), kit::ControlState::disabled) << "disabled, then highlighted, then selected";
    button->setEnabled(true);
    EXPECT_EQ(button->state(), kit::ControlState::highlighted);
    button->setHighlighted(false);
    EXPECT_EQ(button->state(), kit::ControlState::selected);
    button->setSelected(false);

    auto plain = kit::Button::create(kit::ButtonType::system);
    plain->setTitle("← Back");
    EXPECT_EQ(plain->currentTitleColor(), Color::systemBlue());
    plain->setTintColor(Color::black());
    EXPECT_EQ(plain->currentTitleColor(), Color::black()) << "a system title follows the tint";
    EXPECT_EQ(plain->titleLabel()->textColor(), Color::black());
    EXPECT_EQ(kit::Button::create(kit::ButtonType::custom)->currentTitleColor(), Color::white());

    auto icon = kit::Image::systemNamed("list.dash");
    button->setImage(icon);
    button->setTitle(std::nullopt);
    EXPECT_TRUE(button->titleLabel()->isHidden());
    button->layoutIfNeeded();
    Size s = icon->size();
    EXPECT_EQ(button->imageView()->frame(),
              (Rect{(200 - s.width) / 2, (44 - s.height) / 2, s.width, s.height}));
    EXPECT_EQ(button->intrinsicContentSize(), s);
}

TEST_F(Appearance, ImageViewPlacesTheImageByContentMode) {
    auto view = kit::ImageView::create(kit::Image::named("ic_sdk_float"));  // 96 x 48
    EXPECT_EQ(view->intrinsicContentSize(), (Size{96, 48}));
    view->setFrame({0, 0, 100, 100});
    EXPECT_EQ(view->imageRect(), (Rect{0, 0, 100, 100}));
    view->setContentMode(kit::ContentMode::scaleAspectFit);
    EXPECT_EQ(view->imageRect(), (Rect{0, 25, 100, 50}));
    view->setContentMode(kit::ContentMode::scaleAspectFill);
    EXPECT_EQ(view->imageRect(), (Rect{-50, 0, 200, 100}));
    view->setContentMode(kit::ContentMode::bottomRight);
    EXPECT_EQ(view->imageRect(), (Rect{4, 52, 96, 48}));
    view->setImage(nullptr);
    EXPECT_EQ(view->imageRect(), (Rect{}));
    EXPECT_EQ(view->intrinsicContentSize(),
              (Size{kit::View::noIntrinsicMetric, kit::View::noIntrinsicMetric}));
}

}  // namespace
}  // namespace ovix::test
