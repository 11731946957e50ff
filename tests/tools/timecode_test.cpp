// brindle timecode: frame counts and rate parsing.
#include "Tool.h"

using namespace tools_test;

TEST(BrindleTimecode, PrintsFramesAndRejectsBadRates)
{
    EXPECT_EQ(ok({"timecode", "01:00:00.05"}).out, "86405\n");
    EXPECT_EQ(ok({"timecode", "00:00:02.03", "--fps", "25"}).out, "53\n");
    EXPECT_EQ(ok({"timecode", "00:01:00.00", "--fps", "30000/1001"}).out, "1798\n");
    EXPECT_EQ(ok({"timecode", "junk"}).out, "0\n");
    for (char const* rate : {"abc", "0", "-24", "24/0", "1/2/3", "inf"})
        expectFailures(
            {{{"timecode", "1.0", "--fps", rate}, 2, "brindle timecode: --fps: not a frame rate"}});
    expectFailures({{{"timecode"}, 2}, {{"timecode", "1", "2"}, 2}});
}
