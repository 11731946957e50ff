// UT_Path, UT_PathIterator and UT_RelPath: parsing, filtering, editing and
// relative paths.
#include <BrindleBaseCore/files/UT_Path.h>
#include <BrindleBaseCore/files/UT_RelPath.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

namespace {

QString parts(UT_Path const& p)
{
    return p.GetDrive() + QLatin1Char('|') + p.GetFolder() + QLatin1Char('|') + p.GetFileName();
}

TEST(UT_Path, SplitsAndFiltersDrivesSharesAndNames)
{
    UT_Path windows(QStringLiteral("C:\\work\\a?.tga"), true);
    EXPECT_EQ(parts(windows), "C:|/work/|a_.tga");
    EXPECT_EQ(windows.GetPath(true), "C:/work/a_.tga");
    EXPECT_EQ(windows.GetPath(false), "C:/work/");

    EXPECT_EQ(parts(UT_Path("//srv/share/x.txt", true)), "//srv/share|/|x.txt");

    UT_Path driveOnly("C:", true);
    EXPECT_EQ(parts(driveOnly), "C:|/|");
    EXPECT_EQ(driveOnly.GetPath(false), "C:/");
    EXPECT_EQ(driveOnly.GetPath(true), "C:");

    // A colon after the first '/' is no drive: filtered away in the name part.
    EXPECT_EQ(parts(UT_Path("x/a:b", true)), "|x/|a_b");
    EXPECT_EQ(parts(UT_Path("/a/./b/../c//d/e.txt", true)), "|/a/c/d/|e.txt");
    EXPECT_EQ(parts(UT_Path("/../x", true)), "|/|x");
    EXPECT_EQ(UT_Path("/", true).GetPath(true), "/");
    EXPECT_TRUE(UT_Path("/", true).isRoot());
}

TEST(UT_Path, RejectedDriveKeepsThePreviousValue)
{
    UT_Path path("/keep/me.txt", true);
    EXPECT_FALSE(path.SetPath("1:/x/y.txt"));
    EXPECT_FALSE(path.SetPath(":x"));
    EXPECT_FALSE(path.SetDrive("9:"));
    EXPECT_EQ(path.GetPath(), "/keep/me.txt");
    EXPECT_TRUE(path.SetPath("Cd:/x"));
    EXPECT_EQ(path.GetDrive(), "Cd:");
}

TEST(UT_Path, UnfilteredPathsKeepWildcards)
{
    UT_Path pattern("/shots/*.t?a", false);
    EXPECT_EQ(pattern.GetFileName(), "*.t?a");
    UT_Path filtered("/shots/*.t?a", true);
    EXPECT_EQ(filtered.GetFileName(), "_.t_a");
    EXPECT_EQ(UT_Path::FilterPath("a\\b<c>:d", false), "a/b_c_:d");
    EXPECT_EQ(UT_Path::FilterPath("a\\b<c>:d", true), "a/b_c__d");
}

TEST(UT_Path, NameParts)
{
    UT_Path p("/s/scene.xstage.gz", true);
    EXPECT_EQ(p.GetExtension(), "gz");
    EXPECT_EQ(p.GetExtension(true), "xstage.gz");
    EXPECT_EQ(p.GetBaseName(), "scene.xstage");
    EXPECT_EQ(p.GetBaseName(true), "scene");
    EXPECT_EQ(p.GetFileName(false, true), "scene");
    UT_Path bare("/s/README", true);
    EXPECT_EQ(bare.GetExtension(), "");
    EXPECT_EQ(bare.GetBaseName(), "README");
}

TEST(UT_Path, Editing)
{
    UT_Path p("/a/b/c.txt", true);
    EXPECT_TRUE(p.SetExtension("tga"));
    EXPECT_EQ(p.GetPath(), "/a/b/c.tga");
    EXPECT_TRUE(p.AddExtension("gz"));
    EXPECT_EQ(p.GetFileName(), "c.tga.gz");
    EXPECT_TRUE(p.SetExtension("", true));
    EXPECT_EQ(p.GetFileName(), "c");
    EXPECT_TRUE(p.AddFolder("x/y"));
    EXPECT_EQ(p.GetPath(), "/a/b/x/y/c");
    EXPECT_TRUE(p.AddName("d.png"));
    EXPECT_EQ(p.GetPath(), "/a/b/x/y/c/d.png");
    EXPECT_TRUE(p.SetFolder(QStringLiteral("D:\\other")));
    EXPECT_EQ(p.GetPath(), "D:/other/d.png");
    EXPECT_TRUE(p.SetFileName("e"));
    EXPECT_TRUE(p.SetDrive(""));
    EXPECT_EQ(p.GetPath(), "/other/e");
    EXPECT_TRUE(p.SetFolderPath("/f/g"));
    EXPECT_TRUE(p.IsFolderPath());
    EXPECT_EQ(p.GetPath(), "/f/g");

    EXPECT_TRUE(p.Up());
    EXPECT_EQ(p.GetPath(), "/f");
    EXPECT_TRUE(p.Up());
    EXPECT_TRUE(p.isRoot());
    EXPECT_FALSE(p.Up());
}

TEST(UT_Path, RelativeAndEmpty)
{
    UT_Path rel("a/b/c.txt", true);
    EXPECT_TRUE(rel.IsRelative());
    EXPECT_EQ(rel.GetPath(), "a/b/c.txt");
    UT_Path nameOnly("c.txt", true);
    EXPECT_FALSE(nameOnly.IsRelative()); // an empty folder is not relative
    UT_Path empty(true);
    EXPECT_TRUE(empty.IsEmpty());
    EXPECT_FALSE(empty.Exists());
    EXPECT_FALSE(empty.IsFile());
    EXPECT_EQ(empty.GetFileLength(), 0u);
    EXPECT_EQ(empty.GetFileAccess("rb"), nullptr);
    EXPECT_LT(UT_Path("/a", true), UT_Path("/b", true));
    EXPECT_EQ(UT_Path("/a/./b", true), UT_Path("/a/b", true));
}

TEST(UT_PathIterator, WalksFromTheRootDown)
{
    QStringList seen;
    for (UT_PathIterator it(UT_Path("C:/a/b/c.txt", true)); !it.IsEnd(); ++it)
        seen << it->GetPath(false);
    EXPECT_EQ(seen, QStringList({"C:/", "C:/a/", "C:/a/b/"}));
    seen.clear();
    for (UT_PathIterator it = UT_Path("x/y/", true).GetFolderIterator(); !it.IsEnd(); ++it)
        seen << it->GetPath(false);
    EXPECT_EQ(seen, QStringList({"x/", "x/y/"}));
    EXPECT_TRUE(UT_PathIterator(UT_Path("name", true)).IsEnd());
}

TEST(UT_Path, FileSystemQueriesAndUniqueNames)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    UT_Path p(dir.path() + "/shot.v1.tga", true);
    EXPECT_TRUE(p.MakeUniqueFileName()); // free: unchanged
    EXPECT_EQ(p.GetFileName(), "shot.v1.tga");

