#include <BrindleBaseCore/app/TULex.h>

#include <BrindleBaseCore/app/MSG_Text.h>
#include <BrindleBaseCore/app/TUMessage.h>

#include <QtCore/QFile>
#include <QtCore/QTextStream>

#include <atomic>
#include <cerrno>
#include <climits>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <locale.h>
#include <ostream>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

// What the token loop does with a character once a token has started.
enum Action : unsigned char
{
    Append,     // part of the token
    StopBlank,  // blank or tab: ends the token and is consumed
    StopLine,   // line feed: ends the token, is consumed and counted
    SkipReturn, // carriage return: dropped, the token goes on
    StopLeave   // ends the token and is left for the next one (also the NUL end)
};

constexpr bool isNameChar(unsigned char c)
{
    return c >= 0x80 || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
           (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.' || c == '/' || c == '\\' ||
           c == '_' || c == '~';
}

struct Tables
{
    bool name[256];
    bool quoteStop[256];     // characters that interrupt a quoted string
    Action token[2][2][256]; // [comma-driven][raw][character]
};

constexpr Tables makeTables()
{
    Tables t{};
    for (int i = 0; i < 256; ++i) {
        auto c = static_cast<unsigned char>(i);
        t.name[i] = isNameChar(c);
        t.quoteStop[i] = c == 0 || c == '"' || c == '\\' || c == '\r';
        for (int comma = 0; comma < 2; ++comma) {
            for (int raw = 0; raw < 2; ++raw) {
                Action a = Append;
                if (c == 0)
                    a = StopLeave;
                else if (c == ' ' || c == '\t')
                    a = StopBlank;
                else if (c == '\n')
                    a = StopLine;
                else if (c == '\r')
                    a = SkipReturn;
                else if (comma && c == ',')
                    a = StopLeave;
                else if (!raw && !isNameChar(c))
                    a = StopLeave;
                t.token[comma][raw][i] = a;
            }
        }
    }
    return t;
}

constexpr Tables kTables = makeTables();

// Past the name characters from p on, sixteen at a time while whole blocks
// lie before end: the first character that ends a name in a block, or the
// first block that does not fit. The table loop goes on from there.
unsigned char const* skipNameBlocks(unsigned char const* p, unsigned char const* end)
{
#if defined(__SSE2__)
    // x in [low, low + n) as one signed comparison: the shifted range lands at
    // the bottom of the signed bytes.
    auto const inRange = [](__m128i x, char low, int n) {
        __m128i const shifted = _mm_add_epi8(x, _mm_set1_epi8(char(0x80 - low)));
        return _mm_cmplt_epi8(shifted, _mm_set1_epi8(char(0x80 + n)));
    };
    while (end - p >= 16) {
        __m128i const x = _mm_loadu_si128(reinterpret_cast<__m128i const*>(p));
        __m128i name = _mm_or_si128(inRange(_mm_or_si128(x, _mm_set1_epi8(0x20)), 'a', 26),
                                    inRange(x, '-', 13)); // letters; - . / and digits
        name = _mm_or_si128(name, _mm_cmplt_epi8(x, _mm_setzero_si128())); // 0x80 and above
        for (char const c : {'+', '\\', '_', '~'})
            name = _mm_or_si128(name, _mm_cmpeq_epi8(x, _mm_set1_epi8(c)));
        unsigned const stops = ~unsigned(_mm_movemask_epi8(name)) & 0xFFFFu;
        if (stops)
            return p + __builtin_ctz(stops);
        p += 16;
    }
#else
    (void)end;
#endif
    return p;
}

// The lexer's numbers never depend on the process's numeric locale.
locale_t cLocale()
{
    static locale_t const locale = newlocale(LC_ALL_MASK, "C", locale_t(nullptr));
    return locale;
}

// Read once, when the library is loaded.
bool const s_extraDebugLog = qEnvironmentVariableIsSet("QXA_EXTRA_DEBUG_LOG");

void traceOpenFile(QString const& text)
{
    if (s_extraDebugLog)
        MSG_Scope scope(text, MSG_Scope::Debug);
}

std::atomic<int> s_compatWithVersion{TULex::CompatCurrent};

char const kEmptyText[] = "";

} // namespace

