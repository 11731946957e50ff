// Vector kernels of Matrix4x4, picked at run time for the processor. They
// give the same bits as the portable code: the same operations in the same
// order for every element, no fused multiply-add, no reciprocal in place of a
// division.
#pragma once

namespace Math::Internal {

enum class InverseResult
{
    Inverted,
    Singular,
    Unsure
};

// The inverse of the column-major matrix m into out by the LU decomposition
// of Matrix4x4::getInverse(). Unsure when the processor lacks the vector
// instructions or a value that is not finite turns up along the way: the
// portable code then decides, since its pivot rules for NaNs differ.
InverseResult invertFast(double const* m, double* out);

} // namespace Math::Internal
