/// @file
/// Small string services: white space, 8-bit copies, name ordering, conditions.
#pragma once

#include <BrindleBaseCore/Global.h>
#include <BrindleBaseCore/text/UT_String.h>

#include <QtCore/QString>

#include <set>
#include <string>

namespace UT_StringServices {

/// Removes leading and trailing " \t\n\v\f\r", in place.
BRINDLE_EXPORT void FlushSpace(std::string& text);

/// True when a unit of text is above 127 (false for an empty text).
BRINDLE_EXPORT bool isUnicode(QString const& text);

/// out[i] = a malloc'ed UTF-8 copy (C strdup) of the zero-terminated in[i], for
/// i < count; with terminate, out[count] = nullptr as well. The caller frees each
/// copy with free(). A null in[i] gives a null out[i]. Conversion as
/// UT_String::utf8().
BRINDLE_EXPORT void wchar2char(UT_Char const* const* in, int count, char** out, bool terminate);

/// Less-than for file names with numbers, on their Latin-1 bytes: names with an
/// extension come first and are ordered by extension; digit runs compare as
/// numbers (at equal value the longer run first: "007" before "7"); other
/// characters compare with the case swapped, '_' before everything, so that
/// digits come before letters and every lower-case letter before every
/// upper-case one ("z" before "A"). A strict weak order, usable with std::sort.
BRINDLE_EXPORT bool NumericAlphanumericTupleLess(QString const& a, QString const& b);

/// Evaluates a boolean expression over names (runs of ASCII letters, digits and
/// '_'): a name is true when it is in defined. Operators, by decreasing
/// precedence: '!' or "not"; "&&" or "and"; "||" or "or"; parentheses group;
/// white space separates. A malformed or empty expression gives false. Any
/// depth of nesting is evaluated without recursion.
BRINDLE_EXPORT bool EvaluateCondition(std::string const& expression,
                                      std::set<std::string> const& defined);

} // namespace UT_StringServices
