// brindle natsort: natural and tuple order of lines from a file or standard input.
#include "TestSupport.h"

#include <QtCore/QTemporaryFile>

#include <gtest/gtest.h>

using brindle_test::runProgram;
using brindle_test::toolPath;

TEST(NatsortTool, SortsStandardInputNaturally)
{
    QByteArray out, err;
    QByteArray input = "img10.png\r\nimg2.png\nIMG1.png\n\xC3\xA9t\xC3\xA9"
                       "3\nimg2.png";
    ASSERT_EQ(runProgram(toolPath(), {"natsort"}, &out, &err, input), 0) << err.constData();
    EXPECT_EQ(out, "IMG1.png\nimg2.png\nimg2.png\nimg10.png\n\xC3\xA9t\xC3\xA9"
                   "3\n");
}

TEST(NatsortTool, TupleOrderFromAFile)
{
    QTemporaryFile file;
    ASSERT_TRUE(file.open());
    file.write("shot2\nShot1.exr\nshot10.exr\nshot_2.exr\n");
    file.close();
    QByteArray out, err;
    ASSERT_EQ(runProgram(toolPath(), {"natsort", "--tuple", file.fileName()}, &out, &err), 0);
    EXPECT_EQ(out, "shot_2.exr\nshot10.exr\nShot1.exr\nshot2\n");
}

TEST(NatsortTool, ReportsAnUnreadableFile)
{
    QByteArray out, err;
    EXPECT_EQ(runProgram(toolPath(), {"natsort", "/no/such/file"}, &out, &err), 1);
    EXPECT_TRUE(err.startsWith("brindle natsort: cannot read '/no/such/file'")) << err.constData();
    EXPECT_EQ(runProgram(toolPath(), {"natsort", "a", "b"}, &out, &err), 2);
}

TEST(NatsortTool, KeepsBytesThatAreNotUtf8)
{
    QByteArray out, err;
    QByteArray input = QByteArray("b\xFF") + "2\nb\xFF" + "10\nb\xFF" + "1";
    ASSERT_EQ(runProgram(toolPath(), {"natsort"}, &out, &err, input), 0);
    EXPECT_EQ(out, QByteArray("b\xFF") + "1\nb\xFF" + "2\nb\xFF" + "10\n");
}
