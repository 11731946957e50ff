// brindle sign: MD5 signatures of files, and their verification.
#include "Command.h"

#include <BrindleBaseCore/files/PL_FileSignature.h>
#include <BrindleBaseCore/files/PL_FileSpec.h>

#include <QtCore/QFile>

#include <cstdio>
#include <unistd.h>

namespace {

constexpr quint64 kProgressThreshold = quint64(64) << 20;

// A bar on standard error for large files, only when it is a terminal.
bool sign(PL_FileSignature& signature, QString const& path)
{
    PL_FileSpec const file{UT_String(path)};
    if (!::isatty(2) || file.GetFileLength() <= kProgressThreshold)
        return signature.computeSignature(file);
    QByteArray const name = path.toUtf8();
    int shown = -1;
    bool const ok = signature.computeSignature(file, [&](quint64 done, quint64 total) {
        int const percent = total ? int(done * 100 / total) : 100;
        if (percent == shown)
            return;
        shown = percent;
        std::fprintf(stderr, "\r%-40.40s [%-50s] %3d%%", name.constData(),
                     QByteArray(percent / 2, '#').constData(), percent);
    });
    std::fprintf(stderr, "\r%*s\r", 100, "");
    return ok;
}

int check(brindle::Invocation& cmd, QString const& listFile)
{
    QFile list(listFile);
    if (!list.open(QIODevice::ReadOnly | QIODevice::Text))
        return cmd.fail(QStringLiteral("cannot read '%1'").arg(listFile));
    int mismatches = 0;
    int lineNumber = 0;
    while (!list.atEnd()) {
        QString const line = QString::fromUtf8(list.readLine()).trimmed();
        ++lineNumber;
        if (line.isEmpty())
            continue;
        // "DIGEST  NAME" or "DIGEST *NAME"
        PL_FileSignature expected;
        QString name = line.mid(34);
        if (line.size() < 35 || line.at(32) != u' ' ||
            (line.at(33) != u' ' && line.at(33) != u'*') ||
            !expected.setSignature(line.left(32).toLatin1().constData())) {
            cmd.fail(QStringLiteral("%1:%2: not a signature line").arg(listFile).arg(lineNumber));
            ++mismatches;
            continue;
        }
        PL_FileSignature actual;
        if (!sign(actual, name)) {
            brindle::printLine(name + QStringLiteral(": FAILED open or read"));
            ++mismatches;
        } else if (actual != expected) {
            brindle::printLine(name + QStringLiteral(": FAILED"));
            ++mismatches;
        } else {
            brindle::printLine(name + QStringLiteral(": OK"));
        }
    }
    if (mismatches)
        return cmd.fail(QStringLiteral("%1 file(s) did not match").arg(mismatches));
    return brindle::Success;
}

int runSign(brindle::Invocation& cmd)
{
    QCommandLineParser& parser = cmd.parser();
    QCommandLineOption checkOption(QStringLiteral("check"),
                                   QStringLiteral("Verifies the signatures listed in LISTFILE."),
                                   QStringLiteral("LISTFILE"));
    parser.addOption(checkOption);
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("Files to sign."),
                                 QStringLiteral("FILE..."));
    int status = 0;
    if (!cmd.parse(&status))
        return status;
    if (parser.isSet(checkOption)) {
        if (!parser.positionalArguments().isEmpty())
            return cmd.usageError(QStringLiteral("--check takes no FILE"));
        return check(cmd, parser.value(checkOption));
    }
    QStringList const files = parser.positionalArguments();
    if (files.isEmpty())
        return cmd.usageError(QStringLiteral("no FILE given"));
    int result = brindle::Success;
    for (QString const& path : files) {
        PL_FileSignature signature;
        if (!sign(signature, path))
            result = cmd.fail(QStringLiteral("cannot read '%1'").arg(path));
        else
            brindle::printLine(signature.toHex() + QStringLiteral("  ") + path);
    }
    return result;
}

} // namespace

BRINDLE_COMMAND(sign, "sign FILE... | sign --check LISTFILE",
                "Prints or verifies MD5 signatures of files", runSign);
