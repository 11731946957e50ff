// brindle matrix: input forms, singular matrices and errors.
#include "Tool.h"

using namespace tools_test;

namespace {
QStringList words(char const* text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}
} // namespace

TEST(MatrixCommand, InputFormsSingularMatricesAndBadInput)
{
    QByteArray out = ok(words("matrix 1 0 0 5 0 -2 0 6 0 0 1 0 0 0 0 1")).out;
    EXPECT_TRUE(out.startsWith("matrix:\n     1.00000      0.00000      0.00000      5.00000\n"
                               "     0.00000     -2.00000      0.00000      6.00000\n"));
    EXPECT_TRUE(out.contains("inverse:\n     1.00000      0.00000      0.00000     -5.00000\n"
                             "     0.00000     -0.50000      0.00000      3.00000\n"));
    EXPECT_TRUE(out.contains("determinant: -2\n"));
    EXPECT_TRUE(out.contains("2D transform: yes (translate 5 6, rotate 0 degrees, scale 1 -2)"));
    out = ok(words("matrix 1 2 3 4 2 4 6 8 0 0 1 0 0 0 0 1")).out;
    EXPECT_TRUE(out.contains("inverse: singular\ndeterminant: 0\n"));

    QByteArray const perspective = "# projection\n1,0,0,0\n0,1,0,0\n0,0,-1.2,-2.2\n0,0,-1,0\n";
    for (QStringList const& args : {QStringList{"matrix"}, QStringList{"matrix", "-"}})
        EXPECT_TRUE(ok(args, perspective).out.contains("determinant: -2.2\n2D transform: no\n"));
    out = ok({"matrix", BRINDLE_SOURCE_DIR "/samples/camera.txt"}).out;
    EXPECT_TRUE(out.contains("determinant: 4\n"));
    EXPECT_TRUE(out.contains("rotate 30 degrees, scale 2 2"));
    expectFailures({
        {words("matrix 1 2 3"), 1, "brindle matrix: expected 16 numbers in the arguments, got 3\n"},
        {words("matrix 1 2 x"), 1, "brindle matrix: not a number in the arguments: 'x'\n"},
        {{"matrix", "/no/such/file"}, 1, "brindle matrix: cannot read '/no/such/file'\n"},
        {{"matrix"}, 1, "brindle matrix: expected 16 numbers in standard input, got 0\n"},
        {{"matrix", "--bogus"}, 2},
    });
    EXPECT_TRUE(ok({"matrix", "--help"}).out.contains("row by row"));
}
