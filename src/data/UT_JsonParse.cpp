// Reading JSON text into QVariant values. The parser keeps its open arrays and
// objects on an explicit stack, so nesting costs heap, not call stack.
#include <BrindleBaseCore/data/UT_Json.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <limits>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace {

bool isBlank(char16_t c)
{
    return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r';
}

bool isNumberChar(char16_t c)
{
    return (c >= u'0' && c <= u'9') || c == u'+' || c == u'-' || c == u'.' || c == u'e' ||
           c == u'E';
}

// The character a one-letter escape stands for; 0 for any other letter.
char16_t unescaped(char16_t c)
{
    static constexpr char16_t pairs[] = u"\"\"\\\\//b\bf\fn\nr\rt\t";
    for (std::size_t i = 0; pairs[i]; i += 2) {
        if (pairs[i] == c)
            return pairs[i + 1];
    }
    return 0;
}

int hexValue(char16_t c)
{
    if (c >= u'0' && c <= u'9')
        return c - u'0';
    if (c >= u'a' && c <= u'f')
        return c - u'a' + 10;
    if (c >= u'A' && c <= u'F')
        return c - u'A' + 10;
    return -1;
}

// Digits only, at least one; false when the value exceeds `limit`.
bool readDigits(char const* p, char const* end, quint64 limit, quint64& value)
{
    if (p == end)
        return false;
    value = 0;
    for (; p != end; ++p) {
        if (*p < '0' || *p > '9')
            return false;
        unsigned const digit = unsigned(*p - '0');
        if (value > (limit - digit) / 10)
            return false;
        value = value * 10 + digit;
    }
    return true;
}

QVariant numberValue(char const* p, char const* end)
{
    if (std::char_traits<char>::find(p, std::size_t(end - p), '.')) {
        double d = 0;
        auto const [stop, error] = std::from_chars(p, end, d);
        if (error == std::errc::result_out_of_range) {
            d = std::strtod(std::string(p, end).c_str(), nullptr);
        } else if (error != std::errc() || stop != end) {
            d = 0; // not a well-formed number: 0, as a failed text conversion gives
        }
        return QVariant(d);
    }
    quint64 v = 0;
    if (*p == '-') {
        constexpr quint64 maxMagnitude = quint64(std::numeric_limits<qint64>::max()) + 1;
        if (readDigits(p + 1, end, maxMagnitude, v)) {
            if (v <= quint64(std::numeric_limits<int>::max()) + 1)
                return QVariant(int(-qint64(v)));
            return QVariant(qint64(0 - v));
        }
    } else if (readDigits(p, end, std::numeric_limits<quint64>::max(), v)) {
        if (v <= std::numeric_limits<quint32>::max())
            return QVariant(quint32(v));
        return QVariant(qulonglong(v));
    }
    return QVariant(QString::fromLatin1(p, end - p));
}

// Short strings (keys above all) repeat a lot: the parser hands out shared
// copies of the strings it has made, which costs no allocation.
class StringCache
{
public:
    QString get(char16_t const* text, qsizetype size)
    {
        // Small documents do not pay for the cache.
        if (size > kMaxLength || ++m_seen < kWarmUp)
            return QString(reinterpret_cast<QChar const*>(text), size);
        if (m_slots.empty())
            m_slots.resize(kSlots);
        quint32 hash = quint32(size) * 0x9E3779B1u;
        if (size > 0)
            hash ^= (text[0] * 0x85EBCA6Bu) ^ (text[size - 1] * 0xC2B2AE35u) ^
                    (text[size / 2] * 0x27D4EB2Fu);
        QString& slot = m_slots[(hash ^ (hash >> 15)) & (kSlots - 1)];
        if (slot.size() != size ||
            std::char_traits<char16_t>::compare(reinterpret_cast<char16_t const*>(slot.constData()),
                                                text, std::size_t(size)) != 0)
            slot = QString(reinterpret_cast<QChar const*>(text), size);
        return slot;
    }

private:
    static constexpr qsizetype kMaxLength = 24;
    static constexpr std::size_t kSlots = 1024;
    static constexpr std::size_t kWarmUp = 64;
    std::vector<QString> m_slots;
    std::size_t m_seen = 0;
};

class Parser
{
public:
    Parser(char16_t const* begin, char16_t const* end)
        : m_begin(begin)
        , m_p(begin)
        , m_end(end)
    {}

    QVariant run(bool& ok);
    qsizetype position() const { return m_p - m_begin; }

private:
    // An open array or object: its elements are the values (and, for an
    // object, the keys) pushed since `first`.
    struct Frame
    {
        bool isObject;
        std::size_t firstValue;
        std::size_t firstKey;
    };

