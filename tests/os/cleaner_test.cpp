#include <BrindleBaseCore/os/CU_TerminationCleaner.h>

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QSharedMemory>
#include <QtCore/QTemporaryDir>

#include <csignal>
#include <functional>

#include <sys/wait.h>
#include <unistd.h>

// The cleaner is process-wide and hooks the process's end, so every case runs
// in a forked child; this process never creates it.
namespace {

struct ChildEnd
{
    int status = 0;
    QByteArray err;
    bool exited(int code) const { return WIFEXITED(status) && WEXITSTATUS(status) == code; }
    bool killedBy(int sig) const { return WIFSIGNALED(status) && WTERMSIG(status) == sig; }
};

ChildEnd runChild(std::function<void()> const& body)
{
    int fds[2];
    if (pipe(fds) != 0)
        return {};
    pid_t const pid = fork();
    if (pid == 0) {
        close(fds[0]);
        dup2(fds[1], 2);
        body();
        std::exit(0); // through the at-exit clean-up
    }
    close(fds[1]);
    ChildEnd end;
    char buffer[512];
    ssize_t n;
    while ((n = read(fds[0], buffer, sizeof buffer)) > 0)
        end.err.append(buffer, n);
    close(fds[0]);
    waitpid(pid, &end.status, 0);
    return end;
}

class Cleaner : public ::testing::Test
{
protected:
    QTemporaryDir dir;
    QString file(QString const& name) const { return dir.filePath(name); }
    QString makeFile(QString const& name) const
    {
        QFile(file(name)).open(QIODevice::WriteOnly);
        return file(name);
    }
    QString key() const
    {
        static int serial = 0;
        return QStringLiteral("brindle-cleaner-%1-%2").arg(getpid()).arg(++serial);
    }
    static bool segmentExists(QString const& key)
    {
        return QSharedMemory(key).attach(QSharedMemory::ReadOnly);
    }
    // Registers a file and a shared-memory segment of `key` in the child.
    static void registerBoth(QString const& path, QString const& key)
    {
        CU_TerminationCleaner::deleteAtExit(path);
        auto memory = CU_TerminationCleaner::createSharedMemory();
        memory->setKey(key);
        if (!memory->create(4096))
            _exit(90);
    }
};

TEST_F(Cleaner, NormalExitRemovesPidFileAndSegment)
{
    QString const pidFile = file("app.pid");
    QString const k = key();
    ChildEnd const end = runChild([&] {
        if (!CU_TerminationCleaner::createPidFile(pidFile))
            _exit(91);
        QFile f(pidFile);
        f.open(QIODevice::ReadOnly);
        if (f.readAll() != QByteArray::number(qint64(getpid())))
            _exit(92);
        registerBoth(makeFile("other"), k);
    });
    EXPECT_TRUE(end.exited(0)) << end.status << end.err.constData();
    EXPECT_FALSE(QFile::exists(pidFile));
    EXPECT_FALSE(QFile::exists(file("other")));
    EXPECT_FALSE(segmentExists(k));
}

// Termination signals clean and exit with 255 (SIGINT silently); a crash signal
// cleans, then kills the process as it would have.
TEST_F(Cleaner, SignalsCleanThenExit255OrDie)
{
    for (int sig : {SIGTERM, SIGINT, SIGABRT}) {
        QString const k = key();
        ChildEnd const end = runChild([&] {
            registerBoth(makeFile("a"), k);
            if (sig == SIGABRT)
                std::abort();
            raise(sig);
            _exit(93);
        });
        if (sig == SIGABRT) {
            EXPECT_TRUE(end.killedBy(SIGABRT)) << end.status;
        } else {
            EXPECT_TRUE(end.exited(255)) << sig << " " << end.status;
            EXPECT_EQ(end.err, sig == SIGTERM ? "Terminated\n" : "") << sig;
        }
        EXPECT_FALSE(QFile::exists(file("a"))) << sig;
        EXPECT_FALSE(segmentExists(k)) << sig;
    }
}

volatile sig_atomic_t g_chained = 0;

TEST_F(Cleaner, EarlierHandlersAreChainedInsteadOfExiting)
{
    ChildEnd const end = runChild([&] {
        std::signal(SIGINT, [](int sig) { g_chained = sig; });
        std::signal(SIGTERM, SIG_IGN); // chained to as doing nothing
        CU_TerminationCleaner::setup();
        CU_TerminationCleaner::deleteAtExit(makeFile("d"));
        raise(SIGINT);
        if (g_chained != SIGINT || QFile::exists(file("d")))
            _exit(94);
        CU_TerminationCleaner::deleteAtExit(makeFile("e"));
        raise(SIGTERM);
        _exit(QFile::exists(file("e")) ? 95 : 42);
    });
    EXPECT_TRUE(end.exited(42)) << end.status << end.err.constData();
    EXPECT_EQ(end.err, "");
}

TEST_F(Cleaner, SamePathTwiceWarnsOnSecondRemoval)
{
    ChildEnd const end = runChild([&] {
        QDir::setCurrent(dir.path());
        makeFile("twice");
        CU_TerminationCleaner::deleteAtExit("twice"); // made absolute
        CU_TerminationCleaner::deleteAtExit(file("twice"));
        CU_TerminationCleaner::cleanFiles();
        CU_TerminationCleaner::cleanFiles(); // the list is empty now
        if (CU_TerminationCleaner::createPidFile(file("missing/dir/x.pid")))
            _exit(96);
    });
    EXPECT_TRUE(end.exited(0)) << end.status;
    QByteArray const warning = "Error deleting " + file("twice").toUtf8();
    EXPECT_EQ(end.err.count(warning), 1) << end.err.constData();
    EXPECT_FALSE(QFile::exists(file("twice")));
}

} // namespace
