// brindle natsort: prints lines in natural order.
#include "Command.h"

#include <BrindleBaseCore/text/UT_StringServices.h>
#include <BrindleBaseCore/text/UT_StringSortNatural.h>

#include <QtCore/QFile>

#include <algorithm>
#include <cstdio>
#include <numeric>
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

    // Lines are ordered by their decoded text but written back byte for byte,
    // so that text that is not UTF-8 comes out unchanged.
    std::vector<QByteArray> raw;
    std::vector<QString> lines;
    for (qsizetype start = 0; start < data.size();) {
        qsizetype end = data.indexOf('\n', start);
        if (end < 0)
            end = data.size();
        qsizetype stop = end > start && data[end - 1] == '\r' ? end - 1 : end;
        raw.push_back(data.mid(start, stop - start));
        lines.push_back(QString::fromUtf8(raw.back()));
        start = end + 1;
    }

    std::vector<std::size_t> order;
    if (parser.isSet(tuple)) {
        order.resize(lines.size());
        std::iota(order.begin(), order.end(), std::size_t(0));
        // A stable sort stays within the range whatever the comparison does.
        std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
            return UT_StringServices::NumericAlphanumericTupleLess(lines[a], lines[b]);
        });
    } else {
        order = UT_StringSortNatural::getOrder(lines);
    }
    for (std::size_t index : order) {
        std::fwrite(raw[index].constData(), 1, std::size_t(raw[index].size()), stdout);
        std::fputc('\n', stdout);
    }
    return brindle::Success;
}

} // namespace

BRINDLE_COMMAND(natsort, "natsort [FILE] [--tuple]",
                "Prints lines in natural order (file2 before file10)", runNatsort);
