// brindle json: layout, error offsets and file handling.
#include "TestSupport.h"

#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

using brindle_test::runProgram;
using brindle_test::toolPath;

TEST(BrindleJson, RewritesInTheLibraryLayout)
{
    QByteArray out, err;
    EXPECT_EQ(
        runProgram(toolPath(), {"json"}, &out, &err, "{\"b\":[1,2.50,\"x\u00e9\"],\"a\":null}"), 0);
    EXPECT_EQ(out, "{ \"a\" : null, \"b\" : [ 1, 2.5, \"x\u00e9\" ] }\n");

    QTemporaryDir dir;
    QString const path = dir.filePath("in.json");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[true, -3, 1e5]");
    file.close();
    EXPECT_EQ(runProgram(toolPath(), {"json", path}, &out, &err), 0);
    EXPECT_EQ(out, "[ true, -3, \"1e5\" ]\n");
}

TEST(BrindleJson, ReportsWhereParsingStopped)
{
    QByteArray out, err;
    // "é" takes two bytes: the offset counts bytes, not characters.
    EXPECT_EQ(runProgram(toolPath(), {"json"}, &out, &err, "[\"\u00e9\", @]"), 1);
    EXPECT_TRUE(out.isEmpty());
    EXPECT_EQ(err, "brindle json: standard input: invalid JSON (parsing stopped at byte 7)\n");

    // An invalid byte and a byte order mark count as the bytes they are.
    EXPECT_EQ(runProgram(toolPath(), {"json"}, &out, &err, "\xef\xbb\xbf[\"\xff\", @]"), 1);
    EXPECT_TRUE(err.contains("(parsing stopped at byte 9)")) << err.constData();
    EXPECT_EQ(runProgram(toolPath(), {"json"}, &out, &err, "\xef\xbb\xbf[1]"), 0);
    EXPECT_EQ(out, "[ 1 ]\n");

    EXPECT_EQ(runProgram(toolPath(), {"json"}, &out, &err, "{\"a\": [1, 2"), 1);
    EXPECT_TRUE(err.contains("invalid JSON (parsing stopped at byte 11)"));
    EXPECT_EQ(runProgram(toolPath(), {"json"}, &out, &err, "[1.0e999]"), 1);
    EXPECT_TRUE(err.contains("no JSON form"));
    EXPECT_EQ(runProgram(toolPath(), {"json", "/no/such/file.json"}, &out, &err), 1);
    EXPECT_TRUE(err.startsWith("brindle json: /no/such/file.json: cannot open"));
    EXPECT_EQ(runProgram(toolPath(), {"json", "a", "b"}, &out, &err), 2);
}
