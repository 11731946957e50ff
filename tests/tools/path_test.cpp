// brindle path
#include "TestSupport.h"

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

using brindle_test::runProgram;
using brindle_test::toolPath;

TEST(BrindlePath, DescribesEachPathInABlock)
{
    QTemporaryDir dir;
    QFile(dir.path() + "/shot.xstage.gz").open(QIODevice::WriteOnly);
    QByteArray out, err;
    EXPECT_EQ(runProgram(toolPath(),
                         {"path", dir.path() + "/shot.xstage.gz", "C:\\work\\a?.tga", "--rel",
                          dir.path() + "/sub"},
                         &out, &err),
              0)
        << err.constData();
    EXPECT_TRUE(out.contains("file name:  shot.xstage.gz\n"));
    EXPECT_TRUE(out.contains("base name:  shot.xstage\n"));
    EXPECT_TRUE(out.contains("extensions: xstage.gz\n"));
    EXPECT_TRUE(out.contains("compressed: gz (inner extension: xstage)\n"));
    EXPECT_TRUE(out.contains("exists:     yes (file, 0 bytes)\n"));
    EXPECT_TRUE(out.contains("relative:   ../shot.xstage.gz\n"));
    EXPECT_TRUE(
        out.contains("\n\npath:       C:/work/a_.tga\ndrive:      C:\nfolder:     /work/\n"));
    EXPECT_TRUE(out.contains("exists:     no\n"));
}

TEST(BrindlePath, BadInput)
{
    QByteArray out, err;
    EXPECT_EQ(runProgram(toolPath(), {"path", "1:/x/y.txt", "/ok"}, &out, &err), 1);
    EXPECT_TRUE(err.contains("brindle path: '1:/x/y.txt' has an invalid drive"));
    EXPECT_TRUE(out.contains("path:       /ok\n"));
    EXPECT_EQ(runProgram(toolPath(), {"path"}, &out, &err), 2);
}
