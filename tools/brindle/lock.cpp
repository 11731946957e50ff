// brindle lock: runs a command while holding a lock file.
#include "Command.h"

#include <BrindleBaseCore/files/PL_FileUtil.h>

#include <cerrno>
#include <cstring>
#include <spawn.h>
#include <sys/wait.h>
#include <vector>

extern char** environ;

namespace {

int runLock(brindle::Invocation& cmd)
{
    QCommandLineParser& parser = cmd.parser();
    QCommandLineOption shared(QStringLiteral("shared"),
                              QStringLiteral("Takes a shared lock instead of an exclusive one."));
    QCommandLineOption noWait(QStringLiteral("nowait"),
                              QStringLiteral("Fails at once when the lock is held."));
    parser.addOption(shared);
    parser.addOption(noWait);
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The lock file."));
    parser.addPositionalArgument(QStringLiteral("COMMAND"),
                                 QStringLiteral("The command to run, after --."),
                                 QStringLiteral("-- COMMAND..."));
    int status = 0;
    if (!cmd.parse(&status))
        return status;
    QStringList const args = parser.positionalArguments();
    if (args.size() < 2)
        return cmd.usageError(QStringLiteral("expected FILE -- COMMAND..."));
    QString const path = args.first();

    PL_FileUtil::FileLocker locker;
    auto const type = parser.isSet(shared) ? PL_FileUtil::SharedLock : PL_FileUtil::ExclusiveLock;
    if (!locker.Lock(path, type, !parser.isSet(noWait))) {
        if (locker.Locked())
            return cmd.fail(QStringLiteral("'%1' is locked by another process").arg(path));
        return cmd.fail(QStringLiteral("cannot open the lock file '%1'").arg(path));
    }

    std::vector<QByteArray> words;
    for (qsizetype i = 1; i < args.size(); ++i)
        words.push_back(args[i].toLocal8Bit());
    std::vector<char*> argv;
    for (QByteArray& word : words)
        argv.push_back(word.data());
    argv.push_back(nullptr);
    pid_t child = 0;
    int const error = ::posix_spawnp(&child, argv[0], nullptr, nullptr, argv.data(), environ);
    if (error != 0)
        return cmd.fail(QStringLiteral("cannot run '%1': %2")
                            .arg(args[1], QString::fromLocal8Bit(std::strerror(error))));
    int waitStatus = 0;
    while (::waitpid(child, &waitStatus, 0) < 0 && errno == EINTR) {
    }
    if (WIFSIGNALED(waitStatus))
        return 128 + WTERMSIG(waitStatus);
    return WEXITSTATUS(waitStatus);
}

} // namespace

BRINDLE_COMMAND(lock, "lock FILE [--shared] [--nowait] -- COMMAND...",
                "Runs a command while holding a lock file", runLock);
