// The installation's folders, computed from a program's path or a folder.
#include <BrindleBaseCore/app/BAPP_Services.h>
#include <BrindleBaseCore/app/BAPP_SpecialFolders.h>

#include "TestSupport.h"

#include <QtCore/QDir>
#include <QtCore/QMetaProperty>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class SpecialFolders : public ::testing::Test
{
protected:
    // Makes ROOT/<each path>.
    void make(QStringList const& paths)
    {
        for (QString const& path : paths)
            EXPECT_TRUE(QDir().mkpath(root() + "/" + path));
    }
    QString root() const { return m_dir.path() + "/Install"; }
    QString program() const { return root() + "/win64/bin/prog"; }

    // The installation's folders as "name=path relative to ROOT" ("." for ROOT, "" when unset).
    std::string layout(BAPP_SpecialFolders const& f) const
    {
        std::pair<char const*, QString> const folders[] = {
            {"root", f.root()},       {"platform", f.platform()},
            {"bin", f.bin()},         {"app", f.app()},
            {"bin32", f.bin32()},     {"bin3rd", f.bin3rdParty()},
            {"library", f.library()}, {"legacy", f.legacyPlugins()},
            {"plugins", f.plugins()}, {"config", f.config()},
            {"etc", f.etc()},         {"resource", f.resource()},
            {"lang", f.lang()},       {"htmlHelp", f.htmlHelp()},
            {"help", f.help()}};
        std::string out;
        for (auto const& [name, path] : folders)
            out += std::string(out.empty() ? "" : " ") + name + "=" +
                   (path.isEmpty() ? "" : QDir(root()).relativeFilePath(path).toStdString());
        return out;
    }

    QTemporaryDir m_dir;
};

} // namespace

TEST_F(SpecialFolders, FullInstallationFromAProgramOrAFolderInIt)
{
    make({"win64/bin/bin_3rdParty", "win64/lib", "win64/plugins", "win32/bin", "etc", "resources",
          "lang", "help", "Plugins"});
    std::string const expected =
        "root=. platform=win64 bin=win64/bin app=win64/bin bin32=win32/bin "
        "bin3rd=win64/bin/bin_3rdParty library=win64/lib legacy=win64/plugins plugins=Plugins "
        "config=etc etc=etc resource=resources lang=lang htmlHelp=help help=help";
    EXPECT_EQ(layout(BAPP_SpecialFoldersImpl(program(), true)), expected);
    // A program among the third-party ones, or a folder inside, is of the same installation.
    EXPECT_EQ(layout(BAPP_SpecialFoldersImpl(root() + "/win64/bin/bin_3rdParty/tool", true)),
              expected);
    EXPECT_EQ(layout(BAPP_SpecialFoldersImpl(root() + "/resources", false)), expected);
}

TEST_F(SpecialFolders, MissingFoldersFallBackToTheNearestOne)
{
    make({"win64/bin", "src/Plugins", "../Vellum/win64/bin", "../Plugins"});
    EXPECT_EQ(layout(BAPP_SpecialFoldersImpl(program(), true)),
              "root=. platform=win64 bin=win64/bin app=win64/bin bin32=. bin3rd=win64/bin "
              "library=win64 legacy=. plugins=src/Plugins config=. etc=. resource=. lang=. "
              "htmlHelp=. help=.");
    // The plug-ins of an installation called Vellum are beside it.
    EXPECT_EQ(BAPP_SpecialFoldersImpl(m_dir.path() + "/Vellum/win64/bin/prog", true).plugins(),
              m_dir.path() + "/Plugins");
}

