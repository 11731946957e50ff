// brindle run: piped streams, exit status, options and their errors.
#include "Tool.h"

#include <QtCore/QDir>

using namespace tools_test;

TEST(BrindleRun, RelaysStreamsAndExitStatus)
{
    Result r = brindle({"run", "--", "/bin/sh", "-c", "echo out; echo err >&2; exit 3"});
    EXPECT_EQ(r.status, 3);
    EXPECT_EQ(r.out, "out\n");
    EXPECT_EQ(r.err, "err\n");
    EXPECT_EQ(brindle({"run", "--", "/bin/sh", "-c", "kill -9 $$"}).status, 128 + 9);
    // Without --stdin the program reads end of file at once.
    EXPECT_TRUE(ok({"run", "--", "cat"}).out.isEmpty());
    // Large output on both streams does not deadlock.
    r = ok({"run", "--", "/bin/sh", "-c",
            "head -c 3000000 /dev/zero >&2; head -c 2500000 /dev/zero; echo end >&2"});
    EXPECT_EQ(r.out.size(), 2500000);
    EXPECT_EQ(r.err.size(), 3000004);
}

TEST(BrindleRun, FeedsStdinRunsInTheFolderDetachesAndRefusesBadOptions)
{
    QTemporaryDir dir;
    QByteArray const data = "0\n" + QByteArray(400000, 'x') + '\n'; // more than a pipe holds
    QString const input = writeFile(dir, "in.txt", data);
    EXPECT_EQ(ok({"run", "--stdin", input, "--", "cat"}).out, data);
    // A program that stops reading early does not hang the tool.
    EXPECT_EQ(ok({"run", "--stdin", input, "--", "head", "-n", "1"}).out, "0\n");
    EXPECT_EQ(ok({"run", "--cwd", dir.path(), "--", "pwd"}).out.trimmed(),
              QDir(dir.path()).canonicalPath().toLocal8Bit());
    bool pid = false;
    EXPECT_GT(ok({"run", "--detach", "--", "true"}).out.trimmed().toInt(&pid), 0);
    EXPECT_TRUE(pid);
    expectFailures({
        {{"run"}, 2, "brindle run: no program given\n"},
        {{"run", "--detach", "--stdin", "x", "--", "true"}, 2},
        {{"run", "--", "/no/such/program"}, 1, "brindle run: cannot start /no/such/program\n"},
        {{"run", "--cwd", "/no/such/folder", "--", "true"},
         1,
         "brindle run: no such folder: /no/such/folder\n"},
        {{"run", "--stdin", "/no/such/file", "--", "cat"},
         1,
         "brindle run: cannot read /no/such/file: "},
    });
}
