#include <BrindleBaseCore/text/UT_StringServices.h>

#include <QtCore/QByteArray>

#include <climits>
#include <cstdlib>
#include <cstring>

namespace UT_StringServices {

namespace {

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

// Lower-case letters become upper-case and upper-case letters lower-case.
char swapCase(char c)
{
    if (c >= 'a' && c <= 'z')
        return char(c - 'a' + 'A');
    if (c >= 'A' && c <= 'Z')
        return char(c - 'A' + 'a');
    return c;
}

// The character rule: compares a from i with b from j.
int compareTails(QByteArray const& a, qsizetype i, QByteArray const& b, qsizetype j)
{
    while (i < a.size() && j < b.size() && a[i] == b[j]) {
        ++i;
        ++j;
    }
    bool aEnded = i >= a.size();
    bool bEnded = j >= b.size();
    if (aEnded || bEnded)
        return int(bEnded) - int(aEnded);
    char ca = swapCase(a[i]);
    char cb = swapCase(b[j]);
    if (cb == '_') // '_' sorts before everything (intended)
        return 1;
    if (ca == '_')
        return -1;
    return int(static_cast<signed char>(ca)) - int(static_cast<signed char>(cb));
}

// The value of the digit run at i as the C atoi gives it (strtol saturating at
// LONG_MAX, then cut to int); i moves past the run.
int readRun(QByteArray const& text, qsizetype& i)
{
    unsigned long long value = 0;
    for (; i < text.size() && isDigit(text[i]); ++i) {
        unsigned digit = unsigned(text[i] - '0');
        value = value > (static_cast<unsigned long long>(LONG_MAX) - digit) / 10
                    ? static_cast<unsigned long long>(LONG_MAX)
                    : value * 10 + digit;
    }
    return static_cast<int>(static_cast<long>(value));
}

// Index of the last '.', '/' or '\\', or 0 when there is none.
qsizetype lastMark(QByteArray const& text)
{
    for (qsizetype i = text.size() - 1; i >= 0; --i) {
        char c = text[i];
        if (c == '.' || c == '/' || c == '\\')
            return i;
    }
    return 0;
}

} // namespace

void FlushSpace(std::string& text)
{
    static char const space[] = " \t\n\v\f\r";
    std::size_t first = text.find_first_not_of(space);
    if (first == std::string::npos) {
        text.clear();
        return;
    }
    text.erase(text.find_last_not_of(space) + 1);
    text.erase(0, first);
}

bool isUnicode(QString const& text)
{
    for (QChar c : text) {
        if (c.unicode() > 127)
            return true;
    }
    return false;
}

void wchar2char(UT_Char const* const* in, int count, char** out, bool terminate)
{
    if (!out)
        return;
    for (int i = 0; i < count; ++i)
        out[i] = in && in[i] ? strdup(UT_String(in[i]).utf8().c_str()) : nullptr;
    if (terminate)
        out[count < 0 ? 0 : count] = nullptr;
}

bool NumericAlphanumericTupleLess(QString const& first, QString const& second)
{
    QByteArray const a = first.toLatin1();
    QByteArray const b = second.toLatin1();
    if (a.isEmpty())
        return !b.isEmpty();
    if (b.isEmpty())
        return false;

    // Names with an extension come first, ordered by extension.
    qsizetype markA = lastMark(a);
    qsizetype markB = lastMark(b);
    bool extensionA = a[markA] == '.';
    bool extensionB = b[markB] == '.';
    if (extensionA != extensionB)
        return extensionA;
    if (extensionA) {
        int order = compareTails(a, markA, b, markB);
        if (order != 0)
            return order < 0;
    }

    qsizetype i = 0;
    qsizetype j = 0;
    while (i < a.size()) {
        if (j >= b.size())
            return false;
        if (isDigit(a[i]) && isDigit(b[j])) {
            qsizetype startA = i;
            qsizetype startB = j;
            int valueA = readRun(a, i);
            int valueB = readRun(b, j);
            if (valueA != valueB)
                return valueA < valueB;
            if (i - startA != j - startB) // the longer run first: "007" before "7"
                return i - startA > j - startB;
        } else if (a[i] != b[j]) {
            return compareTails(a, i, b, j) < 0;
        } else {
            ++i;
            ++j;
        }
    }
    return j < b.size();
}

} // namespace UT_StringServices
