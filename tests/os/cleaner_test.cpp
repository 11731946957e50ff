#include <BrindleBaseCore/os/CU_TerminationCleaner.h>

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QSharedMemory>
#include <QtCore/QTemporaryDir>

#include <csignal>
#include <functional>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

// The cleaner is process-wide and hooks the process's end, so every case runs
// in a forked child; this process never creates it.
namespace {

class Cleaner : public ::testing::Test
{
protected:
    QTemporaryDir dir;
    int status = 0; // of the last child
    QByteArray err; // what it wrote to standard error

    // Runs `body` in a child that then exits through the at-exit clean-up.
    void runChild(std::function<void()> const& body)
    {
        QString const errFile = file("stderr");
        pid_t const pid = fork();
        if (pid == 0) {
            dup2(open(QFile::encodeName(errFile).constData(), O_WRONLY | O_CREAT, 0600), 2);
            body();
            std::exit(0);
        }
        waitpid(pid, &status, 0);
        QFile f(errFile);
        err = f.open(QIODevice::ReadOnly) ? f.readAll() : "<no stderr>";
        f.remove();
    }
    bool exited(int code) const { return WIFEXITED(status) && WEXITSTATUS(status) == code; }
    QString file(QString const& name) const { return dir.filePath(name); }
    QString makeFile(QString const& name) const
    {
        QFile(file(name)).open(QIODevice::WriteOnly);
        return file(name);
    }
};

// A normal exit, the termination signals (exit 255, SIGINT silently) and a crash
// signal (the process then dies of it as it would have) all clean up.
TEST_F(Cleaner, EveryEndRemovesPidFileFileAndSegment)
{
    for (int sig : {0, SIGTERM, SIGINT, SIGABRT}) {
        QString const pidFile = file("app.pid");
        QString const key = QStringLiteral("brindle-cleaner-%1-%2").arg(getpid()).arg(sig);
        runChild([&] {
            QFile pid(pidFile);
            if (!CU_TerminationCleaner::createPidFile(pidFile) || !pid.open(QIODevice::ReadOnly) ||
                pid.readAll() != QByteArray::number(qint64(getpid())))
                _exit(91);
            CU_TerminationCleaner::deleteAtExit(makeFile("other"));
            auto memory = CU_TerminationCleaner::createSharedMemory();
            memory->setKey(key);
            if (!memory->create(4096))
                _exit(90);
            if (sig == SIGABRT)
                std::abort();
            if (sig != 0 && raise(sig) == 0)
                _exit(93);
        });
        if (sig == SIGABRT)
            EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT) << status;
        else
            EXPECT_TRUE(exited(sig ? 255 : 0)) << sig << " " << status << err.constData();
        EXPECT_EQ(err, sig == SIGTERM ? "Terminated\n" : "") << sig;
        EXPECT_FALSE(QFile::exists(pidFile)) << sig;
        EXPECT_FALSE(QFile::exists(file("other"))) << sig;
        EXPECT_FALSE(QSharedMemory(key).attach(QSharedMemory::ReadOnly)) << sig;
    }
}

volatile sig_atomic_t g_chained = 0;

TEST_F(Cleaner, EarlierHandlersAreChainedInsteadOfExiting)
{
    runChild([&] {
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
    EXPECT_TRUE(exited(42)) << status << err.constData();
    EXPECT_EQ(err, "");
}

TEST_F(Cleaner, SamePathTwiceWarnsOnSecondRemoval)
{
    runChild([&] {
        QDir::setCurrent(dir.path());
        makeFile("twice");
        CU_TerminationCleaner::deleteAtExit("twice"); // made absolute
        CU_TerminationCleaner::deleteAtExit(file("twice"));
        CU_TerminationCleaner::cleanFiles();
        CU_TerminationCleaner::cleanFiles(); // the list is empty now
        if (CU_TerminationCleaner::createPidFile(file("missing/dir/x.pid")))
            _exit(96);
    });
    EXPECT_TRUE(exited(0)) << status;
    QByteArray const warning = "Error deleting " + file("twice").toUtf8();
    EXPECT_EQ(err.count(warning), 1) << err.constData();
    EXPECT_FALSE(QFile::exists(file("twice")));
}

} // namespace
