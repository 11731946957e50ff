// Writing QVariant values as JSON text, and the process-wide date formats.
#include <BrindleBaseCore/data/UT_Json.h>

#include <QtCore/QDateTime>
#include <QtCore/QHash>
#include <QtCore/QMap>
#include <QtCore/QStringList>

#include <charconv>
#include <cmath>
#include <cstring>

namespace {

QString& dateFormat()
{
    static QString format;
    return format;
}

QString& dateTimeFormat()
{
    static QString format;
    return format;
}

// Output straight into the QByteArray's storage, grown geometrically.
class Writer
{
public:
    Writer() { m_out.resize(256); }

    char* reserve(qsizetype extra)
    {
        if (m_size + extra > m_out.size())
            m_out.resize(std::max(m_out.size() * 2, m_size + extra));
        return m_out.data() + m_size;
    }
    void put(char const* text, qsizetype n)
    {
        std::memcpy(reserve(n), text, std::size_t(n));
        m_size += n;
    }
    template <qsizetype N>
    void literal(char const (&text)[N])
    {
        put(text, N - 1);
    }
    QByteArray take()
    {
        m_out.resize(m_size);
        return std::move(m_out);
    }

    void string(QChar const* text, qsizetype size);
    void integer(auto value)
    {
        char* p = reserve(24);
        m_size += std::to_chars(p, p + 24, value).ptr - p;
    }
    bool number(double value);
    bool value(QVariant const& value, int depth);
    bool element(QVariant const& item, int depth) { return value(item, depth); }
    bool element(QString const& item, int)
    {
        string(item.constData(), item.size());
        return true;
    }

private:
    template <typename Container>
    bool list(Container const& items, int depth);
    template <typename Container>
    bool object(Container const& entries, int depth);

