// brindle json: layout, error offsets and file handling.
#include "Tool.h"

using namespace tools_test;

TEST(BrindleJson, RewritesInTheLibraryLayoutOrSaysWhereParsingStopped)
{
    QTemporaryDir dir;
    EXPECT_EQ(ok({"json"}, "{\"b\":[1,2.50,\"x\u00e9\"],\"a\":null}").out,
              "{ \"a\" : null, \"b\" : [ 1, 2.5, \"x\u00e9\" ] }\n");
    EXPECT_EQ(ok({"json", writeFile(dir, "in.json", "[true, -3, 1e5]")}).out,
              "[ true, -3, \"1e5\" ]\n");
    EXPECT_EQ(ok({"json"}, "\xef\xbb\xbf[1]").out, "[ 1 ]\n"); // a byte order mark is skipped

    EXPECT_TRUE(brindle({"json"}, "[@]").out.isEmpty());
    // "é" takes two bytes: the offset counts bytes, not characters. An invalid
    // byte and a byte order mark count as the bytes they are.
    expectFailures({
        {{"json"},
         1,
         "brindle json: standard input: invalid JSON (parsing stopped at byte 7)\n",
         "[\"\u00e9\", @]"},
        {{"json"}, 1, "(parsing stopped at byte 9)", "\xef\xbb\xbf[\"\xff\", @]"},
        {{"json"}, 1, "invalid JSON (parsing stopped at byte 11)", "{\"a\": [1, 2"},
        {{"json"}, 1, "no JSON form", "[1.0e999]"},
        {{"json", "/no/such/file.json"}, 1, "brindle json: /no/such/file.json: cannot open"},
        {{"json", "a", "b"}, 2},
    });
}
