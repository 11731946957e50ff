// PL_FileSpec, PL_FileInfo, PL_FileSpec_iterator and the temporary folders.
#include <BrindleBaseCore/app/MSG_Text.h>
#include <BrindleBaseCore/files/PL_FileSpec.h>
#include <BrindleBaseCore/files/PL_TemporaryDir.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QMap>
#include <QtCore/QSet>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include "FileContents.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

// A file specification of a path given as text.
PL_FileSpec fs(QString const& path)
{
    return PL_FileSpec(UT_String(path));
}

using files_test::readFile;
using files_test::writeFile;
using FileSpecTest = files_test::FolderTest;

TEST_F(FileSpecTest, TextOperations)
{
    PL_FileSpec spec = fs("/a/b/scene.xstage");
    EXPECT_EQ(spec.GetDisplayName().ToQString(), "scene.xstage");
    EXPECT_EQ(spec.GetName(false).ToQString(), "scene");
    EXPECT_EQ(spec.GetExtension().ToQString(), "xstage");
    EXPECT_TRUE(spec.HasExtension("XSTAGE"));
    spec.SetExtension("tga");
    spec.AddExtension("gz");
    EXPECT_EQ(spec.GetQFilePath(), "/a/b/scene.tga.gz");
    EXPECT_TRUE(spec.Up());
    EXPECT_EQ(spec.GetQFilePath(), "/a/b");
    spec.Add("c");
    EXPECT_EQ(spec.GetQFilePath(), "/a/b/c");

    UT_String relative, sub;
    EXPECT_TRUE(spec.GetRelativePath(relative, fs("/a/x")));
    EXPECT_EQ(relative.ToQString(), "../b/c");
    EXPECT_TRUE(spec.analyseSubPath(fs("/a"), sub));
    EXPECT_EQ(sub.ToQString(), "b/c");
    EXPECT_FALSE(spec.analyseSubPath(fs("/a/b/cd"), sub));
    UT_String folder, base, extension;
    EXPECT_TRUE(fs("/x/y.tar.gz").analysePath(folder, base, extension));
    EXPECT_EQ(folder.ToQString() + "|" + base.ToQString() + "|" + extension.ToQString(),
              "/x/|y.tar|gz");

    EXPECT_EQ(PL_FileSpec::fileURLToPath(QUrl("file:///tmp/%C3%A9t%C3%A9.txt")).ToQString(),
              QString::fromUtf8("/tmp/été.txt"));
    EXPECT_TRUE(PL_FileSpec::fileURLToPath(QUrl("https://host/x")).empty());
    EXPECT_TRUE(fs("//srv/share/x").IsShare());
    EXPECT_FALSE(fs("/srv/share/x").IsShare());

    PL_FileSpec restored;
    restored.IFileSpec(fs("/a/é").GetSavableID());
    EXPECT_EQ(restored.GetQFilePath(), QString::fromUtf8("/a/é"));
    PL_FileSpec joined;
    joined.IFileSpec("c/d", fs("/a/b"));
    EXPECT_EQ(joined.GetQFilePath(), "/a/b/c/d");
}

TEST_F(FileSpecTest, CacheIsFilledOnceAndResetByChanges)
{
    QString const path = at(QString::fromUtf8("日本語 ñ 🎬.bin"));
    PL_FileSpec spec = fs(path);
    EXPECT_FALSE(spec.Exists());
    FILE* f = PL_FileSpec::fopen(path, "wb");
    ASSERT_NE(f, nullptr);
    std::fputs("12345", f);
    std::fclose(f);
    EXPECT_EQ(readFile(path), "12345") << "the name is encoded as Qt encodes it";
    EXPECT_FALSE(spec.Exists()) << "the cached answer stays until reset";
    spec.ResetInfo();
    EXPECT_TRUE(spec.IsFile());
    EXPECT_EQ(spec.GetFileLength(), 5u);
    EXPECT_EQ(::close(spec.open(O_RDONLY, 0)), 0) << "opened";
    qint64 time = 0;
    EXPECT_TRUE(spec.GetFileTime(time) && time > 1600000000) << time;
    EXPECT_TRUE(spec.TestAccess(true));

    PL_FileSpec renamed = spec;
    EXPECT_EQ(renamed.Rename("g.bin"), 0);
    EXPECT_EQ(renamed.GetQFilePath(), at("g.bin"));
    EXPECT_TRUE(renamed.Exists());
    EXPECT_EQ(renamed.Delete(), 0);
    EXPECT_FALSE(renamed.Exists());
    EXPECT_EQ(renamed.Delete(), ENOENT);
}