    QByteArray m_out;
    qsizetype m_size = 0;
};

// Escapes \ " \b \f \n \r \t and encodes UTF-8; a lone surrogate becomes '?',
// as QString::toUtf8 writes it.
void Writer::string(QChar const* text, qsizetype size)
{
    auto const* s = reinterpret_cast<char16_t const*>(text);
    // At most 3 bytes per UTF-16 unit: an escape takes 2, a surrogate pair 4.
    char* const start = reserve(3 * size + 2);
    char* p = start;
    *p++ = '"';
    for (qsizetype i = 0; i < size; ++i) {
        char16_t const c = s[i];
        if (c < 0x80) {
            char escape = 0;
            switch (c) {
            case u'\\':
                escape = '\\';
                break;
            case u'"':
                escape = '"';
                break;
            case u'\b':
                escape = 'b';
                break;
            case u'\f':
                escape = 'f';
                break;
            case u'\n':
                escape = 'n';
                break;
            case u'\r':
                escape = 'r';
                break;
            case u'\t':
                escape = 't';
                break;
            default:
                *p++ = char(c);
                continue;
            }
            *p++ = '\\';
            *p++ = escape;
        } else if (c < 0x800) {
            *p++ = char(0xC0 | (c >> 6));
            *p++ = char(0x80 | (c & 0x3F));
        } else if (c >= 0xD800 && c <= 0xDFFF) {
            if (c <= 0xDBFF && i + 1 < size && s[i + 1] >= 0xDC00 && s[i + 1] <= 0xDFFF) {
                char32_t const u = 0x10000 + ((char32_t(c) - 0xD800) << 10) + (s[i + 1] - 0xDC00);
                *p++ = char(0xF0 | (u >> 18));
                *p++ = char(0x80 | ((u >> 12) & 0x3F));
                *p++ = char(0x80 | ((u >> 6) & 0x3F));
                *p++ = char(0x80 | (u & 0x3F));
                ++i;
            } else {
                *p++ = '?';
            }
        } else {
            *p++ = char(0xE0 | (c >> 12));
            *p++ = char(0x80 | ((c >> 6) & 0x3F));
            *p++ = char(0x80 | (c & 0x3F));
        }
    }
    *p++ = '"';
    m_size += p - start;
}

bool Writer::number(double value)
{
    if (!std::isfinite(value))
        return false;
    char* const p = reserve(32);
    char* const end = std::to_chars(p, p + 30, value, std::chars_format::general, 6).ptr;
    m_size += end - p;
    if (!std::memchr(p, '.', std::size_t(end - p)) && !std::memchr(p, 'e', std::size_t(end - p)))
        literal(".0");
    return true;
}

template <typename Container>
bool Writer::list(Container const& items, int depth)
{
    if (depth >= UT_Json::maxDepth())
        return false;
    literal("[ ");
    bool first = true;
    for (auto const& item : items) {
        if (!first)
            literal(", ");
        first = false;
        if (!element(item, depth + 1))
            return false;
    }
    literal(" ]");
    return true;
}

template <typename Container>
bool Writer::object(Container const& entries, int depth)
{
    if (depth >= UT_Json::maxDepth())
        return false;
    literal("{ ");
    bool first = true;
    for (auto it = entries.cbegin(); it != entries.cend(); ++it) {
        if (!first)
            literal(", ");
        first = false;
        string(it.key().constData(), it.key().size());
        literal(" : ");
        if (!value(it.value(), depth + 1))
            return false;
    }
    literal(" }");
    return true;
}

template <typename T>
T const& held(QVariant const& v)
{
    return *static_cast<T const*>(v.constData());
}

bool Writer::value(QVariant const& v, int depth)
{
    switch (v.typeId()) {
    case QMetaType::UnknownType:
        literal("null");
        return true;
    case QMetaType::QVariantList:
        return list(held<QVariantList>(v), depth);
    case QMetaType::QStringList:
        return list(held<QStringList>(v), depth);
    case QMetaType::QVariantHash:
        return object(held<QVariantHash>(v), depth);
    case QMetaType::QVariantMap:
        return object(held<QVariantMap>(v), depth);
    case QMetaType::QString: {
        QString const& text = held<QString>(v);
        string(text.constData(), text.size());
        return true;
    }
    case QMetaType::QByteArray: {
        QString const text = QString::fromUtf8(held<QByteArray>(v));
        string(text.constData(), text.size());
        return true;
    }
    case QMetaType::Double:
        return number(held<double>(v));
    case QMetaType::Bool:
        if (held<bool>(v))
            literal("true");
        else
            literal("false");
        return true;
    case QMetaType::ULongLong:
        integer(held<qulonglong>(v));
        return true;
    case QMetaType::Int:
        integer(held<int>(v));
        return true;
    case QMetaType::UInt:
        integer(held<uint>(v));
        return true;
    case QMetaType::LongLong:
        integer(held<qlonglong>(v));
        return true;
    default:
        break;
    }
    QString text;
    if (v.canConvert<qlonglong>()) {
        integer(v.toLongLong());
        return true;
    } else if (v.canConvert<int>()) {
        integer(v.toInt());
        return true;
    } else if (v.typeId() == QMetaType::QDateTime) {
        QString const& format = dateTimeFormat();
        QDateTime const& dt = held<QDateTime>(v);
        text = format.isEmpty() ? dt.toString() : dt.toString(format);
    } else if (v.typeId() == QMetaType::QDate) {
        // Gated on the date-time format, intended.
        QDate const& date = held<QDate>(v);
        text = dateTimeFormat().isEmpty() ? date.toString() : date.toString(dateFormat());
    } else if (v.canConvert<QString>()) {
        text = v.toString();
    } else {
        return false;
    }
    string(text.constData(), text.size());
    return true;
}

} // namespace

QByteArray UT_Json::serialize(QVariant const& value, bool& ok)
{
    Writer writer;
    ok = writer.value(value, 0);
    return ok ? writer.take() : QByteArray();
}

QByteArray UT_Json::serialize(QVariant const& value)
{
    bool ok = true;
    return serialize(value, ok);
}

QString UT_Json::serializeStr(QVariant const& value, bool& ok)
{
    return QString::fromUtf8(serialize(value, ok));
}

QString UT_Json::serializeStr(QVariant const& value)
{
    bool ok = true;
    return serializeStr(value, ok);
}

void UT_Json::setDateFormat(QString const& format)
{
    dateFormat() = format;
}

QString UT_Json::getDateFormat()
{
    return dateFormat();
}

void UT_Json::setDateTimeFormat(QString const& format)
{
    dateTimeFormat() = format;
}

QString UT_Json::getDateTimeFormat()
{
    return dateTimeFormat();
}
