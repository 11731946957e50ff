// brindle path
#include "Tool.h"

using namespace tools_test;

TEST(BrindlePath, DescribesEachPathInABlockAndGoesOnAfterABadOne)
{
    QTemporaryDir dir;
    QString const file = writeFile(dir, "shot.xstage.gz", "");
    Result const r = ok({"path", file, "C:\\work\\a?.tga", "--rel", dir.path() + "/sub"});
    for (char const* line :
         {"file name:  shot.xstage.gz\n", "base name:  shot.xstage\n", "extensions: xstage.gz\n",
          "compressed: gz (inner extension: xstage)\n", "exists:     yes (file, 0 bytes)\n",
          "relative:   ../shot.xstage.gz\n",
          "\n\npath:       C:/work/a_.tga\ndrive:      C:\nfolder:     /work/\n",
          "exists:     no\n"})
        EXPECT_TRUE(r.out.contains(line)) << line;

    Result const bad = brindle({"path", "1:/x/y.txt", "/ok"});
    EXPECT_EQ(bad.status, 1);
    EXPECT_TRUE(bad.err.contains("brindle path: '1:/x/y.txt' has an invalid drive"));
    EXPECT_TRUE(bad.out.contains("path:       /ok\n")) << "the other paths are still described";
    expectFailures({{{"path"}, 2}});
}
