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
    // Makes ROOT/<each path> and returns ROOT/<path>.
    QString make(QStringList const& paths)
    {
        for (QString const& path : paths)
            EXPECT_TRUE(QDir().mkpath(root() + "/" + path));
        return root();
    }
    QString root() const { return m_dir.path() + "/Install"; }
    QString program() const { return root() + "/win64/bin/prog"; }

    QTemporaryDir m_dir;
};

} // namespace

TEST_F(SpecialFolders, FullInstallation)
{
    make({"win64/bin/bin_3rdParty", "win64/lib", "win64/plugins", "win32/bin", "etc", "resources",
          "lang", "help", "Plugins"});
    BAPP_SpecialFoldersImpl folders(program(), true);
    QString const r = root();
    EXPECT_EQ(folders.root(), r);
    EXPECT_EQ(folders.platform(), r + "/win64");
    EXPECT_EQ(folders.bin(), r + "/win64/bin");
    EXPECT_EQ(folders.app(), r + "/win64/bin");
    EXPECT_EQ(folders.bin32(), r + "/win32/bin");
    EXPECT_EQ(folders.bin3rdParty(), r + "/win64/bin/bin_3rdParty");
    EXPECT_EQ(folders.library(), r + "/win64/lib");
    EXPECT_EQ(folders.legacyPlugins(), r + "/win64/plugins");
    EXPECT_EQ(folders.plugins(), r + "/Plugins");
    EXPECT_EQ(folders.config(), r + "/etc");
    EXPECT_EQ(folders.etc(), r + "/etc");
    EXPECT_EQ(folders.resource(), r + "/resources");
    EXPECT_EQ(folders.lang(), r + "/lang");
    EXPECT_EQ(folders.htmlHelp(), r + "/help");
    EXPECT_EQ(folders.help(), r + "/help");
    EXPECT_TRUE(folders.userConfig().isEmpty());

    // A program among the third-party ones belongs to the same installation.
    BAPP_SpecialFoldersImpl thirdParty(r + "/win64/bin/bin_3rdParty/tool", true);
    EXPECT_EQ(thirdParty.root(), r);
    EXPECT_EQ(thirdParty.bin(), r + "/win64/bin");
    // So does a folder inside it.
    BAPP_SpecialFoldersImpl fromFolder(r + "/resources", false);
    EXPECT_EQ(fromFolder.root(), r);
    EXPECT_EQ(fromFolder.bin(), r + "/win64/bin");
    EXPECT_EQ(fromFolder.bin32(), r + "/win32/bin");
}

TEST_F(SpecialFolders, MissingFoldersFallBackToTheNearestOne)
{
    make({"win64/bin", "src/Plugins"});
    BAPP_SpecialFoldersImpl folders(program(), true);
    QString const r = root();
    EXPECT_EQ(folders.lang(), r);
    EXPECT_EQ(folders.config(), r);
    EXPECT_EQ(folders.library(), r + "/win64");
    EXPECT_EQ(folders.bin32(), r);
    EXPECT_EQ(folders.legacyPlugins(), r);
    EXPECT_EQ(folders.plugins(), r + "/src/Plugins");
}

TEST_F(SpecialFolders, PluginsOfAVellumRootAreBesideIt)
{
    QString const r = m_dir.path() + "/Vellum";
    ASSERT_TRUE(QDir().mkpath(r + "/win64/bin"));
    ASSERT_TRUE(QDir().mkpath(m_dir.path() + "/Plugins"));
    BAPP_SpecialFoldersImpl folders(r + "/win64/bin/prog", true);
    EXPECT_EQ(folders.plugins(), m_dir.path() + "/Plugins");
}

TEST_F(SpecialFolders, WithoutAnInstallationOnlyTheEnvironmentCounts)
{
    make({"a/b"});
    BAPP_SpecialFoldersImpl folders(root() + "/a/b", false);
    EXPECT_TRUE(folders.root().isEmpty());
    EXPECT_TRUE(folders.lang().isEmpty());
    EXPECT_TRUE(folders.bin().isEmpty());
    EXPECT_FALSE(folders.temp().isEmpty());

    BAPP_SpecialFoldersImpl bare(QStringLiteral("prog"), true);
    EXPECT_TRUE(bare.temp().isEmpty());
    EXPECT_TRUE(bare.database().isEmpty());
}

TEST_F(SpecialFolders, TemporaryAndDatabaseFoldersComeFromTheEnvironment)
{
    make({"win64/bin"});
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

TEST_F(SpecialFolders, PublishedPropertiesInTheirOrder)
{
    BAPP_SpecialFoldersImpl folders;
    EXPECT_EQ(folders.objectName(), u"specialFolders");
    QMetaObject const* meta = folders.metaObject();
    QStringList names;
    for (int i = meta->propertyOffset(); i < meta->propertyCount(); ++i)
        names << QString::fromLatin1(meta->property(i).name());
    EXPECT_EQ(names, QStringList({"root", "config", "resource", "etc", "lang", "platform", "app",
                                  "bin", "bin32", "library", "legacyPlugins", "plugins", "temp",
                                  "userConfig", "htmlHelp", "userScripts", "userLayouts",
                                  "database", "templateLibrary"}));
}

TEST_F(SpecialFolders, TemplateLibraryIsNamedAfterTheFlavour)
{
    struct Studio : BAPP_Identity
    {
        QString flavour() const override { return QStringLiteral("Studio"); }
    };
    BAPP_SpecialFoldersImpl folders;
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
    EXPECT_EQ(shared->root(), root());
    EXPECT_EQ(BAPP_CreateSharedSpecialFoldersWithPath("/elsewhere/bin/prog", true), shared);
    EXPECT_EQ(BAPP_SharedSpecialFolders(), shared);
    EXPECT_EQ(shared->root(), root());
}
