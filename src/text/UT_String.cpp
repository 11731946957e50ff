#include <BrindleBaseCore/text/UT_String.h>

#include "text/Utf8Codec.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <cwctype>

#include <sys/mman.h>

namespace {

// Storage of a large result is backed by transparent huge pages where the
// system offers them on request: one fault per 2 MiB instead of one per 4 KiB
// page, which is most of the cost of decoding many megabytes. Only the pages
// the result touches are ever allocated.
void adviseHugePages(std::u16string& text)
{
    constexpr std::uintptr_t HugePage = std::uintptr_t(2) << 20;
    std::size_t bytes = text.capacity() * sizeof(UT_Char);
    if (bytes < 2 * HugePage)
        return;
    auto begin = (reinterpret_cast<std::uintptr_t>(text.data()) + HugePage - 1) & ~(HugePage - 1);
    auto end = (reinterpret_cast<std::uintptr_t>(text.data()) + bytes) & ~(HugePage - 1);
    if (end > begin)
        ::madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE); // advice only
}

void assignUtf8(std::u16string& out, char const* utf8)
{
    out.clear();
    if (!utf8)
        return;
    std::size_t size = std::strlen(utf8);
    // Every byte makes at most one unit: one allocation for the whole result.
    if (size > out.capacity()) {
        out.reserve(size);
        adviseHugePages(out);
    }
    brindle::text::appendUtf8(out, utf8, size);
}

// The C library's wide case mapping of one unit; units are passed as wint_t.
UT_Char mapUnit(UT_Char unit, bool upper)
{
    std::wint_t mapped =
        upper ? std::towupper(std::wint_t(unit)) : std::towlower(std::wint_t(unit));
    // A unit never maps outside the 16-bit range it came from in practice; keep it if it would.
    return mapped <= 0xFFFF ? UT_Char(mapped) : unit;
}

UT_String mapCase(UT_String const& text, bool upper)
{
    UT_String result(text.c_str());
    for (UT_Char& unit : result)
        unit = mapUnit(unit, upper);
    return result;
}

} // namespace

UT_String::UT_String(char const* utf8)
{
    assignUtf8(*this, utf8);
}

UT_String::UT_String(QString const& text)
    : std::u16string(reinterpret_cast<UT_Char const*>(text.unicode()), std::size_t(text.size()))
{}

UT_String& UT_String::operator=(std::u16string const& other)
{
    std::u16string::operator=(other);
    return *this;
}

UT_String& UT_String::operator=(std::u16string&& other) noexcept
{
    std::u16string::operator=(std::move(other));
    return *this;
}

UT_String& UT_String::operator=(UT_Char const* text)
{
    std::u16string::operator=(text);
    return *this;
}

UT_String& UT_String::operator=(UT_Char unit)
{
    std::u16string::operator=(unit);
    return *this;
}

UT_String& UT_String::operator=(std::initializer_list<UT_Char> units)
{
    std::u16string::operator=(units);
    return *this;
}

UT_String& UT_String::operator=(char const* utf8)
{
    assignUtf8(*this, utf8);
    return *this;
}

UT_String& UT_String::operator=(QString const& text)
{
    std::u16string::assign(reinterpret_cast<UT_Char const*>(text.unicode()),
                           std::size_t(text.size()));
    return *this;
}

QString UT_String::ToQString() const
{
    QString result;
    result.setUnicode(reinterpret_cast<QChar const*>(data()), qsizetype(size()));
    return result;
}

std::string UT_String::utf8() const
{
    std::string result;
    result.reserve(size());
    brindle::text::appendUtf16AsUtf8(result, data(), size());
    return result;
}

int UT_String::compare(UT_String const& other) const noexcept
{
    int order = std::u16string::compare(other);
    return (order > 0) - (order < 0);
}

int UT_String::compare(UT_Char const* other) const noexcept
{
    int order = std::u16string::compare(other ? other : u"");
    return (order > 0) - (order < 0);
}

int UT_String::compare_nocase(UT_String const& other) const
{
    UT_Char const* a = c_str();
    UT_Char const* b = other.c_str();
    for (;; ++a, ++b) {
        int diff = int(mapUnit(*a, false)) - int(mapUnit(*b, false));
        if (diff != 0 || *a == 0)
            return diff;
    }
}

UT_String UT_String::lower() const
{
    return mapCase(*this, false);
}

UT_String UT_String::upper() const
{
    return mapCase(*this, true);
}

UT_String& UT_String::TrimLeft()
{
    return TrimLeft(u" \t\n");
}

UT_String& UT_String::TrimRight()
{
    return TrimRight(u" \t\n");
}

UT_String& UT_String::TrimLeft(UT_Char const* set)
{
    if (!set)
        return *this;
    std::u16string::erase(0, find_first_not_of(set)); // npos erases everything
    return *this;
}

UT_String& UT_String::TrimRight(UT_Char const* set)
{
    if (!set)
        return *this;
    size_type last = find_last_not_of(set);
    std::u16string::erase(last == npos ? 0 : last + 1);
    return *this;
}

UT_String& UT_String::TrimLeft(UT_String const& set)
{
    return TrimLeft(set.c_str());
}

UT_String& UT_String::TrimRight(UT_String const& set)
{
    return TrimRight(set.c_str());
}

UT_String& UT_String::TrimLeft(UT_Char unit)
{
    std::u16string::erase(0, find_first_not_of(unit));
    return *this;
}

UT_String& UT_String::TrimRight(UT_Char unit)
{
    size_type last = find_last_not_of(unit);
    std::u16string::erase(last == npos ? 0 : last + 1);
    return *this;
}
