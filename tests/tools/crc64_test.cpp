// brindle crc64: output lines, several files, unreadable files.
#include "TestSupport.h"

#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

using brindle_test::runProgram;
using brindle_test::toolPath;

TEST(BrindleCrc64, PrintsOneLinePerFile)
{
    QTemporaryDir dir;
    QString const check = dir.filePath("check.txt");
    QString const large = dir.filePath("large.bin");
    QFile file(check);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("123456789");
    file.close();
    // Spans several read chunks: the streamed result must match one pass.
    QFile big(large);
    ASSERT_TRUE(big.open(QIODevice::WriteOnly));
    big.write(QByteArray(3 * 1024 * 1024 + 5, '\0'));
    big.close();

    QByteArray out, err;
    EXPECT_EQ(runProgram(toolPath(), {"crc64", check, large}, &out, &err), 0);
    EXPECT_EQ(out, "46a5a9388a5beffe  " + check.toUtf8() + "\n0000000000000000  " + large.toUtf8() +
                       "\n");
    EXPECT_TRUE(err.isEmpty()); // no progress bar when standard error is not a terminal

    EXPECT_EQ(runProgram(toolPath(), {"crc64", "-"}, &out, &err, "a"), 0);
    EXPECT_EQ(out, "5bb0000000000000  -\n");
}

TEST(BrindleCrc64, ContinuesAfterAnUnreadableFile)
{
    QTemporaryDir dir;
    QString const empty = dir.filePath("empty");
    QFile file(empty);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    QByteArray out, err;
    EXPECT_EQ(runProgram(toolPath(), {"crc64", "/no/such/file", empty}, &out, &err), 1);
    EXPECT_EQ(out, "0000000000000000  " + empty.toUtf8() + "\n");
    EXPECT_TRUE(err.startsWith("brindle crc64: /no/such/file: cannot open"));
    EXPECT_EQ(runProgram(toolPath(), {"crc64", dir.path()}, &out, &err), 1); // a folder
    EXPECT_EQ(runProgram(toolPath(), {"crc64"}, &out, &err), 2);
}
