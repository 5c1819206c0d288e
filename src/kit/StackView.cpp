#include "ovix/kit/StackView.h"

#include <algorithm>

namespace ovix::kit {

namespace {

std::shared_ptr<LayoutConstraint> relate(LayoutItem& a, LayoutAttribute aa, LayoutRelation r, LayoutItem* b,
                                         LayoutAttribute ba, double multiplier, double constant,
                                         float priority = LayoutPriority::required) {
    auto c = LayoutConstraint::create(a.shared_from_this(), aa, r, b ? b->shared_from_this() : nullptr, ba,
                                      b ? multiplier : 0, constant);
    c->setPriority(priority);
    return c;
}

}  // namespace

std::shared_ptr<StackView> StackView::create(std::vector<std::shared_ptr<View>> arranged) {
    auto stack = std::make_shared<StackView>();
    for (auto& view : arranged) {
        stack->addArrangedSubview(std::move(view));
    }
    return stack;
}

void StackView::addArrangedSubview(std::shared_ptr<View> view) {
    insertArrangedSubview(std::move(view), arranged_.size());
}

void StackView::insertArrangedSubview(std::shared_ptr<View> view, std::size_t index) {
    if (!view) {
        return;
    }
    std::erase(arranged_, view);
    view->setTranslatesAutoresizingMaskIntoConstraints(false);
    if (view->superview().get() != this) {
        addSubview(view);
    }
    arranged_.insert(arranged_.begin() + static_cast<std::ptrdiff_t>(std::min(index, arranged_.size())),
                     view);
    rebuild();
}

void StackView::removeArrangedSubview(const View& view) {
    std::erase_if(arranged_, [&](auto& v) { return v.get() == &view; });
    rebuild();
}

void StackView::setAxis(LayoutAxis axis) {
    axis_ = axis;
    rebuild();
}

void StackView::setDistribution(StackViewDistribution distribution) {
    distribution_ = distribution;
    rebuild();
}

void StackView::setAlignment(StackViewAlignment alignment) {
    alignment_ = alignment;
    rebuild();
}

void StackView::setSpacing(double spacing) {
    spacing_ = spacing;
    rebuild();
}

void StackView::setLayoutMarginsRelativeArrangement(bool value) {
    marginsRelative_ = value;
    rebuild();
}

void StackView::subviewVisibilityDidChange(View& subview) {
    if (std::any_of(arranged_.begin(), arranged_.end(), [&](auto& v) { return v.get() == &subview; })) {
        rebuild();
    }
}

void StackView::willRemoveSubview(View& subview) {
    if (std::erase_if(arranged_, [&](auto& v) { return v.get() == &subview; }) > 0) {
        rebuild();
    }
}

void StackView::rebuild() {
    LayoutConstraint::deactivate(generated_);
    generated_.clear();
    for (auto& gap : gaps_) {
        removeLayoutGuide(*gap);
    }
    gaps_.clear();
    // Views that left the stack's subviews leave the arrangement too.
    std::erase_if(arranged_, [this](auto& v) { return v->superview().get() != this; });

    std::vector<std::shared_ptr<View>> shown;
    for (auto& v : arranged_) {
        if (!v->isHidden()) {
            shown.push_back(v);
        }
    }
    setNeedsLayout();
    if (shown.empty()) {
        return;
    }
    const bool h = axis_ == LayoutAxis::horizontal;
    LayoutItem& edge = marginsRelative_ ? static_cast<LayoutItem&>(layoutMarginsGuide()) : *this;
    const auto start = h ? LayoutAttribute::leading : LayoutAttribute::top;
    const auto end = h ? LayoutAttribute::trailing : LayoutAttribute::bottom;
    const auto length = h ? LayoutAttribute::width : LayoutAttribute::height;
    const auto center = h ? LayoutAttribute::centerX : LayoutAttribute::centerY;
    const auto crossStart = h ? LayoutAttribute::top : LayoutAttribute::leading;
    const auto crossEnd = h ? LayoutAttribute::bottom : LayoutAttribute::trailing;
    const auto crossCenter = h ? LayoutAttribute::centerY : LayoutAttribute::centerX;
    const auto crossLength = h ? LayoutAttribute::height : LayoutAttribute::width;
    using R = LayoutRelation;
    auto& out = generated_;

    out.push_back(relate(*shown.front(), start, R::equal, &edge, start, 1, 0));
    out.push_back(relate(*shown.back(), end, R::equal, &edge, end, 1, 0));
    for (std::size_t i = 1; i < shown.size(); ++i) {
        View& prev = *shown[i - 1];
        View& next = *shown[i];
        switch (distribution_) {
            case StackViewDistribution::fill:
            case StackViewDistribution::fillEqually:
            case StackViewDistribution::fillProportionally:
                out.push_back(relate(next, start, R::equal, &prev, end, 1, spacing_));
                break;
            case StackViewDistribution::equalSpacing: {
                // A guide per gap; all gaps equally long and at least `spacing`.
                auto gap = LayoutGuide::create();
                addLayoutGuide(gap);
                out.push_back(relate(*gap, start, R::equal, &prev, end, 1, 0));
                out.push_back(relate(*gap, end, R::equal, &next, start, 1, 0));
                out.push_back(relate(*gap, length, R::greaterThanOrEqual, nullptr, length, 0, spacing_));
                if (!gaps_.empty()) {
                    out.push_back(relate(*gap, length, R::equal, gaps_.front().get(), length, 1, 0));
                }
                gaps_.push_back(gap);
                break;
            }
            case StackViewDistribution::equalCentering: {
                // A guide from centre to centre per pair; all equally long.
                out.push_back(relate(next, start, R::greaterThanOrEqual, &prev, end, 1, spacing_));
                auto gap = LayoutGuide::create();
                addLayoutGuide(gap);
                out.push_back(relate(*gap, start, R::equal, &prev, center, 1, 0));
                out.push_back(relate(*gap, end, R::equal, &next, center, 1, 0));
                if (!gaps_.empty()) {
                    out.push_back(relate(*gap, length, R::equal, gaps_.front().get(), length, 1, 0));
                }
                gaps_.push_back(gap);
                break;
            }
        }
    }
    if (distribution_ == StackViewDistribution::fillEqually) {
        for (std::size_t i = 1; i < shown.size(); ++i) {
            out.push_back(relate(*shown[i], length, R::equal, shown.front().get(), length, 1, 0));
        }
    }
    if (distribution_ == StackViewDistribution::fillProportionally) {
        auto natural = [&](const View& v) {
            Size s = v.intrinsicContentSize();
            return h ? s.width : s.height;
        };
        double base = natural(*shown.front());
        for (std::size_t i = 1; i < shown.size() && base > 0; ++i) {
            double n = natural(*shown[i]);
            if (n > 0) {
                out.push_back(relate(*shown[i], length, R::equal, shown.front().get(), length, n / base, 0));
            }
        }
    }
    // Views with no length of their own (spacers) settle at zero rather than anywhere.
    for (auto& v : shown) {
        Size s = v->intrinsicContentSize();
        double n = h ? s.width : s.height;
        out.push_back(
            relate(*v, length, R::equal, nullptr, length, 0, n == View::noIntrinsicMetric ? 0 : n, 1));
    }

    for (auto& v : shown) {
        switch (alignment_) {
            case StackViewAlignment::fill:
                out.push_back(relate(*v, crossStart, R::equal, &edge, crossStart, 1, 0));
                out.push_back(relate(*v, crossEnd, R::equal, &edge, crossEnd, 1, 0));
                break;
            case StackViewAlignment::leading:
                out.push_back(relate(*v, crossStart, R::equal, &edge, crossStart, 1, 0));
                out.push_back(relate(*v, crossEnd, R::lessThanOrEqual, &edge, crossEnd, 1, 0));
                break;
            case StackViewAlignment::center:
                out.push_back(relate(*v, crossCenter, R::equal, &edge, crossCenter, 1, 0));
                out.push_back(relate(*v, crossStart, R::greaterThanOrEqual, &edge, crossStart, 1, 0));
                out.push_back(relate(*v, crossEnd, R::lessThanOrEqual, &edge, crossEnd, 1, 0));
                break;
            case StackViewAlignment::trailing:
                out.push_back(relate(*v, crossEnd, R::equal, &edge, crossEnd, 1, 0));
                out.push_back(relate(*v, crossStart, R::greaterThanOrEqual, &edge, crossStart, 1, 0));
                break;
        }
    }
    if (alignment_ != StackViewAlignment::fill) {
        // Hug the thickest view when nothing else decides the thickness.
        out.push_back(relate(edge, crossLength, R::equal, nullptr, crossLength, 0, 0, 49));
    }
    LayoutConstraint::activate(generated_);
}

}  // namespace ovix::kit
