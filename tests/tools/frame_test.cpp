// brindle frame: formats and argument checking.
#include "Tool.h"

using namespace tools_test;

TEST(FrameTool, FormatsAndRejectsBadArguments)
{
    EXPECT_EQ(ok({"frame", "1500"}).out, "01:02:12\n");
    EXPECT_EQ(ok({"frame", "1500", "--force-hours"}).out, "00:01:02:12\n");
    EXPECT_EQ(ok({"frame", "2999", "--fps", "25"}).out, "01:59:24\n");
    EXPECT_EQ(ok({"frame", "35", "--format", "feet"}).out, "2:3\n");
    EXPECT_EQ(ok({"frame", "35", "--format", "frames"}).out, "35\n");
    expectFailures({
        {{"frame", "-3"}, 2, "invalid frame number '-3'"},
        {{"frame", "12x"}, 2, "invalid frame number '12x'"},
        {{"frame", "99999999999"}, 2, "invalid frame number"},
        {{"frame", "10", "--fps", "0"}, 2, "invalid --fps '0'"},
        {{"frame", "10", "--fps", "abc"}, 2, "invalid --fps 'abc'"},
        {{"frame", "10", "--format", "metres"}, 2, "invalid --format 'metres'"},
        {{"frame"}, 2, "brindle frame: "},
    });
}
