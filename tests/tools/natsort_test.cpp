// brindle natsort: natural and tuple order of lines from a file or standard input.
#include "Tool.h"

using namespace tools_test;

TEST(NatsortTool, SortsNaturallyOrByTupleAndReportsAnUnreadableFile)
{
    EXPECT_EQ(ok({"natsort"}, "img10.png\r\nimg2.png\nIMG1.png\n\303\251t\303\2513\nimg2.png").out,
              "IMG1.png\nimg2.png\nimg2.png\nimg10.png\n\303\251t\303\2513\n");
    QTemporaryDir dir;
    QString const shots = writeFile(dir, "shots", "shot2\nShot1.exr\nshot10.exr\nshot_2.exr\n");
    EXPECT_EQ(ok({"natsort", "--tuple", shots}).out, "shot_2.exr\nshot10.exr\nShot1.exr\nshot2\n");
    // Bytes that are not UTF-8 are kept.
    EXPECT_EQ(ok({"natsort"}, "b\3772\nb\37710\nb\3771").out, "b\3771\nb\3772\nb\37710\n");
    expectFailures(
        {{{"natsort", "/no/such/file"}, 1, "brindle natsort: cannot read '/no/such/file'"},
         {{"natsort", "a", "b"}, 2}});
}
