// Language preferences of a German user, and the translator search they drive.
#include <BrindleBaseCore/app/BAPP_Application.h>
#include <BrindleBaseCore/app/BAPP_SpecialFolders.h>
#include <BrindleBaseCore/app/MSG_Text.h>

#include <QtCore/QFile>
#include <QtCore/QLocale>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

namespace {
void touch(QString const& path)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
}
} // namespace

TEST(Languages, PreferencesOfTheDefaultLocale)
{
    EXPECT_EQ(BAPP_Application::languagesPreference(), QStringList({"de_DE", "de", "en"}));
}

TEST(Languages, FindTranslatorTakesTheFirstPreferenceAndStopsAtEnglish)
{
    QTemporaryDir dir;
    QString const folder = dir.path();
    touch(folder + "/qt_en.qm");
    touch(folder + "/qt_fr.qm");
    // English is the source language: qt_en.qm is never a reason to load one.
    EXPECT_TRUE(BAPP_Application::findTranslator(QStringLiteral("qt"), folder).isNull());
    touch(folder + "/qt_de.qm");
    EXPECT_EQ(BAPP_Application::findTranslator(QStringLiteral("qt"), folder), u"qt_de");
    touch(folder + "/qt_de_DE.qm");
    EXPECT_EQ(BAPP_Application::findTranslator(QStringLiteral("qt"), folder), u"qt_de_DE");
    EXPECT_TRUE(BAPP_Application::findTranslator(QStringLiteral("other"), folder).isNull());
    EXPECT_TRUE(
        BAPP_Application::findTranslator(QStringLiteral("qt"), folder + "/missing").isNull());
}

TEST(Languages, NoCatalogueForGermanLeavesTextsInEnglish)
{
    // The library ships French only; the "lang" folder is searched by default.
    EXPECT_TRUE(
        BAPP_Application::findTranslator(QStringLiteral("brindlebasecore"), QString()).isNull());
    EXPECT_TRUE(QFile::exists(BAPP_SharedSpecialFolders()->lang() + "/brindlebasecore_fr.qm"));
    EXPECT_TRUE(BAPP_Application::instance()->translators().empty());
    EXPECT_EQ(MSG_Text("TUMessage", "Debug mode : ON", MSG_Text::WithContext).getTranslatedText(),
              u"Debug mode : ON");
}

int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    QLocale::setDefault(QLocale(QStringLiteral("de_DE")));
    BAPP_Arguments arguments = BAPP_Application::parseArguments(argc, argv);
    BAPP_CoreApplication app(argc, argv, arguments);
    return RUN_ALL_TESTS();
}
