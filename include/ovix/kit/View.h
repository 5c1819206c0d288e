#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ovix/kit/Animation.h"
#include "ovix/kit/Color.h"
#include "ovix/kit/Geometry.h"
#include "ovix/kit/Key.h"
#include "ovix/kit/Layer.h"
#include "ovix/kit/LayoutConstraint.h"
#include "ovix/kit/LayoutGuide.h"
#include "ovix/kit/LayoutItem.h"
#include "ovix/kit/Touch.h"

namespace ovix::kit {

class GestureRecognizer;
class ViewController;
class Window;
class LayoutEngine;
class AnimationGroup;

enum class AutoresizingMask : unsigned {
    none = 0,
    flexibleLeftMargin = 1,
    flexibleWidth = 2,
    flexibleRightMargin = 4,
    flexibleTopMargin = 8,
    flexibleHeight = 16,
    flexibleBottomMargin = 32,
};
constexpr AutoresizingMask operator|(AutoresizingMask a, AutoresizingMask b) {
    return static_cast<AutoresizingMask>(static_cast<unsigned>(a) | static_cast<unsigned>(b));
}
constexpr bool has(AutoresizingMask mask, AutoresizingMask flag) {
    return (static_cast<unsigned>(mask) & static_cast<unsigned>(flag)) != 0;
}

enum class ContentMode {
    scaleToFill,
    scaleAspectFit,
    scaleAspectFill,
    center,
    top,
    bottom,
    left,
    right,
    topLeft,
    topRight,
    bottomLeft,
    bottomRight,
};

enum class LayoutAxis { horizontal, vertical };

/// What a renderer shows of a view at a moment: the model values, or in-flight animation values.
struct ViewPresentation {
    Point center;
    Rect bounds;
    double alpha = 1;
    std::optional<Color> backgroundColor;
    Rect frame() const {
        return {center.x - bounds.size.width / 2, center.y - bounds.size.height / 2, bounds.size.width,
                bounds.size.height};
    }
};

/// A rectangle in a retained tree: the base of every visible element.
///
/// Ownership: a superview owns its subviews (shared_ptr); a view knows its superview weakly. Create
/// views with `create` (or a subclass's `create`): anchors, gestures and closures need the view to
/// be owned by a shared_ptr.
///
/// Geometry follows the classic model: `frame` is derived from `center` and `bounds.size`; changing
/// the bounds size keeps the centre; the bounds origin shifts the subviews (scroll offset). When the
/// bounds size changes, subviews that translate their autoresizing mask are resized by it.
///
/// Layout: constraints are solved for the whole tree by `layoutIfNeeded` (on any view of the tree),
/// which writes frames back to the views that do not translate their autoresizing mask, then calls
/// `layoutSubviews` top-down. Layout also runs on its own on the main queue after a change to a tree
/// inside a window (`setNeedsLayout`), as the platform's run loop does.
///
/// Animation: `animate` applies the changes to the model at once; animatable properties (frame,
/// bounds, center, alpha, background colour, and subclass values such as a progress) record their
/// old value so `presentation(time)` can interpolate; the completion runs on the main queue after
/// delay + duration with finished = true. `layer().removeAllAnimations()` drops a view's in-flight
/// animations at once: their completion is posted right away with finished = false.
///
/// Threading: main thread only.
class View : public LayoutItem {
  public:
    static constexpr double noIntrinsicMetric = -1;

    static std::shared_ptr<View> create(Rect frame = {});
    explicit View(Rect frame = {});
    ~View() override;
    View(const View&) = delete;
    View& operator=(const View&) = delete;

    /// shared_from_this as the concrete type.
    template <class T = View>
    std::shared_ptr<T> self() {
        return std::static_pointer_cast<T>(shared_from_this());
    }
    template <class T = View>
    std::shared_ptr<const T> self() const {
        return std::static_pointer_cast<const T>(shared_from_this());
    }

    // --- Geometry ---
    Rect frame() const;
    void setFrame(Rect frame);
    Rect bounds() const { return bounds_; }
    void setBounds(Rect bounds);
    Point center() const { return center_; }
    void setCenter(Point center);
    /// A point of this view's coordinate space in `to`'s space (window coordinates when null).
    Point convertTo(Point point, const View* to) const;
    /// A point of `from`'s space (window coordinates when null) in this view's space.
    Point convertFrom(Point point, const View* from) const;
    Rect convertTo(Rect rect, const View* to) const;

