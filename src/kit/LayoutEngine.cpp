#include "kit/LayoutEngine.h"

#include <algorithm>
#include <cmath>
#include <unordered_set>
#include <utility>

#include "ovix/kit/ScrollView.h"
#include "ovix/kit/View.h"
#include "ovix/platform/Platform.h"

namespace ovix::kit {

namespace {

std::uint64_t gChanges = 0;
/// Changes that are not merely a view marked for `layoutSubviews`.
std::uint64_t gInputs = 0;
/// Changes a kept engine may discount: constant changes it was told about, and the re-layout marks
/// caused by frames it wrote itself that nothing is solved from.
std::uint64_t gNoted = 0;
std::uint64_t gWritten = 0;
/// Views that left a tree: until this moves, plain pointers into a tree stay valid.
std::uint64_t gDepartures = 0;
bool gLayingOut = false;

/// Solved values carry floating-point noise; whole numbers come back whole.
double snap(double v) {
    double r = std::round(v);
    return std::fabs(v - r) < 1e-7 ? r : v;
}

bool sameTerms(const std::vector<layout::Term>& a, const std::vector<layout::Term>& b) {
    if (a.size() != b.size()) {
        return false;
    }
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (!(a[i].variable == b[i].variable) || a[i].coefficient != b[i].coefficient) {
            return false;
        }
    }
    return true;
}

layout::Relation toSolver(LayoutRelation relation) {
    switch (relation) {
        case LayoutRelation::lessThanOrEqual:
            return layout::Relation::LessOrEqual;
        case LayoutRelation::greaterThanOrEqual:
            return layout::Relation::GreaterOrEqual;
        case LayoutRelation::equal:
            break;
    }
    return layout::Relation::Equal;
}

constexpr double kRequired = layout::strength::required;

/// How much of a change in the superview's length each flexible part of a fixed frame takes: the
/// start margin's and the length's shares, in proportion to their sizes (evenly when all are zero).
std::pair<double, double> flexibleShares(double start, double length, double end, bool fs, bool fl, bool fe) {
    double total = (fs ? start : 0) + (fl ? length : 0) + (fe ? end : 0);
    int count = int(fs) + int(fl) + int(fe);
    auto share = [&](bool flexible, double part) {
        return !flexible ? 0.0 : total != 0 ? part / total : 1.0 / count;
    };
    return {share(fs, start), share(fl, length)};
}

layout::Expression scaled(const layout::Variable& var, double k) {
    return k == 0 ? layout::Expression(0) : layout::Expression(var) * k;
}

void collect(View& view, std::vector<std::shared_ptr<View>>& views) {
    views.push_back(view.self<View>());
    for (auto& child : view.subviews()) {
        collect(*child, views);
    }
}

template <class Out>
void collectPlain(View& view, Out& out) {
    out.insert(out.end(), &view);
    for (auto& child : view.subviews()) {
        collectPlain(*child, out);
    }
}

}  // namespace

void LayoutEngine::noteChange() {
    ++gChanges;
    ++gInputs;
}

void LayoutEngine::noteNeedsLayout() {
    ++gChanges;
}

void LayoutEngine::noteDeparture() {
    ++gDepartures;
    noteChange();
}

void LayoutEngine::noteConstantChange(LayoutConstraint& constraint, View& holder) {
    std::uint64_t before = gChanges;
    ++gChanges;
    holder.setNeedsLayout();
    gNoted += gChanges - before;
    auto root = holder.rootView();
    if (LayoutEngine* engine = root->engine_.get()) {
        engine->noted_.push_back(constraint.weak_from_this());
        if (engine->noted_.size() > engine->user_.size() + 64) {
            // Changing over and over with no pass in between: compare everything next time.
            engine->noted_.clear();
            engine->synced_ = false;
        }
    }
}
std::uint64_t LayoutEngine::changeCount() {
    return gChanges;
}
bool LayoutEngine::isLayingOut() {
    return gLayingOut;
}

