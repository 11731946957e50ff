// brindle info, and the start-up options that every subcommand accepts.
#include "TestSupport.h"

#include <gtest/gtest.h>

using brindle_test::runProgram;
using brindle_test::toolPath;

namespace {

QStringList infoLines(QStringList const& args, QByteArray const& locale = "C")
{
    qputenv("LC_ALL", locale);
    QByteArray out, err;
    EXPECT_EQ(runProgram(toolPath(), QStringList{"info"} + args, &out, &err), 0) << err.constData();
    qunsetenv("LC_ALL");
    return QString::fromUtf8(out).split('\n', Qt::SkipEmptyParts);
}

QString valueOf(QStringList const& lines, QString const& key)
{
    for (QString const& line : lines) {
        if (line.startsWith(key + ": "))
            return line.mid(key.size() + 2);
    }
    return QStringLiteral("<missing>");
}

} // namespace

TEST(InfoCommand, ListsTheFoldersInPropertyOrder)
{
    QStringList const lines = infoLines({"-nologo"});
    QStringList keys;
    for (QString const& line : lines) {
        if (line.startsWith("folder "))
            keys << line.mid(7).section(':', 0, 0);
    }
    EXPECT_EQ(keys, QStringList({"root", "config", "resource", "etc", "lang", "platform", "app",
                                 "bin", "bin32", "library", "legacyPlugins", "plugins", "temp",
                                 "userConfig", "htmlHelp", "userScripts", "userLayouts", "database",
                                 "templateLibrary"}));
    EXPECT_TRUE(valueOf(lines, "folder lang").endsWith("/share/brindlebasecore/lang"));
    EXPECT_EQ(valueOf(lines, "language"), "(default)");
}

TEST(InfoCommand, PreferencesFollowTheUsersLocale)
{
    EXPECT_EQ(valueOf(infoLines({}, "en_US.UTF-8"), "preferences"), "en_US en");
    EXPECT_EQ(valueOf(infoLines({}, "fr_CA.UTF-8"), "preferences"), "fr_CA fr en");
    EXPECT_EQ(valueOf(infoLines({}, "es_419.UTF-8"), "preferences"), "es_419 en");
    // A French user gets the library's French catalogue without asking.
    EXPECT_TRUE(
        valueOf(infoLines({}, "fr_CA.UTF-8"), "translator").endsWith("brindlebasecore_fr.qm"));
}

TEST(InfoCommand, LangAndLangdirWorkAnywhereOnTheLine)
{
    QStringList const french = infoLines({"-lang", "fr"});
    EXPECT_EQ(valueOf(french, "language"), "fr");
    EXPECT_EQ(valueOf(french, "preferences"), "fr");
    EXPECT_TRUE(valueOf(french, "translator").endsWith("/brindlebasecore_fr.qm"));

    // A folder without catalogues: no translator, and no failure.
    QByteArray out, err;
    EXPECT_EQ(
        runProgram(toolPath(), {"-langdir", "/nonexistent", "-lang", "fr", "info"}, &out, &err), 0);
    QStringList const lines = QString::fromUtf8(out).split('\n', Qt::SkipEmptyParts);
    EXPECT_EQ(valueOf(lines, "folder lang"), "/nonexistent");
    EXPECT_EQ(valueOf(lines, "translator"), "<missing>");

    // An option without its value is left for the subcommand, which rejects it.
    EXPECT_EQ(runProgram(toolPath(), {"info", "-lang"}, &out, &err), 2);
    EXPECT_TRUE(err.startsWith("brindle info: ")) << err.constData();
}
