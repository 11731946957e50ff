// brindle sign
#include "Tool.h"

using namespace tools_test;

TEST(BrindleSign, PrintsAndChecksSignaturesAndRefusesBadInput)
{
    QTemporaryDir dir;
    QString const a = writeFile(dir, "a.txt", "abc"), b = writeFile(dir, "b c.txt", "");
    Result r = ok({"sign", a, b});
    EXPECT_EQ(r.out, "900150983cd24fb0d6963f7d28e17f72  " + a.toUtf8() +
                         "\nd41d8cd98f00b204e9800998ecf8427e  " + b.toUtf8() + "\n");
    QString const list = writeFile(dir, "list.md5", r.out);
    EXPECT_EQ(ok({"sign", "--check", list}).out.count(": OK\n"), 2);
    writeFile(dir, "a.txt", "abd");
    r = brindle({"sign", "--check", list});
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(r.out.contains(a.toUtf8() + ": FAILED\n"));
    EXPECT_TRUE(r.out.contains(b.toUtf8() + ": OK\n"));
    EXPECT_TRUE(r.err.contains("brindle sign: 1 file(s) did not match"));
    EXPECT_FALSE(r.err.contains('\r')) << "no progress bar off a terminal";
    expectFailures({
        {{"sign", dir.path() + "/missing"}, 1, "cannot read"},
        {{"sign", dir.path()}, 1}, // a folder
        {{"sign", "--check", writeFile(dir, "junk", "not a signature\n")},
         1,
         "junk:1: not a signature line"},
        {{"sign"}, 2},
    });
}
