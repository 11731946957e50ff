// brindle sign
#include "TestSupport.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include "../files/FileContents.h"

using brindle_test::runProgram;
using brindle_test::toolPath;

using files_test::writeFile;

TEST(BrindleSign, PrintsAndChecksSignatures)
{
    QTemporaryDir dir;
    QString const a = dir.path() + "/a.txt", b = dir.path() + "/b c.txt";
    writeFile(a, "abc");
    writeFile(b, "");
    QByteArray out, err;
    ASSERT_EQ(runProgram(toolPath(), {"sign", a, b}, &out, &err), 0) << err.constData();
    EXPECT_EQ(out, "900150983cd24fb0d6963f7d28e17f72  " + a.toUtf8() +
                       "\nd41d8cd98f00b204e9800998ecf8427e  " + b.toUtf8() + "\n");
    QString const list = dir.path() + "/list.md5";
    writeFile(list, out);
    EXPECT_EQ(runProgram(toolPath(), {"sign", "--check", list}, &out, &err), 0);
    EXPECT_TRUE(out.contains(": OK"));
    writeFile(a, "abd");
    EXPECT_EQ(runProgram(toolPath(), {"sign", "--check", list}, &out, &err), 1);
    EXPECT_TRUE(out.contains(a.toUtf8() + ": FAILED\n"));
    EXPECT_TRUE(out.contains(b.toUtf8() + ": OK\n"));
    EXPECT_TRUE(err.contains("brindle sign: 1 file(s) did not match"));
    EXPECT_TRUE(err.isEmpty() || !err.contains('\r')) << "no progress bar off a terminal";
}

TEST(BrindleSign, BadInput)
{
    QTemporaryDir dir;
    QByteArray out, err;
    EXPECT_EQ(runProgram(toolPath(), {"sign", dir.path() + "/missing"}, &out, &err), 1);
    EXPECT_TRUE(err.contains("cannot read"));
    EXPECT_EQ(runProgram(toolPath(), {"sign", dir.path()}, &out, &err), 1) << "a folder";
    writeFile(dir.path() + "/junk", "not a signature\n");
    EXPECT_EQ(runProgram(toolPath(), {"sign", "--check", dir.path() + "/junk"}, &out, &err), 1);
    EXPECT_TRUE(err.contains("junk:1: not a signature line"));
    EXPECT_EQ(runProgram(toolPath(), {"sign"}, &out, &err), 2);
}