void LayoutEngine::layoutTree(View& root) {
    if (gLayingOut) {
        return;  // a layoutIfNeeded from inside layoutSubviews: the running pass covers it
    }
    gLayingOut = true;
    auto keep = root.self<View>();
    if (!root.engine_) {
        root.engine_ = std::make_unique<LayoutEngine>();
    }
    bool settled = false;
    for (int round = 0; round < 8; ++round) {
        std::uint64_t before = gChanges;
        std::uint64_t writtenBefore = gWritten;
        root.engine_->pass(root);
        root.engine_->sweep(root);
        if (gChanges - before == gWritten - writtenBefore) {
            settled = true;
            break;
        }
    }
    root.engine_->synced_ = root.engine_->synced_ && settled;
    gLayingOut = false;
}

void LayoutEngine::sweep(View& root) {
    // The tree as the sweep begins, top-down; a view added meanwhile waits for the next round, one
    // that left is skipped.
    std::vector<View*> tree;
    tree.reserve(treeSize_);
    collectPlain(root, tree);
    treeSize_ = tree.size();
    std::uint64_t departures = gDepartures;
    std::unordered_set<View*> inTree;
    bool checkTree = false;
    for (View* view : tree) {
        if (gDepartures != departures) {
            departures = gDepartures;
            inTree.clear();
            collectPlain(root, inTree);
            checkTree = true;
        }
        if ((!checkTree || inTree.count(view)) && view->needsLayout_) {
            view->needsLayout_ = false;
            auto keepView = view->self<View>();  // its layout may drop the last other reference
            view->layoutSubviews();
        }
    }
}

void LayoutEngine::pass(View& root) {
    // Since the solver last matched the tree, nothing changed but noted constants and frames this
    // engine wrote: update those constraints alone.
    bool notedOnly = synced_ && !broken_ &&
                     gChanges - syncedChanges_ == (gNoted - syncedNoted_) + (gWritten - syncedWritten_);
    if (notedOnly && applyNotedConstants()) {
        solver_.updateVariables();
    } else {
        ++fullSyncs_;
        auto views = sync(root, nullptr);
        collectTargets(views, root);
    }
    noted_.clear();
    synced_ = true;
    syncedChanges_ = gChanges;
    syncedNoted_ = gNoted;
    syncedWritten_ = gWritten;
    writeBack();
}

bool LayoutEngine::applyNotedConstants() {
    for (auto& weak : noted_) {
        auto c = weak.lock();
        if (!c) {
            continue;  // gone with no other change: it was never part of this tree's system
        }
        auto it = user_.find(c.get());
        if (it == user_.end() || it->second.source.lock() != c) {
            return false;
        }
        UserEntry& e = it->second;
        if (e.revision == c->revision_) {
            continue;
        }
        // A new priority, or a constant the required constraints refuse, breaks or moves things:
        // leave it to the full comparison (the solver is as it was before this constraint).
        if (!e.installed || e.priority != c->priority() ||
            solver_.setConstant(e.constraint, -c->constant()) != layout::SolverResult::Ok) {
            return false;
        }
        e.revision = c->revision_;
    }
    return true;
}

const LayoutEngine* LayoutEngine::of(const View& root) {
    return root.engine_.get();
}

std::vector<layout::Constraint> LayoutEngine::installedConstraints() const {
    std::vector<layout::Constraint> out;
    for (auto& key : generatedOrder_) {
        const GeneratedEntry& e = generated_.at(key);
        if (e.installed) {
            out.push_back(e.constraint);
        }
    }
    std::vector<std::pair<std::uint64_t, const layout::Constraint*>> user;
    for (auto& [source, e] : user_) {
        if (e.installed) {
            user.emplace_back(source->activationOrder_, &e.constraint);
        }
    }
    std::sort(user.begin(), user.end());
    for (auto& [order, c] : user) {
        out.push_back(*c);
    }
    return out;
}

const layout::Constraint* LayoutEngine::solverConstraintFor(const LayoutConstraint& constraint) const {
    auto it = user_.find(&constraint);
    return it != user_.end() && it->second.installed ? &it->second.constraint : nullptr;
}

