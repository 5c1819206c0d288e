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
/// One engine lives on the root view of a tree and is kept between passes: each pass brings the
/// solver up to date incrementally (new and removed constraints, changed constants and priorities,
/// the generated constraints for fixed frames, intrinsic sizes and guides), solves, and writes
/// frames. Positions are solved in the root's space with scroll offsets left out (a scroll view's
/// subviews are laid out in content coordinates). Main thread only.
class LayoutEngine {
  public:
    /// Something that affects layout changed somewhere (a constraint, a frame, an intrinsic size).
    static void noteChange();
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
    struct GeneratedEntry {
        layout::Constraint constraint;
        std::vector<layout::Term> terms;
        double strength = 0;
        double constant = 0;
        bool installed = false;
        bool seen = false;
        bool warned = false;
        std::string description;
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
                       EdgeInsets in, const char* slot, const std::unordered_set<const LayoutItem*>& guides);
    void dropUnseenGenerated();
    void writeBack(const std::vector<std::shared_ptr<View>>& views, View& root);

    ItemVariables& variablesFor(const std::shared_ptr<LayoutItem>& item);
    /// The item a constraint really relates: a scroll view's edges, tied to one of its own
    /// descendants, are the edges of its content (its content guide).
    static std::shared_ptr<LayoutItem> resolve(const std::shared_ptr<LayoutItem>& item,
                                               LayoutAttribute attribute,
                                               const std::shared_ptr<LayoutItem>& other);
    layout::Expression expressionFor(const ItemVariables& v, LayoutAttribute attribute) const;
    void generate(const std::string& key, layout::Expression expression, layout::Relation relation,
                  double strength, const std::string& description);
    void syncUser(const std::shared_ptr<LayoutConstraint>& constraint);
    void warnBroken(const std::string& description);
    /// Starts the solver over: generated constraints first (the root's size and fixed frames always
    /// win), then the user's in activation order; whatever no longer fits is broken.
    void rebuild(const std::vector<std::shared_ptr<LayoutConstraint>>& active);
    bool tryAdd(const layout::Constraint& constraint);

    layout::Solver solver_;
    std::unordered_map<const LayoutItem*, ItemVariables> items_;
    std::unordered_map<const LayoutConstraint*, UserEntry> user_;
    std::unordered_map<std::string, GeneratedEntry> generated_;
    std::vector<std::string> generatedOrder_;  // this pass's keys, in generation order
    bool rebuildNeeded_ = false;
    /// Widths to size wrapping content at while measuring (`fittingSize` iterates on them).
    std::unordered_map<const View*, double> proposedWidth_;

    friend class View;
};

}  // namespace ovix::kit
