// Start-up of a console program with "-lang fr": the library's options are
// consumed, the French translations are installed and reach MSG_Text.
#include <BrindleBaseCore/app/BAPP_Application.h>
#include <BrindleBaseCore/app/BAPP_Services.h>
#include <BrindleBaseCore/app/MSG_Text.h>

#include <QtCore/QFile>
#include <QtCore/QLocale>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <clocale>
#include <thread>

namespace {

BAPP_Arguments g_remaining;

struct CountingIdentity : BAPP_Identity
{
    void printVersionBanner() const override { ++banners; }
    static inline int banners = 0;
};

QString translated(char const* context, char const* text)
{
    return MSG_Text(context, text, MSG_Text::WithContext).getTranslatedText();
}

} // namespace

TEST(Application, StartUpConsumesTheLibraryOptionsOnlyAndInstallsTheFrenchTranslations)
{
    // "-langdir" without its value stays for the program to report.
    EXPECT_EQ(g_remaining.list(), QStringList({"input.txt", "-langdir"}));
    BAPP_Application* app = BAPP_Application::instance();
    ASSERT_NE(app, nullptr);
    EXPECT_EQ(app->language(), u"fr");
    EXPECT_TRUE(app->noLogo());
    ASSERT_EQ(app->translators().size(), 1u); // no qt_fr.qm, no BrindleWhoAmI_fr.qm
    EXPECT_EQ(BAPP_Application::languagesPreference(), QStringList({"fr"}));
    EXPECT_EQ(QLocale().language(), QLocale::French);
    EXPECT_EQ(translated("TUMessage", "Debug mode : ON"),
              QStringLiteral(u"Mode de débogage : ACTIVÉ"));
    EXPECT_EQ(translated("OSW_Execute", "OSW_Execute: no application to execute"),
              QStringLiteral(u"OSW_Execute : aucune application à exécuter"));
    EXPECT_EQ(translated("TULex", "Expecting number."), QStringLiteral(u"Nombre attendu."));
    EXPECT_EQ(translated("PL_FileSpec", "Cannot copy \"%1\" to \"%2\": the disk is full."),
              QStringLiteral(u"Impossible de copier « %1 » vers « %2 » : le disque est plein."));
    // Another context is not translated by the same catalogue.
    EXPECT_EQ(translated("Other", "Expecting number."), u"Expecting number.");
}

TEST(Application, RecordsTheMainThreadAndTheNumericLocale)
{
    EXPECT_TRUE(BAPP_Application::isMainThread());
    bool other = true;
    std::thread([&] { other = BAPP_Application::isMainThread(); }).join();
    EXPECT_FALSE(other);
    EXPECT_STREQ(std::setlocale(LC_NUMERIC, nullptr), "C");
}

TEST(Application, BannerUnlessNoLogoAndOptionNamesAreCaseSensitive)
{
    BAPP_Identity::setInstance(new CountingIdentity);
    BAPP_Arguments args(QStringList({"-LANG", "de", "x", "-lang"}));
    EXPECT_TRUE(BAPP_Application(args).language().isNull());
    EXPECT_EQ(args.list(), QStringList({"-LANG", "de", "x", "-lang"}));
    EXPECT_EQ(CountingIdentity::banners, 1);

    BAPP_Arguments quiet(QStringList({"-nologo"}));
    BAPP_Application part(quiet);
    EXPECT_EQ(CountingIdentity::banners, 1);
    EXPECT_EQ(quiet.size(), 0);
    BAPP_Identity::setInstance(nullptr);
}

TEST(Application, BadTranslatorsAreSkipped)
{
    BAPP_Application* app = BAPP_Application::instance();
    size_t const before = app->translators().size();
    QTemporaryDir dir;
    QFile bad(dir.filePath(QStringLiteral("broken_fr.qm")));
    ASSERT_TRUE(bad.open(QIODevice::WriteOnly) && bad.write("not a catalogue") > 0 && bad.flush());
    EXPECT_FALSE(app->addTranslator(QStringLiteral("broken"), dir.path()));
    // The folder given is the only one searched (the "lang" folder has this catalogue).
    EXPECT_FALSE(app->addTranslator(QStringLiteral("brindlebasecore"), dir.path() + "/missing"));
    EXPECT_EQ(app->translators().size(), before);
}

TEST(Application, ChangeLanguageKeepsEarlierTranslators)
{
    BAPP_Application* app = BAPP_Application::instance();
    EXPECT_FALSE(BAPP_Application::isIdeographicLanguage());
    app->changeLanguage(QStringLiteral("ja"));
    EXPECT_TRUE(BAPP_Application::isIdeographicLanguage());
    QStringList viaInterface{"stale"};
    app->languagesPreference(viaInterface);
    EXPECT_EQ(viaInterface, QStringList({"ja"}));
    EXPECT_EQ(app->language(), u"ja");
    // No Japanese catalogue: the French one is still installed and answers.
    EXPECT_EQ(translated("TULex", "Expecting number."), QStringLiteral(u"Nombre attendu."));
}

int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    char input[] = "input.txt", lang[] = "-lang", fr[] = "fr", noLogo[] = "-nologo",
         langDir[] = "-langdir";
    char* startArgv[] = {argv[0], input, lang, fr, noLogo, langDir, nullptr};
    int startArgc = 6;
    g_remaining = BAPP_Application::parseArguments(startArgc, startArgv);
    BAPP_CoreApplication app(startArgc, startArgv, g_remaining);
    return RUN_ALL_TESTS();
}
