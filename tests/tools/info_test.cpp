// brindle info, and the start-up options that every subcommand accepts.
#include "Tool.h"

#include <QtCore/QRegularExpression>

using namespace tools_test;

namespace {

// The lines of brindle ARGS (which must succeed) run in LOCALE.
QStringList lines(QStringList const& args, QByteArray const& locale = "C")
{
    qputenv("LC_ALL", locale);
    QByteArray const out = ok(args).out;
    qunsetenv("LC_ALL");
    return QString::fromUtf8(out).split('\n', Qt::SkipEmptyParts);
}

QString valueOf(QStringList const& lines, QString const& key)
{
    QStringList const found = lines.filter(QRegularExpression("^" + key + ": "));
    return found.isEmpty() ? QStringLiteral("<missing>") : found.first().mid(key.size() + 2);
}

} // namespace

TEST(InfoCommand, ListsTheFoldersInPropertyOrder)
{
    QStringList const info = lines({"info", "-nologo"});
    QStringList keys = info.filter(QRegularExpression("^folder "));
    keys.replaceInStrings(QRegularExpression("^folder ([^:]*):.*"), "\\1");
    EXPECT_EQ(keys, QStringList({"root", "config", "resource", "etc", "lang", "platform", "app",
                                 "bin", "bin32", "library", "legacyPlugins", "plugins", "temp",
                                 "userConfig", "htmlHelp", "userScripts", "userLayouts", "database",
                                 "templateLibrary"}));
    EXPECT_TRUE(valueOf(info, "folder lang").endsWith("/share/brindlebasecore/lang"));
    EXPECT_EQ(valueOf(info, "language"), "(default)");
}

TEST(InfoCommand, LanguageFollowsTheLocaleOrTheOptions)
{
    EXPECT_EQ(valueOf(lines({"info"}, "en_US.UTF-8"), "preferences"), "en_US en");
    EXPECT_EQ(valueOf(lines({"info"}, "es_419.UTF-8"), "preferences"), "es_419 en");
    QStringList const canadian = lines({"info"}, "fr_CA.UTF-8");
    EXPECT_EQ(valueOf(canadian, "preferences"), "fr_CA fr en");
    // A French user gets the library's French catalogue without asking.
    EXPECT_TRUE(valueOf(canadian, "translator").endsWith("brindlebasecore_fr.qm"));

    // -lang and -langdir work anywhere on the line.
    QStringList const french = lines({"info", "-lang", "fr"});
    EXPECT_EQ(valueOf(french, "language"), "fr");
    EXPECT_EQ(valueOf(french, "preferences"), "fr");
    EXPECT_TRUE(valueOf(french, "translator").endsWith("/brindlebasecore_fr.qm"));
    // A folder without catalogues: no translator, and no failure.
    QStringList const bare = lines({"-langdir", "/nonexistent", "-lang", "fr", "info"});
    EXPECT_EQ(valueOf(bare, "folder lang"), "/nonexistent");
    EXPECT_EQ(valueOf(bare, "translator"), "<missing>");
    // An option without its value is left for the subcommand, which rejects it.
    expectFailures({{{"info", "-lang"}, 2, "brindle info: "}});
}