    // Skips blanks; the next character, or 0 at the end of the text.
    char16_t peek()
    {
        while (m_p != m_end && isBlank(*m_p))
            ++m_p;
        return m_p == m_end ? 0 : *m_p;
    }
    bool literal(char16_t const* word, qsizetype size)
    {
        if (m_end - m_p < size || std::char_traits<char16_t>::compare(m_p, word, size) != 0)
            return false;
        m_p += size;
        return true;
    }
    // The scalar parsers push their value on m_values.
    bool scalar(char16_t c);
    bool fastDecimal(bool negative, quint64 integer, char16_t const* point);
    bool string(QString& out);
    void number();
    QVariant close(Frame const& frame);

    char16_t const* m_begin;
    char16_t const* m_p;
    char16_t const* m_end;
    std::vector<Frame> m_frames;
    std::vector<QVariant> m_values;
    std::vector<QString> m_keys;
    std::vector<quint32> m_order;
    StringCache m_strings;
};

// The first double quote or backslash at or after p, or end.
char16_t const* findQuoteOrBackslash(char16_t const* p, char16_t const* end)
{
#ifdef __SSE2__
    __m128i const quote = _mm_set1_epi16('"');
    __m128i const backslash = _mm_set1_epi16('\\');
    for (; end - p >= 8; p += 8) {
        __m128i const units = _mm_loadu_si128(reinterpret_cast<__m128i const*>(p));
        int const mask = _mm_movemask_epi8(
            _mm_or_si128(_mm_cmpeq_epi16(units, quote), _mm_cmpeq_epi16(units, backslash)));
        if (mask)
            return p + __builtin_ctz(unsigned(mask)) / 2;
    }
#endif
    while (p != end && *p != u'"' && *p != u'\\')
        ++p;
    return p;
}

bool Parser::string(QString& out)
{
    ++m_p; // opening quote
    char16_t const* start = m_p;
    m_p = findQuoteOrBackslash(m_p, m_end);
    if (m_p == m_end)
        return false;
    if (*m_p == u'"') {
        out = m_strings.get(start, m_p - start);
        ++m_p;
        return true;
    }
    std::u16string text(start, m_p);
    while (m_p != m_end) {
        char16_t c = *m_p++;
        if (c == u'"') {
            out = QString(reinterpret_cast<QChar const*>(text.data()), qsizetype(text.size()));
            return true;
        }
        if (c != u'\\') {
            text.push_back(c);
            continue;
        }
        if (m_p == m_end)
            return false;
        c = *m_p++;
        if (char16_t const plain = unescaped(c)) {
            text.push_back(plain);
            continue;
        }
        if (c != u'u' || m_end - m_p < 4)
            return false;
        unsigned unit = 0;
        for (int i = 0; i < 4; ++i) {
            int const digit = hexValue(*m_p++);
            if (digit < 0)
                return false;
            unit = unit * 16 + unsigned(digit);
        }
        text.push_back(char16_t(unit));
    }
    return false;
}