const LayoutEngine::Box* LayoutEngine::variablesOf(const LayoutItem& item) const {
    auto it = items_.find(&item);
    return it == items_.end() ? nullptr : &it->second;
}

Size LayoutEngine::fittingSize(View& view, Size target, float horizontalPriority, float verticalPriority) {
    LayoutEngine engine;
    Fitting fitting{target, horizontalPriority, verticalPriority};
    // Wrapping text is as tall as the width it gets: measure again at the solved widths until they
    // settle (a few rounds at most).
    for (int round = 0; round < 4; ++round) {
        auto views = engine.sync(view, &fitting);
        bool moved = false;
        for (auto& v : views) {
            double width = engine.variablesFor(v).width.value();
            auto [it, inserted] = engine.proposedWidth_.try_emplace(v.get(), width);
            if (inserted || std::fabs(it->second - width) > 1e-9) {
                it->second = width;
                moved = true;
            }
        }
        if (!moved) {
            break;
        }
    }
    auto& v = engine.variablesFor(view.self<View>());
    return {snap(v.width.value()), snap(v.height.value())};
}

LayoutEngine::ItemVariables& LayoutEngine::variablesFor(const std::shared_ptr<LayoutItem>& item) {
    auto it = items_.find(item.get());
    if (it != items_.end() && it->second.item.lock() == item) {
        it->second.seen = true;
        return it->second;
    }
    std::string name = item->debugName();
    ItemVariables v{{layout::Variable(name + ".left"), layout::Variable(name + ".top"),
                     layout::Variable(name + ".width"), layout::Variable(name + ".height")},
                    item,
                    true};
    items_.insert_or_assign(item.get(), std::move(v));
    return items_.at(item.get());
}

std::shared_ptr<LayoutItem> LayoutEngine::resolve(const std::shared_ptr<LayoutItem>& item,
                                                  LayoutAttribute attribute,
                                                  const std::shared_ptr<LayoutItem>& other) {
    bool edge = attribute != LayoutAttribute::width && attribute != LayoutAttribute::height &&
                attribute != LayoutAttribute::centerX && attribute != LayoutAttribute::centerY;
    if (!edge || !other) {
        return item;
    }
    // Only an edge tied to a view inside the item's own subtree can be a content edge; the type is
    // asked last.
    auto otherView = other->layoutView();
    if (!otherView || otherView.get() == item.get()) {
        return item;
    }
    bool inside = false;
    for (auto v = otherView->superview(); v && !inside; v = v->superview()) {
        inside = v.get() == item.get();
    }
    auto* scroll = inside ? dynamic_cast<ScrollView*>(item.get()) : nullptr;
    return scroll ? scroll->contentLayoutGuide().shared_from_this() : item;
}

layout::Expression LayoutEngine::expressionFor(const ItemVariables& v, LayoutAttribute attribute) const {
    switch (attribute) {
        case LayoutAttribute::left:
        case LayoutAttribute::leading:
            return v.left;
        case LayoutAttribute::right:
        case LayoutAttribute::trailing:
            return v.left + v.width;
        case LayoutAttribute::top:
            return v.top;
        case LayoutAttribute::bottom:
            return v.top + v.height;
        case LayoutAttribute::width:
            return v.width;
        case LayoutAttribute::height:
            return v.height;
        case LayoutAttribute::centerX:
            return v.left + v.width / 2;
        case LayoutAttribute::centerY:
            break;
    }
    return v.top + v.height / 2;
}

void LayoutEngine::warnBroken(const std::string& description) {
    platform::current()->console->printLine(
        "⚠️ Unable to simultaneously satisfy constraints: " + description + "; breaking it");
}

bool LayoutEngine::tryAdd(const layout::Constraint& constraint) {
    return solver_.addConstraint(constraint) == layout::SolverResult::Ok;
}

