#include <BrindleBaseCore/app/BAPP_Application.h>
#include <BrindleBaseCore/app/BAPP_Services.h>
#include <BrindleBaseCore/app/BAPP_SpecialFolders.h>

#include <QtCore/QDir>
#include <QtCore/QLocale>
#include <QtCore/QTranslator>
#include <QtGui/QImageReader>

#include <clocale>
#include <limits>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

// Start-up runs on the main thread and records it; readers on other threads
// only compare with it.
qint32 g_mainThreadId = 0;

qint32 currentThreadId()
{
    return qint32(::syscall(SYS_gettid));
}

// Not locked: the cache is filled at start-up, on the main thread.
QList<QString>& preferenceCache()
{
    static QList<QString> cache;
    return cache;
}

QString langFolder()
{
    return BAPP_SharedSpecialFolders()->lang();
}

} // namespace

BAPP_LanguagePreferenceProvider::~BAPP_LanguagePreferenceProvider() = default;

BAPP_Application::BAPP_Application()
{
    init();
}

BAPP_Application::BAPP_Application(BAPP_Arguments& arguments)
{
    static QString const langOption = QStringLiteral("-lang");
    static QString const langDirOption = QStringLiteral("-langdir");
    static QString const noLogoOption = QStringLiteral("-nologo");

    for (BAPP_ArgumentIterator it = arguments.begin(); it.hasMoreArgument(1);) {
        if (*it == langOption && it.hasMoreArgument(2)) {
            m_language = it[1];
            it.handled(2);
        } else if (*it == langDirOption && it.hasMoreArgument(2)) {
            BAPP_SharedSpecialFolders()->setLang(it[1]);
            it.handled(2);
        } else if (*it == noLogoOption) {
            m_noLogo = true;
            it.handled(1);
        } else {
            ++it;
        }
    }
    if (!m_noLogo)
        BAPP_Identity::instance().printVersionBanner();
    if (m_language.isNull())
        setupLanguage();
    else
        changeLanguage(m_language);
    init();
}

BAPP_Application::~BAPP_Application() = default;

void BAPP_Application::init()
{
    setupMainThread();
    setupLibraries();
    QImageReader::setAllocationLimit(std::numeric_limits<qint32>::max());
}

void BAPP_Application::languagesPreference(QList<QString>& languages)
{
    languages = languagesPreference();
}

void BAPP_Application::setup()
{
    if (!m_language.isNull())
        changeLanguage(m_language);
    else
        setupLanguage();
}

void BAPP_Application::setupLanguage()
{
    addTranslator(QStringLiteral("qt"), QString());
    addTranslator(QStringLiteral("BrindleWhoAmI"), QString());
    addTranslator(QStringLiteral("brindlebasecore"), QString());
}

BAPP_PluginManager* BAPP_Application::pluginManager()
{
    BAPP_PluginManagerProvider provider = BAPP_GetPluginManagerProvider();
    return provider ? provider(BAPP_SharedSpecialFolders(), this) : nullptr;
}

BAPP_Arguments BAPP_Application::parseArguments(int argc, char** argv)
{
    QList<QString> list;
    for (int i = 1; i < argc; ++i)
        list.append(QString::fromUtf8(argv[i]));
    return BAPP_Arguments(list);
}

BAPP_Application* BAPP_Application::instance()
{
    QCoreApplication* application = QCoreApplication::instance();
    if (!application)
        return nullptr;
    return static_cast<BAPP_Application*>(application->qt_metacast("BAPP_Application"));
}

bool BAPP_Application::isMainThread()
{
    return currentThreadId() == g_mainThreadId;
}

void BAPP_Application::setupMainThread()
{
    g_mainThreadId = currentThreadId();
}

QList<QString> BAPP_Application::languagesPreference()
{
    QList<QString>& cache = preferenceCache();
    if (cache.isEmpty()) {
        QLocale const locale;
        QString const name = locale.name();
        cache.append(name);
        if (name.size() == 5)
            cache.append(name.left(2));
        if (locale.language() != QLocale::English)
            cache.append(QStringLiteral("en"));
    }
    return cache;
}

QString BAPP_Application::findTranslator(QString const& baseName, QString const& directory)
{
    QList<QString> const preferences = languagesPreference();
    QDir const folder(directory.isNull() ? langFolder() : directory);
    for (QString const& language : preferences) {
        // English is the source language: no file is looked for from here on.
        if (language == QLatin1String("en"))
            break;
        QString const name = baseName + QLatin1Char('_') + language;
        if (folder.exists(name + QLatin1String(".qm")))
            return name;
    }
    return QString();
}

bool BAPP_Application::isIdeographicLanguage()
{
    switch (QLocale().language()) {
    case QLocale::Chinese:
    case QLocale::Japanese:
    case QLocale::Korean:
        return true;
    default:
        return false;
    }
}

void BAPP_Application::changeLanguage(QString const& lang)
{
    m_language = lang;
    QList<QString>& cache = preferenceCache();
    cache.clear();
    cache.append(lang);
    QLocale::setDefault(QLocale(lang));
    setupLanguage();
}

bool BAPP_Application::addTranslator(QTranslator* translator)
{
    bool const installed = QCoreApplication::installTranslator(translator);
    m_translators.push_back(translator);
    return installed;
}

bool BAPP_Application::addTranslator(QString const& baseName, QString const& directory)
{
    QString const folder = directory.isNull() ? langFolder() : directory;
    QString const name = findTranslator(baseName, folder);
    if (name.isNull())
        return false;
    auto* translator = new QTranslator(QCoreApplication::instance());
    if (!translator->load(name, folder)) {
        delete translator;
        return false;
    }
    return addTranslator(translator);
}

void BAPP_Application::setupLibraries()
{
    QCoreApplication::addLibraryPath(BAPP_SharedSpecialFolders()->library() +
                                     QStringLiteral("/qt/plugins"));
}

BAPP_CoreApplication::BAPP_CoreApplication(int& argc, char** argv)
    : QCoreApplication(argc, argv)
    , BAPP_Application()
{
    std::setlocale(LC_NUMERIC, "C");
}

BAPP_CoreApplication::BAPP_CoreApplication(int& argc, char** argv, BAPP_Arguments& arguments)
    : QCoreApplication(argc, argv)
    , BAPP_Application(arguments)
{
    std::setlocale(LC_NUMERIC, "C");
}

BAPP_CoreApplication::~BAPP_CoreApplication() = default;
