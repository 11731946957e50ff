// brindle run: piped streams, exit status, options and their errors.
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QTemporaryDir>

using brindle_test::runProgram;
using brindle_test::toolPath;

namespace {

int run(QStringList const& args, QByteArray* out, QByteArray* err)
{
    return runProgram(toolPath(), QStringList{QStringLiteral("run")} + args, out, err);
}

} // namespace

TEST(BrindleRun, RelaysStreamsAndExitStatus)
{
    QByteArray out, err;
    EXPECT_EQ(run({"--", "/bin/sh", "-c", "echo out; echo err >&2; exit 3"}, &out, &err), 3);
    EXPECT_EQ(out, QByteArray("out\n"));
    EXPECT_EQ(err, QByteArray("err\n"));
    EXPECT_EQ(run({"--", "/bin/sh", "-c", "kill -9 $$"}, &out, &err), 128 + 9);
    // Without --stdin the program reads end of file at once.
    EXPECT_EQ(run({"--", "cat"}, &out, &err), 0);
    EXPECT_TRUE(out.isEmpty());
}

TEST(BrindleRun, LargeOutputOnBothStreamsDoesNotDeadlock)
{
    QByteArray out, err;
    EXPECT_EQ(run({"--", "/bin/sh", "-c",
                   "head -c 3000000 /dev/zero >&2; head -c 2500000 /dev/zero; echo end >&2"},
                  &out, &err),
              0);
    EXPECT_EQ(out.size(), 2500000);
    EXPECT_EQ(err.size(), 3000004);
}

TEST(BrindleRun, FeedsStdinAndRunsInTheFolder)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    QByteArray data;
    for (int i = 0; i < 50000; ++i)
        data += QByteArray::number(i) + '\n';
    QFile file(dir.filePath(QStringLiteral("in.txt")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(data);
    file.close();

    QByteArray out, err;
    EXPECT_EQ(run({"--stdin", file.fileName(), "--", "cat"}, &out, &err), 0);
    EXPECT_EQ(out, data);
    // A program that stops reading early does not hang the tool.
    EXPECT_EQ(run({"--stdin", file.fileName(), "--", "head", "-n", "1"}, &out, &err), 0);
    EXPECT_EQ(out, QByteArray("0\n"));

    EXPECT_EQ(run({"--cwd", dir.path(), "--", "pwd"}, &out, &err), 0);
    EXPECT_EQ(out.trimmed(), QDir(dir.path()).canonicalPath().toLocal8Bit());
}

TEST(BrindleRun, DetachPrintsThePid)
{
    QByteArray out, err;
    EXPECT_EQ(run({"--detach", "--", "true"}, &out, &err), 0);
    bool ok = false;
    EXPECT_GT(out.trimmed().toInt(&ok), 0);
    EXPECT_TRUE(ok);
}

TEST(BrindleRun, BadInput)
{
    QByteArray out, err;
    EXPECT_EQ(run({}, &out, &err), 2);
    EXPECT_EQ(err, QByteArray("brindle run: no program given\n"));
    EXPECT_EQ(run({"--detach", "--stdin", "x", "--", "true"}, &out, &err), 2);
    EXPECT_EQ(run({"--", "/no/such/program"}, &out, &err), 1);
    EXPECT_EQ(err, QByteArray("brindle run: cannot start /no/such/program\n"));
    EXPECT_EQ(run({"--cwd", "/no/such/folder", "--", "true"}, &out, &err), 1);
    EXPECT_EQ(err, QByteArray("brindle run: no such folder: /no/such/folder\n"));
    EXPECT_EQ(run({"--stdin", "/no/such/file", "--", "cat"}, &out, &err), 1);
    EXPECT_TRUE(err.startsWith("brindle run: cannot read /no/such/file: "));
}
