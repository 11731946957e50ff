// brindle lex: tokens with line numbers, both dialects, and bad input.
#include "TestSupport.h"

#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

using brindle_test::runProgram;
using brindle_test::toolPath;

TEST(BrindleLex, PrintsTokensWithTheirLines)
{
    QTemporaryDir dir;
    QString const path = dir.filePath(QStringLiteral("scene.txt"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("size=12.5, name\n\n\"two\nlines\" #x\n");
    file.close();

    QByteArray out, err;
    EXPECT_EQ(runProgram(toolPath(), {"lex", path}, &out, &err), 0) << err.constData();
    EXPECT_EQ(out,
              QByteArray("1\tsize\n1\t=\n1\t12.5\n1\t,\n1\tname\n3\ttwo\\nlines\n3\t#\n3\tx\n"));

    EXPECT_EQ(runProgram(toolPath(), {"lex", "--raw", path}, &out, &err), 0);
    EXPECT_TRUE(out.startsWith("1\tsize=12.5,\n1\tname\n")) << out.constData();

    EXPECT_EQ(runProgram(toolPath(), {"lex", "--comma", path}, &out, &err), 0);
    // Punctuation other than the comma begins a longer token in this dialect.
    EXPECT_TRUE(out.startsWith("1\tsize\n1\t=12.5\n1\t,\n1\tname\n3\ttwo\n")) << out.constData();
}

TEST(BrindleLex, ReportsBadInput)
{
    QTemporaryDir dir;
    QByteArray out, err;
    EXPECT_EQ(runProgram(toolPath(), {"lex"}, &out, &err), 2);
    EXPECT_EQ(runProgram(toolPath(), {"lex", dir.filePath("missing")}, &out, &err), 1);
    EXPECT_TRUE(err.contains("brindle lex: cannot read")) << err.constData();

    QString const path = dir.filePath(QStringLiteral("open.txt"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("a \"never closed");
    file.close();
    EXPECT_EQ(runProgram(toolPath(), {"lex", path}, &out, &err), 1);
    EXPECT_TRUE(err.contains("Syntax error at line 1:")) << err.constData();
}