TEST_F(SpecialFolders, WithoutAnInstallationOnlyTheEnvironmentCounts)
{
    make({"a/b"});
    EXPECT_EQ(layout(BAPP_SpecialFoldersImpl(root() + "/a/b", false)),
              "root= platform= bin= app= bin32= bin3rd= library= legacy= plugins= config= etc= "
              "resource= lang= htmlHelp= help=");

    // The temporary and database folders (program() is in no installation here).
    qputenv("TEMP", "/t1");
    qputenv("TMP", "/t2");
    qputenv("ZEKDB", "/data/zek");
    EXPECT_EQ(BAPP_SpecialFoldersImpl(program(), true).temp(), u"/t1");
    EXPECT_EQ(BAPP_SpecialFoldersImpl(program(), true).database(), u"/data/zek");
    qunsetenv("TEMP");
    EXPECT_EQ(BAPP_SpecialFoldersImpl(program(), true).temp(), u"/t2");
    qunsetenv("TMP");
    EXPECT_EQ(BAPP_SpecialFoldersImpl(program(), true).temp(), u"/tmp");
    // Without ZEKDB the default is exported so that child processes share it.
    qunsetenv("ZEKDB");
    EXPECT_EQ(BAPP_SpecialFoldersImpl(program(), true).database(), u"/ZEK_DB");
    QByteArray out;
    EXPECT_EQ(brindle_test::runProgram("/bin/sh", {"-c", "printf %s \"$ZEKDB\""}, &out), 0);
    EXPECT_EQ(out, "/ZEK_DB");

    // A program path without any '/' computes nothing at all.
    BAPP_SpecialFoldersImpl bare(QStringLiteral("prog"), true);
    EXPECT_TRUE(bare.temp().isEmpty() && bare.database().isEmpty());
}

TEST_F(SpecialFolders, WritableFoldersAndUserConfigPaths)
{
    BAPP_SpecialFoldersImpl folders;
    EXPECT_TRUE(folders.userConfigPath("x.ini").isEmpty());
    folders.setUserConfig("/home/u/cfg");
    EXPECT_EQ(folders.userConfigPath("x.ini"), u"/home/u/cfg/x.ini");
    EXPECT_EQ(folders.userConfigPath(QString()), u"/home/u/cfg");
    folders.setUserConfig("/home/u/cfg/");
    EXPECT_EQ(folders.userConfigPath("x.ini"), u"/home/u/cfg/x.ini");

    BAPP_SetPathRemapper(
        [](QString const& path) { return QString(path).replace("//srv", "/mnt"); });
    folders.setDatabase("//srv/db");
    folders.setUserScripts("//srv/scripts");
    BAPP_SetPathRemapper(nullptr);
    EXPECT_EQ(folders.database(), u"/mnt/db");
    EXPECT_EQ(folders.userScripts(), u"//srv/scripts");

    // The same values through the published properties.
    EXPECT_TRUE(folders.setProperty("lang", QStringLiteral("/l")));
    EXPECT_EQ(folders.lang(), u"/l");
    EXPECT_EQ(folders.property("database").toString(), u"/mnt/db");
}

TEST_F(SpecialFolders, PublishedPropertiesInTheirOrderAndTheFlavouredTemplateLibrary)
{
    BAPP_SpecialFoldersImpl folders;
    EXPECT_EQ(folders.objectName(), u"specialFolders");
    QMetaObject const* meta = folders.metaObject();
    std::string names;
    for (int i = meta->propertyOffset(); i < meta->propertyCount(); ++i)
        names += meta->property(i).name() + std::string(" ");
    EXPECT_EQ(names, "root config resource etc lang platform app bin bin32 library legacyPlugins "
                     "plugins temp userConfig htmlHelp userScripts userLayouts database "
                     "templateLibrary ");

    // The template library is named after the flavour of the identity at the time it is read.
    struct Studio : BAPP_Identity
    {
        QString flavour() const override { return QStringLiteral("Studio"); }
    };
    EXPECT_TRUE(folders.templateLibrary().endsWith(u"/Brindle  Library"));
    BAPP_Identity::setInstance(new Studio);
    EXPECT_TRUE(
        folders.property("templateLibrary").toString().endsWith(u"/Brindle Studio Library"));
    BAPP_Identity::setInstance(nullptr);
}

TEST_F(SpecialFolders, TheSharedFoldersAreMadeOnce)
{
    make({"win64/bin"});
    BAPP_SpecialFolders* shared = BAPP_CreateSharedSpecialFoldersWithPath(program(), true);
    EXPECT_EQ(BAPP_CreateSharedSpecialFoldersWithPath("/elsewhere/bin/prog", true), shared);
    EXPECT_EQ(BAPP_SharedSpecialFolders(), shared);
    EXPECT_EQ(shared->root(), root());
}
