// The brindle tool's common behaviour: command list, help and usage errors.
#include "TestSupport.h"

#include <gtest/gtest.h>

using brindle_test::runProgram;
using brindle_test::toolPath;

TEST(BrindleTool, ListsCommandsAndRejectsUnknownOnes)
{
    QByteArray out, err;
    EXPECT_EQ(runProgram(toolPath(), {"--help"}, &out, &err), 0);
    EXPECT_TRUE(out.contains("usage: brindle COMMAND"));
    EXPECT_EQ(runProgram(toolPath(), {}, &out, &err), 2);
    EXPECT_EQ(runProgram(toolPath(), {"no-such-command"}, &out, &err), 2);
    EXPECT_TRUE(err.contains("unknown command 'no-such-command'"));
}
