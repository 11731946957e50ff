// brindle backup / brindle restore
#include "TestSupport.h"

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include "../files/FileContents.h"

using brindle_test::runProgram;
using brindle_test::toolPath;

using files_test::readFile;
using files_test::writeFile;

TEST(BrindleBackup, BackupThenRestore)
{
    QTemporaryDir dir;
    QString const file = dir.path() + "/scene.xstage";
    writeFile(file, "v1");
    QByteArray out, err;
    ASSERT_EQ(runProgram(toolPath(), {"backup", file}, &out, &err), 0) << err.constData();
    EXPECT_EQ(out, file.toUtf8() + "~\n");
    EXPECT_EQ(readFile(file), "v1") << "the file stays in place";
    EXPECT_EQ(readFile(file + "~"), "v1");

    writeFile(file, "v2");
    EXPECT_EQ(runProgram(toolPath(), {"restore", file}, &out, &err), 1);
    EXPECT_TRUE(err.contains("exists (use --overwrite"));
    EXPECT_EQ(readFile(file), "v2");
    EXPECT_EQ(runProgram(toolPath(), {"restore", file, "--overwrite"}, &out, &err), 0);
    EXPECT_EQ(readFile(file), "v1");

    QFile::remove(file);
    EXPECT_EQ(runProgram(toolPath(), {"restore", file}, &out, &err), 0);
    EXPECT_EQ(readFile(file), "v1");
}

TEST(BrindleBackup, BadInput)
{
    QTemporaryDir dir;
    QByteArray out, err;
    EXPECT_EQ(runProgram(toolPath(), {"backup", dir.path() + "/missing"}, &out, &err), 1);
    EXPECT_TRUE(err.contains("is not a file"));
    EXPECT_EQ(runProgram(toolPath(), {"restore", dir.path() + "/missing"}, &out, &err), 1);
    EXPECT_TRUE(err.contains("has no backup"));
    EXPECT_EQ(runProgram(toolPath(), {"backup"}, &out, &err), 2);
    EXPECT_EQ(runProgram(toolPath(), {"restore", "a", "b"}, &out, &err), 2);
}
