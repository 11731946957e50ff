/// @file
/// UT_String, the library's wide string, with its conversions and message formatting.
#pragma once

#include <BrindleBaseCore/Global.h>

#include <QtCore/QString>

#include <cstdarg>
#include <functional>
#include <initializer_list>
#include <string>
#include <type_traits>
#include <utility>

/// The unit of UT_String: one UTF-16 code unit.
using UT_Char = char16_t;

/// A sequence of UTF-16 code units with exactly the value semantics, size type,
/// npos and growth of std::u16string (it *is* one, with a few extra operations).
/// Characters outside the Basic Multilingual Plane take two units; nothing here
/// pairs surrogates. Embedded zero units are allowed, but lower(), upper(),
/// compare_nocase() and the trims taking a set stop at the first zero unit,
/// as C strings do (intended).
///
/// Built from 8-bit text (char const*) the bytes are decoded as UTF-8; a
/// truncated or illegal sequence ends the decoding and the string keeps what
/// was decoded before it (no error is reported).
class BRINDLE_EXPORT UT_String : public std::u16string
{
public:
    using std::u16string::basic_string;

    UT_String() = default;
    /// A copy of the standard string.
    UT_String(std::u16string const& other)
        : std::u16string(other)
    {}
    /// Takes over the standard string.
    UT_String(std::u16string&& other) noexcept
        : std::u16string(std::move(other))
    {}
    /// UTF-8; a null pointer gives an empty string.
    UT_String(char const* utf8);
    /// The QString's UTF-16 units, unchanged.
    UT_String(QString const& text);

    /// Copies the units.
    UT_String(UT_String const&) = default;
    /// Takes over the units.
    UT_String(UT_String&&) noexcept = default;
    /// Copies the units.
    UT_String& operator=(UT_String const&) = default;
    /// Takes over the units.
    UT_String& operator=(UT_String&&) noexcept = default;

    /// Copies the units.
    UT_String& operator=(std::u16string const& other);
    /// Takes over the units.
    UT_String& operator=(std::u16string&& other) noexcept;
    /// Copies a zero-terminated text.
    UT_String& operator=(UT_Char const* text);
    /// Becomes the single unit.
    UT_String& operator=(UT_Char unit);
    /// Becomes the listed units.
    UT_String& operator=(std::initializer_list<UT_Char> units);
    /// Decodes UTF-8 as the constructor does; null gives an empty string.
    UT_String& operator=(char const* utf8);
    /// Takes the QString's units unchanged.
    UT_String& operator=(QString const& text);

    /// A QString with exactly these units and length, embedded zeros included.
    QString ToQString() const;
    /// UTF-8 of all units (embedded zeros included); an unpaired surrogate ends
    /// the output at that point.
    std::string utf8() const;

    /// The standard modifiers, returning UT_String& where the standard string
    /// returns a reference to itself (iterators are returned unchanged).
    template <class... Args>
    decltype(auto) assign(Args&&... args)
    {
        return self(std::u16string::assign(std::forward<Args>(args)...));
    }
    /// Becomes the listed units.
    UT_String& assign(std::initializer_list<UT_Char> units)
    {
        std::u16string::assign(units);
        return *this;
    }
    template <class... Args>
    /// std::u16string::append(), returning UT_String&.
    decltype(auto) append(Args&&... args)
    {
        return self(std::u16string::append(std::forward<Args>(args)...));
    }
    /// Appends the listed units.
    UT_String& append(std::initializer_list<UT_Char> units)
    {
        std::u16string::append(units);
        return *this;
    }
    template <class... Args>
    /// std::u16string::insert(), returning UT_String& (or the iterator).
    decltype(auto) insert(Args&&... args)
    {
        return self(std::u16string::insert(std::forward<Args>(args)...));
    }
    template <class... Args>
    /// std::u16string::erase(), returning UT_String& (or the iterator).
    decltype(auto) erase(Args&&... args)
    {
        return self(std::u16string::erase(std::forward<Args>(args)...));
    }
    template <class... Args>
    /// std::u16string::replace(), returning UT_String&.
    decltype(auto) replace(Args&&... args)
    {
        return self(std::u16string::replace(std::forward<Args>(args)...));
    }
    template <class T>
    /// std::u16string::operator+=(), returning UT_String&.
    UT_String& operator+=(T&& value)
    {
        std::u16string::operator+=(std::forward<T>(value));
        return *this;
    }
    /// Appends the listed units.
    UT_String& operator+=(std::initializer_list<UT_Char> units)
    {
        std::u16string::operator+=(units);
        return *this;
    }
    /// std::u16string::substr(), as a UT_String.
    UT_String substr(size_type pos = 0, size_type count = npos) const
    {
        return UT_String(*this, pos, count);
    }

