// brindle natsort: prints lines in natural order.
#include "Command.h"

#include <BrindleBaseCore/text/UT_StringServices.h>
#include <BrindleBaseCore/text/UT_StringSortNatural.h>

#include <QtCore/QFile>

#include <algorithm>
#include <vector>

namespace {

int runNatsort(brindle::Invocation& cmd)
{
    QCommandLineParser& parser = cmd.parser();
    QCommandLineOption tuple(QStringLiteral("tuple"),
                             QStringLiteral("Order as file names: extensions first, then the "
                                            "tuple order (case-sensitive, '_' first)."));
    parser.addOption(tuple);
    parser.addPositionalArgument(QStringLiteral("FILE"),
                                 QStringLiteral("UTF-8 text, one name per line (default: standard "
                                                "input)."));
    int status = 0;
    if (!cmd.parse(&status))
        return status;
    QStringList const files = parser.positionalArguments();
    if (files.size() > 1)
        return cmd.usageError(
            QStringLiteral("expected at most one FILE, got %1").arg(files.size()));

    QFile input;
    bool opened = files.isEmpty()
                      ? input.open(stdin, QIODevice::ReadOnly)
                      : (input.setFileName(files.first()), input.open(QIODevice::ReadOnly));
    if (!opened)
        return cmd.fail(
            QStringLiteral("cannot read '%1': %2").arg(files.value(0, "-"), input.errorString()));
    QByteArray const data = input.readAll();

    std::vector<QString> lines;
    for (qsizetype start = 0; start < data.size();) {
        qsizetype end = data.indexOf('\n', start);
        if (end < 0)
            end = data.size();
        qsizetype stop = end > start && data[end - 1] == '\r' ? end - 1 : end;
        lines.push_back(QString::fromUtf8(data.constData() + start, stop - start));
        start = end + 1;
    }

    if (parser.isSet(tuple)) {
        // A stable sort stays within the range whatever the comparison does.
        std::stable_sort(lines.begin(), lines.end(),
                         UT_StringServices::NumericAlphanumericTupleLess);
        for (QString const& line : lines)
            brindle::printLine(line);
    } else {
        for (std::size_t index : UT_StringSortNatural::getOrder(lines))
            brindle::printLine(lines[index]);
    }
    return brindle::Success;
}

} // namespace

BRINDLE_COMMAND(natsort, "natsort [FILE] [--tuple]",
                "Prints lines in natural order (file2 before file10)", runNatsort);
