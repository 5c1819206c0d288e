#include "ViewFinder.h"

#include <algorithm>
#include <cstdio>

#include "ovix/kit/Label.h"
#include "ovix/kit/ScrollView.h"

namespace demo {

using ovix::kit::View;

namespace {

bool shown(const View& view) {
    return !view.isHidden() && view.alpha() >= 0.01;
}

void collect(const std::shared_ptr<View>& view, const ViewFinder::Predicate& matches, bool firstOnly,
             std::vector<std::shared_ptr<View>>& found) {
    if (!view || !shown(*view) || (firstOnly && !found.empty())) {
        return;
    }
    if (matches(*view)) {
        found.push_back(view);
    }
    for (const auto& subview : view->subviews()) {
        collect(subview, matches, firstOnly, found);
    }
}

}  // namespace

std::shared_ptr<View> ViewFinder::find(const std::shared_ptr<View>& root, const Predicate& matches) {
    std::vector<std::shared_ptr<View>> found;
    collect(root, matches, true, found);
    return found.empty() ? nullptr : found.front();
}

std::vector<std::shared_ptr<View>> ViewFinder::findAll(const std::shared_ptr<View>& root,
                                                       const Predicate& matches) {
    std::vector<std::shared_ptr<View>> found;
    collect(root, matches, false, found);
    return found;
}

ViewFinder::Predicate ViewFinder::hasClass(std::string className) {
    return [className = std::move(className)](const View& view) { return view.className() == className; };
}

ViewFinder::Predicate ViewFinder::buttonTitled(std::string title) {
    return [title = std::move(title)](const View& view) {
        const auto* button = dynamic_cast<const ovix::kit::Button*>(&view);
        return button && button->currentTitle() == title;
    };
}

ViewFinder::Predicate ViewFinder::labelShowing(std::string text) {
    return [text = std::move(text)](const View& view) {
        const auto* label = dynamic_cast<const ovix::kit::Label*>(&view);
        return label && label->text() == text;
    };
}

std::optional<ovix::kit::Point> ViewFinder::centreInWindow(const View& view) {
    const auto window = view.window();
    if (!window) {
        return std::nullopt;
    }
    const auto bounds = view.bounds();
    return view.convertTo(
        ovix::kit::Point{bounds.origin.x + bounds.size.width / 2, bounds.origin.y + bounds.size.height / 2},
        window.get());
}

void ViewFinder::scrollIntoView(const std::shared_ptr<View>& view) {
    for (auto ancestor = view ? view->superview() : nullptr; ancestor; ancestor = ancestor->superview()) {
        auto* scroll = dynamic_cast<ovix::kit::ScrollView*>(ancestor.get());
        if (!scroll) {
            continue;
        }
        const auto bounds = view->bounds();
        const auto top = view->convertTo(bounds.origin, scroll).y;  // in the content's coordinates
        const auto visible = scroll->bounds();
        auto offset = scroll->contentOffset();
        if (top + bounds.size.height > visible.origin.y + visible.size.height) {
            offset.y = top + bounds.size.height - visible.size.height;
        } else if (top < visible.origin.y) {
            offset.y = top;
        }
        offset.y = std::clamp(offset.y, 0.0, scroll->maximumContentOffset().y);
        scroll->setContentOffset(offset);
        return;
    }
}

bool ViewFinder::tap(const std::shared_ptr<View>& view) {
    // A player taps what is drawn: lay the window out first, as drawing would, and scroll a view
    // below the fold into sight, as the player would.
    if (const auto window = view ? view->window() : nullptr) {
        window->layoutIfNeeded();
        scrollIntoView(view);
        window->layoutIfNeeded();
    }
    const auto centre = view ? centreInWindow(*view) : std::nullopt;
    if (!centre) {
        return false;
    }
    view->window()->tap(*centre);
    return true;
}

namespace {

void describeInto(const std::shared_ptr<View>& view, int depth, std::string& out) {
    if (!view || !shown(*view)) {
        return;
    }
    const auto bounds = view->bounds();
    const auto window = view->window();
    const auto origin = window ? view->convertTo(bounds.origin, window.get()) : bounds.origin;
    char frame[96];
    std::snprintf(frame, sizeof frame, " (%.0f, %.0f, %.0f x %.0f)", origin.x, origin.y, bounds.size.width,
                  bounds.size.height);
    out += std::string(static_cast<std::size_t>(depth) * 2, ' ') + view->className() + frame;
    if (const auto* button = dynamic_cast<const ovix::kit::Button*>(view.get());
        button && button->currentTitle()) {
        out += " \"" + *button->currentTitle() + "\"";
    } else if (const auto* label = dynamic_cast<const ovix::kit::Label*>(view.get())) {
        out += " \"" + label->text() + "\"";
    }
    out += "\n";
    for (const auto& subview : view->subviews()) {
        describeInto(subview, depth + 1, out);
    }
}

}  // namespace

std::string ViewFinder::describe(const std::shared_ptr<View>& root) {
    std::string out;
    describeInto(root, 0, out);
    return out;
}

std::shared_ptr<ovix::kit::ViewController> ViewFinder::topController(const ovix::kit::Window& window) {
    auto controller = window.rootViewController();
    while (controller && controller->presentedViewController()) {
        controller = controller->presentedViewController();
    }
    return controller;
}

}  // namespace demo
