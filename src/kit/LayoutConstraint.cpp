#include "ovix/kit/LayoutConstraint.h"

#include <algorithm>
#include <sstream>

#include "kit/LayoutEngine.h"
#include "ovix/kit/View.h"
#include "ovix/platform/Platform.h"

namespace ovix::kit {

namespace {

std::shared_ptr<View> commonAncestor(const std::shared_ptr<View>& a, const std::shared_ptr<View>& b) {
    if (!b) {
        return a;
    }
    for (auto v = a; v; v = v->superview()) {
        if (b->isDescendantOf(*v)) {
            return v;
        }
    }
    return nullptr;
}

const char* relationText(LayoutRelation relation) {
    switch (relation) {
        case LayoutRelation::lessThanOrEqual:
            return "<=";
        case LayoutRelation::greaterThanOrEqual:
            return ">=";
        case LayoutRelation::equal:
            break;
    }
    return "==";
}

}  // namespace

std::string toString(LayoutAttribute attribute) {
    switch (attribute) {
        case LayoutAttribute::left:
            return "left";
        case LayoutAttribute::right:
            return "right";
        case LayoutAttribute::top:
            return "top";
        case LayoutAttribute::bottom:
            return "bottom";
        case LayoutAttribute::leading:
            return "leading";
        case LayoutAttribute::trailing:
            return "trailing";
        case LayoutAttribute::width:
            return "width";
        case LayoutAttribute::height:
            return "height";
        case LayoutAttribute::centerX:
            return "centerX";
        case LayoutAttribute::centerY:
            return "centerY";
    }
    return "?";
}

std::shared_ptr<LayoutConstraint> LayoutAnchor::make(LayoutRelation relation, const LayoutAnchor* other,
                                                     double multiplier, double constant) const {
    return LayoutConstraint::create(item(), attribute_, relation, other ? other->item() : nullptr,
                                    other ? other->attribute_ : LayoutAttribute::width,
                                    other ? multiplier : 0, constant);
}

LayoutConstraint::LayoutConstraint(std::weak_ptr<LayoutItem> first, LayoutAttribute firstAttribute,
                                   LayoutRelation relation, std::weak_ptr<LayoutItem> second,
                                   LayoutAttribute secondAttribute, double multiplier, double constant)
    : first_(std::move(first)),
      firstAttribute_(firstAttribute),
      relation_(relation),
      second_(std::move(second)),
      secondAttribute_(secondAttribute),
      multiplier_(multiplier),
      constant_(constant),
      hasSecond_(!second_.expired()) {}

std::shared_ptr<LayoutConstraint> LayoutConstraint::create(
    std::shared_ptr<LayoutItem> first, LayoutAttribute firstAttribute, LayoutRelation relation,
    std::shared_ptr<LayoutItem> second, LayoutAttribute secondAttribute, double multiplier, double constant) {
    return std::make_shared<LayoutConstraint>(first, firstAttribute, relation, second, secondAttribute,
                                              second ? multiplier : 0, constant);
}

void LayoutConstraint::activate(const std::vector<std::shared_ptr<LayoutConstraint>>& constraints) {
    for (const auto& c : constraints) {
        if (c) {
            c->setActive(true);
        }
    }
}

void LayoutConstraint::deactivate(const std::vector<std::shared_ptr<LayoutConstraint>>& constraints) {
    for (const auto& c : constraints) {
        if (c) {
            c->setActive(false);
        }
    }
}

void LayoutConstraint::setActive(bool active) {
    if (active == active_) {
        return;
    }
    if (!active) {
        active_ = false;
        if (auto holder = holder_.lock()) {
            holder_.reset();
            holder->uninstallConstraint(*this);  // may release the last reference to this constraint
        }
        return;
    }
    auto first = firstItem();
    auto second = secondItem();
    auto firstView = first ? first->layoutView() : nullptr;
    auto secondView = second ? second->layoutView() : nullptr;
    auto holder = firstView && (secondView || !hasSecond_) ? commonAncestor(firstView, secondView) : nullptr;
    if (!holder) {
        platform::current()->console->printLine("⚠️ Unable to activate constraint " + description() +
                                                ": its items have no common ancestor");
        return;
    }
    static std::uint64_t activations = 0;
    active_ = true;
    activationOrder_ = ++activations;
    holder->installConstraint(shared_from_this());
}

void LayoutConstraint::setConstant(double constant) {
    if (constant != constant_) {
        constant_ = constant;
        ++revision_;
        if (auto holder = holder_.lock()) {
            LayoutEngine::noteConstantChange(*this, *holder);
        }
    }
}

void LayoutConstraint::setPriority(float priority) {
    priority = std::clamp(priority, 1.0f, LayoutPriority::required);
    if (priority != priority_) {
        priority_ = priority;
        ++revision_;
        if (auto holder = holder_.lock()) {
            LayoutEngine::noteConstantChange(*this, *holder);
        }
    }
}

std::string LayoutConstraint::description() const {
    std::ostringstream out;
    auto first = firstItem();
    auto second = secondItem();
    out << (first ? first->debugName() : "<gone>") << "." << toString(firstAttribute_) << " "
        << relationText(relation_) << " ";
    if (second) {
        out << second->debugName() << "." << toString(secondAttribute_);
        if (multiplier_ != 1) {
            out << " * " << multiplier_;
        }
        if (constant_ != 0) {
            out << (constant_ < 0 ? " - " : " + ") << std::abs(constant_);
        }
    } else {
        out << constant_;
    }
    if (priority_ < LayoutPriority::required) {
        out << " @" << priority_;
    }
    return out.str();
}

std::string LayoutGuide::debugName() const {
    auto owner = owningView();
    std::string base = owner ? owner->debugName() : "<detached>";
    switch (kind_) {
        case Kind::safeArea:
            return base + ".safeArea";
        case Kind::layoutMargins:
            return base + ".margins";
        case Kind::scrollContent:
            return base + ".content";
        case Kind::scrollFrame:
            return base + ".frameGuide";
        case Kind::custom:
            break;
    }
    return base + ".guide" + (identifier_.empty() ? "" : "(" + identifier_ + ")");
}

}  // namespace ovix::kit
