// Helpers shared by the matrix classes.
#pragma once

#include <cmath>
#include <cstddef>

namespace Math::Internal {

// −1, 0 or +1 by the first value that is less or greater in b; values that
// are neither (equal, or a NaN on either side) are passed over.
template <std::size_t N>
int compareValues(double const* a, double const* b)
{
    for (std::size_t i = 0; i < N; ++i) {
        if (a[i] < b[i])
            return -1;
        if (b[i] < a[i])
            return 1;
    }
    return 0;
}

template <std::size_t N>
bool anyNan(double const* a)
{
    for (std::size_t i = 0; i < N; ++i) {
        if (std::isnan(a[i]))
            return true;
    }
    return false;
}

template <std::size_t N>
bool anyInfinity(double const* a)
{
    for (std::size_t i = 0; i < N; ++i) {
        if (std::isinf(a[i]))
            return true;
    }
    return false;
}

// The label printed for a matrix: "Matrix" for a null or empty one.
inline char const* printLabel(char const* label)
{
    return (label == nullptr || *label == '\0') ? "Matrix" : label;
}

} // namespace Math::Internal