std::string LayoutEngine::describe(Slot slot, const LayoutItem& subject) {
    static constexpr const char* suffixes[] = {
        ".left == 0 (root)",
        ".top == 0 (root)",
        ".width == bounds (root)",
        ".height == bounds (root)",
        ".width (fitting)",
        ".height (fitting)",
        ".left == frame",
        ".top == frame",
        ".width == frame",
        ".height == frame",
        ".width >= intrinsic",
        ".width <= intrinsic",
        ".height >= intrinsic",
        ".height <= intrinsic",
        ".left",
        ".top",
        ".width",
        ".height",
        ".left",
        ".top",
        ".width",
        ".height",
        ".left",
        ".top",
        ".width",
        ".height",
        ".left",
        ".top",
    };
    static_assert(std::size(suffixes) == static_cast<std::size_t>(Slot::contentTop) + 1);
    return subject.debugName() + suffixes[static_cast<std::size_t>(slot)];
}

void LayoutEngine::generate(Key key, const LayoutItem& subject, layout::Expression expression,
                            layout::Relation relation, double strength) {
    auto it = generated_.find(key);
    if (it != generated_.end() && it->second.seen) {
        return;  // the same key twice in one pass: the first wins
    }
    generatedOrder_.push_back(key);
    if (it != generated_.end() && sameTerms(it->second.terms, expression.terms) &&
        it->second.strength == strength && it->second.constraint.relation() == relation) {
        GeneratedEntry& e = it->second;
        e.seen = true;
        e.subject = &subject;
        if (e.constant != expression.constant) {
            e.constant = expression.constant;
            if (!e.installed ||
                solver_.setConstant(e.constraint, expression.constant) != layout::SolverResult::Ok) {
                // A fixed size or frame that no longer fits the user's required constraints: start
                // over so the fixed value holds and a user constraint breaks instead.
                rebuildNeeded_ = true;
                if (e.installed) {
                    solver_.removeConstraint(e.constraint);
                    e.installed = false;
                }
                e.constraint = layout::Constraint(expression, relation, strength);
            }
        }
        return;
    }
    if (it != generated_.end()) {
        if (it->second.installed) {
            solver_.removeConstraint(it->second.constraint);
        }
        generated_.erase(it);
    }
    GeneratedEntry e{layout::Constraint(expression, relation, strength),
                     expression.terms,
                     strength,
                     expression.constant,
                     &subject,
                     false,
                     true,
                     false};
    if (!deferAdds_) {
        e.installed = tryAdd(e.constraint);
        rebuildNeeded_ = rebuildNeeded_ || !e.installed;
    }
    generated_.insert_or_assign(key, std::move(e));
}

void LayoutEngine::syncUser(const std::shared_ptr<LayoutConstraint>& c) {
    auto first = c->firstItem();
    auto second = c->secondItem();
    double strength = layout::strength::fromPriority(c->priority());
    auto build = [&] {
        auto a = resolve(first, c->firstAttribute(), second);
        layout::Expression lhs = expressionFor(variablesFor(a), c->firstAttribute());
        layout::Expression rhs = layout::Expression(0);
        if (second) {
            auto b = resolve(second, c->secondAttribute(), first);
            rhs = expressionFor(variablesFor(b), c->secondAttribute()) * c->multiplier();
        }
        return layout::Constraint(lhs - rhs - c->constant(), toSolver(c->relation()), strength);
    };
    auto breakIt = [&](UserEntry& e) {
        e.installed = false;
        if (!e.warned) {
            e.warned = true;
            warnBroken(c->description());
        }
    };
    auto it = user_.find(c.get());
    if (it == user_.end() || it->second.source.lock() != c) {
        UserEntry e{c, build(), c->revision_, c->priority(), false, true, false};
        e.installed = !deferAdds_ && tryAdd(e.constraint);
        if (!e.installed && !deferAdds_) {
            breakIt(e);
        }
        user_.insert_or_assign(c.get(), std::move(e));
        return;
    }
    UserEntry& e = it->second;
    e.seen = true;
    if (e.revision == c->revision_) {
        if (!e.installed) {
            e.installed = tryAdd(e.constraint);  // the system changed around it: it may fit now
            e.warned = e.warned && !e.installed;
        }
        return;
    }
    e.revision = c->revision_;
    if (e.installed && e.priority == c->priority()) {
        if (solver_.setConstant(e.constraint, -c->constant()) != layout::SolverResult::Ok) {
            solver_.removeConstraint(e.constraint);
            e.constraint = build();
            breakIt(e);
        }
        return;
    }
    if (e.installed) {
        solver_.removeConstraint(e.constraint);
    }
    e.constraint = build();
    e.priority = c->priority();
    e.warned = false;
    e.installed = tryAdd(e.constraint);
    if (!e.installed) {
        breakIt(e);
    }
}

