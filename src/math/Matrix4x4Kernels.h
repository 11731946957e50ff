// Vector kernels of Matrix4x4, picked at run time for the processor. They
// give the same bits as the portable code: the same operations in the same
// order for every element, no fused multiply-add, no reciprocal in place of a
// division.
//
// The environment variable BRINDLE_MATH_KERNEL caps the level picked:
// "portable", "avx2" or "avx512" (the default is the best the processor has).
#pragma once

namespace Math::Internal {

enum class InverseResult
{
    Inverted,
    Unsure
};

// The inverse of the column-major matrix m into out by the LU decomposition
// of Matrix4x4::getInverse(). Unsure when the processor lacks the vector
// instructions, a value that is not finite turns up, rows of (nearly) equal
// merit compete for a pivot, or a pivot comes near the singular bound: the
// portable code then decides, by its own pivot rules, and so is the one to
// find a matrix singular. out is written in every case.
InverseResult invertFast(double const* m, double* out);

// The levels behind invertFast(), for processors that have them.
InverseResult invertAvx2(double const* m, double* out);
InverseResult invertAvx512(double const* m, double* out);

} // namespace Math::Internal
