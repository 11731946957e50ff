// brindle json [FILE]: reads JSON text and writes it back in the library's layout.
#include "Command.h"

#include <BrindleBaseCore/data/UT_Json.h>

#include <QtCore/QFile>
#include <QtCore/QStringDecoder>

namespace {

// UTF-16 units that decoding the first `size` bytes gives (an incomplete
// sequence at the end gives nothing yet).
qsizetype decodedSize(QByteArray const& bytes, qsizetype size)
{
    QStringDecoder decoder(QStringDecoder::Utf8);
    return QString(decoder(QByteArrayView(bytes.constData(), size))).size();
}

// The byte offset in the file of a position in its decoded text, exact also
// around invalid sequences and a byte order mark.
qsizetype byteOffset(QByteArray const& bytes, qsizetype units)
{
    qsizetype low = 0, high = bytes.size();
    while (low < high) {
        qsizetype const middle = low + (high - low) / 2;
        if (decodedSize(bytes, middle) >= units)
            high = middle;
        else
            low = middle + 1;
    }
    return low;
}

int runJson(brindle::Invocation& cmd)
{
    cmd.parser().addPositionalArgument(QStringLiteral("FILE"),
                                       QStringLiteral("JSON file (standard input when absent)."));
    int status = 0;
    if (!cmd.parse(&status))
        return status;
    QStringList const files = cmd.parser().positionalArguments();
    if (files.size() > 1)
        return cmd.usageError(QStringLiteral("one file at most"));

    bool const useStdin = files.isEmpty() || files.first() == QLatin1String("-");
    QString const name = useStdin ? QStringLiteral("standard input") : files.first();
    QFile file(name);
    bool const opened =
        useStdin ? file.open(stdin, QIODevice::ReadOnly) : file.open(QIODevice::ReadOnly);
    if (!opened)
        return cmd.fail(name + QStringLiteral(": cannot open: ") + file.errorString());
    QByteArray const bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return cmd.fail(name + QStringLiteral(": cannot read: ") + file.errorString());

    QStringDecoder decoder(QStringDecoder::Utf8);
    QString const text = decoder(bytes);
    bool ok = false;
    qsizetype stop = 0;
    QVariant const value = UT_Json::parse(text, ok, stop);
    if (!ok) {
        return cmd.fail(QStringLiteral("%1: invalid JSON (parsing stopped at byte %2)")
                            .arg(name)
                            .arg(byteOffset(bytes, stop)));
    }
    QByteArray out = UT_Json::serialize(value, ok);
    if (!ok)
        return cmd.fail(name +
                        QStringLiteral(": the value has no JSON form (a number out of range)"));
    out.append('\n');
    std::fwrite(out.constData(), 1, std::size_t(out.size()), stdout);
    return brindle::Success;
}

} // namespace

BRINDLE_COMMAND(json, "json [FILE]", "Reads JSON and writes it in the library's layout", runJson);
