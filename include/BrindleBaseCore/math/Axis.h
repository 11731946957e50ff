/// @file
/// Enumerations that index the components of vectors, points and matrices.
#pragma once

namespace Math {

/// The axes of the plane.
enum class Axis2d : int
{
    X = 0, ///< Horizontal.
    Y = 1  ///< Vertical.
};
/// The axes of space.
enum class Axis3d : int
{
    X = 0, ///< First coordinate.
    Y = 1, ///< Second coordinate.
    Z = 2  ///< Third coordinate (depth).
};
/// The components of a homogeneous point.
enum class Axis4d : int
{
    X = 0, ///< First coordinate.
    Y = 1, ///< Second coordinate.
    Z = 2, ///< Third coordinate.
    W = 3  ///< Homogeneous weight.
};

/// Matrix rows; the 2D matrices use only the first two.
enum Row : unsigned
{
    Row0 = 0, ///< First row.
    Row1 = 1, ///< Second row.
    Row2 = 2, ///< Third row (4x4 only).
    Row3 = 3  ///< Fourth row (4x4 only).
};
/// Matrix columns; the 2x2 matrix uses only the first two.
enum Column : unsigned
{
    Column0 = 0, ///< First column.
    Column1 = 1, ///< Second column.
    Column2 = 2, ///< Third column.
    Column3 = 3  ///< Fourth column (4x4 only).
};

} // namespace Math
