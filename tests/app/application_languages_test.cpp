// Language preferences of a German user, and the translator search they drive.
#include <BrindleBaseCore/app/BAPP_Application.h>
#include <BrindleBaseCore/app/BAPP_SpecialFolders.h>
#include <BrindleBaseCore/app/MSG_Text.h>

#include <QtCore/QFile>
#include <QtCore/QLocale>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

TEST(Languages, PreferencesOfTheDefaultLocaleDriveTheTranslatorSearch)
{
    EXPECT_EQ(BAPP_Application::languagesPreference(), QStringList({"de_DE", "de", "en"}));
    QTemporaryDir dir;
    auto add = [&](char const* name) {
        EXPECT_TRUE(QFile(dir.filePath(QLatin1String(name))).open(QIODevice::WriteOnly));
    };
    auto find = [&](char const* base, char const* folder = "") {
        return BAPP_Application::findTranslator(QLatin1String(base), dir.path() + folder);
    };
    // English is the source language: qt_en.qm is never a reason to load one.
    add("qt_en.qm");
    add("qt_fr.qm");
    EXPECT_TRUE(find("qt").isNull());
    add("qt_de.qm");
    EXPECT_EQ(find("qt"), u"qt_de");
    add("qt_de_DE.qm");
    EXPECT_EQ(find("qt"), u"qt_de_DE");
    EXPECT_TRUE(find("other").isNull());
    EXPECT_TRUE(find("qt", "/missing").isNull());
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
