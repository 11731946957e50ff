// Enumerations that index the components of vectors, points and matrices.
#pragma once

namespace Math {

enum class Axis2d : int
{
    X = 0,
    Y = 1
};
enum class Axis3d : int
{
    X = 0,
    Y = 1,
    Z = 2
};
enum class Axis4d : int
{
    X = 0,
    Y = 1,
    Z = 2,
    W = 3
};

/// Matrix rows and columns; the 2D matrices use only the first two.
enum Row : unsigned
{
    Row0 = 0,
    Row1 = 1,
    Row2 = 2,
    Row3 = 3
};
enum Column : unsigned
{
    Column0 = 0,
    Column1 = 1,
    Column2 = 2,
    Column3 = 3
};

} // namespace Math
