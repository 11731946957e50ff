/// @file
/// Axis-aligned boxes of the plane: Math::Box2d (double corners, may be empty)
/// and Math::Box2di (int32 corner and size).
#pragma once

#include <BrindleBaseCore/Global.h>
#include <BrindleBaseCore/math/Point2d.h>

#include <cstdint>

namespace Math {

namespace Constants {
/// Whether a side of a box belongs to it.
enum Boundary : int
{
    Open = 0,  ///< The side is excluded.
    Closed = 1 ///< The side is included.
};
} // namespace Constants

/// An axis-aligned box of doubles. A default box is empty; adding points grows
/// it, and a box spanning two corners is closed on every side. Nothing fails:
/// the corners of an empty box are meaningless and two empty boxes compare
/// equal. The side markers (open or closed) are carried but not compared.
class BRINDLE_EXPORT Box2d
{
public:
    Box2d() = default;
    /// The closed box spanning two corners (in any order).
    Box2d(Point2d const& a, Point2d const& b)
    {
        add(a);
        add(b);
    }

    /// Whether the box holds no point yet (then min() and max() mean nothing).
    bool isEmpty() const { return _empty; }
    /// The lower-left corner.
    Point2d const& min() const { return _min; }
    /// The upper-right corner.
    Point2d const& max() const { return _max; }
    /// Side markers: minimum x, minimum y, maximum x, maximum y.
    Constants::Boundary boundary(int side) const { return _boundary[side & 3]; }

    /// The first point makes the box closed around it; later points extend it.
    void add(Point2d const& p)
    {
        if (_empty) {
            _empty = false;
            _min = _max = p;
            _boundary[0] = _boundary[1] = _boundary[2] = _boundary[3] = Constants::Closed;
            return;
        }
        if (p.x() <= _min.x())
            _min.x() = p.x();
        if (p.y() <= _min.y())
            _min.y() = p.y();
        if (p.x() >= _max.x())
            _max.x() = p.x();
        if (p.y() >= _max.y())
            _max.y() = p.y();
    }

    /// Exact comparison of the corners; two empty boxes are equal whatever their corners, and the
    /// side markers are not compared.
    bool operator==(Box2d const& b) const
    {
        return _empty == b._empty && (_empty || (_min == b._min && _max == b._max));
    }
    /// Negation of operator==.
    bool operator!=(Box2d const& b) const { return !(*this == b); }

private:
    bool _empty = true;
    Point2d _min;
    Point2d _max;
    Constants::Boundary _boundary[4] = {Constants::Open, Constants::Open, Constants::Open,
                                        Constants::Open};
};

/// An int32 box given by its corner and size. The values are stored as given:
/// a negative size is kept, not normalised (intended), and nothing fails.
class BRINDLE_EXPORT Box2di
{
public:
    Box2di() = default;
    /// Corner (x, y) and size; the size is stored as given, even negative.
    Box2di(int x, int y, int width, int height)
        : _x(x)
        , _y(y)
        , _width(width)
        , _height(height)
    {}

    /// @name Corner and size
    /**@{*/
    /// Left coordinate.
    int x() const { return _x; }
    /// Bottom coordinate.
    int y() const { return _y; }
    /// Width as stored.
    int width() const { return _width; }
    /// Height as stored.
    int height() const { return _height; }
    /**@}*/

    /// Exact comparison of corner and size.
    bool operator==(Box2di const& b) const
    {
        return _x == b._x && _y == b._y && _width == b._width && _height == b._height;
    }
    /// Negation of operator==.
    bool operator!=(Box2di const& b) const { return !(*this == b); }

private:
    std::int32_t _x = 0;
    std::int32_t _y = 0;
    std::int32_t _width = 0;
    std::int32_t _height = 0;
};

} // namespace Math
