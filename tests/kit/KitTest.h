#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "ovix/kit/Application.h"
#include "ovix/kit/LayoutConstraint.h"
#include "ovix/kit/Window.h"
#include "ovix/testing/HeadlessPlatform.h"

namespace ovix::test {

/// A fresh headless platform per test, with the default 390 x 844 screen and its key window.
class KitTest : public ::testing::Test {
  protected:
    void SetUp() override {
        headless = testing::HeadlessPlatform::create(options());
        headless.install();
    }
    virtual testing::HeadlessPlatform::Options options() { return {}; }

    std::shared_ptr<kit::Window> window() { return headless.application->windows().front(); }
    testing::VirtualMainQueue& queue() { return *headless.mainQueue; }
    /// Taps the middle of `view` in the key window.
    void tapCentre(const kit::View& view) {
        kit::Rect r = view.convertTo(view.bounds(), nullptr);
        window()->tap({r.midX(), r.midY()});
    }

    testing::HeadlessPlatform headless;
};

/// `view` (a new plain view by default), placed by constraints rather than by its frame.
template <typename V = kit::View>
std::shared_ptr<V> constrained(std::shared_ptr<V> view = kit::View::create()) {
    view->setTranslatesAutoresizingMaskIntoConstraints(false);
    return view;
}

/// `constrained(view)`, added to `parent`.
template <typename V = kit::View>
std::shared_ptr<V> constrainedIn(const std::shared_ptr<kit::View>& parent,
                                 std::shared_ptr<V> view = kit::View::create()) {
    parent->addSubview(constrained(view));
    return view;
}

/// A view sized by constraints alone; the width holds at `widthPriority`.
inline std::shared_ptr<kit::View> box(double w, double h,
                                      float widthPriority = kit::LayoutPriority::required) {
    auto v = constrained();
    auto width = v->widthAnchor().constraintEqualToConstant(w);
    width->setPriority(widthPriority);
    kit::LayoutConstraint::activate({width, v->heightAnchor().constraintEqualToConstant(h)});
    return v;
}

/// Adds `view` to `root` and pins its edges `inset` inside; returns the top, bottom, leading and
/// trailing constraints.
inline std::vector<std::shared_ptr<kit::LayoutConstraint>> pin(const std::shared_ptr<kit::View>& view,
                                                               const std::shared_ptr<kit::View>& root,
                                                               double inset = 0) {
    view->setTranslatesAutoresizingMaskIntoConstraints(false);
    root->addSubview(view);
    std::vector<std::shared_ptr<kit::LayoutConstraint>> edges{
        view->topAnchor().constraintEqualTo(root->topAnchor(), inset),
        view->bottomAnchor().constraintEqualTo(root->bottomAnchor(), -inset),
        view->leadingAnchor().constraintEqualTo(root->leadingAnchor(), inset),
        view->trailingAnchor().constraintEqualTo(root->trailingAnchor(), -inset),
    };
    kit::LayoutConstraint::activate(edges);
    return edges;
}

}  // namespace ovix::test