TEST_F(FileSpecTest, KindsLinksAndHidden)
{
    PL_FileSpec folder = spec("sub/deeper");
    EXPECT_EQ(folder.CreateFolder(), 0);
    EXPECT_EQ(folder.CreateFolder(), 0) << "an existing folder is fine";
    EXPECT_TRUE(folder.IsFolder());
    write("sub/.hidden", "x");
    EXPECT_TRUE(spec("sub/.hidden").IsHidden());
    EXPECT_FALSE(folder.IsHidden());
    ASSERT_TRUE(QFile::link(at("sub"), at("link")));
    PL_FileSpec link = spec("link");
    EXPECT_TRUE(link.IsSymbolicLink());
    EXPECT_TRUE(link.IsFolder());
    // Deleting a link never deletes what it points to.
    EXPECT_EQ(link.Delete(), 0);
    EXPECT_TRUE(spec("sub/.hidden").Exists());

    QString created;
    PL_FileSpec parent = spec("sub");
    EXPECT_EQ(parent.createSubFolder("deeper", created), 0);
    EXPECT_EQ(created, at("sub/deeper_1"));
    EXPECT_EQ(parent.Delete(), 0);
    EXPECT_FALSE(QFileInfo::exists(at("sub")));
}

TEST_F(FileSpecTest, BadPathsGiveFailuresNotCrashes)
{
    QString const lone = QString(QChar(0xD800)) + "x";
    for (QString const& bad :
         {QString(), QString("a") + QChar(0) + "b", lone, "/" + QString(5000, u'n')}) {
        PL_FileSpec spec = fs(bad);
        EXPECT_FALSE(spec.Exists());
        EXPECT_EQ(spec.GetFileLength(), 0u);
        EXPECT_EQ(spec.get_fs("rb"), nullptr);
        EXPECT_LT(spec.open(O_RDONLY, 0), 0);
        EXPECT_NE(spec.Delete(), 0);
        EXPECT_NE(spec.CreateFolder(), 0);
        MSG_Text error;
        EXPECT_FALSE(spec.CopyFileW(at("t"), error));
        EXPECT_FALSE(error.isEmpty());
    }
    // Wildcards are ordinary characters here: nothing matches a pattern.
    PL_FileSpec pattern = spec("*.t?a");
    write("a.tga", "x");
    EXPECT_FALSE(pattern.Exists());
    EXPECT_EQ(pattern.get_fs("rb"), nullptr);
}

TEST_F(FileSpecTest, CopyMoveExchangeAndWhyCopiesFail)
{
    write("a", "AAA");
    write("b", "B");
    PL_FileSpec a = spec("a");
    MSG_Text error;
    EXPECT_TRUE(a.CopyFileW(at("c"), error));
    EXPECT_EQ(read("c"), "AAA");
    EXPECT_EQ(a.CloneFile(spec("b"), false), EEXIST);
    EXPECT_EQ(a.Exchange(spec("b")), 0);
    EXPECT_EQ(read("a"), "B");
    EXPECT_EQ(read("b"), "AAA");
    EXPECT_FALSE(a.HardLink(spec("c"), false));
    EXPECT_TRUE(a.HardLink(spec("c"), true));
    EXPECT_EQ(read("c"), "B");
    PL_FileSpec moving = spec("c");
    EXPECT_EQ(moving.Move(spec("d")), 0);
    EXPECT_EQ(moving.GetQFilePath(), at("d"));
    EXPECT_FALSE(QFileInfo::exists(at("c")));

    EXPECT_FALSE(spec("missing").CopyFileW(at("t"), error));
    EXPECT_TRUE(error.getText().contains("does not exist")) << error.getText().toStdString();
    write("src", "x");
    EXPECT_FALSE(spec("src").CopyFileW(at("nofolder/t"), error));
    EXPECT_TRUE(error.getText().contains("target folder does not exist"));
    EXPECT_TRUE(error.getText().contains(at("src")));
    if (::geteuid() != 0) {
        QDir().mkdir(at("ro"));
        QFile::setPermissions(at("ro"), QFile::ReadOwner | QFile::ExeOwner);
        EXPECT_FALSE(spec("src").CopyFileW(at("ro/t"), error));
        EXPECT_TRUE(error.getText().contains("permission denied"));
    }
    if (QFileInfo::exists("/dev/full")) {
        EXPECT_FALSE(spec("src").CopyFileW("/dev/full", error));
        EXPECT_TRUE(error.getText().contains("disk is full")) << error.getText().toStdString();
    }
}

