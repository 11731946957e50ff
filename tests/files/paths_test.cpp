// UT_Path, UT_PathIterator and UT_RelPath: parsing, filtering, editing and
// relative paths.
#include <BrindleBaseCore/files/UT_Path.h>
#include <BrindleBaseCore/files/UT_RelPath.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

namespace {

TEST(UT_Path, SplitsAndFiltersDrivesSharesAndNames)
{
    struct Case
    {
        char const* input;
        bool filter;
        char const* parts; // drive|folder|name
        char const* path;
        char const* folderPath;
    } const cases[] = {
        {"C:\\work\\a?.tga", true, "C:|/work/|a_.tga", "C:/work/a_.tga", "C:/work/"},
        {"//srv/share/x.txt", true, "//srv/share|/|x.txt", "//srv/share/x.txt", "//srv/share/"},
        {"C:", true, "C:|/|", "C:", "C:/"},
        // A colon after the first '/' is no drive: filtered away in the name part.
        {"x/a:b", true, "|x/|a_b", "x/a_b", "x/"},
        {"/a/./b/../c//d/e.txt", true, "|/a/c/d/|e.txt", "/a/c/d/e.txt", "/a/c/d/"},
        {"/../x", true, "|/|x", "/x", "/"},
        {"/", true, "|/|", "/", "/"},
        {"/shots/*.t?a", false, "|/shots/|*.t?a", "/shots/*.t?a", "/shots/"},
        {"/shots/*.t?a", true, "|/shots/|_.t_a", "/shots/_.t_a", "/shots/"},
    };
    for (Case const& c : cases) {
        UT_Path p(c.input, c.filter);
        EXPECT_EQ(p.GetDrive() + "|" + p.GetFolder() + "|" + p.GetFileName(), c.parts) << c.input;
        EXPECT_EQ(p.GetPath(true), c.path) << c.input;
        EXPECT_EQ(p.GetPath(false), c.folderPath) << c.input;
    }
    EXPECT_TRUE(UT_Path("/", true).isRoot());
    EXPECT_TRUE(UT_Path("a/b/c.txt", true).IsRelative());
    EXPECT_FALSE(UT_Path("c.txt", true).IsRelative()); // an empty folder is not relative
    EXPECT_TRUE(UT_Path(true).IsEmpty());
    EXPECT_EQ(UT_Path::FilterPath("a\\b<c>:d", false), "a/b_c_:d");
    EXPECT_EQ(UT_Path::FilterPath("a\\b<c>:d", true), "a/b_c__d");
}

TEST(UT_Path, NamePartsAndEditing)
{
    UT_Path p("/s/scene.xstage.gz", true);
    EXPECT_EQ(p.GetExtension() + "|" + p.GetExtension(true), "gz|xstage.gz");
    EXPECT_EQ(p.GetBaseName() + "|" + p.GetBaseName(true), "scene.xstage|scene");
    EXPECT_EQ(p.GetFileName(false, true), "scene");
    UT_Path bare("/s/README", true);
    EXPECT_EQ(bare.GetExtension() + "|" + bare.GetBaseName(), "|README");

    p.SetPath("/a/b/c.txt");
    EXPECT_TRUE(p.SetExtension("tga") && p.AddExtension("gz"));
    EXPECT_EQ(p.GetPath(), "/a/b/c.tga.gz");
    EXPECT_TRUE(p.SetExtension("", true) && p.AddFolder("x/y"));
    EXPECT_EQ(p.GetPath(), "/a/b/x/y/c");
    EXPECT_TRUE(p.AddName("d.png"));
    EXPECT_EQ(p.GetPath(), "/a/b/x/y/c/d.png");
    EXPECT_TRUE(p.SetFolder(QStringLiteral("D:\\other")));
    EXPECT_EQ(p.GetPath(), "D:/other/d.png");
    EXPECT_TRUE(p.SetFileName("e") && p.SetDrive(""));
    EXPECT_EQ(p.GetPath(), "/other/e");
    EXPECT_TRUE(p.SetFolderPath("/f/g") && p.IsFolderPath());
    EXPECT_EQ(p.GetPath(), "/f/g");
    EXPECT_TRUE(p.Up());
    EXPECT_EQ(p.GetPath(), "/f");
    EXPECT_TRUE(p.Up() && p.isRoot());
    EXPECT_FALSE(p.Up());

    // A rejected drive keeps the previous value.
    UT_Path kept("/keep/me.txt", true);
    EXPECT_FALSE(kept.SetPath("1:/x/y.txt"));
    EXPECT_FALSE(kept.SetPath(":x"));
    EXPECT_FALSE(kept.SetDrive("9:"));
    EXPECT_EQ(kept.GetPath(), "/keep/me.txt");
    EXPECT_TRUE(kept.SetPath("Cd:/x"));
    EXPECT_EQ(kept.GetDrive(), "Cd:");
}

TEST(UT_PathIterator, WalksFromTheRootDown)
{
    QStringList seen;
    for (UT_PathIterator it(UT_Path("C:/a/b/c.txt", true)); !it.IsEnd(); ++it)
        seen << it->GetPath(false);
    for (UT_PathIterator it = UT_Path("x/y/", true).GetFolderIterator(); !it.IsEnd(); ++it)
        seen << it->GetPath(false);
    EXPECT_EQ(seen, QStringList({"C:/", "C:/a/", "C:/a/b/", "x/", "x/y/"}));
    EXPECT_TRUE(UT_PathIterator(UT_Path("name", true)).IsEnd());
}

TEST(UT_Path, FileSystemQueriesAndUniqueNames)
{
    QTemporaryDir dir;
    UT_Path p(dir.path() + "/shot.v1.tga", true);
    EXPECT_TRUE(p.MakeUniqueFileName()); // free: unchanged
    EXPECT_EQ(p.GetFileName(), "shot.v1.tga");
    QFile(dir.path() + "/shot.v1.tga").open(QIODevice::WriteOnly);
    QFile(dir.path() + "/shot_1.v1.tga").open(QIODevice::WriteOnly);
    UT_Path taken(dir.path() + "/shot.v1.tga", true); // a fresh look at the folder
    EXPECT_TRUE(taken.MakeUniqueFileName());
    EXPECT_EQ(taken.GetFileName(), "shot_2.v1.tga");

    UT_Path folder(dir.path() + "/new/deep", true);
    EXPECT_EQ(folder.CreateFolder(), 0);
    EXPECT_EQ(folder.Rename("renamed"), 0);
    EXPECT_EQ(folder.GetPath(), dir.path() + "/new/renamed");
    EXPECT_TRUE(folder.IsFolder()) << "the file specification follows the rename";

    // All of f_1 .. f_999 taken: give up, holding the last candidate.
    QFile(dir.path() + "/f.txt").open(QIODevice::WriteOnly);
    for (int n = 1; n < 1000; ++n)
        QFile(dir.path() + QStringLiteral("/f_%1.txt").arg(n)).open(QIODevice::WriteOnly);
    UT_Path full(dir.path() + "/f.txt", true);
    EXPECT_FALSE(full.MakeUniqueFileName());
    EXPECT_EQ(full.GetFileName(), "f_999.txt");
}

TEST(UT_RelPath, NormalisesOnAssignment)
{
    struct Case
    {
        QString input, expected;
    } const cases[] = {
        {"./a/b//", "a/b"}, {".//a", "a"}, {"/", "/"}, {"a\\b?*c:d", "a/b__c:d"}, {"x/y/", "x/y"},
    };
    for (Case const& c : cases) {
        UT_RelPath p;
        p = c.input;
        EXPECT_EQ(p.ToString(), c.expected) << c.input.toStdString();
        EXPECT_EQ(UT_RelPath(c.input), p) << c.input.toStdString();
    }
}

TEST(UT_RelPath, JoinExtensionsAndRelativeTest)
{
    UT_RelPath p;
    EXPECT_TRUE(p.Add("").IsEmpty());
    EXPECT_EQ((p.Add("a") += UT_RelPath("b.tga")).ToString(), "a/b.tga");
    EXPECT_EQ((UT_RelPath("x") + UT_RelPath("")).ToString(), "x");
    EXPECT_EQ(p.AddSuffixBeforeExtension("_v2").SetExtension("png").ToString(), "a/b_v2.png");
    EXPECT_EQ(p.SetExtension("").AddSuffixBeforeExtension("_x").ToString(), "a/b_v2_x");
    p.AddExtension("tar").AddSuffix(".gz");
    EXPECT_EQ(p.GetFilename() + "|" + p.GetBaseName(), "b_v2_x.tar.gz|b_v2_x.tar");
    EXPECT_EQ(p.SetFilename("c.d").ToString(), "a/c.d");
    // A dot in a folder is not an extension.
    UT_RelPath dotted("v1.2/file");
    EXPECT_EQ(dotted.GetExtension(), "");
    EXPECT_EQ(dotted.SetExtension("txt").ToString(), "v1.2/file.txt");
    EXPECT_EQ(p.Up().ToString(), "a");
    EXPECT_TRUE(p.Up().IsEmpty());

    UT_RelPath tar("x.tar.gz");
    EXPECT_TRUE(tar.isCompressed());
    EXPECT_EQ(tar.extensionWithCompressExtensionRemoved(), "tar");
    EXPECT_EQ(tar.getBasenameHandlingCompressionExtension(), "x");
    UT_RelPath upper("x.GZ");
    EXPECT_FALSE(upper.isCompressed());
    EXPECT_EQ(upper.extensionWithCompressExtensionRemoved(), "GZ");
    EXPECT_EQ(UT_RelPath("scene.gz").extensionWithCompressExtensionRemoved(), "");

    for (auto [path, relative] :
         {std::pair{"c:/x", false}, {"/x", false}, {"c:", true}, {"x/y", true}})
        EXPECT_EQ(UT_RelPath(path).IsRelative(), relative) << path;
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
        EXPECT_EQ(QDir::cleanPath(QString(c.base) + "/" + r.ToString()), QDir::cleanPath(c.path));
    }
    EXPECT_EQ(UT_RelPath("D:/x/y").fillRelativePath(UT_RelPath("C:/x")).ToString(), "D:/x/y");
    EXPECT_EQ(UT_RelPath("C:/x/y").fillRelativePath(UT_RelPath("c:/x/z")).ToString(), "../y");
    UT_RelPath here(QDir::currentPath() + "/sub/file");
    EXPECT_EQ(here.fillRelativeToCurrentPath().ToString(), "sub/file");
    UT_RelPath fromRelative("sub/file");
    fromRelative.fillRelativePath(UT_RelPath(QDir::currentPath() + "/other"));
    EXPECT_EQ(fromRelative.ToString(), "../sub/file");
}

} // namespace
