#include "platform/cairo/PresentationDigest.h"

#include <bit>
#include <typeinfo>

#include "ovix/kit/Control.h"
#include "ovix/kit/ImageView.h"
#include "ovix/kit/Label.h"
#include "ovix/kit/ProgressView.h"
#include "ovix/kit/TableViewCell.h"
#include "ovix/kit/TextField.h"
#include "ovix/kit/TextView.h"

namespace ovix::platform::gtk {

std::uint64_t PresentationDigest::of(const kit::View& root, double time) {
    PresentationDigest digest(time);
    digest.add(root, root.tintColor());
    return digest.hash_;
}

void PresentationDigest::mix(std::uint64_t value) {
    // FNV-1a over the value's bytes.
    for (int i = 0; i < 8; ++i) {
        hash_ ^= (value >> (8 * i)) & 0xFF;
        hash_ *= 1099511628211ull;
    }
}

void PresentationDigest::mix(double value) {
    mix(std::bit_cast<std::uint64_t>(value));
}

void PresentationDigest::mix(std::string_view text) {
    mix(static_cast<std::uint64_t>(text.size()));
    for (unsigned char c : text) {
        hash_ ^= c;
        hash_ *= 1099511628211ull;
    }
}

void PresentationDigest::mix(const kit::Color& color) {
    mix(color.r());
    mix(color.g());
    mix(color.b());
    mix(color.a());
}

void PresentationDigest::mix(const kit::Rect& rect) {
    mix(rect.origin.x);
    mix(rect.origin.y);
    mix(rect.size.width);
    mix(rect.size.height);
}

void PresentationDigest::mix(const void* pointer) {
    mix(static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(pointer)));
}

void PresentationDigest::add(const kit::View& view, const kit::Color& inherited) {
    mix(&view);
    const auto shown = view.presentation(time_);
    mix(static_cast<std::uint64_t>(view.isHidden()));
    mix(shown.alpha);
    if (view.isHidden() || shown.alpha < 0.01) {
        return;  // nothing of it is drawn
    }
    mix(static_cast<const void*>(&typeid(view)));
    mix(shown.frame());
    mix(shown.bounds);
    mix(shown.backgroundColor.value_or(kit::Color::clear()));
    mix(static_cast<std::uint64_t>(view.clipsToBounds()));
    const auto& layer = view.layer();
    mix(layer.cornerRadius());
    mix(layer.borderWidth());
    mix(layer.borderColor());
    mix(layer.shadowColor().value_or(kit::Color::clear()));
    mix(layer.shadowOpacity());
    mix(layer.shadowRadius());
    mix(kit::Rect{{layer.shadowOffset().width, layer.shadowOffset().height}, {}});
    // Resolved top-down rather than by each view walking up to its ancestors.
    const kit::Color tint = view.hasOwnTintColor() ? view.tintColor() : inherited;
    mix(tint);
    addContent(view);
    mix(static_cast<std::uint64_t>(view.subviews().size()));
    for (const auto& subview : view.subviews()) {
        add(*subview, tint);
    }
}

void PresentationDigest::addContent(const kit::View& view) {
    if (const auto* control = dynamic_cast<const kit::Control*>(&view)) {
        mix(static_cast<std::uint64_t>(control->isEnabled() | control->isSelected() << 1 |
                                       control->isHighlighted() << 2));
    }
    if (const auto* label = dynamic_cast<const kit::Label*>(&view)) {
        mix(label->text());
        mix(label->font().pointSize());
        mix(static_cast<std::uint64_t>(label->font().isBold()));
        mix(label->textColor());
        mix(static_cast<std::uint64_t>(label->textAlignment()));
        mix(static_cast<std::uint64_t>(label->numberOfLines()));
    } else if (const auto* image = dynamic_cast<const kit::ImageView*>(&view)) {
        mix(image->image().get());
        mix(static_cast<std::uint64_t>(view.contentMode()));
    } else if (const auto* progress = dynamic_cast<const kit::ProgressView*>(&view)) {
        mix(progress->presentationProgress(time_));
        mix(progress->progressTintColor().value_or(kit::Color::clear()));
        mix(progress->trackTintColor().value_or(kit::Color::clear()));
    } else if (const auto* field = dynamic_cast<const kit::TextField*>(&view)) {
        mix(field->text());
        mix(field->placeholder());
        mix(field->textColor());
        mix(field->font().pointSize());
        mix(static_cast<std::uint64_t>(field->isEditing() | field->isSecureTextEntry() << 1));
        mix(static_cast<std::uint64_t>(field->textAlignment()) << 8 |
            static_cast<std::uint64_t>(field->borderStyle()));
        mix(static_cast<std::uint64_t>(field->selection().anchor));
        mix(static_cast<std::uint64_t>(field->selection().caret));
    } else if (const auto* text = dynamic_cast<const kit::TextView*>(&view)) {
        mix(text->text());
        mix(text->textColor());
        mix(text->font().pointSize());
        mix(static_cast<std::uint64_t>(text->isEditing()));
        mix(static_cast<std::uint64_t>(text->selection().anchor));
        mix(static_cast<std::uint64_t>(text->selection().caret));
    } else if (const auto* cell = dynamic_cast<const kit::TableViewCell*>(&view)) {
        mix(static_cast<std::uint64_t>(cell->accessoryType()));
    }
}

}  // namespace ovix::platform::gtk
