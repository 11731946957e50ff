// A tool that holds a lock file while it runs a child process, feeding the
// child's standard input and reading its output through pipes.
#include <BrindleBaseCore/files.h>
#include <BrindleBaseCore/os.h>

#include <QtCore/QDir>
#include <QtCore/QTemporaryDir>

#include <cstdio>

int main()
{
    QTemporaryDir work;
    QString const lockPath = QDir(work.path()).filePath(QStringLiteral("render.lock"));

    // One job at a time: a second locker of the same file is refused at once.
    PL_FileUtil::FileLocker lock;
    if (!lock.Lock(lockPath, PL_FileUtil::ExclusiveLock, false))
        return 1;
    PL_FileUtil::FileLocker other;
    bool const secondRefused = !other.Lock(lockPath, PL_FileUtil::ExclusiveLock, false);

    // Detached, so that the program can talk to the child while it runs.
    OSW_Execute child;
    child.setDetached(true);
    child.enableStdioPipes(true);
    if (child.execm(QStringLiteral("/bin/sh"), QStringLiteral("-c"),
                    QStringLiteral("tr a-z A-Z; echo done >&2; exit 7")) != 0)
        return 1;
    child.writeToStdin(QByteArray("sh010 sh020\n"));
    child.closeStdin();
    QByteArray out;
    QByteArray err;
    child.readFromStdout(out);
    child.readFromStderr(err);
    int const status = child.waitForProcEnd();
    lock.Unlock();

    std::printf("child %u said \"%s\", \"%s\", status %d; second lock %s\n", child.pid(),
                out.trimmed().constData(), err.trimmed().constData(), status,
                secondRefused ? "refused" : "granted");
    return out == "SH010 SH020\n" && err == "done\n" && status == 7 && secondRefused ? 0 : 1;
}
