// printf-style formatting into UT_String with positional arguments.
//
// The format is walked twice: the first walk records the type of every
// argument position, so that the arguments can be taken from the va_list in
// position order; the second walk writes the output.
#include <BrindleBaseCore/text/UT_String.h>

#include "text/Utf8Codec.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>

namespace {

// Widths and precisions beyond this are cut to it, so that a format cannot ask
// for gigabytes of padding.
constexpr int MaxWidth = 1000000;
// Formats with up to this many '%' keep their argument table on the stack.
constexpr std::size_t StackPercents = 9;

enum class ArgType : std::uint8_t
{
    Unused,
    Int,
    Long,
    LongLong,
    Double,
    Pointer
};

struct Arg
{
    ArgType type = ArgType::Unused;
    union {
        long long integer;
        double real;
        void* pointer;
    };
};

constexpr unsigned Space = 1, Alternate = 2, Plus = 4, Minus = 8, Zero = 16;

// A number written in the format, or taken from argument `arg` ('*').
struct Amount
{
    bool present = false;
    int value = 0;
    int arg = -1;
};

struct Spec
{
    bool valid = false;
    unsigned flags = 0;
    Amount width;
    Amount precision;
    char length = 0; // 0, 'h', 'l' or 'q'
    UT_Char letter = 0;
    int arg = -1; // position of the value, or -1 when the letter takes none
};

ArgType argTypeOf(UT_Char letter, char length)
{
    switch (letter) {
    case u'd':
    case u'i':
    case u'o':
    case u'u':
    case u'x':
    case u'X':
    case u'D':
    case u'O':
    case u'U':
        return length == 'l' ? ArgType::Long : length == 'q' ? ArgType::LongLong : ArgType::Int;
    case u'e':
    case u'E':
    case u'f':
    case u'g':
    case u'G':
        return ArgType::Double;
    case u'c':
    case u'C':
        return ArgType::Int;
    case u's':
    case u'S':
    case u'p':
    case u'n':
    case u'P':
    case u'@':
        return ArgType::Pointer;
    default:
        return ArgType::Unused;
    }
}

class Parser
{
public:
    Parser(UT_Char const* format, std::size_t size, std::size_t capacity)
        : m_format(format)
        , m_size(size)
        , m_capacity(int(capacity))
    {}

    // Parses the conversion whose '%' is at pos; returns the index after it.
    // spec.valid is false when it must be copied through unchanged.
    std::size_t parse(std::size_t pos, Spec& spec)
    {
        spec = Spec{};
        std::size_t i = pos + 1;
        int position = 0;
        std::size_t afterDigits = readNumber(i, position);
        if (afterDigits > i && afterDigits < m_size && m_format[afterDigits] == u'$') {
            if (position == 0)
                return afterDigits + 1;
            i = afterDigits + 1;
        } else {
            position = 0;
        }
        for (; i < m_size; ++i) {
            UT_Char c = m_format[i];
            unsigned flag = c == u' '   ? Space
                            : c == u'#' ? Alternate
                            : c == u'+' ? Plus
                            : c == u'-' ? Minus
                            : c == u'0' ? Zero
                                        : 0;
            if (!flag)
                break;
            spec.flags |= flag;
        }
        if (!readAmount(i, spec.width))
            return i;
        if (i < m_size && m_format[i] == u'.') {
            ++i;
            spec.precision.present = true;
            if (!readAmount(i, spec.precision))
                return i;
        }
        if (i < m_size && (m_format[i] == u'h' || m_format[i] == u'l' || m_format[i] == u'q')) {
            spec.length = char(m_format[i++]);
            if (spec.length == 'l' && i < m_size && m_format[i] == u'l') {
                spec.length = 'q';
                ++i;
            }
        }
        if (i >= m_size)
            return i;
        spec.letter = m_format[i++];
        if (spec.letter != u'%') {
            if (argTypeOf(spec.letter, spec.length) == ArgType::Unused)
                return i;
            spec.arg = position ? position - 1 : m_next++;
            if (spec.arg >= m_capacity)
                return i;
        }
        spec.valid = true;
        return i;
    }

private:
    // Reads decimal digits from i, saturating at MaxWidth; returns the index after them.
    std::size_t readNumber(std::size_t i, int& value) const
    {
        value = 0;
        for (; i < m_size && m_format[i] >= u'0' && m_format[i] <= u'9'; ++i)
            value = std::min(MaxWidth, value * 10 + int(m_format[i] - u'0'));
        return i;
    }

    // Digits, '*' or '*N$'. False when the argument position is unusable.
    bool readAmount(std::size_t& i, Amount& amount)
    {
        if (i < m_size && m_format[i] == u'*') {
            ++i;
            int position = 0;
            std::size_t afterDigits = readNumber(i, position);
            if (afterDigits > i && afterDigits < m_size && m_format[afterDigits] == u'$') {
                i = afterDigits + 1;
                amount.arg = position - 1;
            } else {
                amount.arg = m_next++;
            }
            amount.present = true;
            return amount.arg >= 0 && amount.arg < m_capacity;
        }
        std::size_t end = readNumber(i, amount.value);
        amount.present = amount.present || end > i;
        i = end;
        return true;
    }