void LayoutEngine::addDeferred(const std::vector<std::shared_ptr<LayoutConstraint>>& active) {
    deferAdds_ = false;
    for (auto& key : generatedOrder_) {
        GeneratedEntry& e = generated_.at(key);
        e.installed = tryAdd(e.constraint);
        rebuildNeeded_ = rebuildNeeded_ || !e.installed;
    }
    for (auto& c : active) {
        UserEntry& e = user_.at(c.get());
        e.installed = tryAdd(e.constraint);
        if (!e.installed) {
            e.warned = true;
            warnBroken(c->description());
        }
    }
}

void LayoutEngine::rebuild(const std::vector<std::shared_ptr<LayoutConstraint>>& active) {
    solver_.reset();
    for (auto& key : generatedOrder_) {
        GeneratedEntry& e = generated_.at(key);
        e.installed = tryAdd(e.constraint);
        if (!e.installed && !e.warned) {
            e.warned = true;
            warnBroken(describe(key.slot, *e.subject));
        }
    }
    for (auto& c : active) {
        UserEntry& e = user_.at(c.get());
        e.installed = tryAdd(e.constraint);
        if (!e.installed && !e.warned) {
            e.warned = true;
            warnBroken(c->description());
        }
        e.warned = e.warned && !e.installed;
    }
}

std::vector<std::shared_ptr<View>> LayoutEngine::sync(View& root, const Fitting* fitting) {
    beginPass();
    Scope scope = scopeOf(root);
    dropStaleUserEntries(scope.active);
    // A first pass describes everything before the solver takes it, in the same order, so the
    // solver's rows are made in one go.
    deferAdds_ = generated_.empty() && user_.empty();
    for (auto& view : scope.views) {
        auto& v = variablesFor(view);
        bool isRoot = view.get() == &root;
        bool fixedFrame = !isRoot && view->translatesAutoresizingMaskIntoConstraints();
        if (isRoot) {
            pinRoot(root, v, fitting);
        } else if (fixedFrame) {
            pinFixedFrame(*view, v);
        }
        // The root measures its content only when fitting; a fixed frame needs no measuring.
        if (isRoot ? fitting != nullptr : !fixedFrame) {
            holdIntrinsicSize(*view, v);
        }
        pinGuides(*view, v, scope.guides);
    }

    // Drop what this pass no longer wants, then add the user's constraints in activation order.
    dropUnseenGenerated();
    for (auto& c : scope.active) {
        syncUser(c);
    }
    if (deferAdds_) {
        addDeferred(scope.active);
    }
    if (rebuildNeeded_) {
        rebuild(scope.active);
    }
    for (auto it = items_.begin(); it != items_.end();) {
        it = it->second.seen ? std::next(it) : items_.erase(it);
    }
    solver_.updateVariables();
    broken_ = std::any_of(user_.begin(), user_.end(), [](auto& e) { return !e.second.installed; }) ||
              std::any_of(generated_.begin(), generated_.end(), [](auto& e) { return !e.second.installed; });
    return std::move(scope.views);
}

void LayoutEngine::beginPass() {
    for (auto& [p, v] : items_) {
        v.seen = false;
    }
    for (auto& [p, e] : user_) {
        e.seen = false;
    }
    for (auto& [k, e] : generated_) {
        e.seen = false;
    }
    generatedOrder_.clear();
    rebuildNeeded_ = false;
}

