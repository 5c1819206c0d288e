#pragma once

#include <algorithm>
#include <cmath>
#include <ostream>

namespace ovix::kit {

/// A point in a view's coordinate space, in points (y grows downwards).
struct Point {
    double x = 0;
    double y = 0;

    friend bool operator==(const Point&, const Point&) = default;
    Point operator+(const Point& o) const { return {x + o.x, y + o.y}; }
    Point operator-(const Point& o) const { return {x - o.x, y - o.y}; }
    friend std::ostream& operator<<(std::ostream& out, const Point& p) {
        return out << "(" << p.x << ", " << p.y << ")";
    }
};

struct Size {
    double width = 0;
    double height = 0;

    friend bool operator==(const Size&, const Size&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Size& s) {
        return out << s.width << " x " << s.height;
    }
};

/// Origin and size. A negative size is allowed and kept as given; the min/max accessors order it.
struct Rect {
    Point origin;
    Size size;

    constexpr Rect() = default;
    constexpr Rect(Point o, Size s) : origin(o), size(s) {}
    constexpr Rect(double x, double y, double width, double height) : origin{x, y}, size{width, height} {}

    friend bool operator==(const Rect&, const Rect&) = default;

    double x() const { return origin.x; }
    double y() const { return origin.y; }
    double width() const { return size.width; }
    double height() const { return size.height; }
    double minX() const { return std::min(origin.x, origin.x + size.width); }
    double maxX() const { return std::max(origin.x, origin.x + size.width); }
    double minY() const { return std::min(origin.y, origin.y + size.height); }
    double maxY() const { return std::max(origin.y, origin.y + size.height); }
    double midX() const { return origin.x + size.width / 2; }
    double midY() const { return origin.y + size.height / 2; }
    bool isEmpty() const { return size.width == 0 || size.height == 0; }

    /// Half-open: the maximum edges are outside.
    bool contains(Point p) const { return p.x >= minX() && p.x < maxX() && p.y >= minY() && p.y < maxY(); }
    bool intersects(const Rect& o) const {
        return minX() < o.maxX() && o.minX() < maxX() && minY() < o.maxY() && o.minY() < maxY();
    }
    Rect offsetBy(double dx, double dy) const {
        return {origin.x + dx, origin.y + dy, size.width, size.height};
    }
    Rect insetBy(double dx, double dy) const {
        return {origin.x + dx, origin.y + dy, size.width - 2 * dx, size.height - 2 * dy};
    }

    friend std::ostream& operator<<(std::ostream& out, const Rect& r) {
        return out << "(" << r.origin.x << ", " << r.origin.y << ", " << r.size.width << ", " << r.size.height
                   << ")";
    }
};

struct EdgeInsets {
    double top = 0;
    double left = 0;
    double bottom = 0;
    double right = 0;

    friend bool operator==(const EdgeInsets&, const EdgeInsets&) = default;
    /// `rect` shrunk by the insets.
    Rect inset(const Rect& rect) const {
        return {rect.origin.x + left, rect.origin.y + top, rect.size.width - left - right,
                rect.size.height - top - bottom};
    }
    friend std::ostream& operator<<(std::ostream& out, const EdgeInsets& e) {
        return out << "{" << e.top << ", " << e.left << ", " << e.bottom << ", " << e.right << "}";
    }
};

/// Equality within `tolerance`, for values that came out of floating-point layout.
inline bool nearlyEqual(double a, double b, double tolerance = 1e-6) {
    return std::fabs(a - b) <= tolerance;
}

}  // namespace ovix::kit
