// Locale-encoding conversions, numbers, collation and translation of UT_String.
#include <BrindleBaseCore/text/UT_String.h>

#include <QtCore/QCoreApplication>

#include <clocale>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <cwctype>
#include <locale.h>

namespace {

constexpr UT_Char Replacement = 0xFFFD;

void appendCodePoint(UT_String& out, char32_t ch)
{
    if (ch < 0x10000) {
        out.push_back(UT_Char(ch));
    } else {
        ch -= 0x10000;
        out.push_back(UT_Char(0xD800 + (ch >> 10)));
        out.push_back(UT_Char(0xDC00 + (ch & 0x3FF)));
    }
}

// The code point starting at text[i] (a lone surrogate stands for itself);
// advances i past it.
char32_t nextCodePoint(UT_Char const* text, std::size_t size, std::size_t& i)
{
    char32_t ch = text[i++];
    if (ch >= 0xD800 && ch < 0xDC00 && i < size && text[i] >= 0xDC00 && text[i] <= 0xDFFF)
        ch = 0x10000 + ((ch - 0xD800) << 10) + (char32_t(text[i++]) - 0xDC00);
    return ch;
}

// UTF-32 wide C string of text up to its first zero unit, optionally lower-cased.
std::wstring toWide(UT_String const& text, bool lower)
{
    UT_Char const* units = text.c_str();
    std::size_t size = std::char_traits<UT_Char>::length(units);
    std::wstring wide;
    wide.reserve(size);
    for (std::size_t i = 0; i < size;) {
        auto ch = wchar_t(nextCodePoint(units, size, i));
        wide.push_back(lower ? wchar_t(std::towlower(std::wint_t(ch))) : ch);
    }
    return wide;
}

// Eight-bit copy of the low byte of every unit, as the number parsers read it.
std::string lowBytes(UT_String const& text, bool commaIsPoint)
{
    std::string bytes(text.size(), '\0');
    for (std::size_t i = 0; i < text.size(); ++i) {
        char byte = char(text[i] & 0xFF);
        bytes[i] = commaIsPoint && byte == ',' ? '.' : byte;
    }
    return bytes;
}

locale_t cNumericLocale()
{
    static locale_t const locale = newlocale(LC_ALL_MASK, "C", locale_t(nullptr));
    return locale;
}

} // namespace

void UT_A2W(char const* text, UT_String& out)
{
    out.clear();
    if (!text)
        return;
    std::size_t left = std::strlen(text);
    out.reserve(left);
    std::mbstate_t state{};
    while (left > 0) {
        wchar_t ch = 0;
        std::size_t used = std::mbrtowc(&ch, text, left, &state);
        if (used == std::size_t(-2)) { // the text ends inside a character
            out.push_back(Replacement);
            break;
        }
        if (used == std::size_t(-1) || used == 0) { // not a character of the encoding
            out.push_back(Replacement);
            state = std::mbstate_t{};
            used = 1;
        } else if (char32_t(ch) > 0x10FFFF || (ch >= 0xD800 && ch <= 0xDFFF)) {
            out.push_back(Replacement);
        } else {
            appendCodePoint(out, char32_t(ch));
        }
        text += used;
        left -= used;
    }
}

UT_String UT_A2W(char const* text)
{
    UT_String result;
    UT_A2W(text, result);
    return result;
}

void UT_S2W(std::string const& text, UT_String& out)
{
    UT_A2W(text.c_str(), out);
}

UT_String UT_S2W(std::string const& text)
{
    return UT_A2W(text.c_str());
}

void UT_W2S(UT_String const& text, std::string& out)
{
    out.clear();
    out.reserve(text.size());
    std::mbstate_t state{};
    char buffer[MB_LEN_MAX];
    for (std::size_t i = 0; i < text.size();) {
        char32_t ch = nextCodePoint(text.data(), text.size(), i);
        std::size_t made = std::size_t(-1);
        if (ch < 0xD800 || ch > 0xDFFF)
            made = std::wcrtomb(buffer, wchar_t(ch), &state);
        if (made == std::size_t(-1)) {
            out.push_back('?');
            state = std::mbstate_t{};
        } else {
            out.append(buffer, made);
        }
    }
}

std::string UT_W2S(UT_String const& text)
{
    std::string result;
    UT_W2S(text, result);
    return result;
}

int UT_W2Int(UT_String const& text)
{
    // atoi as the C library defines it: strtol, then truncated to int.
    return int(std::strtol(lowBytes(text, false).c_str(), nullptr, 10));
}

double UT_W2Float(UT_String const& text)
{
    return strtod_l(lowBytes(text, true).c_str(), nullptr, cNumericLocale());
}

int UT_Compare(UT_String const& a, UT_String const& b)
{
    return std::wcscoll(toWide(a, false).c_str(), toWide(b, false).c_str());
}

int UT_CompareNoCase(UT_String const& a, UT_String const& b)
{
    return std::wcscoll(toWide(a, true).c_str(), toWide(b, true).c_str());
}

UT_String UT_LoadString(char const* const* pair)
{
    if (!pair || !pair[1])
        return {};
    return UT_String(QCoreApplication::translate(pair[0], pair[1], nullptr, -1));
}

UT_String UT_LoadString(UT_String const& text, char const*)
{
    return text;
}
