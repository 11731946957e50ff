// brindle run: runs a program with its standard streams piped through this
// tool and ends with the program's exit status.
#include "Command.h"

#include <BrindleBaseCore/os/OSW_Execute.h>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <cstdio>
#include <thread>

namespace {

constexpr quint64 ChunkSize = 64 * 1024;

// Copies one output stream of the child to one of ours as it arrives.
template <typename Read>
void relay(Read read, FILE* to)
{
    char buffer[ChunkSize];
    quint64 n;
    while ((n = read(sizeof buffer, buffer)) > 0) {
        std::fwrite(buffer, 1, size_t(n), to);
        std::fflush(to);
    }
}

// Feeds the file to the child's standard input, then closes it.
void feed(OSW_Execute& exec, QFile* input)
{
    if (input) {
        char buffer[ChunkSize];
        qint64 n;
        while ((n = input->read(buffer, sizeof buffer)) > 0) {
            if (exec.writeToStdin(quint64(n), buffer) != quint64(n))
                break; // the child closed its input
        }
    }
    exec.closeStdin();
}

int runRun(brindle::Invocation& cmd)
{
    QCommandLineParser& parser = cmd.parser();
    QCommandLineOption cwd(QStringLiteral("cwd"), QStringLiteral("Runs the program in DIR."),
                           QStringLiteral("DIR"));
    QCommandLineOption detach(QStringLiteral("detach"),
                              QStringLiteral("Starts the program, prints its process id and "
                                             "returns without waiting."));
    QCommandLineOption stdinFile(QStringLiteral("stdin"),
                                 QStringLiteral("Feeds FILE to the program's standard input."),
                                 QStringLiteral("FILE"));
    parser.addOptions({cwd, detach, stdinFile});
    parser.addPositionalArgument(QStringLiteral("program"),
                                 QStringLiteral("The program to run, then its arguments."),
                                 QStringLiteral("-- PROGRAM [ARGS...]"));
    int status = 0;
    if (!cmd.parse(&status))
        return status;

    QStringList const words = parser.positionalArguments();
    if (words.isEmpty() || words.first().isEmpty())
        return cmd.usageError(QStringLiteral("no program given"));
    bool const detached = parser.isSet(detach);
    if (detached && parser.isSet(stdinFile))
        return cmd.usageError(QStringLiteral("--stdin cannot be used with --detach"));
    QString const folder = parser.value(cwd);
    if (parser.isSet(cwd) && !QFileInfo(folder).isDir())
        return cmd.fail(QStringLiteral("no such folder: %1").arg(folder));
    QFile input(parser.value(stdinFile));
    if (parser.isSet(stdinFile) && !input.open(QIODevice::ReadOnly))
        return cmd.fail(
            QStringLiteral("cannot read %1: %2").arg(input.fileName(), input.errorString()));

    OSW_Execute exec;
    exec.setDetached(true);
    exec.enableStdioPipes(!detached);
    exec.setWorkingDirectory(folder);
    if (exec.execm(words) != 0)
        return cmd.fail(QStringLiteral("cannot start %1").arg(words.first()));
    if (detached) {
        brindle::printLine(QString::number(exec.pid()));
        return brindle::Success;
    }

    // Each stream has a thread of its own, so a child that fills one pipe
    // while we wait on another cannot dead-lock.
    std::thread errors([&exec] {
        relay([&exec](quint64 n, char* b) { return exec.readFromStderr(n, b); }, stderr);
    });
    std::thread writer(feed, std::ref(exec), input.isOpen() ? &input : nullptr);
    relay([&exec](quint64 n, char* b) { return exec.readFromStdout(n, b); }, stdout);
    errors.join();
    writer.join();
    return exec.waitForProcEnd();
}

} // namespace

BRINDLE_COMMAND(run, "run [--cwd DIR] [--detach] [--stdin FILE] -- PROGRAM [ARGS...]",
                "Runs a program with piped standard streams and returns its exit status", runRun);
