#include <BrindleBaseCore/app/TUMessage.h>
#include <BrindleBaseCore/os/OSW_Execute.h>

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QTemporaryDir>

#include <cerrno>
#include <sys/wait.h>
#include <unistd.h>

namespace {

QString const Sh = QStringLiteral("/bin/sh");
QString const C = QStringLiteral("-c");

int openDescriptors()
{
    return int(QDir(QStringLiteral("/proc/self/fd")).count());
}

// True when this process has no child left, running or zombie.
bool noChildLeft()
{
    errno = 0;
    return ::waitpid(-1, nullptr, WNOHANG) < 0 && errno == ECHILD;
}

} // namespace

TEST(OSW_Execute, EmptyWordListThrowsWithCodeZero)
{
    OSW_Execute exec;
    try {
        exec.execm(QStringList{});
        ADD_FAILURE() << "no exception";
    } catch (OSW_ExecuteException const& e) {
        EXPECT_TRUE(e.errorCode() == 0 && !e.isSignal() && !e.isStopped());
        EXPECT_EQ(MSG_Text(e).getText(), QStringLiteral("OSW_Execute: no application to execute"));
    }
    EXPECT_EQ(exec.pid(), 0u);
}

// The command line quotes the words with blanks (nothing else is escaped) and
// the child gets the words it stands for: the original ones without the empty
// ones. It runs in the given folder and has only the standard descriptors,
// whatever handles were named.
TEST(OSW_Execute, ChildGetsTheWordsOfItsCommandLineFolderAndStandardDescriptorsOnly)
{
    QString const script = QStringLiteral("pwd; printf '%s|' \"$@\"; ls /proc/$$/fd");
    QStringList const words = QStringList{Sh, C, script, QStringLiteral("sh")} +
                              QStringList{QStringLiteral("a b"), QString(), QStringLiteral("x\ty"),
                                          QStringLiteral("q\"u\\"), QStringLiteral(" lead")};
    EXPECT_EQ(OSW_Execute::commandLine(words),
              QStringLiteral("/bin/sh -c \"pwd; printf '%s|' \"$@\"; ls /proc/$$/fd\" sh \"a b\"  "
                             "x\ty q\"u\\ \" lead\" "));
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    int const extra = ::dup(1); // not close-on-exec
    ASSERT_GT(extra, 2);
    OSW_Execute exec;
    exec.addInheritedHandle(extra); // recorded, not consulted
    exec.setWorkingDirectory(dir.path());
    exec.enableStdioPipes(true);
    EXPECT_EQ(exec.execm(words), 0);
    ::close(extra);
    QByteArray out;
    exec.readFromStdout(out);
    EXPECT_EQ(out, QDir(dir.path()).canonicalPath().toLocal8Bit() +
                       QByteArray("\na b|x\ty|q\"u\\| lead|0\n1\n2\n"));
}

TEST(OSW_Execute, ExitStatusesAndDetachedChildren)
{
    OSW_Execute exec;
    EXPECT_EQ(exec.execm(Sh, C, QStringLiteral("exit 7")), 7);
    EXPECT_EQ(exec.waitForProcEnd(), 7);
    EXPECT_EQ(exec.execm(Sh, C, QStringLiteral("kill -TERM $$")), 128 + 15);

    exec.setDetached(true);
    EXPECT_EQ(exec.execm(Sh, C, QStringLiteral("sleep 0.2; exit 5")), 0);
    EXPECT_NE(exec.pid(), 0u);
    EXPECT_TRUE(exec.isRunning());
    EXPECT_EQ(exec.waitForProcEnd(), 5);
    EXPECT_EQ(exec.waitForProcEnd(), 5);
    EXPECT_FALSE(exec.isRunning());

    ASSERT_EQ(exec.execm(Sh, C, QStringLiteral("exit 3")), 0);
    for (int i = 0; i < 400 && exec.isRunning(); ++i)
        ::usleep(5000);
    EXPECT_FALSE(exec.isRunning()); // ended, not yet waited for
    EXPECT_EQ(exec.waitForProcEnd(), 3);

    EXPECT_EQ(exec.execm(QStringLiteral("sleep"), QStringLiteral("30")), 0);
    exec.kill();
    EXPECT_EQ(exec.waitForProcEnd(), 0); // terminated with status 0
    exec.setDetached(false);
    EXPECT_EQ(exec.execm(Sh, C, QStringLiteral("kill -KILL $$")), 128 + 9); // not by kill()
    EXPECT_TRUE(noChildLeft());
}