TULex::TULex()
{
    reset(kEmptyText, 0, nullptr);
}

TULex::TULex(QByteArray const& text)
{
    reset(text.constData(), size_t(text.size()), nullptr);
}

TULex::TULex(char const* text)
{
    reset(text ? text : kEmptyText, text ? std::strlen(text) : 0, nullptr);
}

TULex::~TULex()
{
    delete[] m_ownedBuffer;
}

void TULex::reset(char const* text, size_t length, char* owned)
{
    if (owned != m_ownedBuffer) {
        delete[] m_ownedBuffer;
        m_ownedBuffer = owned;
    }
    m_buffer = text;
    m_cursor = reinterpret_cast<unsigned char const*>(text);
    m_end = m_cursor + length;
    m_lineNo = 1;
    token().clear();
    get();
}

bool TULex::openFile(QString const& path)
{
    traceOpenFile(QStringLiteral("TULex::openFile %1").arg(path));
    traceOpenFile(QStringLiteral("TULex::openFile - et_fs"));
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        traceOpenFile(QStringLiteral("TULex::openFile - file not found"));
        return false;
    }
    traceOpenFile(QStringLiteral("TULex::openFile - get file length"));
    qint64 const length = file.size();
    traceOpenFile(QStringLiteral("TULex::openFile - reading file of %1 bytes").arg(length));
    char* text = new char[size_t(length) + 1];
    qint64 done = 0;
    while (done < length) {
        qint64 const piece = std::min<qint64>(length - done, 1048576);
        qint64 const got = file.read(text + done, piece);
        if (got > 0)
            done += got;
        if (got != piece)
            break;
    }
    text[done] = '\0';
    file.close();
    traceOpenFile(QStringLiteral("TULex::openFile - done reading file of %1 bytes").arg(done));
    reset(text, size_t(done), text);
    return true;
}

void TULex::get(bool raw)
{
    unsigned char const* p = m_cursor;
    for (;;) {
        m_tokenLine = m_lineNo;
        m_current ^= 1; // the current token becomes the previous one
        token().clear();
        m_numberCached = false;

        for (;;) {
            unsigned char const c = *p;
            if (c == ' ' || c == '\t' || c == '\r' || (m_commaDriven && c == '"'))
                ++p;
            else if (c == '\n') {
                ++p;
                ++m_lineNo;
            } else
                break;
        }
        // A comment line of the comma-driven dialect: reading starts over, so
        // the previous token is the empty one (intended).
        if (m_commaDriven && *p == '#') {
            while (*p && *p != '\n')
                ++p;
            if (*p)
                ++p;
            ++m_lineNo;
            continue;
        }
        break;
    }

    unsigned char const c = *p;
    m_tokenStartLine = m_lineNo;
    if (c == 0) {
        m_cursor = p;
        return;
    }

    if (c == '"' && !m_commaDriven) {
        // Quoted string. Line feeds inside it are kept but deliberately not counted.
        unsigned char const* start = ++p;
        for (;;) {
            while (!kTables.quoteStop[*p])
                ++p;
            token().append(reinterpret_cast<char const*>(start), size_t(p - start));
            unsigned char const q = *p;
            if (q == '"') {
                m_cursor = p + 1;
                return;
            }
            if (q == '\\' && p[1] != 0) {
                token().push_back(char(p[1]));
                p += 2;
            } else if (q == '\r') {
                ++p;
            } else {
                // The text ends inside the string (possibly right after a backslash).
                m_cursor = q == '\\' ? p + 1 : p;
                syntaxErr(MSG_Text("TULex", "missing \"", MSG_Text::WithContext));
                return;
            }
            start = p;
        }
    }

    unsigned char const* start = p++;
    if (!raw && !kTables.name[c] && (!m_commaDriven || c == ',')) {
        token().push_back(char(c));
        m_cursor = p;
        return;
    }

    Action const* table = kTables.token[m_commaDriven][raw];
    bool const names = table == kTables.token[0][0];
    for (;;) {
        if (names)
            p = skipNameBlocks(p, m_end);
        while (table[*p] == Append)
            ++p;
        token().append(reinterpret_cast<char const*>(start), size_t(p - start));
        Action const action = table[*p];
        if (action == SkipReturn) {
            start = ++p;
            continue;
        }
        if (action == StopBlank)
            ++p;
        else if (action == StopLine) {
            ++p;
            ++m_lineNo;
        }
        break;
    }
    m_cursor = p;
}

