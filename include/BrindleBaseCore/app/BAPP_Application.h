// Application start-up: the library's command-line options, the user-interface
// language and its translators, the main thread and the plug-in folder.
#pragma once

#include <BrindleBaseCore/Global.h>
#include <BrindleBaseCore/app/BAPP_Arguments.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QList>
#include <QtCore/QString>

#include <vector>

class BAPP_PluginManager;
class QTranslator;

/// What the plug-in manager asks its host: the user's languages, most wanted
/// first.
class BRINDLE_EXPORT BAPP_LanguagePreferenceProvider
{
public:
    /// Fills `languages` with the user's languages, most wanted first.
    virtual void languagesPreference(QList<QString>& languages) = 0;
    virtual ~BAPP_LanguagePreferenceProvider();
};

/// The library's part of an application object. A console program uses
/// BAPP_CoreApplication; a GUI application derives from its Qt application
/// class first and from BAPP_Application second, and passes the arguments on.
///
/// Construction with arguments consumes the options "-lang LANG", "-langdir DIR"
/// and "-nologo" (case-sensitive) from the list; an option without its value is
/// left in the list for the program to report. Then the version banner is
/// printed (unless -nologo), the translators are installed, the current thread
/// is recorded as the main thread and Qt's plug-in path and image size limit are
/// set.
class BRINDLE_EXPORT BAPP_Application : public BAPP_LanguagePreferenceProvider
{
public:
    /// Only records the main thread, sets the plug-in path and the image limit.
    BAPP_Application();
    /// Consumes the library's options from `arguments`, then starts up (see the class).
    explicit BAPP_Application(BAPP_Arguments& arguments);

    /// Replaces the list with the process's language preferences.
    void languagesPreference(QList<QString>& languages) override;
    /// Frees the list of translators, not the translators themselves (they
    /// belong to the Qt application object).
    ~BAPP_Application() override;
    /// changeLanguage(language()) when a language was chosen, else
    /// setupLanguage().
    virtual void setup();
    /// Installs the translators for the current preferences: "qt", then
    /// "BrindleWhoAmI" (the application's identity), then "brindlebasecore"
    /// (the library's own texts), each from the "lang" folder when it has one
    /// for a preferred language. Constructors call this class's version: an
    /// override takes effect through setup() or changeLanguage().
    virtual void setupLanguage();
    /// The plug-in manager of the installation (see BAPP_SetPluginManagerProvider).
    virtual BAPP_PluginManager* pluginManager();

    /// argv[1] .. argv[argc - 1], UTF-8 decoded; no option is interpreted.
    static BAPP_Arguments parseArguments(int argc, char** argv);
    /// The Qt application object as a BAPP_Application, or null when there is
    /// none or it is not one.
    static BAPP_Application* instance();
    /// Whether the calling thread is the recorded main thread.
    static bool isMainThread();
    /// Records the calling thread as the main thread.
    static void setupMainThread();

    /// The user's languages, computed once: the default locale's name
    /// ("fr_CA"), its language alone when the name has five characters ("fr"),
    /// and "en" unless the locale's language is English.
    static QList<QString> languagesPreference();
    /// "base_LANG" for the first preferred language with a file base_LANG.qm in
    /// the folder (the "lang" folder when directory is null), or a null string.
    /// The search stops at "en": English is the source language of every text,
    /// so no translator is needed for it or for any language after it.
    static QString findTranslator(QString const& baseName, QString const& directory);
    /// True when the default locale's language is Chinese, Japanese or Korean.
    static bool isIdeographicLanguage();

    /// Makes lang the only preferred language and the default locale, then
    /// calls setupLanguage(). Earlier translators stay installed; the new ones
    /// take precedence over them.
    void changeLanguage(QString const& lang);
    /// Installs a translator in the Qt application and keeps it in translators().
    bool addTranslator(QTranslator* translator);
    /// Finds and loads base_LANG.qm (see findTranslator) and installs it.
    /// False when there is none or it cannot be loaded.
    bool addTranslator(QString const& baseName, QString const& directory = QString());
    /// Adds `<library folder>/qt/plugins` to Qt's library paths.
    void setupLibraries();

    /// The language chosen by "-lang" or changeLanguage(); null when none.
    QString const& language() const { return m_language; }
    /// The translators installed through this object, oldest first.
    std::vector<QTranslator*> const& translators() const { return m_translators; }
    /// Whether "-nologo" was given.
    bool noLogo() const { return m_noLogo; }

protected:
    /// What the default constructor does.
    void init();

private:
    QString m_language;
    std::vector<QTranslator*> m_translators;
    bool m_noLogo = false;
};

/// The application object of console programs. After the Qt and library parts
/// are built, the C library's numeric locale is set to "C", so numbers are read
/// and written with a full stop whatever the user's locale.
class BRINDLE_EXPORT BAPP_CoreApplication : public QCoreApplication, public BAPP_Application
{
    Q_OBJECT

public:
    /// Does not look at the arguments (no -lang, no translators).
    BAPP_CoreApplication(int& argc, char** argv);
    /// Consumes the library's options from arguments (see BAPP_Application).
    BAPP_CoreApplication(int& argc, char** argv, BAPP_Arguments& arguments);
    ~BAPP_CoreApplication() override;
};