    // --- Hierarchy ---
    std::shared_ptr<View> superview() const { return superview_.lock(); }
    /// Back to front.
    const std::vector<std::shared_ptr<View>>& subviews() const { return subviews_; }
    /// Appends at the front; a view that already has a superview is moved (its constraints to the
    /// old tree are deactivated). Adding a view to itself or to its own subtree is ignored.
    void addSubview(std::shared_ptr<View> view);
    void insertSubview(std::shared_ptr<View> view, std::size_t index);
    void insertSubviewAbove(std::shared_ptr<View> view, const View& sibling);
    void insertSubviewBelow(std::shared_ptr<View> view, const View& sibling);
    void removeFromSuperview();
    void bringSubviewToFront(const View& view);
    void sendSubviewToBack(const View& view);
    /// Whether this view is `view` or inside its subtree.
    bool isDescendantOf(const View& view) const;
    /// The window at the root of the tree, if the tree has one.
    std::shared_ptr<Window> window() const;
    /// This view or the first descendant (depth first, back to front) with the tag.
    std::shared_ptr<View> viewWithTag(int tag);

    // --- Appearance ---
    /// Null means no fill (the classic nil background).
    const std::optional<Color>& backgroundColor() const { return backgroundColor_; }
    void setBackgroundColor(std::optional<Color> color);
    double alpha() const { return alpha_; }
    void setAlpha(double alpha);
    bool isHidden() const { return hidden_; }
    void setHidden(bool hidden);
    bool clipsToBounds() const { return clipsToBounds_; }
    void setClipsToBounds(bool clips) { clipsToBounds_ = clips; }
    bool isUserInteractionEnabled() const { return userInteractionEnabled_; }
    void setUserInteractionEnabled(bool enabled) { userInteractionEnabled_ = enabled; }
    int tag() const { return tag_; }
    void setTag(int tag) { tag_ = tag; }
    /// The effective tint: this view's own, else the nearest ancestor's, else system blue.
    Color tintColor() const;
    /// Null returns to inheriting. Calls `tintColorDidChange` on this subtree.
    void setTintColor(std::optional<Color> color);
    bool hasOwnTintColor() const { return tintColor_.has_value(); }
    ContentMode contentMode() const { return contentMode_; }
    void setContentMode(ContentMode mode) { contentMode_ = mode; }
    Layer& layer() { return layer_; }
    const Layer& layer() const { return layer_; }

    // --- Autoresizing ---
    AutoresizingMask autoresizingMask() const { return autoresizingMask_; }
    void setAutoresizingMask(AutoresizingMask mask) { autoresizingMask_ = mask; }
    bool autoresizesSubviews() const { return autoresizesSubviews_; }
    void setAutoresizesSubviews(bool value) { autoresizesSubviews_ = value; }
    /// True by default: the frame is fixed (and the mask resizes it); false: constraints decide.
    bool translatesAutoresizingMaskIntoConstraints() const { return translatesMask_; }
    void setTranslatesAutoresizingMaskIntoConstraints(bool value);

    // --- Constraint layout ---
    /// Active constraints installed on this view (its subtree's common ancestor), in activation order.
    const std::vector<std::shared_ptr<LayoutConstraint>>& constraints() const { return constraints_; }
    /// Active constraints anywhere in the tree that mention this view or one of its guides.
    std::vector<std::shared_ptr<LayoutConstraint>> constraintsAffecting() const;
    LayoutGuide& safeAreaLayoutGuide();
    LayoutGuide& layoutMarginsGuide();
    /// Shared handles to the built-in guides (for anchors: `view->safeAreaLayoutGuide().topAnchor()`
    /// works directly too).
    std::shared_ptr<LayoutGuide> safeAreaGuidePtr();
    std::shared_ptr<LayoutGuide> layoutMarginsGuidePtr();
    /// The part of the bounds that the window's safe area and the owning controllers' extra insets
    /// (a navigation bar) leave free, as insets; from current frames.
    EdgeInsets safeAreaInsets() const;
    /// Extra insets added to this view's safe area (a controller's additional safe-area insets).
    void setAdditionalSafeAreaInsets(EdgeInsets insets);
    EdgeInsets additionalSafeAreaInsets() const { return additionalSafeArea_; }
    EdgeInsets layoutMargins() const { return layoutMargins_; }
    void setLayoutMargins(EdgeInsets margins);
    void addLayoutGuide(std::shared_ptr<LayoutGuide> guide);
    void removeLayoutGuide(const LayoutGuide& guide);
    const std::vector<std::shared_ptr<LayoutGuide>>& layoutGuides() const { return guides_; }