// Failed starts and many short children, reused or not, detached or not, leave
// no child and no descriptor behind.
TEST(OSW_Execute, NothingLeftBehind)
{
    int const before = openDescriptors();
    for (bool pipes : {false, true}) {
        OSW_Execute exec;
        exec.enableStdioPipes(pipes);
        QElapsedTimer timer;
        timer.start();
        EXPECT_EQ(exec.execm(QStringLiteral("/no/such/program"), QStringLiteral("x")), -1);
        EXPECT_EQ(exec.execm(QStringLiteral("no-such-program-in-path"), QString()), -1);
        EXPECT_EQ(exec.execm(QStringList{QString()}), -1);
        exec.setWorkingDirectory(QStringLiteral("/no/such/folder"));
        EXPECT_EQ(exec.execm(QStringLiteral("true"), QString()), -1);
        EXPECT_LT(timer.elapsed(), 2000);
        EXPECT_EQ(exec.pid(), 0u);
        EXPECT_EQ(exec.waitForProcEnd(), 0);
        EXPECT_FALSE(exec.isRunning());
        exec.kill(); // no child: signals nobody
    }
    {
        OSW_Execute reused;
        reused.enableStdioPipes(true);
        for (int i = 0; i < 50; ++i) {
            OSW_Execute fresh;
            fresh.setDetached(i % 2);
            ASSERT_EQ(reused.execm(QStringLiteral("true"), QString()), 0);
            ASSERT_EQ(fresh.execm(Sh, C, QStringLiteral("exit 1")), i % 2 ? 0 : 1);
            ASSERT_EQ(fresh.waitForProcEnd(), 1);
        }
        EXPECT_TRUE(noChildLeft()); // while `reused` still lives
    }
    EXPECT_EQ(openDescriptors(), before);
}

// The waiting caller reads nothing: each pipe holds all the child wrote.
TEST(OSW_Execute, ReadsBothStreamsAfterTheChildEnded)
{
    OSW_Execute exec;
    exec.enableStdioPipes(true);
    ASSERT_EQ(exec.execm(Sh, C, QStringLiteral("head -c 1000000 /dev/zero; printf oops >&2")), 0);
    QByteArray out("xy");
    EXPECT_EQ(exec.readFromStdout(out), 1000002u);
    EXPECT_EQ(out.count('\0'), 1000000);
    char buffer[16];
    EXPECT_EQ(exec.readFromStderr(0, buffer), 0u);
    EXPECT_EQ(exec.readFromStderr(sizeof buffer, buffer), 4u);
    EXPECT_EQ(QByteArray(buffer, 4), QByteArray("oops"));
    EXPECT_EQ(exec.readFromStderr(sizeof buffer, buffer), 0u); // end of stream
}

// Assignment shares the record: settings and the child made through a copy are
// the original's, and the copy's end closes nothing.
TEST(OSW_Execute, WritesToStdinOfASharedChildAndSurvivesAGoneOne)
{
    OSW_Execute exec;
    {
        OSW_Execute copy;
        copy = exec;
        copy.setDetached(true);
        copy.enableStdioPipes(true);
        ASSERT_EQ(copy.execm(QStringLiteral("cat"), QString()), 0);
    }
    QByteArray data(5000, 'z');
    data[4999] = 'e';
    EXPECT_EQ(exec.writeToStdin(data), 5000u);
    EXPECT_EQ(exec.writeToStdin(0, data.constData()), 0u);
    exec.closeStdin();
    QByteArray out;
    exec.readFromStdout(out);
    EXPECT_EQ(out, data);
    EXPECT_EQ(exec.waitForProcEnd(), 0);

    // The reader is gone: the write fails instead of killing this process.
    ASSERT_EQ(exec.execm(QStringLiteral("true"), QString()), 0);
    EXPECT_EQ(exec.waitForProcEnd(), 0);
    EXPECT_EQ(exec.writeToStdin(data), 0u);
}

TEST(OSW_Execute, StreamsWithoutPipesReportAndReturnZero)
{
    OSW_Execute exec;
    ASSERT_EQ(exec.execm(QStringLiteral("true"), QString()), 0);
    TUMessage::instance().setDebugMode(true);
    testing::internal::CaptureStderr();
    QByteArray out;
    char buffer[8];
    EXPECT_EQ(exec.readFromStdout(out), 0u);
    EXPECT_EQ(exec.readFromStderr(sizeof buffer, buffer), 0u);
    EXPECT_EQ(exec.writeToStdin(QByteArray("abc")), 0u);
    std::string const err = testing::internal::GetCapturedStderr();
    TUMessage::instance().setDebugMode(false);
    std::string const line = "Stdio communication has not been enabled for process\n";
    EXPECT_EQ(err, line + line + line);
}