    QFile(dir.path() + "/shot.v1.tga").open(QIODevice::WriteOnly);
    QFile(dir.path() + "/shot_1.v1.tga").open(QIODevice::WriteOnly);
    UT_Path taken(dir.path() + "/shot.v1.tga", true);
    EXPECT_TRUE(taken.Exists());
    EXPECT_TRUE(taken.IsFile());
    EXPECT_TRUE(taken.MakeUniqueFileName());
    EXPECT_EQ(taken.GetFileName(), "shot_2.v1.tga");

    UT_Path folder(dir.path() + "/new/deep", true);
    EXPECT_EQ(folder.CreateFolder(), 0);
    EXPECT_TRUE(folder.IsFolder());
    EXPECT_EQ(folder.Rename("renamed"), 0);
    EXPECT_EQ(folder.GetPath(), dir.path() + "/new/renamed");
    EXPECT_TRUE(folder.IsDirectory());
    EXPECT_EQ(folder.Delete(), 0);
    EXPECT_FALSE(folder.Exists());
}

TEST(UT_Path, UniqueNameGivesUpAfter999)
{
    QTemporaryDir dir;
    QFile(dir.path() + "/f.txt").open(QIODevice::WriteOnly);
    for (int n = 1; n < 1000; ++n)
        QFile(dir.path() + QStringLiteral("/f_%1.txt").arg(n)).open(QIODevice::WriteOnly);
    UT_Path p(dir.path() + "/f.txt", true);
    EXPECT_FALSE(p.MakeUniqueFileName());
    EXPECT_EQ(p.GetFileName(), "f_999.txt");
}

TEST(UT_RelPath, NormalisesOnAssignment)
{
    EXPECT_EQ(UT_RelPath("./a/b//").ToString(), "a/b");
    EXPECT_EQ(UT_RelPath(".//a").ToString(), "a");
    EXPECT_EQ(UT_RelPath("/").ToString(), "/");
    EXPECT_EQ(UT_RelPath(QStringLiteral("a\\b?*c:d")).ToString(), "a/b__c:d");
    UT_RelPath p;
    p = QStringLiteral("x/y/");
    EXPECT_EQ(p.ToString(), "x/y");
}

