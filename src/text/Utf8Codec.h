// UTF-8 <-> UTF-16 conversion in fixed chunks, shared by the text area.
//
// Both directions convert the longest well-formed prefix of their input and
// stop at the first truncated or ill-formed sequence (UTF-8) or unpaired
// surrogate (UTF-16): what was converted before it is kept, nothing is
// substituted. Work goes through a 64-unit buffer on the stack that is appended
// to the result, so the result's storage is the only allocation.
#pragma once

#include <cstddef>
#include <string>

namespace brindle::text {

// Appends the UTF-16 of the UTF-8 bytes [bytes, bytes + size) to out.
void appendUtf8(std::u16string& out, char const* bytes, std::size_t size);

// Appends the UTF-8 of the UTF-16 units [units, units + size) to out.
void appendUtf16AsUtf8(std::string& out, char16_t const* units, std::size_t size);

} // namespace brindle::text