// "digits.digits" with at most 15 digits in all: both the digits and the power
// of ten are exact doubles, so one division gives the correctly rounded value,
// the same as the general conversion.
bool Parser::fastDecimal(bool negative, quint64 integer, char16_t const* point)
{
    static constexpr double powers[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                        1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    if (integer >= 1000000000000000ull) // more than 15 digits before the point
        return false;
    int digits = 0;
    for (quint64 v = integer; v; v /= 10)
        ++digits;
    char16_t const* p = point + 1;
    quint64 mantissa = integer;
    int scale = 0;
    for (; p != m_end && char16_t(*p - u'0') < 10; ++p, ++scale) {
        if (++digits > 15)
            return false;
        mantissa = mantissa * 10 + unsigned(*p - u'0');
    }
    if (scale == 0 || (p != m_end && isNumberChar(*p)))
        return false;
    double const d = double(mantissa) / powers[scale];
    m_values.emplace_back(negative ? -d : d);
    m_p = p;
    return true;
}

void Parser::number()
{
    char16_t const* start = m_p;
    // Fast path: up to 18 digits, optionally after '-', ending the run.
    bool const negative = *m_p == u'-';
    char16_t const* digits = m_p + negative;
    char16_t const* p = digits;
    quint64 v = 0;
    for (; p != m_end && p - digits < 18 && char16_t(*p - u'0') < 10; ++p)
        v = v * 10 + unsigned(*p - u'0');
    if (p != digits && p != m_end && *p == u'.' && fastDecimal(negative, v, p))
        return;
    if (p != digits && (p == m_end || !isNumberChar(*p))) {
        m_p = p;
        if (negative)
            if (v <= 2147483648u)
                m_values.emplace_back(int(-qint64(v)));
            else
                m_values.emplace_back(-qint64(v));
        else if (v <= 0xFFFFFFFFu)
            m_values.emplace_back(quint32(v));
        else
            m_values.emplace_back(qulonglong(v));
        return;
    }
    while (m_p != m_end && isNumberChar(*m_p))
        ++m_p;
    qsizetype const size = m_p - start;
    char small[64];
    std::string large;
    char* bytes = small;
    if (size > qsizetype(sizeof small)) {
        large.resize(std::size_t(size));
        bytes = large.data();
    }
    for (qsizetype i = 0; i < size; ++i)
        bytes[i] = char(start[i]);
    m_values.push_back(numberValue(bytes, bytes + size));
}

bool Parser::scalar(char16_t c)
{
    switch (c) {
    case u'"': {
        QString text;
        if (!string(text))
            return false;
        m_values.emplace_back(std::move(text));
        return true;
    }
    case u't':
        m_values.emplace_back(true);
        return literal(u"true", 4);
    case u'f':
        m_values.emplace_back(false);
        return literal(u"false", 5);
    case u'n':
        m_values.emplace_back();
        return literal(u"null", 4);
    default:
        if (c == u'-' || (c >= u'0' && c <= u'9')) {
            number();
            return true;
        }
        return false;
    }
}

QVariant Parser::close(Frame const& frame)
{
    auto const first = m_values.begin() + std::ptrdiff_t(frame.firstValue);
    if (!frame.isObject) {
        QVariantList list(m_values.end() - first);
        std::move(first, m_values.end(), list.begin());
        m_values.erase(first, m_values.end());
        return QVariant(list);
    }
    // Members sorted by key (stably, so the last of equal keys is last) go
    // into the map at its end, one comparison each.
    QString* const keys = m_keys.data() + frame.firstKey;
    std::size_t const count = m_keys.size() - frame.firstKey;
    m_order.resize(count);
    for (std::size_t i = 0; i < count; ++i)
        m_order[i] = quint32(i);
    auto view = [keys](quint32 i) {
        return std::u16string_view(reinterpret_cast<char16_t const*>(keys[i].constData()),
                                   std::size_t(keys[i].size()));
    };
    // Objects are small: a stable insertion sort, without allocation.
    for (std::size_t i = 1; i < count; ++i) {
        quint32 const k = m_order[i];
        std::size_t j = i;
        for (; j > 0 && view(k) < view(m_order[j - 1]); --j)
            m_order[j] = m_order[j - 1];
        m_order[j] = k;
    }
    std::map<QString, QVariant> map;
    for (std::size_t i = 0; i < count; ++i) {
        quint32 const k = m_order[i];
        if (i + 1 < count && view(m_order[i + 1]) == view(k))
            continue; // a later equal key wins
        map.emplace_hint(map.end(), std::move(keys[k]), std::move(first[std::ptrdiff_t(k)]));
    }
    m_values.erase(first, m_values.end());
    m_keys.resize(frame.firstKey);
    return QVariant(QVariantMap(std::move(map)));
}

QVariant Parser::run(bool& ok)
{
    ok = false;
    for (;;) {
        // A value starts here.
        char16_t c = peek();
        if (c == u'{' || c == u'[') {
            if (m_frames.size() >= std::size_t(UT_Json::maxDepth()))
                return {};
            ++m_p;
            m_frames.push_back({c == u'{', m_values.size(), m_keys.size()});
        } else if (!scalar(c)) {
            return {};
        } else if (m_frames.empty()) {
            ok = true;
            return std::move(m_values.back());
        }
        // Close finished containers until the next value of an open one.
        for (;;) {
            Frame const top = m_frames.back();
            while ((c = peek()) == u',')
                ++m_p;
            if (c == (top.isObject ? u'}' : u']')) {
                ++m_p;
                m_frames.pop_back();
                if (m_frames.empty()) {
                    ok = true;
                    return close(top);
                }
                m_values.push_back(close(top));
                continue;
            }
            if (c == 0)
                return {};
            if (top.isObject) {
                m_keys.emplace_back();
                if (c != u'"' || !string(m_keys.back()) || peek() != u':')
                    return {};
                ++m_p;
            }
            break;
        }
    }
}

} // namespace

QVariant UT_Json::parse(QString const& text, bool& ok, qsizetype& stopPosition)
{
    ok = true;
    stopPosition = 0;
    if (text.isNull())
        return {};
    auto const* data = reinterpret_cast<char16_t const*>(text.constData());
    Parser parser(data, data + text.size());
    QVariant value = parser.run(ok);
    stopPosition = parser.position();
    return value;
}

QVariant UT_Json::parse(QString const& text, bool& ok)
{
    qsizetype stop = 0;
    return parse(text, ok, stop);
}

QVariant UT_Json::parse(QString const& text)
{
    bool ok = true;
    return parse(text, ok);
}
