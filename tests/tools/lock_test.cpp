// brindle lock
#include "TestSupport.h"

#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

using brindle_test::runProgram;
using brindle_test::toolPath;

TEST(BrindleLock, RunsTheCommandUnderTheLock)
{
    QTemporaryDir dir;
    QString const lock = dir.path() + "/x.lock";
    QByteArray out, err;
    EXPECT_EQ(
        runProgram(toolPath(), {"lock", lock, "--", "sh", "-c", "echo inside; exit 7"}, &out, &err),
        7);
    EXPECT_EQ(out, "inside\n");

    // While held exclusively, a second --nowait locker is refused; shared
    // lockers admit each other.
    QString const tool = toolPath();
    QString const nested = QStringLiteral("'%1' lock --nowait '%2' -- true").arg(tool, lock);
    EXPECT_EQ(runProgram(tool, {"lock", lock, "--", "sh", "-c", nested}, &out, &err), 1);
    EXPECT_TRUE(err.contains("brindle lock: '" + lock.toUtf8() + "' is locked by another process"));
    QString const sharedNested =
        QStringLiteral("'%1' lock --shared --nowait '%2' -- true").arg(tool, lock);
    EXPECT_EQ(
        runProgram(tool, {"lock", "--shared", lock, "--", "sh", "-c", sharedNested}, &out, &err),
        0);
    EXPECT_EQ(runProgram(tool, {"lock", "--nowait", lock, "--", "true"}, &out, &err), 0)
        << "released when the holder ended";
}

TEST(BrindleLock, BadInput)
{
    QTemporaryDir dir;
    QByteArray out, err;
    EXPECT_EQ(runProgram(toolPath(), {"lock", dir.path() + "/x.lock"}, &out, &err), 2);
    EXPECT_EQ(
        runProgram(toolPath(), {"lock", dir.path() + "/none/x.lock", "--", "true"}, &out, &err), 1);
    EXPECT_TRUE(err.contains("cannot open the lock file"));
    EXPECT_EQ(runProgram(toolPath(), {"lock", dir.path() + "/x.lock", "--", "/no/such/program"},
                         &out, &err),
              1);
    EXPECT_TRUE(err.contains("cannot run '/no/such/program'"));
}