    /// The natural size of the content; `noIntrinsicMetric` in a dimension that has none.
    virtual Size intrinsicContentSize() const { return {noIntrinsicMetric, noIntrinsicMetric}; }
    /// The intrinsic size if the view were `width` wide (wrapping text grows taller when narrower);
    /// the default ignores the width.
    virtual Size intrinsicContentSizeForWidth(double width) const {
        (void)width;
        return intrinsicContentSize();
    }
    /// Tells the layout pass that `intrinsicContentSize` changed.
    void invalidateIntrinsicContentSize();
    float contentHuggingPriority(LayoutAxis axis) const;
    void setContentHuggingPriority(float priority, LayoutAxis axis);
    float contentCompressionResistancePriority(LayoutAxis axis) const;
    void setContentCompressionResistancePriority(float priority, LayoutAxis axis);
    /// The size the view would like within `size`; the intrinsic size where it has one.
    virtual Size sizeThatFits(Size size) const;
    /// Sets the bounds size to `sizeThatFits(current size)`.
    void sizeToFit();
    /// The smallest size the view's constraints allow, with the width (or height) held at the
    /// target's at the given priorities (`LayoutPriority::fittingSizeLevel` lets it shrink). Solved on
    /// the view alone; the tree is not touched.
    Size systemLayoutSizeFitting(Size target, float horizontalPriority, float verticalPriority);

    void setNeedsLayout();
    bool needsLayout() const { return needsLayout_; }
    /// Solves the constraints of the whole tree this view is in and writes frames back, then runs
    /// `layoutSubviews` on every view that needs it. A required constraint that cannot hold is
    /// broken with one console warning; layout then goes on.
    void layoutIfNeeded();
    /// Lays out the subviews this view positions itself (stack, table, collection do). Called by
    /// the layout pass after constraints are applied.
    virtual void layoutSubviews() {}

    // --- Gestures ---
    void addGestureRecognizer(std::shared_ptr<GestureRecognizer> recognizer);
    void removeGestureRecognizer(const GestureRecognizer& recognizer);
    const std::vector<std::shared_ptr<GestureRecognizer>>& gestureRecognizers() const { return recognizers_; }

    // --- Input ---
    /// The deepest visible, interactive view containing `point` (this view's coordinates), front
    /// subviews first; null when this view is hidden, nearly transparent (alpha < 0.01), not
    /// interactive, or the point lies outside its bounds (points outside a view never reach its
    /// subviews, whether it clips or not).
    virtual std::shared_ptr<View> hitTest(Point point);
    virtual bool pointInside(Point point) const { return bounds_.contains(point); }
    /// Touch handling; the default passes the touch to the superview (the responder chain).
    virtual void touchesBegan(const Touch& touch);
    virtual void touchesMoved(const Touch& touch);
    virtual void touchesEnded(const Touch& touch);
    virtual void touchesCancelled(const Touch& touch);
    virtual bool canBecomeFirstResponder() const { return false; }
    /// Makes this view the window's focused responder; false when it cannot (or is not in a window).
    virtual bool becomeFirstResponder();
    virtual bool resignFirstResponder();
    bool isFirstResponder() const;
    /// Text input from the keyboard, routed by the window to its first responder.
    virtual void insertText(std::string_view text) { (void)text; }
    virtual void deleteBackward() {}
    /// An editing or navigation key, routed by the window to its first responder; true when the view
    /// used it (the host then keeps it from the game).
    virtual bool keyDown(Key key, KeyModifiers modifiers) {
        (void)key;
        (void)modifiers;
        return false;
    }

    // --- Animation ---
    static void animate(double duration, std::function<void()> changes,
                        std::function<void(bool finished)> completion = {});
    static void animate(double duration, double delay, AnimationOptions options,
                        std::function<void()> changes, std::function<void(bool finished)> completion = {});
    /// Runs `changes` with no animation recorded, even inside an animation block.
    static void performWithoutAnimation(const std::function<void()>& changes);
    /// What to draw at main-queue time `time`.
    ViewPresentation presentation(double time) const;
    /// The in-flight animated value of `key` at `time`, or nullopt when none is running then.
    std::optional<AnimatableValue> presentationValue(const std::string& key, double time) const;

