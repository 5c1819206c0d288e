#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "ovix/kit/Application.h"
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

    testing::HeadlessPlatform headless;
};

/// Rectangles compared within floating-point noise.
inline ::testing::AssertionResult rectNear(const kit::Rect& actual, const kit::Rect& expected,
                                           double tol = 1e-6) {
    if (kit::nearlyEqual(actual.x(), expected.x(), tol) && kit::nearlyEqual(actual.y(), expected.y(), tol) &&
        kit::nearlyEqual(actual.width(), expected.width(), tol) &&
        kit::nearlyEqual(actual.height(), expected.height(), tol)) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << "got " << actual << ", expected " << expected;
}

}  // namespace ovix::test
