// brindle backup / brindle restore
#include "Tool.h"

using namespace tools_test;
using files_test::readFile;

TEST(BrindleBackup, BackupThenRestore)
{
    QTemporaryDir dir;
    QString const file = writeFile(dir, "scene.xstage", "v1");
    EXPECT_EQ(ok({"backup", file}).out, file.toUtf8() + "~\n");
    EXPECT_EQ(readFile(file), "v1") << "the file stays in place";
    EXPECT_EQ(readFile(file + "~"), "v1");

    writeFile(dir, "scene.xstage", "v2");
    expectFailures({{{"restore", file}, 1, "exists (use --overwrite"},
                    {{"backup", dir.path() + "/missing"}, 1, "is not a file"},
                    {{"restore", dir.path() + "/missing"}, 1, "has no backup"},
                    {{"backup"}, 2},
                    {{"restore", "a", "b"}, 2}});
    EXPECT_EQ(readFile(file), "v2");
    ok({"restore", file, "--overwrite"});
    EXPECT_EQ(readFile(file), "v1");
    QFile::remove(file);
    ok({"restore", file});
    EXPECT_EQ(readFile(file), "v1");
}
