// brindle log: writes action lines to a new log file, or brackets a command
// with "Start" and "End" lines.
#include "Command.h"

#include <BrindleBaseCore/app/UT_Log.h>

#include <QtCore/QProcess>

namespace {

int runCommandInScope(brindle::Invocation& cmd, QString const& scopeName, QStringList command)
{
    int exitCode = 0;
    QString failure;
    {
        UT_LogIO::Scope scope(scopeName);
        UT_LogIO::logAction(QStringLiteral("Run ") + command.join(QLatin1Char(' ')));
        QProcess process;
        process.setProcessChannelMode(QProcess::ForwardedChannels);
        process.setInputChannelMode(QProcess::ForwardedInputChannel);
        process.start(command.takeFirst(), command);
        if (!process.waitForFinished(-1) || process.exitStatus() != QProcess::NormalExit) {
            failure = QStringLiteral("'%1' did not run to its end: %2")
                          .arg(process.program(), process.errorString());
            UT_LogIO::logAction(QStringLiteral("Failed: ") + process.errorString());
        } else {
            exitCode = process.exitCode();
            UT_LogIO::logAction(QStringLiteral("Exit status %1").arg(exitCode));
            if (exitCode != 0)
                failure = QStringLiteral("'%1' exited with status %2")
                              .arg(process.program())
                              .arg(exitCode);
        }
    }
    std::fflush(stdout);
    brindle::printLine(UT_LogIO::sharedLog()->fileName());
    UT_LogIO::close();
    return failure.isEmpty() ? brindle::Success : cmd.fail(failure);
}

int runLog(brindle::Invocation& cmd)
{
    QCommandLineOption scope(QStringLiteral("scope"),
                             QStringLiteral("Brackets COMMAND with Start NAME and End NAME."),
                             QStringLiteral("NAME"));
    QCommandLineParser& parser = cmd.parser();
    parser.addOption(scope);
    // Everything after the folder belongs to the actions or the command.
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    parser.addPositionalArgument(QStringLiteral("DIR"), QStringLiteral("Folder of the log file."));
    parser.addPositionalArgument(QStringLiteral("ACTION"), QStringLiteral("Action lines to write."),
                                 QStringLiteral("ACTION... | -- COMMAND..."));
    int status = 0;
    if (!cmd.parse(&status))
        return status;

    QStringList words = parser.positionalArguments();
    if (words.isEmpty())
        return cmd.usageError(QStringLiteral("missing the log folder"));
    QString const folder = words.takeFirst();
    if (!words.isEmpty() && words.first() == QLatin1String("--"))
        words.removeFirst();
    if (words.isEmpty())
        return cmd.usageError(parser.isSet(scope) ? QStringLiteral("missing the command to run")
                                                  : QStringLiteral("missing the actions to log"));

    if (!UT_LogIO::create(folder)) {
        UT_LogIO::close();
        return cmd.fail(QStringLiteral("cannot create a log file in '%1'").arg(folder));
    }
    if (parser.isSet(scope))
        return runCommandInScope(cmd, parser.value(scope), words);

    for (QString const& action : words) {
        if (!UT_LogIO::logAction(action)) {
            UT_LogIO::close();
            return cmd.fail(QStringLiteral("cannot write to the log in '%1'").arg(folder));
        }
    }
    brindle::printLine(UT_LogIO::sharedLog()->fileName());
    UT_LogIO::close();
    return brindle::Success;
}

} // namespace

BRINDLE_COMMAND(log, "log DIR ACTION... | log --scope NAME DIR -- COMMAND...",
                "Writes action lines to a new log file in DIR, or logs around a command", runLog);
