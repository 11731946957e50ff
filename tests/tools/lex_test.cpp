// brindle lex: tokens with line numbers, both dialects, and bad input.
#include "Tool.h"

using namespace tools_test;

TEST(BrindleLex, PrintsTokensWithTheirLinesOrReportsBadInput)
{
    QTemporaryDir dir;
    QString const path = writeFile(dir, "scene.txt", "size=12.5, name\n\n\"two\nlines\" #x\n");
    EXPECT_EQ(ok({"lex", path}).out,
              "1\tsize\n1\t=\n1\t12.5\n1\t,\n1\tname\n3\ttwo\\nlines\n3\t#\n3\tx\n");
    EXPECT_TRUE(ok({"lex", "--raw", path}).out.startsWith("1\tsize=12.5,\n1\tname\n"));
    // Punctuation other than the comma begins a longer token in this dialect.
    EXPECT_TRUE(
        ok({"lex", "--comma", path}).out.startsWith("1\tsize\n1\t=12.5\n1\t,\n1\tname\n3\ttwo\n"));
    expectFailures({
        {{"lex"}, 2},
        {{"lex", dir.filePath("missing")}, 1, "brindle lex: cannot read"},
        {{"lex", writeFile(dir, "open.txt", "a \"never closed")}, 1, "Syntax error at line 1:"},
    });
}
