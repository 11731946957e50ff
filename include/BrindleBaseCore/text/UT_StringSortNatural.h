/// @file
/// Natural ("file2 before file10") ordering of lists of names.
#pragma once

#include <BrindleBaseCore/Global.h>
#include <BrindleBaseCore/text/UT_String.h>

#include <QtCore/QList>
#include <QtCore/QString>

#include <cstddef>
#include <vector>

namespace UT_StringSortNatural {

/// The permutation listing the indices of items in natural order. Each item is
/// split into runs of decimal digits (any Unicode decimal digit) and runs of
/// other characters; runs compare pairwise: a number before a text, texts
/// case-insensitively (QString::compare), numbers by value as signed 32-bit
/// integers (a run past 2147483647 wraps: intended). Then the item with fewer
/// runs comes first, then the shorter item ("a1" before "a01"). Items equal in
/// all of this come in no defined order.
BRINDLE_EXPORT std::vector<std::size_t> getOrder(std::vector<QString> const& items);

/// Sorts the range in the order of getOrder.
BRINDLE_EXPORT void sort(QList<QString>::iterator first, QList<QString>::iterator last);

/// Same as text.ToQString().
BRINDLE_EXPORT QString convertToQString(UT_String const& text);

} // namespace UT_StringSortNatural