    // --- Owner and description ---
    /// The controller whose root view this is, if any.
    std::shared_ptr<ViewController> viewController() const { return viewController_.lock(); }
    virtual std::string className() const { return "View"; }
    std::string debugName() const override;
    std::shared_ptr<View> layoutView() const override;

  protected:
    /// Hooks, called after the change.
    virtual void didMoveToSuperview() {}
    virtual void didMoveToWindow() {}
    virtual void tintColorDidChange() {}
    /// Called when the bounds size changed (before autoresizing the subviews).
    virtual void boundsSizeDidChange(Size oldSize) { (void)oldSize; }
    /// `subview` is about to leave this view (removed or moved elsewhere); still a subview here.
    virtual void willRemoveSubview(View& subview) { (void)subview; }
    /// A subview was hidden or shown (stack views rearrange).
    virtual void subviewVisibilityDidChange(View& subview) { (void)subview; }
    /// A scroll view's content guide was solved to `size` (the content size).
    virtual void contentLayoutGuideDidResolve(Size size) { (void)size; }

    /// Records an animatable change of `key` when inside an animation block.
    void recordAnimatableChange(const std::string& key, const AnimatableValue& from,
                                const AnimatableValue& to);

  private:
    friend class Layer;
    friend class LayoutConstraint;
    friend class LayoutEngine;
    friend class ViewController;
    friend class Window;
    friend class AnimationGroup;

    struct RunningAnimation {
        AnimatableValue from;
        AnimatableValue to;
        double begin = 0;
        double duration = 0;
        AnimationCurve curve = AnimationCurve::easeInOut;
        /// Weak: the main queue keeps a group alive until it completes, and its completion may hold
        /// this view's owner.
        std::weak_ptr<AnimationGroup> group;
    };

    void insertAt(std::shared_ptr<View> view, std::size_t index);
    void detachFromSuperview();
    void notifyMovedToWindow();
    void autoresizeSubviews(Size oldSize);
    void applyBoundsSizeChange(Size oldSize);
    void removeAnimations(bool cancelled);
    void removeFinishedAnimation(const std::string& key, const AnimationGroup* group);
    void installConstraint(const std::shared_ptr<LayoutConstraint>& constraint);
    void uninstallConstraint(const LayoutConstraint& constraint);
    void deactivateConstraintsLeaving(const View& subtree);
    LayoutGuide& builtInGuide(std::shared_ptr<LayoutGuide>& slot, LayoutGuide::Kind kind);
    std::shared_ptr<View> rootView();

    std::weak_ptr<View> superview_;
    std::vector<std::shared_ptr<View>> subviews_;
    Point center_;
    Rect bounds_;
    std::optional<Color> backgroundColor_;
    double alpha_ = 1;
    bool hidden_ = false;
    bool clipsToBounds_ = false;
    bool userInteractionEnabled_ = true;
    int tag_ = 0;
    std::optional<Color> tintColor_;
    ContentMode contentMode_ = ContentMode::scaleToFill;
    Layer layer_;
    AutoresizingMask autoresizingMask_ = AutoresizingMask::none;
    bool autoresizesSubviews_ = true;
    bool translatesMask_ = true;
    std::vector<std::shared_ptr<LayoutConstraint>> constraints_;
    std::shared_ptr<LayoutGuide> safeAreaGuide_;
    std::shared_ptr<LayoutGuide> marginsGuide_;
    std::vector<std::shared_ptr<LayoutGuide>> guides_;
    EdgeInsets layoutMargins_{8, 8, 8, 8};
    EdgeInsets additionalSafeArea_;
    float hugging_[2] = {250, 250};
    float compression_[2] = {750, 750};
    bool needsLayout_ = true;
    std::vector<std::shared_ptr<GestureRecognizer>> recognizers_;
    std::weak_ptr<ViewController> viewController_;
    std::weak_ptr<Window> windowCache_;
    std::map<std::string, RunningAnimation> animations_;
    std::unique_ptr<LayoutEngine> engine_;
};

}  // namespace ovix::kit