bool TULex::operator==(char const* text) const
{
    if (!text)
        return token().empty();
    size_t const n = std::strlen(text);
    return n == token().size() && std::memcmp(text, token().data(), n) == 0;
}

bool TULex::operator==(QString const& text) const
{
    return QLatin1StringView(token().data(), qsizetype(token().size())) == text;
}

TULex::operator QString() const
{
    return QString::fromLatin1(token().data(), qsizetype(token().size()));
}

QString TULex::fromUtf8() const
{
    return QString::fromUtf8(token().data(), qsizetype(token().size()));
}

void TULex::convertNumber() const
{
    m_numberCached = true;
    char const* const text = token().c_str();
    char const* const end = text + token().size();
    char* stop = nullptr;
    errno = 0;
    long const wide = std::strtol(text, &stop, 10);
    // Saturate as a 32-bit conversion would.
    m_intValue = wide > INT_MAX ? INT_MAX : wide < INT_MIN ? INT_MIN : int(wide);
    m_isIntValue = stop != text && stop == end;
    if (m_isIntValue) {
        m_isDoubleValue = true;
        m_doubleValue = m_intValue;
        return;
    }
    m_doubleValue = strtod_l(text, &stop, cLocale());
    m_isDoubleValue = stop != text && stop == end;
}

TULex::operator int() const
{
    if (!m_numberCached)
        convertNumber();
    return m_intValue;
}

TULex::operator double() const
{
    if (!m_numberCached)
        convertNumber();
    return m_doubleValue;
}

bool TULex::isInt() const
{
    if (!m_numberCached)
        convertNumber();
    return m_isIntValue;
}

bool TULex::isDouble() const
{
    if (!m_numberCached)
        convertNumber();
    return m_isDoubleValue;
}

void TULex::reportExpectingNumber()
{
    syntaxErr(MSG_Text("TULex", "Expecting number.", MSG_Text::WithContext));
}

bool TULex::get_int(int& value)
{
    m_errorRefersToPrevious = false;
    if (!isInt()) {
        value = 0;
        reportExpectingNumber();
        return false;
    }
    value = m_intValue;
    get();
    m_errorRefersToPrevious = true;
    return true;
}

bool TULex::get_uint(unsigned& value)
{
    int signedValue = 0;
    bool const ok = get_int(signedValue);
    value = static_cast<unsigned>(signedValue);
    return ok;
}

bool TULex::get_double(double& value)
{
    m_errorRefersToPrevious = false;
    if (!isDouble()) {
        value = 0;
        reportExpectingNumber();
        return false;
    }
    value = m_doubleValue;
    get();
    m_errorRefersToPrevious = true;
    return true;
}

bool TULex::get_bool(bool& value)
{
    if (token().size() != 1)
        return false;
    char const c = token()[0];
    if (c != 'Y' && c != 'y' && c != 'N' && c != 'n')
        return false;
    value = c == 'Y' || c == 'y';
    get();
    return true;
}

bool TULex::parseBool(bool& value)
{
    if (*this == "Y" || *this == "N") {
        value = token()[0] == 'Y';
        get();
        return true;
    }
    // The trailing blank of the message is part of the text.
    syntaxErr(MSG_Text("TULex", "Expecting Y or N while reading %1 ", MSG_Text::WithContext)
                  .arg(QString(*this), 0));
    return false;
}

