// The brindle tool's common behaviour: command list, help and usage errors.
#include "Tool.h"

using namespace tools_test;

TEST(BrindleTool, ListsCommandsAndRejectsUnknownOnes)
{
    EXPECT_TRUE(ok({"--help"}).out.contains("usage: brindle COMMAND"));
    expectFailures({{{}, 2}, {{"no-such-command"}, 2, "unknown command 'no-such-command'"}});
}