LayoutEngine::Scope LayoutEngine::scopeOf(View& root) {
    std::vector<std::shared_ptr<View>> tree;
    collect(root, tree);

    // The constraints in force, and every view they need positions for: their items' views and
    // those views' ancestors up to the root.
    Scope scope;
    std::unordered_set<const View*> involved{&root};
    auto involve = [&](const std::shared_ptr<LayoutItem>& item) {
        auto view = item->layoutView();
        if (item.get() != view.get()) {
            scope.guides.insert(item.get());
        }
        for (auto v = view; v && involved.insert(v.get()).second && v.get() != &root; v = v->superview()) {
        }
    };
    for (auto& view : tree) {
        for (auto& c : view->constraints()) {
            auto first = c->firstItem();
            auto second = c->secondItem();
            auto firstView = first ? first->layoutView() : nullptr;
            auto secondView = second ? second->layoutView() : nullptr;
            bool inTree = firstView && firstView->isDescendantOf(root) &&
                          (!c->hasSecond_ || (secondView && secondView->isDescendantOf(root)));
            if (inTree) {
                scope.active.push_back(c);
                involve(resolve(first, c->firstAttribute(), second));
                if (second) {
                    involve(resolve(second, c->secondAttribute(), first));
                }
            }
        }
    }

    // In activation order, whichever view holds them: the order the user wrote them in decides
    // which of two conflicting ones breaks, and it keeps the solver's rows short (a chain of views
    // meets each height before the view below it).
    std::sort(scope.active.begin(), scope.active.end(),
              [](const auto& a, const auto& b) { return a->activationOrder_ < b->activationOrder_; });

    for (auto& view : tree) {
        if (involved.count(view.get())) {
            scope.views.push_back(view);
        }
    }
    return scope;
}

void LayoutEngine::dropStaleUserEntries(const std::vector<std::shared_ptr<LayoutConstraint>>& active) {
    // Stale entries go first so that a replacement never meets the constraint it replaces.
    std::unordered_set<const LayoutConstraint*> wanted;
    for (auto& c : active) {
        wanted.insert(c.get());
    }
    for (auto it = user_.begin(); it != user_.end();) {
        auto source = it->second.source.lock();
        if (!source || !wanted.count(it->first) || source.get() != it->first) {
            if (it->second.installed) {
                solver_.removeConstraint(it->second.constraint);
            }
            it = user_.erase(it);
        } else {
            ++it;
        }
    }
}

void LayoutEngine::pinRoot(const View& root, const ItemVariables& v, const Fitting* fitting) {
    generate({&root, Slot::rootLeft}, root, v.left, layout::Relation::Equal, kRequired);
    generate({&root, Slot::rootTop}, root, v.top, layout::Relation::Equal, kRequired);
    if (fitting) {
        generate({&root, Slot::fitWidth}, root, v.width - fitting->target.width, layout::Relation::Equal,
                 layout::strength::fromPriority(fitting->horizontalPriority));
        generate({&root, Slot::fitHeight}, root, v.height - fitting->target.height, layout::Relation::Equal,
                 layout::strength::fromPriority(fitting->verticalPriority));
        return;
    }
    Size size = root.bounds().size;
    generate({&root, Slot::rootWidth}, root, v.width - size.width, layout::Relation::Equal, kRequired);
    generate({&root, Slot::rootHeight}, root, v.height - size.height, layout::Relation::Equal, kRequired);
}