    /// Ordinal comparison of the units as unsigned numbers: -1, 0 or 1 (a
    /// proper prefix is smaller). The positional overloads stay standard.
    using std::u16string::compare;
    /// Ordinal comparison of the units as unsigned numbers: -1, 0 or 1.
    int compare(UT_String const& other) const noexcept;
    /// The same with a zero-terminated `other`.
    int compare(UT_Char const* other) const noexcept;
    /// Case-insensitive comparison up to the first zero unit with the C
    /// library's wide case mapping (current locale): negative, zero or positive.
    int compare_nocase(UT_String const& other) const;

    /// Copies up to the first zero unit, mapped unit by unit with the C
    /// library's towlower / towupper (current locale). *this is unchanged.
    UT_String lower() const;
    /// The upper-case counterpart of lower().
    UT_String upper() const;

    /// The trims modify the string and return it; a string made only of the
    /// set becomes empty. Without an argument the set is " \t\n" (carriage
    /// return is deliberately not part of it).
    UT_String& TrimLeft();
    /// Removes " \\t\\n" units from the end.
    UT_String& TrimRight();
    /// Removes the units of the zero-terminated `set` from the start.
    UT_String& TrimLeft(UT_Char const* set);
    /// Removes the units of the zero-terminated `set` from the end.
    UT_String& TrimRight(UT_Char const* set);
    /// Removes the units of `set` (up to its first zero unit) from the start.
    UT_String& TrimLeft(UT_String const& set);
    /// Removes the units of `set` (up to its first zero unit) from the end.
    UT_String& TrimRight(UT_String const& set);
    /// Removes `unit` from the start.
    UT_String& TrimLeft(UT_Char unit);
    /// Removes `unit` from the end.
    UT_String& TrimRight(UT_Char unit);

private:
    UT_String& self(std::u16string&) noexcept { return *this; }
    template <class T>
    static T self(T&& value)
    {
        return std::forward<T>(value);
    }
};

/// Concatenation.
inline UT_String operator+(UT_String lhs, UT_String const& rhs)
{
    lhs.append(rhs);
    return lhs;
}
/// Concatenation with a zero-terminated text.
inline UT_String operator+(UT_String lhs, UT_Char const* rhs)
{
    lhs.append(rhs);
    return lhs;
}
/// Concatenation with one unit.
inline UT_String operator+(UT_String lhs, UT_Char rhs)
{
    lhs.push_back(rhs);
    return lhs;
}
/// Concatenation after a zero-terminated text.
inline UT_String operator+(UT_Char const* lhs, UT_String const& rhs)
{
    UT_String result(lhs);
    result.append(rhs);
    return result;
}
/// Concatenation after one unit.
inline UT_String operator+(UT_Char lhs, UT_String const& rhs)
{
    UT_String result(1, lhs);
    result.append(rhs);
    return result;
}

/// @cond
// Hashes as the standard string does, so UT_String keys work in unordered containers.
template <>
struct std::hash<UT_String> : std::hash<std::u16string>
{};
/// @endcond