    UT_Char const* m_format;
    std::size_t m_size;
    int m_capacity;
    int m_next = 0;
};

void record(Arg* args, int& count, int position, ArgType type)
{
    if (position < 0)
        return;
    if (args[position].type == ArgType::Unused)
        args[position].type = type;
    count = std::max(count, position + 1);
}

void fetch(Arg* args, int count, va_list list)
{
    for (int i = 0; i < count; ++i) {
        switch (args[i].type) {
        case ArgType::Unused: // a position the format skips: assume an int
        case ArgType::Int:
            args[i].integer = va_arg(list, int);
            break;
        case ArgType::Long:
            args[i].integer = va_arg(list, long);
            break;
        case ArgType::LongLong:
            args[i].integer = va_arg(list, long long);
            break;
        case ArgType::Double:
            args[i].real = va_arg(list, double);
            break;
        case ArgType::Pointer:
            args[i].pointer = va_arg(list, void*);
            break;
        }
    }
}

class Writer
{
public:
    Writer(UT_String& out, Arg const* args)
        : m_out(out)
        , m_args(args)
    {}

    void write(Spec const& spec)
    {
        int width = resolve(spec.width, 0);
        bool left = (spec.flags & Minus) != 0;
        if (width < 0) {
            left = true;
            width = -width;
        }
        width = std::min(width, MaxWidth);
        int precision = spec.precision.present ? resolve(spec.precision, 0) : -1;
        precision = std::min(precision, MaxWidth);
        Arg const& arg = m_args[spec.arg < 0 ? 0 : spec.arg];
        // As in the wide printf family: 'l' makes c and s wide, 'h' makes C and S narrow.
        UT_Char letter = spec.letter;
        if (spec.length == 'l' && (letter == u'c' || letter == u's'))
            letter = letter == u'c' ? u'C' : u'S';
        else if (spec.length == 'h' && (letter == u'C' || letter == u'S'))
            letter = letter == u'C' ? u'c' : u's';
        switch (letter) {
        case u'%':
            m_out.push_back(u'%');
            break;
        case u'c': {
            UT_Char unit = UT_Char(static_cast<unsigned char>(arg.integer));
            pad(&unit, 1, width, left);
            break;
        }
        case u'C': {
            UT_Char unit = UT_Char(arg.integer);
            pad(&unit, 1, width, left);
            break;
        }
        case u's':
            writeUtf8(static_cast<char const*>(arg.pointer), width, precision, left);
            break;
        case u'S':
            writeUnits(static_cast<UT_Char const*>(arg.pointer), width, precision, left);
            break;
        case u'n':
            store(spec.length, arg.pointer);
            break;
        case u'P':
        case u'@': {
            char text[24];
            int size = std::snprintf(
                text, sizeof text, "0x%016llX",
                static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(arg.pointer)));
            UT_Char units[24];
            for (int i = 0; i < size; ++i)
                units[i] = UT_Char(text[i]);
            pad(units, std::size_t(size), width, left);
            break;
        }
        default:
            writeNumber(spec, arg, width, left, precision);
            break;
        }
    }

    void copy(UT_Char const* units, std::size_t size) { m_out.append(units, size); }

private:
    int resolve(Amount const& amount, int fallback) const
    {
        if (!amount.present)
            return fallback;
        return amount.arg >= 0 ? int(m_args[amount.arg].integer) : amount.value;
    }

    void pad(UT_Char const* units, std::size_t size, int width, bool left)
    {
        std::size_t fill = std::size_t(width) > size ? std::size_t(width) - size : 0;
        if (!left)
            m_out.append(fill, u' ');
        m_out.append(units, size);
        if (left)
            m_out.append(fill, u' ');
    }

    void writeUtf8(char const* text, int width, int precision, bool left)
    {
        if (!text) {
            pad(u"(null)", 6, width, left);
            return;
        }
        // The precision limits the bytes read, as for the C printf.
        std::size_t size =
            precision >= 0 ? strnlen(text, std::size_t(precision)) : std::strlen(text);
        std::u16string units;
        units.reserve(size);
        brindle::text::appendUtf8(units, text, size);
        pad(units.data(), units.size(), width, left);
    }

    void writeUnits(UT_Char const* text, int width, int precision, bool left)
    {
        if (!text) {
            pad(u"(null)", 6, width, left);
            return;
        }
        std::size_t size = 0;
        while ((precision < 0 || size < std::size_t(precision)) && text[size] != 0)
            ++size;
        pad(text, size, width, left);
    }