void LayoutEngine::pinFixedFrame(const View& view, const ItemVariables& v) {
    // The fixed frame, with the autoresizing mask turned into its dependence on the superview's
    // size: flexible parts take their share of any change in that size.
    auto superview = view.superview();
    auto& s = variablesFor(superview);
    Rect f = view.frame();
    Size old = superview->bounds().size;
    using M = AutoresizingMask;
    M mask = superview->autoresizesSubviews() ? view.autoresizingMask() : M::none;
    auto [kx, kw] = flexibleShares(f.origin.x, f.size.width, old.width - f.origin.x - f.size.width,
                                   has(mask, M::flexibleLeftMargin), has(mask, M::flexibleWidth),
                                   has(mask, M::flexibleRightMargin));
    auto [ky, kh] = flexibleShares(f.origin.y, f.size.height, old.height - f.origin.y - f.size.height,
                                   has(mask, M::flexibleTopMargin), has(mask, M::flexibleHeight),
                                   has(mask, M::flexibleBottomMargin));
    generate({&view, Slot::frameLeft}, view,
             v.left - s.left - scaled(s.width, kx) - (f.origin.x - kx * old.width), layout::Relation::Equal,
             kRequired);
    generate({&view, Slot::frameTop}, view,
             v.top - s.top - scaled(s.height, ky) - (f.origin.y - ky * old.height), layout::Relation::Equal,
             kRequired);
    generate({&view, Slot::frameWidth}, view, v.width - scaled(s.width, kw) - (f.size.width - kw * old.width),
             layout::Relation::Equal, kRequired);
    generate({&view, Slot::frameHeight}, view,
             v.height - scaled(s.height, kh) - (f.size.height - kh * old.height), layout::Relation::Equal,
             kRequired);
}

void LayoutEngine::holdIntrinsicSize(const View& view, const ItemVariables& v) {
    auto proposed = proposedWidth_.find(&view);
    Size ics = proposed == proposedWidth_.end() ? view.intrinsicContentSize()
                                                : view.intrinsicContentSizeForWidth(proposed->second);
    // Compression resistance keeps the view from shrinking below its content, hugging from growing
    // past it, each at the view's priority for the axis.
    auto hold = [&](LayoutAxis axis, const layout::Variable& length, double natural) {
        if (natural == View::noIntrinsicMetric) {
            return;
        }
        bool horizontal = axis == LayoutAxis::horizontal;
        generate({&view, horizontal ? Slot::widthMin : Slot::heightMin}, view, length - natural,
                 layout::Relation::GreaterOrEqual,
                 layout::strength::fromPriority(view.contentCompressionResistancePriority(axis)));
        generate({&view, horizontal ? Slot::widthMax : Slot::heightMax}, view, length - natural,
                 layout::Relation::LessOrEqual,
                 layout::strength::fromPriority(view.contentHuggingPriority(axis)));
    };
    hold(LayoutAxis::horizontal, v.width, ics.width);
    hold(LayoutAxis::vertical, v.height, ics.height);
}

void LayoutEngine::pinGuides(const View& view, const ItemVariables& v,
                             const std::unordered_set<const LayoutItem*>& guides) {
    if (view.safeAreaGuide_ && guides.count(view.safeAreaGuide_.get())) {
        pinInsetGuide(view, v, view.safeAreaGuide_, view.safeAreaInsets(), Slot::safeLeft, guides);
    }
    pinInsetGuide(view, v, view.marginsGuide_, view.layoutMargins(), Slot::marginsLeft, guides);
    for (auto& guide : view.layoutGuides()) {
        if (!guides.count(guide.get())) {
            continue;
        }
        auto& g = variablesFor(guide);
        if (guide->kind() == LayoutGuide::Kind::scrollFrame) {
            pinInsetGuide(view, v, guide, {}, Slot::frameGuideLeft, guides);
        } else if (guide->kind() == LayoutGuide::Kind::scrollContent) {
            // The content starts at the scroll view's origin; its size is whatever the constraints
            // make it.
            generate({&view, Slot::contentLeft}, *guide, g.left - v.left, layout::Relation::Equal, kRequired);
            generate({&view, Slot::contentTop}, *guide, g.top - v.top, layout::Relation::Equal, kRequired);
        }
    }
}

void LayoutEngine::pinInsetGuide(const View& view, const ItemVariables& v,
                                 const std::shared_ptr<LayoutGuide>& guide, EdgeInsets in, Slot first,
                                 const std::unordered_set<const LayoutItem*>& guides) {
    // Built-in guides: fixed insets of the view's own rectangle.
    if (!guide || !guides.count(guide.get())) {
        return;
    }
    auto& g = variablesFor(guide);
    auto slot = [first](int offset) { return static_cast<Slot>(static_cast<int>(first) + offset); };
    generate({&view, slot(0)}, *guide, g.left - v.left - in.left, layout::Relation::Equal, kRequired);
    generate({&view, slot(1)}, *guide, g.top - v.top - in.top, layout::Relation::Equal, kRequired);
    generate({&view, slot(2)}, *guide, g.width - v.width + in.left + in.right, layout::Relation::Equal,
             kRequired);
    generate({&view, slot(3)}, *guide, g.height - v.height + in.top + in.bottom, layout::Relation::Equal,
             kRequired);
}

