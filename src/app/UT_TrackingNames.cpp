#include <BrindleBaseCore/app/UT_Tracking.h>

#include <QtCore/QFile>
#include <QtCore/QRegularExpression>

#include <csignal>
#include <cstdio>

namespace {

QString collapseBlanks(QString const& name)
{
    return name.simplified();
}

void removeTrademarks(QString& name)
{
    name.remove(QStringLiteral("(TM)"), Qt::CaseSensitive);
}

// If name starts with brand and does not hold the family, brand becomes
// "brand family"; a name that starts with the family alone gets the brand first.
void completeBrand(QString& name, QString const& brand, QString const& family)
{
    if (name.startsWith(family) && !name.contains(brand))
        name.prepend(brand + QLatin1Char(' '));
    if (name.startsWith(brand) && !name.contains(family))
        name.replace(0, brand.size(), brand + QLatin1Char(' ') + family);
}

} // namespace

QString UT_Tracking::normalizeCPUName(QString const& name)
{
    static QRegularExpression const patterns[] = {
        QRegularExpression(QStringLiteral(R"(\b\d+th Gen\b)")),
        QRegularExpression(QStringLiteral(R"(@\s\d+(\.\d+)?\s?GHz)")),
    };
    // The longer Radeon phrases come first so that no stray "Graphics" is left.
    static QString const words[] = {
        QStringLiteral("with Radeon Vega Graphics"), QStringLiteral("with Radeon Graphics"),
        QStringLiteral("Processor"), QStringLiteral("CPU"), QStringLiteral("with Radeon Vega")};
    QString result = name;
    for (QRegularExpression const& pattern : patterns)
        result.remove(pattern);
    for (QString const& word : words)
        result.remove(word, Qt::CaseInsensitive);
    removeTrademarks(result);
    return collapseBlanks(result);
}

QString UT_Tracking::normalizeGraphicCardName(QString const& name)
{
    static QString const words[] = {QStringLiteral("PCIe"),   QStringLiteral("GPU"),
                                    QStringLiteral("SSE2"),   QStringLiteral("SSE4"),
                                    QStringLiteral("Series"), QStringLiteral("OpenGL Engine")};
    QString result = name;
    for (QString const& word : words) {
        result.remove(word + QLatin1Char('/'), Qt::CaseInsensitive);
        result.remove(QLatin1Char('/') + word, Qt::CaseInsensitive);
        result.remove(word, Qt::CaseInsensitive);
    }
    completeBrand(result, QStringLiteral("NVIDIA"), QStringLiteral("GeForce"));
    completeBrand(result, QStringLiteral("AMD"), QStringLiteral("Radeon"));
    removeTrademarks(result);
    return collapseBlanks(result);
}

namespace {

bool debuggerAttached()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return false;
    for (QByteArray line = status.readLine(); !line.isEmpty(); line = status.readLine()) {
        if (line.startsWith("TracerPid:"))
            return line.mid(10).trimmed().toLongLong() != 0;
    }
    return false;
}

} // namespace

void Assertion::AssertFunction(char const* expression, char const* message, char const* file,
                               int line, bool legacy)
{
    static thread_local char buffer[1024];
    bool const hasMessage = message && *message;
    std::snprintf(buffer, sizeof buffer, "%s(%d):\t%s: \"%s\" \n%s%s", file ? file : "", line,
                  legacy ? "LEGACY_ASSERT" : "ASSERT", expression ? expression : "",
                  hasMessage ? message : "", hasMessage ? "\n" : "");
    std::fputs(buffer, stdout);
    std::fflush(stdout);
    std::fputs(buffer, stderr);
    std::fflush(stderr);
    if (!legacy && debuggerAttached())
        raise(SIGTRAP);
}