    void store(char length, void* target)
    {
        if (!target)
            return;
        long long written = static_cast<long long>(m_out.size());
        switch (length) {
        case 'h':
            *static_cast<short*>(target) = static_cast<short>(written);
            break;
        case 'l':
            *static_cast<long*>(target) = static_cast<long>(written);
            break;
        case 'q':
            *static_cast<long long*>(target) = written;
            break;
        default:
            *static_cast<int*>(target) = static_cast<int>(written);
            break;
        }
    }

    // The integer, floating-point and 'p' conversions, through the C printf.
    void writeNumber(Spec const& spec, Arg const& arg, int width, bool left, int precision)
    {
        char format[24];
        char* f = format;
        *f++ = '%';
        for (auto [flag, c] : {std::pair{Space, ' '}, {Alternate, '#'}, {Plus, '+'}, {Zero, '0'}})
            if (spec.flags & flag)
                *f++ = c;
        if (left)
            *f++ = '-';
        *f++ = '*';
        *f++ = '.';
        *f++ = '*';
        char letter = char(spec.letter);
        if (letter == 'D' || letter == 'O' || letter == 'U')
            letter = char(letter - 'A' + 'a');
        ArgType type = argTypeOf(spec.letter, spec.length);
        if (type == ArgType::Long) {
            *f++ = 'l';
        } else if (type == ArgType::LongLong) {
            *f++ = 'l';
            *f++ = 'l';
        } else if (type == ArgType::Int && spec.length == 'h') {
            *f++ = 'h';
        }
        *f++ = letter;
        *f = '\0';

        auto print = [&](char* to, std::size_t size) {
            switch (type) {
            case ArgType::Double:
                return std::snprintf(to, size, format, width, precision, arg.real);
            case ArgType::Pointer:
                return std::snprintf(to, size, format, width, precision, arg.pointer);
            case ArgType::Long:
                return std::snprintf(to, size, format, width, precision, long(arg.integer));
            case ArgType::LongLong:
                return std::snprintf(to, size, format, width, precision, arg.integer);
            default:
                return std::snprintf(to, size, format, width, precision, int(arg.integer));
            }
        };
        char small[128];
        int size = print(small, sizeof small);
        if (size < 0)
            return;
        std::unique_ptr<char[]> large;
        char const* text = small;
        if (std::size_t(size) >= sizeof small) {
            large = std::make_unique<char[]>(std::size_t(size) + 1);
            print(large.get(), std::size_t(size) + 1);
            text = large.get();
        }
        std::size_t start = m_out.size();
        m_out.resize(start + std::size_t(size));
        for (int i = 0; i < size; ++i)
            m_out[start + std::size_t(i)] = UT_Char(static_cast<unsigned char>(text[i]));
    }

    UT_String& m_out;
    Arg const* m_args;
};

} // namespace

void UT_DoFormatMessage(UT_String& out, UT_String const& format, va_list args)
{
    UT_Char const* units = format.data();
    std::size_t size = format.size();
    std::size_t percents = 0;
    for (UT_Char unit : format)
        percents += unit == u'%';

    // A conversion uses at most three positions (width, precision, value).
    std::size_t capacity = 3 * percents + 1;
    Arg local[3 * StackPercents + 1];
    std::unique_ptr<Arg[]> heap;
    Arg* table = local;
    if (percents > StackPercents) {
        heap = std::make_unique<Arg[]>(capacity);
        table = heap.get();
    }

    int count = 0;
    Spec spec;
    {
        Parser parser(units, size, capacity);
        for (std::size_t i = 0; i < size;) {
            if (units[i] != u'%') {
                ++i;
                continue;
            }
            i = parser.parse(i, spec);
            if (!spec.valid)
                continue;
            record(table, count, spec.width.arg, ArgType::Int);
            record(table, count, spec.precision.arg, ArgType::Int);
            if (spec.letter != u'%')
                record(table, count, spec.arg, argTypeOf(spec.letter, spec.length));
        }
    }

    va_list list;
    va_copy(list, args);
    fetch(table, count, list);
    va_end(list);

    UT_String result;
    result.reserve(size);
    Writer writer(result, table);
    Parser parser(units, size, capacity);
    for (std::size_t i = 0; i < size;) {
        std::size_t next = i;
        while (next < size && units[next] != u'%')
            ++next;
        writer.copy(units + i, next - i);
        if (next == size)
            break;
        i = parser.parse(next, spec);
        if (spec.valid)
            writer.write(spec);
        else
            writer.copy(units + next, i - next);
    }
    out = std::move(result);
}

UT_String UT_FormatMessage(char const* format, ...)
{
    UT_String result;
    va_list args;
    va_start(args, format);
    UT_DoFormatMessage(result, UT_String(format), args);
    va_end(args);
    return result;
}

UT_String UT_FormatMessage(UT_Char const* format, ...)
{
    UT_String result;
    va_list args;
    va_start(args, format);
    UT_DoFormatMessage(result, UT_String(format ? format : u""), args);
    va_end(args);
    return result;
}
