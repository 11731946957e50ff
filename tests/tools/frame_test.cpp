// brindle frame: formats and argument checking.
#include "TestSupport.h"

#include <gtest/gtest.h>

using brindle_test::runProgram;
using brindle_test::toolPath;

namespace {
QByteArray frame(QStringList args, int expectedStatus = 0)
{
    QByteArray out, err;
    args.prepend("frame");
    EXPECT_EQ(runProgram(toolPath(), args, &out, &err), expectedStatus) << err.constData();
    return expectedStatus == 0 ? out : err;
}
} // namespace

TEST(FrameTool, Formats)
{
    EXPECT_EQ(frame({"1500"}), "01:02:12\n");
    EXPECT_EQ(frame({"1500", "--force-hours"}), "00:01:02:12\n");
    EXPECT_EQ(frame({"2999", "--fps", "25"}), "01:59:24\n");
    EXPECT_EQ(frame({"35", "--format", "feet"}), "2:3\n");
    EXPECT_EQ(frame({"35", "--format", "frames"}), "35\n");
}

TEST(FrameTool, RejectsBadArguments)
{
    EXPECT_TRUE(frame({"-3"}, 2).contains("invalid frame number '-3'"));
    EXPECT_TRUE(frame({"12x"}, 2).contains("invalid frame number '12x'"));
    EXPECT_TRUE(frame({"99999999999"}, 2).contains("invalid frame number"));
    EXPECT_TRUE(frame({"10", "--fps", "0"}, 2).contains("invalid --fps '0'"));
    EXPECT_TRUE(frame({"10", "--fps", "abc"}, 2).contains("invalid --fps 'abc'"));
    EXPECT_TRUE(frame({"10", "--format", "metres"}, 2).contains("invalid --format 'metres'"));
    EXPECT_TRUE(frame({}, 2).startsWith("brindle frame: "));
}
