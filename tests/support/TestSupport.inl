// Implementation of TestSupport.h, inline so that every test stays one file.
#pragma once

#include <QtCore/QProcess>

namespace brindle_test {

inline int runProgram(QString const& program, QStringList const& args, QByteArray* out,
                      QByteArray* err, QByteArray const& input)
{
    QProcess p;
    p.start(program, args);
    if (!p.waitForStarted(10000))
        return -1;
    if (!input.isEmpty())
        p.write(input);
    p.closeWriteChannel();
    p.waitForFinished(60000);
    if (out)
        *out = p.readAllStandardOutput();
    if (err)
        *err = p.readAllStandardError();
    if (p.exitStatus() == QProcess::CrashExit)
        return 128;
    return p.exitCode();
}

} // namespace brindle_test
