#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "kit/layout/Solver.h"
#include "ovix/kit/Geometry.h"
#include "ovix/kit/LayoutConstraint.h"

namespace ovix::kit {

class View;
class LayoutItem;
class LayoutGuide;

/// Turns a view tree's constraints into a solver system and solved values back into frames.
///
/// One engine lives on the root view of a tree and is kept between passes, with its solver and the
/// solver constraint standing for each layout constraint. A pass after nothing but constant changes
/// of installed constraints touches just those constraints (noted as they change) and writes back
/// the frames that moved. Any other change, in any tree (the change counters are process-wide):
/// constraints or views added or removed, a priority, a fixed frame, an intrinsic size, a guide's
/// insets, brings the solver up to date by comparing: only what differs from the last pass is
/// removed, added or changed. Frames the engine writes need no further round unless something is
/// solved from them (a safe area, a fixed-frame subview's superview). Positions are solved in the
/// root's space with scroll offsets left out (a scroll view's subviews are laid out in content
/// coordinates). Main thread only.
class LayoutEngine {
  public:
    /// Something that affects layout changed somewhere (a constraint, a frame, an intrinsic size).
    static void noteChange();
    /// A view was marked for `layoutSubviews`; counts as a change, but one the engine may discount
    /// when it made it itself by writing a frame that nothing else is solved from.
    static void noteNeedsLayout();
    /// `constraint`'s constant or priority changed while installed on `holder`: marks the holder for
    /// layout and lets the next pass update just that constraint.
    static void noteConstantChange(LayoutConstraint& constraint, View& holder);
    /// A view left its superview (a change like any other; plain pointers into trees may dangle).
    static void noteDeparture();
    static std::uint64_t changeCount();
    static bool isLayingOut();

    /// The full pass on the tree under `root`: constraints, frames, then `layoutSubviews` top-down,
    /// repeated while the pass itself changes something (a few rounds at most).
    static void layoutTree(View& root);
    /// See `View::systemLayoutSizeFitting`.
    static Size fittingSize(View& view, Size target, float horizontalPriority, float verticalPriority);

    /// Read-only views of the engine for benchmarks and tests, which compare a pass with the bare
    /// solver on the same system. The engine of `root`'s tree, null before its first pass.
    static const LayoutEngine* of(const View& root);
    /// The constraints the solver holds, in an order a fresh solver can take them in: generated
    /// ones first, then the user's in activation order.
    std::vector<layout::Constraint> installedConstraints() const;
    /// The solver constraint that stands for `constraint`; null when it is not installed.
    const layout::Constraint* solverConstraintFor(const LayoutConstraint& constraint) const;
    /// An item's rectangle in the root's space; null outside the pass.
    struct Box {
        layout::Variable left, top, width, height;
    };
    const Box* variablesOf(const LayoutItem& item) const;
    /// Passes since the engine was made that compared the whole tree (the rest updated noted
    /// constants only).
    std::uint64_t fullSyncCount() const { return fullSyncs_; }

  private:
    struct ItemVariables : Box {
        std::weak_ptr<LayoutItem> item;
        bool seen = false;
    };
    struct UserEntry {
        std::weak_ptr<LayoutConstraint> source;
        layout::Constraint constraint;
        unsigned revision = 0;
        float priority = 0;
        bool installed = false;  // false: the solver refused it (broken)
        bool seen = false;
        bool warned = false;  // its breaking was reported
    };
    /// What a generated constraint stands for; its description is made from this only when it
    /// breaks.
    enum class Slot : std::uint8_t {
        rootLeft,
        rootTop,
        rootWidth,
        rootHeight,
        fitWidth,
        fitHeight,
        frameLeft,
        frameTop,
        frameWidth,
        frameHeight,
        widthMin,
        widthMax,
        heightMin,
        heightMax,
        safeLeft,
        safeTop,
        safeWidth,
        safeHeight,
        marginsLeft,
        marginsTop,
        marginsWidth,
        marginsHeight,
        frameGuideLeft,
        frameGuideTop,
        frameGuideWidth,
        frameGuideHeight,
        contentLeft,
        contentTop,
    };
    struct Key {
        const void* owner;
        Slot slot;
        bool operator==(const Key& other) const { return owner == other.owner && slot == other.slot; }
    };
    struct KeyHash {
        std::size_t operator()(const Key& k) const {
            return std::hash<const void*>()(k.owner) * 31 + static_cast<std::size_t>(k.slot);
        }
    };
    struct GeneratedEntry {
        layout::Constraint constraint;
        std::vector<layout::Term> terms;
        double strength = 0;
        double constant = 0;
        const LayoutItem* subject = nullptr;  // the view or guide it is about, valid during a pass
        bool installed = false;
        bool seen = false;
        bool warned = false;
    };

    struct Fitting {
        Size target;
        float horizontalPriority;
        float verticalPriority;
    };

