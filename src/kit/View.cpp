#include "ovix/kit/View.h"

#include <algorithm>
#include <sstream>

#include "kit/AnimationGroup.h"
#include "kit/LayoutEngine.h"
#include "ovix/kit/GestureRecognizer.h"
#include "ovix/kit/ViewController.h"
#include "ovix/kit/Window.h"
#include "ovix/platform/Platform.h"

namespace ovix::kit {

namespace {

std::size_t axisIndex(LayoutAxis axis) {
    return axis == LayoutAxis::horizontal ? 0 : 1;
}

/// One axis of an autoresizing step: the new origin and length of a subview when its superview's
/// length goes from `oldLength` to `newLength`. Flexible parts share the change in proportion to
/// their current lengths (equally when they are all zero).
std::pair<double, double> resizeAxis(double origin, double length, double oldLength, double newLength,
                                     bool flexibleStart, bool flexibleLength, bool flexibleEnd) {
    double delta = newLength - oldLength;
    if (delta == 0 || !(flexibleStart || flexibleLength || flexibleEnd)) {
        return {origin, length};
    }
    double start = origin;
    double end = oldLength - origin - length;
    double total = (flexibleStart ? start : 0) + (flexibleLength ? length : 0) + (flexibleEnd ? end : 0);
    auto share = [&](bool flexible, double part) {
        if (!flexible) {
            return 0.0;
        }
        if (total != 0) {
            return delta * part / total;
        }
        int count = int(flexibleStart) + int(flexibleLength) + int(flexibleEnd);
        return delta / count;
    };
    double newStart = start + share(flexibleStart, start);
    double newLengthPart = length + share(flexibleLength, length);
    return {newStart, newLengthPart};
}

}  // namespace

std::shared_ptr<View> View::create(Rect frame) {
    return std::make_shared<View>(frame);
}

View::View(Rect frame) : layer_(*this) {
    center_ = {frame.origin.x + frame.size.width / 2, frame.origin.y + frame.size.height / 2};
    bounds_ = {0, 0, frame.size.width, frame.size.height};
}

View::~View() {
    for (auto& view : subviews_) {
        view->superview_.reset();
    }
}

// --- Geometry ---

Rect View::frame() const {
    return {center_.x - bounds_.size.width / 2, center_.y - bounds_.size.height / 2, bounds_.size.width,
            bounds_.size.height};
}

void View::setFrame(Rect frame) {
    Size oldSize = bounds_.size;
    Point newCenter{frame.origin.x + frame.size.width / 2, frame.origin.y + frame.size.height / 2};
    Rect newBounds{bounds_.origin, frame.size};
    if (newCenter != center_) {
        recordAnimatableChange("center", center_, newCenter);
        center_ = newCenter;
        if (auto parent = superview()) {
            parent->setNeedsLayout();
        }
    }
    if (newBounds != bounds_) {
        recordAnimatableChange("bounds", bounds_, newBounds);
        bounds_ = newBounds;
    }
    if (oldSize != frame.size) {
        applyBoundsSizeChange(oldSize);
    }
}

void View::setBounds(Rect bounds) {
    if (bounds == bounds_) {
        return;
    }
    Size oldSize = bounds_.size;
    recordAnimatableChange("bounds", bounds_, bounds);
    bounds_ = bounds;
    if (oldSize != bounds.size) {
        applyBoundsSizeChange(oldSize);
    } else {
        setNeedsLayout();
    }
}

void View::setCenter(Point center) {
    if (center == center_) {
        return;
    }
    recordAnimatableChange("center", center_, center);
    center_ = center;
    if (auto parent = superview()) {
        parent->setNeedsLayout();
    }
}

void View::applyBoundsSizeChange(Size oldSize) {
    boundsSizeDidChange(oldSize);
    if (autoresizesSubviews_) {
        autoresizeSubviews(oldSize);
    }
    setNeedsLayout();
    if (auto parent = superview()) {
        parent->setNeedsLayout();
    }
}

void View::autoresizeSubviews(Size oldSize) {
    using M = AutoresizingMask;
    for (auto& view : subviews_) {
        M mask = view->autoresizingMask_;
        if (!view->translatesMask_ || mask == M::none) {
            continue;
        }
        Rect f = view->frame();
        auto [x, width] = resizeAxis(f.origin.x, f.size.width, oldSize.width, bounds_.size.width,
                                     has(mask, M::flexibleLeftMargin), has(mask, M::flexibleWidth),
                                     has(mask, M::flexibleRightMargin));
        auto [y, height] = resizeAxis(f.origin.y, f.size.height, oldSize.height, bounds_.size.height,
                                      has(mask, M::flexibleTopMargin), has(mask, M::flexibleHeight),
                                      has(mask, M::flexibleBottomMargin));
        view->setFrame({x, y, width, height});
    }
}

Point View::convertTo(Point point, const View* to) const {
    // Up to the root: each step adds the view's origin in its superview and removes its scroll offset.
    const View* v = this;
    while (v) {
        if (v == to) {
            return point;
        }
        auto parent = v->superview_.lock();
        if (!parent) {
            break;
        }
        Rect f = v->frame();
        point = {point.x - v->bounds_.origin.x + f.origin.x, point.y - v->bounds_.origin.y + f.origin.y};
        v = parent.get();
    }
    return to ? to->convertFrom(point, nullptr) : point;
}

Point View::convertFrom(Point point, const View* from) const {
    if (from) {
        point = from->convertTo(point, nullptr);
    }
    // Root coordinates down to this view.
    std::vector<const View*> chain;
    for (const View* v = this; v; v = v->superview_.lock().get()) {
        chain.push_back(v);
    }
    for (auto it = chain.rbegin() + 1; it < chain.rend(); ++it) {
        const View* v = *it;
        Rect f = v->frame();
        point = {point.x - f.origin.x + v->bounds_.origin.x, point.y - f.origin.y + v->bounds_.origin.y};
    }
    return point;
}

Rect View::convertTo(Rect rect, const View* to) const {
    Point origin = convertTo(rect.origin, to);
    return {origin, rect.size};
}

// --- Hierarchy ---

void View::addSubview(std::shared_ptr<View> view) {
    insertSubview(std::move(view), subviews_.size());
}

void View::insertSubview(std::shared_ptr<View> view, std::size_t index) {
    if (!view || view.get() == this || isDescendantOf(*view)) {
        return;
    }
    if (view->superview().get() == this) {
        // Reordering within the same superview keeps constraints.
        auto it = std::find(subviews_.begin(), subviews_.end(), view);
        std::size_t from = static_cast<std::size_t>(it - subviews_.begin());
        subviews_.erase(it);
        if (index > from) {
            --index;
        }
        subviews_.insert(subviews_.begin() + static_cast<std::ptrdiff_t>(std::min(index, subviews_.size())),
                         view);
        setNeedsLayout();
        return;
    }
    view->detachFromSuperview();
    insertAt(std::move(view), index);
}

void View::insertAt(std::shared_ptr<View> view, std::size_t index) {
    index = std::min(index, subviews_.size());
    view->superview_ = self<View>();
    subviews_.insert(subviews_.begin() + static_cast<std::ptrdiff_t>(index), view);
    view->didMoveToSuperview();
    view->notifyMovedToWindow();
    LayoutEngine::noteChange();  // the subtree's constraints join this tree's system
    view->setNeedsLayout();
    setNeedsLayout();
}

void View::insertSubviewAbove(std::shared_ptr<View> view, const View& sibling) {
    auto it = std::find_if(subviews_.begin(), subviews_.end(), [&](auto& v) { return v.get() == &sibling; });
    insertSubview(std::move(view), it == subviews_.end()
                                       ? subviews_.size()
                                       : static_cast<std::size_t>(it - subviews_.begin()) + 1);
}

void View::insertSubviewBelow(std::shared_ptr<View> view, const View& sibling) {
    auto it = std::find_if(subviews_.begin(), subviews_.end(), [&](auto& v) { return v.get() == &sibling; });
    insertSubview(std::move(view),
                  it == subviews_.end() ? 0 : static_cast<std::size_t>(it - subviews_.begin()));
}

void View::removeFromSuperview() {
    if (!superview()) {
        return;
    }
    // Keep this view alive while it leaves: the superview may hold the last reference.
    auto keep = std::static_pointer_cast<View>(shared_from_this());
    detachFromSuperview();
    didMoveToSuperview();
    notifyMovedToWindow();
}

void View::detachFromSuperview() {
    auto parent = superview();
    if (!parent) {
        return;
    }
    if (auto w = window()) {
        if (auto focused = w->firstResponder(); focused && focused->isDescendantOf(*this)) {
            focused->resignFirstResponder();
        }
    }
    parent->willRemoveSubview(*this);
    for (auto ancestor = parent; ancestor; ancestor = ancestor->superview()) {
        ancestor->deactivateConstraintsLeaving(*this);
    }
    auto& siblings = parent->subviews_;
    auto it = std::find_if(siblings.begin(), siblings.end(), [&](auto& v) { return v.get() == this; });
    std::shared_ptr<View> keep;
    if (it != siblings.end()) {
        keep = *it;
        siblings.erase(it);
    }
    superview_.reset();
    engine_.reset();
    LayoutEngine::noteDeparture();
    parent->setNeedsLayout();
}

void View::notifyMovedToWindow() {
    auto now = window();
    if (now != windowCache_.lock()) {
        windowCache_ = now;
        didMoveToWindow();
    }
    for (auto& view : std::vector<std::shared_ptr<View>>(subviews_)) {
        view->notifyMovedToWindow();
    }
}

void View::bringSubviewToFront(const View& view) {
    auto it = std::find_if(subviews_.begin(), subviews_.end(), [&](auto& v) { return v.get() == &view; });
    if (it != subviews_.end()) {
        std::rotate(it, it + 1, subviews_.end());
    }
}

void View::sendSubviewToBack(const View& view) {
    auto it = std::find_if(subviews_.begin(), subviews_.end(), [&](auto& v) { return v.get() == &view; });
    if (it != subviews_.end()) {
        std::rotate(subviews_.begin(), it, it + 1);
    }
}

bool View::isDescendantOf(const View& view) const {
    for (const View* v = this; v; v = v->superview_.lock().get()) {
        if (v == &view) {
            return true;
        }
    }
    return false;
}

std::shared_ptr<View> View::rootView() {
    auto v = std::static_pointer_cast<View>(shared_from_this());
    while (auto parent = v->superview()) {
        v = parent;
    }
    return v;
}

std::shared_ptr<Window> View::window() const {
    const View* v = this;
    while (auto parent = v->superview_.lock()) {
        v = parent.get();
    }
    auto* window = dynamic_cast<const Window*>(v);
    return window ? std::const_pointer_cast<Window>(window->self<Window>()) : nullptr;
}

std::shared_ptr<View> View::viewWithTag(int tag) {
    if (tag_ == tag) {
        return std::static_pointer_cast<View>(shared_from_this());
    }
    for (auto& view : subviews_) {
        if (auto found = view->viewWithTag(tag)) {
            return found;
        }
    }
    return nullptr;
}

// --- Appearance ---

void View::setBackgroundColor(std::optional<Color> color) {
    if (color == backgroundColor_) {
        return;
    }
    recordAnimatableChange("backgroundColor", backgroundColor_.value_or(Color::clear()),
                           color.value_or(Color::clear()));
    backgroundColor_ = color;
}

void View::setAlpha(double alpha) {
    alpha = std::clamp(alpha, 0.0, 1.0);
    if (alpha == alpha_) {
        return;
    }
    recordAnimatableChange("alpha", alpha_, alpha);
    alpha_ = alpha;
}

void View::setHidden(bool hidden) {
    if (hidden == hidden_) {
        return;
    }
    hidden_ = hidden;
    if (hidden && isFirstResponder()) {
        resignFirstResponder();
    }
    if (auto parent = superview()) {
        parent->setNeedsLayout();
        parent->subviewVisibilityDidChange(*this);
    }
}

Color View::tintColor() const {
    for (const View* v = this; v; v = v->superview_.lock().get()) {
        if (v->tintColor_) {
            return *v->tintColor_;
        }
    }
    return Color::systemBlue();
}

void View::setTintColor(std::optional<Color> color) {
    tintColor_ = color;
    std::vector<View*> pending{this};
    while (!pending.empty()) {
        View* v = pending.back();
        pending.pop_back();
        v->tintColorDidChange();
        for (auto& child : v->subviews_) {
            if (!child->tintColor_) {
                pending.push_back(child.get());
            }
        }
    }
}

bool Layer::masksToBounds() const {
    return owner_.clipsToBounds();
}
void Layer::setMasksToBounds(bool masks) {
    owner_.setClipsToBounds(masks);
}

std::vector<std::string> Layer::animationKeys() const {
    std::vector<std::string> keys;
    for (auto& [key, animation] : owner_.animations_) {
        keys.push_back(key);
    }
    return keys;
}

void Layer::removeAllAnimations() {
    owner_.removeAnimations(true);
}

// --- Autoresizing and constraints ---

void View::setTranslatesAutoresizingMaskIntoConstraints(bool value) {
    if (value != translatesMask_) {
        translatesMask_ = value;
        LayoutEngine::noteChange();
        setNeedsLayout();
    }
}

std::vector<std::shared_ptr<LayoutConstraint>> View::constraintsAffecting() const {
    std::vector<std::shared_ptr<LayoutConstraint>> found;
    auto mentions = [&](const std::shared_ptr<LayoutItem>& item) {
        return item && item->layoutView().get() == this;
    };
    for (const View* v = this; v; v = v->superview_.lock().get()) {
        for (auto& c : v->constraints_) {
            if (mentions(c->firstItem()) || mentions(c->secondItem())) {
                found.push_back(c);
            }
        }
    }
    return found;
}

void View::installConstraint(const std::shared_ptr<LayoutConstraint>& constraint) {
    constraints_.push_back(constraint);
    constraint->holder_ = std::static_pointer_cast<View>(shared_from_this());
    LayoutEngine::noteChange();
    setNeedsLayout();
}

void View::uninstallConstraint(const LayoutConstraint& constraint) {
    auto it = std::find_if(constraints_.begin(), constraints_.end(),
                           [&](auto& c) { return c.get() == &constraint; });
    if (it != constraints_.end()) {
        constraints_.erase(it);
        LayoutEngine::noteChange();
        setNeedsLayout();
    }
}

void View::deactivateConstraintsLeaving(const View& subtree) {
    auto inside = [&](const std::shared_ptr<LayoutItem>& item) {
        auto view = item ? item->layoutView() : nullptr;
        return view && view->isDescendantOf(subtree);
    };
    std::vector<std::shared_ptr<LayoutConstraint>> leaving;
    for (auto& c : constraints_) {
        if (inside(c->firstItem()) || inside(c->secondItem())) {
            leaving.push_back(c);
        }
    }
    for (auto& c : leaving) {
        c->setActive(false);
    }
}

LayoutGuide& View::builtInGuide(std::shared_ptr<LayoutGuide>& slot, LayoutGuide::Kind kind) {
    if (!slot) {
        slot = std::make_shared<LayoutGuide>(kind);
        slot->owner_ = std::static_pointer_cast<View>(shared_from_this());
    }
    return *slot;
}

LayoutGuide& View::safeAreaLayoutGuide() {
    return builtInGuide(safeAreaGuide_, LayoutGuide::Kind::safeArea);
}
LayoutGuide& View::layoutMarginsGuide() {
    return builtInGuide(marginsGuide_, LayoutGuide::Kind::layoutMargins);
}

std::shared_ptr<LayoutGuide> View::safeAreaGuidePtr() {
    safeAreaLayoutGuide();
    return safeAreaGuide_;
}

std::shared_ptr<LayoutGuide> View::layoutMarginsGuidePtr() {
    layoutMarginsGuide();
    return marginsGuide_;
}

EdgeInsets View::safeAreaInsets() const {
    EdgeInsets own = additionalSafeArea_;
    auto parent = superview();
    EdgeInsets inherited;
    if (auto* window = dynamic_cast<const Window*>(this)) {
        inherited = window->windowSafeAreaInsets();
    } else if (parent) {
        // The superview's safe rectangle, seen from this view, clipped to this view's bounds.
        EdgeInsets p = parent->safeAreaInsets();
        Rect f = frame();
        Rect pb = parent->bounds();
        inherited.top = std::max(0.0, (pb.origin.y + p.top) - f.origin.y);
        inherited.left = std::max(0.0, (pb.origin.x + p.left) - f.origin.x);
        inherited.bottom =
            std::max(0.0, f.origin.y + f.size.height - (pb.origin.y + pb.size.height - p.bottom));
        inherited.right = std::max(0.0, f.origin.x + f.size.width - (pb.origin.x + pb.size.width - p.right));
    }
    return {inherited.top + own.top, inherited.left + own.left, inherited.bottom + own.bottom,
            inherited.right + own.right};
}

void View::setAdditionalSafeAreaInsets(EdgeInsets insets) {
    if (insets != additionalSafeArea_) {
        additionalSafeArea_ = insets;
        LayoutEngine::noteChange();
        setNeedsLayout();
    }
}

void View::setLayoutMargins(EdgeInsets margins) {
    if (margins != layoutMargins_) {
        layoutMargins_ = margins;
        LayoutEngine::noteChange();
        setNeedsLayout();
    }
}

void View::addLayoutGuide(std::shared_ptr<LayoutGuide> guide) {
    if (!guide || guide->owningView()) {
        return;
    }
    guide->owner_ = std::static_pointer_cast<View>(shared_from_this());
    guides_.push_back(std::move(guide));
}

void View::removeLayoutGuide(const LayoutGuide& guide) {
    auto it = std::find_if(guides_.begin(), guides_.end(), [&](auto& g) { return g.get() == &guide; });
    if (it == guides_.end()) {
        return;
    }
    auto keep = *it;
    guides_.erase(it);
    // Constraints on the guide go with it.
    for (auto v = self<View>(); v; v = v->superview()) {
        std::vector<std::shared_ptr<LayoutConstraint>> leaving;
        for (auto& c : v->constraints_) {
            if (c->firstItem() == keep || c->secondItem() == keep) {
                leaving.push_back(c);
            }
        }
        LayoutConstraint::deactivate(leaving);
    }
    keep->owner_.reset();
}

void View::invalidateIntrinsicContentSize() {
    LayoutEngine::noteChange();
    setNeedsLayout();
    if (auto parent = superview()) {
        parent->setNeedsLayout();
    }
}

float View::contentHuggingPriority(LayoutAxis axis) const {
    return hugging_[axisIndex(axis)];
}

void View::setContentHuggingPriority(float priority, LayoutAxis axis) {
    hugging_[axisIndex(axis)] = std::clamp(priority, 1.0f, LayoutPriority::required);
    invalidateIntrinsicContentSize();
}

float View::contentCompressionResistancePriority(LayoutAxis axis) const {
    return compression_[axisIndex(axis)];
}

void View::setContentCompressionResistancePriority(float priority, LayoutAxis axis) {
    compression_[axisIndex(axis)] = std::clamp(priority, 1.0f, LayoutPriority::required);
    invalidateIntrinsicContentSize();
}

Size View::sizeThatFits(Size size) const {
    Size intrinsic = intrinsicContentSize();
    return {intrinsic.width == noIntrinsicMetric ? size.width : intrinsic.width,
            intrinsic.height == noIntrinsicMetric ? size.height : intrinsic.height};
}

void View::sizeToFit() {
    Size fitted = sizeThatFits(bounds_.size);
    setBounds({bounds_.origin, fitted});
}

Size View::systemLayoutSizeFitting(Size target, float horizontalPriority, float verticalPriority) {
    return LayoutEngine::fittingSize(*this, target, horizontalPriority, verticalPriority);
}

void View::setNeedsLayout() {
    needsLayout_ = true;
    LayoutEngine::noteNeedsLayout();
    if (auto w = windowCache_.lock()) {
        w->scheduleLayout();
    }
}

void View::layoutIfNeeded() {
    LayoutEngine::layoutTree(*rootView());
}

// --- Gestures ---

void View::addGestureRecognizer(std::shared_ptr<GestureRecognizer> recognizer) {
    if (!recognizer) {
        return;
    }
    if (auto old = recognizer->view()) {
        old->removeGestureRecognizer(*recognizer);
    }
    recognizer->attach(std::static_pointer_cast<View>(shared_from_this()));
    recognizers_.push_back(std::move(recognizer));
}

void View::removeGestureRecognizer(const GestureRecognizer& recognizer) {
    auto it = std::find_if(recognizers_.begin(), recognizers_.end(),
                           [&](auto& r) { return r.get() == &recognizer; });
    if (it != recognizers_.end()) {
        (*it)->attach(nullptr);
        recognizers_.erase(it);
    }
}

// --- Input ---

std::shared_ptr<View> View::hitTest(Point point) {
    if (hidden_ || !userInteractionEnabled_ || alpha_ < 0.01 || !pointInside(point)) {
        return nullptr;
    }
    for (auto it = subviews_.rbegin(); it != subviews_.rend(); ++it) {
        const auto& child = *it;
        Rect f = child->frame();
        Point local{point.x - f.origin.x + child->bounds_.origin.x,
                    point.y - f.origin.y + child->bounds_.origin.y};
        if (auto hit = child->hitTest(local)) {
            return hit;
        }
    }
    return std::static_pointer_cast<View>(shared_from_this());
}

void View::touchesBegan(const Touch& touch) {
    if (auto parent = superview()) {
        parent->touchesBegan(touch);
    }
}

void View::touchesMoved(const Touch& touch) {
    if (auto parent = superview()) {
        parent->touchesMoved(touch);
    }
}

void View::touchesEnded(const Touch& touch) {
    if (auto parent = superview()) {
        parent->touchesEnded(touch);
    }
}

void View::touchesCancelled(const Touch& touch) {
    if (auto parent = superview()) {
        parent->touchesCancelled(touch);
    }
}

bool View::becomeFirstResponder() {
    auto w = window();
    if (!w || !canBecomeFirstResponder()) {
        return false;
    }
    if (isFirstResponder()) {
        return true;
    }
    if (auto current = w->firstResponder(); current && !current->resignFirstResponder()) {
        return false;
    }
    return w->setFirstResponder(self<View>());
}

bool View::resignFirstResponder() {
    auto w = window();
    if (w && isFirstResponder()) {
        w->setFirstResponder(nullptr);
    }
    return true;
}

bool View::isFirstResponder() const {
    auto w = window();
    return w && w->firstResponder().get() == this;
}

Point Touch::location(const View* in) const {
    return in ? in->convertFrom(windowLocation, nullptr) : windowLocation;
}

// --- Animation ---

void View::animate(double duration, std::function<void()> changes, std::function<void(bool)> completion) {
    AnimationGroup::run(duration, 0, {}, changes, std::move(completion));
}

void View::animate(double duration, double delay, AnimationOptions options, std::function<void()> changes,
                   std::function<void(bool)> completion) {
    AnimationGroup::run(duration, delay, options, changes, std::move(completion));
}

void View::performWithoutAnimation(const std::function<void()>& changes) {
    AnimationGroup::runWithoutAnimation(changes);
}

void View::recordAnimatableChange(const std::string& key, const AnimatableValue& from,
                                  const AnimatableValue& to) {
    auto group = AnimationGroup::recording();
    if (!group) {
        return;
    }
    auto it = animations_.find(key);
    if (it != animations_.end() && it->second.group.lock() == group) {
        it->second.to = to;  // set twice in one block: one animation to the last value
        return;
    }
    AnimatableValue start = from;
    if (it != animations_.end()) {
        // A new animation of a moving value starts from what is on screen now.
        double now = platform::current()->mainQueue->now();
        if (auto shown = presentationValue(key, now)) {
            start = *shown;
        }
        auto old = it->second.group.lock();
        animations_.erase(it);
        if (old) {
            old->removed(false);
        }
    }
    animations_[key] = RunningAnimation{start, to, group->begin(), group->duration(), group->curve(), group};
    group->added(std::static_pointer_cast<View>(shared_from_this()), key);
}

std::optional<AnimatableValue> View::presentationValue(const std::string& key, double time) const {
    auto it = animations_.find(key);
    if (it == animations_.end()) {
        return std::nullopt;
    }
    const RunningAnimation& a = it->second;
    if (time >= a.begin + a.duration) {
        return std::nullopt;
    }
    double t = time <= a.begin ? 0 : (time - a.begin) / a.duration;
    return interpolate(a.from, a.to, curveProgress(a.curve, t));
}

ViewPresentation View::presentation(double time) const {
    ViewPresentation p{center_, bounds_, alpha_, backgroundColor_};
    if (auto v = presentationValue("center", time)) {
        p.center = std::get<Point>(*v);
    }
    if (auto v = presentationValue("bounds", time)) {
        p.bounds = std::get<Rect>(*v);
    }
    if (auto v = presentationValue("alpha", time)) {
        p.alpha = std::get<double>(*v);
    }
    if (auto v = presentationValue("backgroundColor", time)) {
        p.backgroundColor = std::get<Color>(*v);
    }
    return p;
}

void View::removeAnimations(bool cancelled) {
    auto running = std::move(animations_);
    animations_.clear();
    for (auto& [key, animation] : running) {
        if (auto group = animation.group.lock()) {
            group->removed(cancelled);
        }
    }
}

void View::removeFinishedAnimation(const std::string& key, const AnimationGroup* group) {
    auto it = animations_.find(key);
    if (it != animations_.end() && it->second.group.lock().get() == group) {
        animations_.erase(it);
    }
}

// --- Description ---

std::string View::debugName() const {
    std::ostringstream out;
    out << className();
    if (tag_ != 0) {
        out << "#" << tag_;
    }
    return out.str();
}

std::shared_ptr<View> View::layoutView() const {
    return std::const_pointer_cast<View>(std::static_pointer_cast<const View>(shared_from_this()));
}

}  // namespace ovix::kit