TEST_F(FileSpecTest, Enumeration)
{
    PL_FileSpec empty = spec("empty");
    ASSERT_EQ(empty.CreateFolder(), 0);
    EXPECT_TRUE(empty.begin() == empty.end());
    EXPECT_TRUE(spec("none").begin() == PL_FileSpec().end());

    write("one.txt", "1");
    write(".two", "22");
    QMap<QString, PL_FileSpec> entries; // copies keep the cached information
    for (auto it = fs(dir.path()).begin(); it != PL_FileSpec_iterator(); ++it)
        entries.insert(it->GetDisplayName().ToQString(), *it);
    EXPECT_EQ(entries.keys(), QStringList({".two", "empty", "one.txt"}));
    EXPECT_TRUE(entries[".two"].IsInit()) << "entries carry their information";
    EXPECT_EQ(entries[".two"].GetFileLength(), 2u);
    EXPECT_TRUE(entries[".two"].IsHidden());
    EXPECT_TRUE(entries["empty"].IsFolder());
}

TEST(SpecialFolders, StandardLocationsTemporaryFilesAndTheSessionFolder)
{
    PL_FileSpec spec;
    EXPECT_EQ(spec.InitUserAppDataFolder(), 0);
    EXPECT_EQ(spec.InitUserDocumentsFolder(), 0);
    EXPECT_TRUE(spec.IsValid());
    PL_FileSpec before = spec;
    EXPECT_EQ(spec.WindowsPublicDocumentPath(), ENOTSUP);
    EXPECT_EQ(spec, before);
    EXPECT_EQ(fs("/x/y.lnk").resolveShortcuts(), ENOTSUP);
    EXPECT_EQ(fs("/x/y").resolveShortcuts(), 0);

    // The process temporary folders live under TMPDIR, set by main() to a
    // private folder so that parallel test runs do not empty each other's.
    PL_FileSpec first, second;
    ASSERT_EQ(first.InitTempFile(), 0);
    ASSERT_EQ(second.InitTempFile(), 0);
    QString const folder = QDir::tempPath() + "/BrindleTempFilesDir";
    EXPECT_EQ(first.GetQFilePath(), folder + "/tmpfs_1.tmp");
    EXPECT_EQ(second.GetQFilePath(), folder + "/tmpfs_2.tmp");
    EXPECT_FALSE(QFileInfo::exists(folder + "/left-over")) << "emptied at first use";
    // An existing readable file is skipped.
    writeFile(folder + "/tmpfs_3.tmp", "taken");
    first.InitTempFile();
    EXPECT_EQ(first.GetQFilePath(), folder + "/tmpfs_4.tmp");

    PL_FileSpec session;
    EXPECT_EQ(session.InitSessionTempFolder(), 0);
    EXPECT_EQ(session.GetQFilePath(), QDir::tempPath() + "/BrindleSessionTempDir");
    EXPECT_TRUE(QFileInfo::exists(session.GetQFilePath() + "/kept"))
        << "the session folder is kept";
}

TEST(TemporaryFiles, ManyThreadsGetDistinctNames)
{
    PL_TemporaryDir tmp;
    ASSERT_TRUE(tmp.isValid());
    EXPECT_EQ(tmp.generateTemporaryName("exr"), tmp.path() + "/00000.exr");
    EXPECT_EQ(tmp.generateTemporaryName("exr"), tmp.path() + "/00001.exr");
    constexpr int threads = 8, each = 500;
    std::vector<QString> names(threads * each * 2);
    std::vector<std::thread> pool;
    for (int t = 0; t < threads; ++t) {
        pool.emplace_back([&, t] {
            for (int i = (t * each) * 2; i < (t + 1) * each * 2; i += 2) {
                PL_FileSpec spec;
                spec.InitTempFile();
                names[i] = spec.GetQFilePath();
                names[i + 1] = tmp.generateTemporaryName("x");
            }
        });
    }
    for (auto& thread : pool)
        thread.join();
    EXPECT_EQ(QSet<QString>(names.begin(), names.end()).size(), threads * each * 2);

    QString const path = tmp.path();
    writeFile(path + "/f", "x");
    PL_TemporaryDir::cleanUpBrindleTempDir();
    EXPECT_FALSE(QFileInfo::exists(path));
}

} // namespace

int main(int argc, char** argv)
{
    // Private temporary root, with what an earlier run would have left.
    QTemporaryDir root;
    ::setenv("TMPDIR", QFile::encodeName(root.path()).constData(), 1);
    QDir(root.path()).mkpath("BrindleTempFilesDir");
    QDir(root.path()).mkpath("BrindleSessionTempDir");
    QFile(root.path() + "/BrindleTempFilesDir/left-over").open(QIODevice::WriteOnly);
    QFile(root.path() + "/BrindleSessionTempDir/kept").open(QIODevice::WriteOnly);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