bool TULex::parseDouble(double& value, bool allowNegative)
{
    get();
    if (!get_double(value))
        return false;
    if (!allowNegative && value < 0) {
        value = 0;
        // "greater then" is the message's own wording.
        syntaxErr(MSG_Text("TULex", "Expected float value greater then 0.", MSG_Text::WithContext));
    }
    return true;
}

void TULex::skipToNextLine()
{
    unsigned char const* p = m_cursor;
    while (*p && *p != '\n')
        ++p;
    if (*p) {
        ++p;
        ++m_lineNo;
    }
    m_cursor = p;
    get();
}

void TULex::syntaxErr(MSG_Text const& message)
{
    m_errorSeen = true;
    unsigned const line = m_errorRefersToPrevious ? m_tokenLine : m_lineNo;
    std::string const& token = m_tokens[m_errorRefersToPrevious ? m_current ^ 1 : m_current];
    QString const tokenText = QString::fromLatin1(token.data(), qsizetype(token.size()));
    QString const lineText = QString::number(line);
    char const* const format = "Syntax error at line %1:\n%2%3 (%4)";
    QString const source = QString::fromLatin1(format).arg(lineText, QStringLiteral(" "),
                                                           message.getText(), tokenText);
    QString const translated =
        MSG_Text("TULex", format, MSG_Text::WithContext)
            .getTranslatedText()
            .arg(lineText, QStringLiteral(" "), message.getTranslatedText(), tokenText);
    MSG_Text const report(source, translated, MSG_Text::WithTranslatedText);
    ErrorCode::Type const code = static_cast<ErrorCode::Type>(3);
    if (!m_yesToAll) {
        MSG_Scope scope(report, MSG_Scope::Warning, code);
        return;
    }
    if (m_yesToAllChosen)
        return;
    // The channel answers through the flag: clearing it means "ignore the rest".
    bool keepReporting = true;
    TUMessage::instance().warning(report.getText(), report.getTranslatedText(), &keepReporting);
    m_yesToAllChosen = !keepReporting;
}

void TULex::setCommaDriven(bool)
{
    m_commaDriven = true;
}

TULex::CompatWithVersion TULex::compatWithVersion(bool set, CompatWithVersion value)
{
    if (set)
        s_compatWithVersion.store(value);
    return static_cast<CompatWithVersion>(s_compatWithVersion.load());
}

namespace {

// The text of one token: bare when every character is a name character,
// otherwise quoted with '"', '\' and carriage return escaped. NULs are dropped.
QString tokenText(QString text, bool allowBare)
{
    text.remove(QChar(0));
    bool bare = allowBare && !text.isEmpty();
    for (QChar ch : std::as_const(text)) {
        if (!bare)
            break;
        bare = ch.unicode() >= 0x80 || isNameChar(static_cast<unsigned char>(ch.unicode()));
    }
    if (bare)
        return text;
    QString quoted;
    quoted.reserve(text.size() + 2);
    quoted += QLatin1Char('"');
    for (QChar ch : std::as_const(text)) {
        if (ch == QLatin1Char('"') || ch == QLatin1Char('\\') || ch == QLatin1Char('\r'))
            quoted += QLatin1Char('\\');
        quoted += ch;
    }
    quoted += QLatin1Char('"');
    return quoted;
}

void writeBytes(std::ostream& out, QByteArray const& bytes)
{
    out.write(bytes.constData(), std::streamsize(bytes.size()));
}

} // namespace

void TULex::writeName(std::ostream& out, QString const& name)
{
    // Decide bareness on what Latin-1 can hold: an unmappable character is written as '?'.
    writeBytes(out, tokenText(QString::fromLatin1(name.toLatin1()), true).toLatin1());
}

void TULex::writeName(QTextStream& out, QString const& name)
{
    out << tokenText(name, true);
}

void TULex::writeNameUtf8(std::ostream& out, QString const& name)
{
    writeBytes(out, tokenText(name, true).toUtf8());
}

void TULex::writeString(std::ostream& out, QString const& text)
{
    writeBytes(out, tokenText(text, false).toUtf8());
}
