// brindle timecode: frame counts and rate parsing.
#include "TestSupport.h"

#include <gtest/gtest.h>

using brindle_test::runProgram;
using brindle_test::toolPath;

TEST(BrindleTimecode, PrintsFrames)
{
    QByteArray out, err;
    EXPECT_EQ(runProgram(toolPath(), {"timecode", "01:00:00.05"}, &out, &err), 0);
    EXPECT_EQ(out, "86405\n");
    EXPECT_EQ(runProgram(toolPath(), {"timecode", "00:00:02.03", "--fps", "25"}, &out, &err), 0);
    EXPECT_EQ(out, "53\n");
    EXPECT_EQ(
        runProgram(toolPath(), {"timecode", "00:01:00.00", "--fps", "30000/1001"}, &out, &err), 0);
    EXPECT_EQ(out, "1798\n");
    EXPECT_EQ(runProgram(toolPath(), {"timecode", "junk"}, &out, &err), 0);
    EXPECT_EQ(out, "0\n");
}

TEST(BrindleTimecode, RejectsBadRatesAndArguments)
{
    QByteArray out, err;
    for (char const* rate : {"abc", "0", "-24", "24/0", "1/2/3", "inf"}) {
        EXPECT_EQ(runProgram(toolPath(), {"timecode", "1.0", "--fps", rate}, &out, &err), 2)
            << rate;
        EXPECT_TRUE(err.startsWith("brindle timecode: --fps: not a frame rate")) << err.constData();
    }
    EXPECT_EQ(runProgram(toolPath(), {"timecode"}, &out, &err), 2);
    EXPECT_EQ(runProgram(toolPath(), {"timecode", "1", "2"}, &out, &err), 2);
}