// --- 8-bit conversions in the process's locale encoding (LC_CTYPE) ----------
// Decoding replaces a byte sequence the encoding does not accept with U+FFFD;
// encoding replaces a character it cannot represent with '?'.

/// Decodes a zero-terminated string; a null pointer gives an empty string.
BRINDLE_EXPORT UT_String UT_A2W(char const* text);
/// The same, into `out`.
BRINDLE_EXPORT void UT_A2W(char const* text, UT_String& out);
/// As UT_A2W on text.c_str(): an embedded zero ends the text.
BRINDLE_EXPORT UT_String UT_S2W(std::string const& text);
/// The same, into `out`.
BRINDLE_EXPORT void UT_S2W(std::string const& text, UT_String& out);
/// Encodes every unit, embedded zeros included.
BRINDLE_EXPORT std::string UT_W2S(UT_String const& text);
/// The same, into `out`.
BRINDLE_EXPORT void UT_W2S(UT_String const& text, std::string& out);

// --- numbers ----------------------------------------------------------------

/// The text as an int. UT_W2Int and UT_W2Float both take the low 8 bits of every unit and convert
/// like the C atoi / atof: leading white space, optional sign, the digits that follow; trailing
/// text is ignored and no digits give 0. UT_W2Float reads ',' as the decimal point
/// ("3,5" is 3.5), always in the "C" numeric format whatever LC_NUMERIC says.
BRINDLE_EXPORT int UT_W2Int(UT_String const& text);
/// The text as a double (see UT_W2Int()).
BRINDLE_EXPORT double UT_W2Float(UT_String const& text);

// --- collation ----------------------------------------------------------------

/// Collation in the current LC_COLLATE, up to the first zero unit: negative,
/// zero or positive.
BRINDLE_EXPORT int UT_Compare(UT_String const& a, UT_String const& b);
/// Collation of the two texts mapped to lower case unit by unit.
BRINDLE_EXPORT int UT_CompareNoCase(UT_String const& a, UT_String const& b);

// --- translation --------------------------------------------------------------

/// QCoreApplication::translate(pair[0], pair[1]): context, then source text.
/// A null pair or a null source text gives an empty string.
BRINDLE_EXPORT UT_String UT_LoadString(char const* const* pair);
/// Returns text; the context is ignored (kept for callers that pass one).
BRINDLE_EXPORT UT_String UT_LoadString(UT_String const& text, char const* context);

// --- printf-style formatting --------------------------------------------------

/// Formats the arguments after `format` (UTF-8) with the conversions below.
///
/// A conversion is `%` `[N$]` `[flags " #+-0"]` `[width: digits, * or *N$]`
/// `[precision: . then digits, * or *N$]` `[length h | l | q]` letter, with
/// positional arguments counted from 1. Letters:
/// @verbatim
///   d i o u x X   integers (h short, l long, q or ll 64-bit); D O U as d o u
///   e E f g G     double
///   c             a char (passed as int);   C  a char16_t (passed as int)
///   s             a UTF-8 char const*;      S  a char16_t const*
///                 (a null pointer prints "(null)"; the width counts units, the
///                 precision bytes read for s and units for S). As in the wide
///                 printf family, lc / ls are C / S and hC / hS are c / s.
///   p             a pointer as the C printf prints it
///   P @           a pointer as "0x" and 16 upper-case hexadecimal digits
///   n             stores the number of units written so far (h, l, q as above)
///   %             one '%'
/// @endverbatim
/// A conversion with another letter, an incomplete one at the end of the
/// format, or a position outside what the format can use, is copied through
/// unchanged. Widths and precisions above 1000000 are cut to 1000000.
BRINDLE_EXPORT UT_String UT_FormatMessage(char const* format, ...);
/// The same with a UTF-16 `format`.
BRINDLE_EXPORT UT_String UT_FormatMessage(UT_Char const* format, ...);
/// The formatter itself: replaces out with format applied to args.
BRINDLE_EXPORT void UT_DoFormatMessage(UT_String& out, UT_String const& format, va_list args);
