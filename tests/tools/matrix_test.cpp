// brindle matrix: input forms, singular matrices and errors.
#include "TestSupport.h"

#include <gtest/gtest.h>

using brindle_test::runProgram;
using brindle_test::toolPath;

namespace {
QStringList words(char const* text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}
} // namespace

TEST(MatrixCommand, ArgumentsAreReadRowByRow)
{
    QByteArray out, err;
    ASSERT_EQ(runProgram(toolPath(), words("matrix 1 0 0 5 0 -2 0 6 0 0 1 0 0 0 0 1"), &out, &err),
              0)
        << err.constData();
    EXPECT_TRUE(out.startsWith("matrix:\n     1.00000      0.00000      0.00000      5.00000\n"
                               "     0.00000     -2.00000      0.00000      6.00000\n"));
    EXPECT_TRUE(out.contains("inverse:\n     1.00000      0.00000      0.00000     -5.00000\n"
                             "     0.00000     -0.50000      0.00000      3.00000\n"));
    EXPECT_TRUE(out.contains("determinant: -2\n"));
    EXPECT_TRUE(out.contains("2D transform: yes (translate 5 6, rotate 0 degrees, scale 1 -2)"));
}

TEST(MatrixCommand, StandardInputAndFiles)
{
    QByteArray out, err;
    QByteArray perspective = "# projection\n1,0,0,0\n0,1,0,0\n0,0,-1.2,-2.2\n0,0,-1,0\n";
    ASSERT_EQ(runProgram(toolPath(), {"matrix"}, &out, &err, perspective), 0) << err.constData();
    EXPECT_TRUE(out.contains("determinant: -2.2\n2D transform: no\n"));
    ASSERT_EQ(runProgram(toolPath(), {"matrix", "-"}, &out, &err, perspective), 0);
    EXPECT_TRUE(out.contains("2D transform: no"));

    QString sample = QStringLiteral(BRINDLE_SOURCE_DIR "/samples/camera.txt");
    ASSERT_EQ(runProgram(toolPath(), {"matrix", sample}, &out, &err), 0) << err.constData();
    EXPECT_TRUE(out.contains("determinant: 4\n"));
    EXPECT_TRUE(out.contains("rotate 30 degrees, scale 2 2"));
}

TEST(MatrixCommand, SingularMatrix)
{
    QByteArray out, err;
    ASSERT_EQ(runProgram(toolPath(), words("matrix 1 2 3 4 2 4 6 8 0 0 1 0 0 0 0 1"), &out, &err),
              0);
    EXPECT_TRUE(out.contains("inverse: singular\ndeterminant: 0\n"));
}

TEST(MatrixCommand, BadInputNamesTheProblem)
{
    QByteArray out, err;
    EXPECT_EQ(runProgram(toolPath(), words("matrix 1 2 3"), &out, &err), 1);
    EXPECT_EQ(err, "brindle matrix: expected 16 numbers in the arguments, got 3\n");
    EXPECT_EQ(runProgram(toolPath(), words("matrix 1 2 x"), &out, &err), 1);
    EXPECT_EQ(err, "brindle matrix: not a number in the arguments: 'x'\n");
    EXPECT_EQ(runProgram(toolPath(), {"matrix", "/no/such/file"}, &out, &err), 1);
    EXPECT_EQ(err, "brindle matrix: cannot read '/no/such/file'\n");
    EXPECT_EQ(runProgram(toolPath(), {"matrix"}, &out, &err, ""), 1);
    EXPECT_EQ(err, "brindle matrix: expected 16 numbers in standard input, got 0\n");
    EXPECT_EQ(runProgram(toolPath(), {"matrix", "--bogus"}, &out, &err), 2);
    EXPECT_EQ(runProgram(toolPath(), {"matrix", "--help"}, &out, &err), 0);
    EXPECT_TRUE(out.contains("row by row"));
}