void LayoutEngine::dropUnseenGenerated() {
    for (auto it = generated_.begin(); it != generated_.end();) {
        if (!it->second.seen) {
            if (it->second.installed) {
                solver_.removeConstraint(it->second.constraint);
            }
            it = generated_.erase(it);
        } else {
            ++it;
        }
    }
}

void LayoutEngine::collectTargets(const std::vector<std::shared_ptr<View>>& views, const View& root) {
    targets_.clear();
    targets_.reserve(views.size());
    std::unordered_map<const View*, std::size_t> index;
    frameFeedsGuides_ = false;
    for (auto& view : views) {
        Target t;
        t.view = view.get();
        t.weak = view;
        t.box = &items_.at(view.get());
        if (view.get() != &root && !view->translatesAutoresizingMaskIntoConstraints()) {
            t.parent = &items_.at(view->superview().get());
        }
        auto add = [&](const std::shared_ptr<LayoutGuide>& guide) {
            auto it = guide ? items_.find(guide.get()) : items_.end();
            if (it != items_.end()) {
                t.guides.emplace_back(guide.get(), &it->second);
            }
        };
        add(view->safeAreaGuide_);
        frameFeedsGuides_ = frameFeedsGuides_ || !t.guides.empty();
        add(view->marginsGuide_);
        for (auto& guide : view->layoutGuides()) {
            add(guide);
        }
        index.emplace(view.get(), targets_.size());
        targets_.push_back(std::move(t));
    }
    // A fixed frame is pinned from its superview's size: a frame written there is an input too.
    for (auto& view : views) {
        if (view.get() != &root && view->translatesAutoresizingMaskIntoConstraints()) {
            targets_[index.at(view->superview().get())].feedsSolver = true;
        }
    }
}

void LayoutEngine::writeBack() {
    auto rectOf = [&](const ItemVariables& v, const ItemVariables& origin) {
        return Rect{snap(v.left.value() - origin.left.value()), snap(v.top.value() - origin.top.value()),
                    snap(v.width.value()), snap(v.height.value())};
    };
    const std::uint64_t departuresAtStart = gDepartures;
    for (auto& t : targets_) {
        // A hook run by an earlier frame may have changed the tree: then only views still alive.
        std::shared_ptr<View> held;
        if (gDepartures != departuresAtStart) {
            held = t.weak.lock();
            if (!held) {
                continue;
            }
        }
        View& view = *t.view;
        if (t.parent) {
            Rect frame = rectOf(*t.box, *t.parent);
            if (frame != view.frame()) {
                std::uint64_t before = gChanges;
                std::uint64_t inputs = gInputs;
                view.setFrame(frame);
                // The re-layout marks of a frame nothing is solved from need no further round.
                if (gInputs == inputs && !t.feedsSolver && !frameFeedsGuides_) {
                    gWritten += gChanges - before;
                }
            }
        }
        for (auto& [guide, box] : t.guides) {
            auto owned = [&, g = guide] {
                auto& list = view.layoutGuides();
                return view.safeAreaGuide_.get() == g || view.marginsGuide_.get() == g ||
                       std::any_of(list.begin(), list.end(), [g](auto& other) { return other.get() == g; });
            };
            if (gDepartures != departuresAtStart && !owned()) {
                continue;
            }
            guide->layoutFrame_ = rectOf(*box, *t.box);
            if (guide->kind() == LayoutGuide::Kind::scrollContent) {
                view.contentLayoutGuideDidResolve(guide->layoutFrame_.size);
            }
        }
    }
}

}  // namespace ovix::kit
