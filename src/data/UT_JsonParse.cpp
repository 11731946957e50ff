// Reading JSON text into QVariant values. The parser keeps its open arrays and
// objects on an explicit stack, so nesting costs heap, not call stack.
#include <BrindleBaseCore/data/UT_Json.h>

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <map>
#include <string>
#include <vector>

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
    struct Frame
    {
        explicit Frame(bool object)
            : isObject(object)
        {}
        bool isObject;
        QVariantList list;
        std::map<QString, QVariant> map;
        QString key;
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
    bool scalar(char16_t c, QVariant& value);
    bool string(QString& out);
    void number(QVariant& value);

    char16_t const* m_begin;
    char16_t const* m_p;
    char16_t const* m_end;
    std::vector<Frame> m_stack;
};

bool Parser::string(QString& out)
{
    ++m_p; // opening quote
    char16_t const* start = m_p;
    while (m_p != m_end && *m_p != u'"' && *m_p != u'\\')
        ++m_p;
    if (m_p == m_end)
        return false;
    if (*m_p == u'"') {
        out = QString(reinterpret_cast<QChar const*>(start), m_p - start);
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
        switch (c = *m_p++) {
        case u'"':
        case u'\\':
        case u'/':
            text.push_back(c);
            break;
        case u'b':
            text.push_back(u'\b');
            break;
        case u'f':
            text.push_back(u'\f');
            break;
        case u'n':
            text.push_back(u'\n');
            break;
        case u'r':
            text.push_back(u'\r');
            break;
        case u't':
            text.push_back(u'\t');
            break;
        case u'u': {
            if (m_end - m_p < 4)
                return false;
            unsigned unit = 0;
            for (int i = 0; i < 4; ++i) {
                int const digit = hexValue(*m_p++);
                if (digit < 0)
                    return false;
                unit = unit * 16 + unsigned(digit);
            }
            text.push_back(char16_t(unit));
            break;
        }
        default:
            return false;
        }
    }
    return false;
}

void Parser::number(QVariant& value)
{
    char16_t const* start = m_p;
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
    value = numberValue(bytes, bytes + size);
}

bool Parser::scalar(char16_t c, QVariant& value)
{
    switch (c) {
    case u'"': {
        QString text;
        if (!string(text))
            return false;
        value = QVariant(std::move(text));
        return true;
    }
    case u't':
        value = QVariant(true);
        return literal(u"true", 4);
    case u'f':
        value = QVariant(false);
        return literal(u"false", 5);
    case u'n':
        value = QVariant();
        return literal(u"null", 4);
    default:
        if (c == u'-' || (c >= u'0' && c <= u'9')) {
            number(value);
            return true;
        }
        return false;
    }
}

QVariant Parser::run(bool& ok)
{
    QVariant value;
    ok = false;
    for (;;) {
        // A value starts here.
        char16_t c = peek();
        if (c == u'{' || c == u'[') {
            if (m_stack.size() >= std::size_t(UT_Json::maxDepth()))
                return {};
            ++m_p;
            m_stack.emplace_back(c == u'{');
        } else if (!scalar(c, value)) {
            return {};
        } else if (m_stack.empty()) {
            ok = true;
            return value;
        } else {
            Frame& top = m_stack.back();
            if (top.isObject)
                top.map.insert_or_assign(top.map.end(), std::move(top.key), std::move(value));
            else
                top.list.append(std::move(value));
        }
        // Close finished containers until the next value of an open one.
        for (;;) {
            Frame& top = m_stack.back();
            while ((c = peek()) == u',')
                ++m_p;
            if (c == (top.isObject ? u'}' : u']')) {
                ++m_p;
                value = top.isObject ? QVariant(QVariantMap(std::move(top.map)))
                                     : QVariant(std::move(top.list));
                m_stack.pop_back();
                if (m_stack.empty()) {
                    ok = true;
                    return value;
                }
                Frame& parent = m_stack.back();
                if (parent.isObject)
                    parent.map.insert_or_assign(parent.map.end(), std::move(parent.key),
                                                std::move(value));
                else
                    parent.list.append(std::move(value));
                continue;
            }
            if (c == 0)
                return {};
            if (top.isObject) {
                if (c != u'"' || !string(top.key) || peek() != u':')
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