    /// What one pass covers: the constraints in force (in activation order), the views they need
    /// positions for (top-down) and the guides they mention.
    struct Scope {
        std::vector<std::shared_ptr<LayoutConstraint>> active;
        std::vector<std::shared_ptr<View>> views;
        std::unordered_set<const LayoutItem*> guides;
    };
    /// A view whose frame or guides the pass writes, with its variables (and its superview's when
    /// its frame is written), kept from the last full sync for the passes that follow. The engine
    /// does not keep views alive: the plain pointers are used only while no view has left a tree
    /// since they were taken (leaving is a change that makes the next pass a full sync).
    struct Target {
        View* view = nullptr;
        std::weak_ptr<View> weak;
        const ItemVariables* box = nullptr;
        const ItemVariables* parent = nullptr;  // null: the frame is not the engine's to write
        bool feedsSolver = false;               // its size is an input (a fixed-frame subview's)
        std::vector<std::pair<LayoutGuide*, const ItemVariables*>> guides;
    };

    /// One round of `layoutTree`: the solver brought up to date, then the frames written.
    void pass(View& root);
    /// `layoutSubviews` top-down on the views that need it.
    void sweep(View& root);
    /// Applies the noted constant changes; false when one needs the full comparison instead.
    bool applyNotedConstants();
    /// Brings the solver up to date with the tree; returns the views with variables, top-down.
    std::vector<std::shared_ptr<View>> sync(View& root, const Fitting* fitting);
    void beginPass();
    static Scope scopeOf(View& root);
    void dropStaleUserEntries(const std::vector<std::shared_ptr<LayoutConstraint>>& active);
    /// The generated constraints, by what they stand for: the root's place and size (or the size
    /// being fitted), a fixed frame under its autoresizing mask, the intrinsic size held by hugging
    /// and compression resistance, and the guides' rectangles.
    void pinRoot(const View& root, const ItemVariables& v, const Fitting* fitting);
    void pinFixedFrame(const View& view, const ItemVariables& v);
    void holdIntrinsicSize(const View& view, const ItemVariables& v);
    void pinGuides(const View& view, const ItemVariables& v,
                   const std::unordered_set<const LayoutItem*>& guides);
    void pinInsetGuide(const View& view, const ItemVariables& v, const std::shared_ptr<LayoutGuide>& guide,
                       EdgeInsets in, Slot first, const std::unordered_set<const LayoutItem*>& guides);
    void dropUnseenGenerated();
    void collectTargets(const std::vector<std::shared_ptr<View>>& views, const View& root);
    void writeBack();

    ItemVariables& variablesFor(const std::shared_ptr<LayoutItem>& item);
    /// The item a constraint really relates: a scroll view's edges, tied to one of its own
    /// descendants, are the edges of its content (its content guide).
    static std::shared_ptr<LayoutItem> resolve(const std::shared_ptr<LayoutItem>& item,
                                               LayoutAttribute attribute,
                                               const std::shared_ptr<LayoutItem>& other);
    layout::Expression expressionFor(const ItemVariables& v, LayoutAttribute attribute) const;
    void generate(Key key, const LayoutItem& subject, layout::Expression expression,
                  layout::Relation relation, double strength);
    static std::string describe(Slot slot, const LayoutItem& subject);
    void syncUser(const std::shared_ptr<LayoutConstraint>& constraint);
    void warnBroken(const std::string& description);
    /// Starts the solver over: generated constraints first (the root's size and fixed frames always
    /// win), then the user's in activation order; whatever no longer fits is broken.
    void rebuild(const std::vector<std::shared_ptr<LayoutConstraint>>& active);
    bool tryAdd(const layout::Constraint& constraint);
    /// The first pass's constraints, described but not yet added: generated first, then the user's.
    void addDeferred(const std::vector<std::shared_ptr<LayoutConstraint>>& active);

    layout::Solver solver_;
    std::unordered_map<const LayoutItem*, ItemVariables> items_;
    std::unordered_map<const LayoutConstraint*, UserEntry> user_;
    std::unordered_map<Key, GeneratedEntry, KeyHash> generated_;
    std::vector<Key> generatedOrder_;  // this pass's keys, in generation order
    bool rebuildNeeded_ = false;
    bool deferAdds_ = false;
    /// Widths to size wrapping content at while measuring (`fittingSize` iterates on them).
    std::unordered_map<const View*, double> proposedWidth_;

    std::vector<Target> targets_;
    /// Constraints whose constant or priority changed since the last pass, in the order they did.
    std::vector<std::weak_ptr<LayoutConstraint>> noted_;
    /// The change counters when the solver last matched the tree; while every change since is one
    /// the engine can discount or was noted, a pass applies the notes alone.
    std::uint64_t syncedChanges_ = 0;
    std::uint64_t syncedNoted_ = 0;
    std::uint64_t syncedWritten_ = 0;
    bool synced_ = false;
    bool broken_ = false;            // some constraint did not fit at the last full sync
    bool frameFeedsGuides_ = false;  // a safe-area guide is solved: frames are inputs  // a safe-area guide
                                     // is solved: frames are inputs
    std::uint64_t fullSyncs_ = 0;
    std::size_t treeSize_ = 0;  // views in the tree at the last round

    friend class View;
};

}  // namespace ovix::kit
