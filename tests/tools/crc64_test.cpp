// brindle crc64: output lines, several files, unreadable files.
#include "Tool.h"

using namespace tools_test;

TEST(BrindleCrc64, PrintsOneLinePerFileAndGoesOnAfterAnUnreadableOne)
{
    QTemporaryDir dir;
    QString const check = writeFile(dir, "check.txt", "123456789");
    // Spans several read chunks: the streamed result must match one pass.
    QString const large = writeFile(dir, "large.bin", QByteArray(3 * 1024 * 1024 + 5, '\0'));
    Result r = ok({"crc64", check, large});
    EXPECT_EQ(r.out, "46a5a9388a5beffe  " + check.toUtf8() + "\n0000000000000000  " +
                         large.toUtf8() + "\n");
    EXPECT_TRUE(r.err.isEmpty()); // no progress bar when standard error is not a terminal
    EXPECT_EQ(ok({"crc64", "-"}, "a").out, "5bb0000000000000  -\n");

    QString const empty = writeFile(dir, "empty", "");
    r = brindle({"crc64", "/no/such/file", empty});
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.out, "0000000000000000  " + empty.toUtf8() + "\n");
    EXPECT_TRUE(r.err.startsWith("brindle crc64: /no/such/file: cannot open"));
    expectFailures({{{"crc64", dir.path()}, 1, "brindle crc64: "}, {{"crc64"}, 2}});
}
