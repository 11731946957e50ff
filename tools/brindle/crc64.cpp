// brindle crc64 FILE...: the CRC-64 of each file, as "HIGHLOW  NAME" lines.
#include "Command.h"

#include <BrindleBaseCore/data/TUCRC64Calculator.h>

#include <QtCore/QFile>

#include <unistd.h>

#include <vector>

namespace {

constexpr qint64 kChunk = 1 << 20;
constexpr qint64 kProgressFrom = 64 * kChunk; // files smaller than this show no bar

// A one-line progress bar on standard error, redrawn when the percentage moves.
class Progress
{
public:
    Progress(QString const& name, qint64 total)
        : m_name(name.toUtf8())
        , m_total(total)
        , m_shown(total >= kProgressFrom && isatty(2))
    {}
    ~Progress()
    {
        if (m_shown)
            std::fputs("\r\033[K", stderr);
    }
    void update(qint64 done)
    {
        if (!m_shown)
            return;
        int const percent = int(done * 100 / m_total);
        if (percent == m_percent)
            return;
        m_percent = percent;
        char bar[41];
        int const filled = percent * 40 / 100;
        for (int i = 0; i < 40; ++i)
            bar[i] = i < filled ? '#' : '.';
        bar[40] = 0;
        std::fprintf(stderr, "\r[%s] %3d%%  %s", bar, percent, m_name.constData());
        std::fflush(stderr);
    }

private:
    QByteArray m_name;
    qint64 m_total;
    bool m_shown;
    int m_percent = -1;
};

int runCrc64(brindle::Invocation& cmd)
{
    cmd.parser().addPositionalArgument(QStringLiteral("FILE"),
                                       QStringLiteral("Files to check ('-': standard input)."),
                                       QStringLiteral("FILE..."));
    int status = 0;
    if (!cmd.parse(&status))
        return status;
    QStringList const files = cmd.parser().positionalArguments();
    if (files.isEmpty())
        return cmd.usageError(QStringLiteral("expected at least one file"));

    TUCRC64Calculator const calculator;
    std::vector<char> buffer(static_cast<std::size_t>(kChunk));
    int result = brindle::Success;
    for (QString const& name : files) {
        QFile file(name);
        bool const opened = name == QLatin1String("-") ? file.open(stdin, QIODevice::ReadOnly)
                                                       : file.open(QIODevice::ReadOnly);
        if (!opened) {
            result = cmd.fail(name + QStringLiteral(": cannot open: ") + file.errorString());
            continue;
        }
        quint64 crc = 0;
        qint64 done = 0;
        qint64 got = 0;
        {
            Progress progress(name, file.isSequential() ? 0 : file.size());
            while ((got = file.read(buffer.data(), kChunk)) > 0) {
                crc = calculator.update(crc, buffer.data(), std::size_t(got));
                done += got;
                progress.update(done);
            }
        }
        if (got < 0) {
            result = cmd.fail(name + QStringLiteral(": cannot read: ") + file.errorString());
            continue;
        }
        brindle::printLine(QStringLiteral("%1%2  %3")
                               .arg(quint32(crc >> 32), 8, 16, QLatin1Char('0'))
                               .arg(quint32(crc), 8, 16, QLatin1Char('0'))
                               .arg(name));
    }
    return result;
}

} // namespace

BRINDLE_COMMAND(crc64, "crc64 FILE...", "Prints the CRC-64 of files", runCrc64);