TEST(UT_RelPath, JoinAndExtensions)
{
    UT_RelPath p;
    p.Add("");
    EXPECT_TRUE(p.IsEmpty());
    p.Add("a");
    p += UT_RelPath("b.tga");
    EXPECT_EQ(p.ToString(), "a/b.tga");
    EXPECT_EQ((UT_RelPath("x") + UT_RelPath("")).ToString(), "x");
    p.AddSuffixBeforeExtension("_v2");
    EXPECT_EQ(p.ToString(), "a/b_v2.tga");
    p.SetExtension("png");
    EXPECT_EQ(p.ToString(), "a/b_v2.png");
    p.SetExtension("");
    EXPECT_EQ(p.ToString(), "a/b_v2");
    p.AddSuffixBeforeExtension("_x");
    EXPECT_EQ(p.ToString(), "a/b_v2_x");
    p.AddExtension("tar").AddSuffix(".gz");
    EXPECT_EQ(p.GetFilename(), "b_v2_x.tar.gz");
    EXPECT_EQ(p.GetBaseName(), "b_v2_x.tar");
    p.SetFilename("c.d");
    EXPECT_EQ(p.ToString(), "a/c.d");
    // A dot in a folder is not an extension.
    UT_RelPath dotted("v1.2/file");
    EXPECT_EQ(dotted.GetExtension(), "");
    dotted.SetExtension("txt");
    EXPECT_EQ(dotted.ToString(), "v1.2/file.txt");
    p.Up();
    EXPECT_EQ(p.ToString(), "a");
    p.Up();
    EXPECT_TRUE(p.IsEmpty());
}

TEST(UT_RelPath, CompressedExtensionsAndRelativeTest)
{
    UT_RelPath tar("x.tar.gz");
    EXPECT_TRUE(tar.isCompressed());
    EXPECT_EQ(tar.extensionWithCompressExtensionRemoved(), "tar");
    EXPECT_EQ(tar.getBasenameHandlingCompressionExtension(), "x");
    UT_RelPath upper("x.GZ");
    EXPECT_FALSE(upper.isCompressed());
    EXPECT_EQ(upper.extensionWithCompressExtensionRemoved(), "GZ");
    EXPECT_EQ(UT_RelPath("scene.gz").extensionWithCompressExtensionRemoved(), "");

    EXPECT_FALSE(UT_RelPath("c:/x").IsRelative());
    EXPECT_FALSE(UT_RelPath("/x").IsRelative());
    EXPECT_TRUE(UT_RelPath("c:").IsRelative());
    EXPECT_TRUE(UT_RelPath("x/y").IsRelative());
}

QString joined(QString const& base, QString const& relative)
{
    return QDir::cleanPath(base + QLatin1Char('/') + relative);
}

TEST(UT_RelPath, RelativePathsNameTheSamePlace)
{
    struct Case
    {
        char const* path;
        char const* base;
        char const* expected;
    } const cases[] = {
        {"/a/b/c/d.txt", "/a/b", "c/d.txt"},
        {"/a/x/y", "/a/b/c", "../../x/y"},
        {"/a/b", "/a/b", "."},
        {"/", "/a/b", "../.."},
        {"/a/b", "/", "a/b"},
        {"/a/bc", "/a/b", "../bc"},
        {"/a/./b/../c", "/a//d/", "../c"},
    };
    for (Case const& c : cases) {
        UT_RelPath r;
        r.makeRelativeToPath(UT_RelPath(c.path), UT_RelPath(c.base));
        EXPECT_EQ(r.ToString(), c.expected) << c.path << " from " << c.base;
        EXPECT_EQ(joined(c.base, r.ToString()), QDir::cleanPath(c.path));
    }
    UT_RelPath other("D:/x/y");
    other.fillRelativePath(UT_RelPath("C:/x"));
    EXPECT_EQ(other.ToString(), "D:/x/y");
    UT_RelPath sameDrive("C:/x/y");
    sameDrive.fillRelativePath(UT_RelPath("c:/x/z"));
    EXPECT_EQ(sameDrive.ToString(), "../y");

    UT_RelPath here(QDir::currentPath() + "/sub/file");
    here.fillRelativeToCurrentPath();
    EXPECT_EQ(here.ToString(), "sub/file");
    UT_RelPath fromRelative("sub/file");
    fromRelative.fillRelativePath(UT_RelPath(QDir::currentPath() + "/other"));
    EXPECT_EQ(fromRelative.ToString(), "../sub/file");
}

} // namespace
