#include <BrindleBaseCore/app/BAPP_Services.h>
#include <BrindleBaseCore/app/BAPP_SpecialFolders.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QStandardPaths>

namespace {

// Where an installed build keeps its translations when the installation does
// not have a "lang" folder of its own: <platform>/share/brindlebasecore/lang.
QString const installedLangFolder = QStringLiteral("share/brindlebasecore/lang");

// X/"name": the sub-folder when it exists, else X itself.
QString enter(QString const& folder, QString const& name)
{
    QDir dir(folder);
    dir.cd(name);
    return dir.path();
}

QString parentOf(QString const& folder)
{
    return QFileInfo(folder).path();
}

bool hasSubFolder(QString const& folder, QString const& name)
{
    return QFileInfo(folder + QLatin1Char('/') + name).isDir();
}

QString runningProgramPath()
{
    if (QCoreApplication::instance())
        return QCoreApplication::applicationFilePath();
    return QFile::symLinkTarget(QStringLiteral("/proc/self/exe"));
}

BAPP_SpecialFolders*& sharedFolders()
{
    static BAPP_SpecialFolders* folders = nullptr;
    return folders;
}

} // namespace

BAPP_SpecialFolders::BAPP_SpecialFolders(QObject* parent)
    : QObject(parent)
{
    setObjectName(QStringLiteral("specialFolders"));
}

BAPP_SpecialFolders::~BAPP_SpecialFolders() = default;

BAPP_SpecialFoldersImpl::BAPP_SpecialFoldersImpl() = default;

BAPP_SpecialFoldersImpl::BAPP_SpecialFoldersImpl(QString const& path, bool pathIsExecutable)
{
    QString const clean = QDir::cleanPath(QDir::fromNativeSeparators(path));
    if (pathIsExecutable) {
        if (!clean.contains(QLatin1Char('/')))
            return;
        findRootFromExecutable(clean);
    } else {
        findRootFromFolder(clean);
    }
    computeUnderRoot();
    computeUnderPlatform();
    computeFromEnvironment();
}

BAPP_SpecialFoldersImpl::~BAPP_SpecialFoldersImpl() = default;

bool BAPP_SpecialFoldersImpl::setOnce(Folder folder, QString const& path)
{
    if (!m_folders[folder].isEmpty())
        return false;
    m_folders[folder] = path;
    return true;
}

void BAPP_SpecialFoldersImpl::setBinOnce(QString const& path)
{
    if (!setOnce(Bin, path))
        return;
    // The 32-bit programs: ../../win32/bin from the 64-bit ones.
    QDir dir(path);
    dir.cdUp();
    dir.cdUp();
    dir.cd(QStringLiteral("win32"));
    dir.cd(QStringLiteral("bin"));
    setOnce(Bin32, dir.path());
}

void BAPP_SpecialFoldersImpl::findRootFromExecutable(QString const& path)
{
    if (!m_folders[Root].isEmpty())
        return;
    QString folder = path.left(path.lastIndexOf(QLatin1Char('/')));
    if (folder.isEmpty())
        folder = QStringLiteral("/");
    if (folder.endsWith(QLatin1String("bin_3rdParty")))
        folder = parentOf(folder);
    setBinOnce(folder);
    setOnce(Platform, parentOf(m_folders[Bin]));
    setOnce(Root, parentOf(m_folders[Platform]));
}

void BAPP_SpecialFoldersImpl::findRootFromFolder(QString const& path)
{
    QString level = QFileInfo(path).absoluteFilePath();
    for (;;) {
        QString const platform = QDir(level).filePath(QStringLiteral("win64"));
        if (hasSubFolder(platform, QStringLiteral("bin"))) {
            setOnce(Platform, platform);
            setOnce(Root, level);
            return;
        }
        QString const up = parentOf(level);
        if (up == level)
            return;
        level = up;
    }
}

void BAPP_SpecialFoldersImpl::computeUnderRoot()
{
    QString const root = m_folders[Root];
    if (root.isEmpty())
        return;
    setOnce(Config, enter(root, QStringLiteral("etc")));
    setOnce(Platform, enter(root, QStringLiteral("win64")));
    setOnce(Resource, enter(root, QStringLiteral("resources")));
    setOnce(Etc, enter(root, QStringLiteral("etc")));
    // An installed build has no ROOT/lang: its translations are shared data
    // of the platform folder.
    QString const installed = m_folders[Platform] + QLatin1Char('/') + installedLangFolder;
    if (!hasSubFolder(root, QStringLiteral("lang")) && QFileInfo(installed).isDir())
        setOnce(Lang, installed);
    else
        setOnce(Lang, enter(root, QStringLiteral("lang")));
    setOnce(HtmlHelp, enter(root, QStringLiteral("help")));
    setOnce(Help, enter(root, QStringLiteral("help")));
}

void BAPP_SpecialFoldersImpl::computeUnderPlatform()
{
    QString const platform = m_folders[Platform];
    QString const root = m_folders[Root];
    if (!platform.isEmpty()) {
        setOnce(Library, enter(platform, QStringLiteral("lib")));
        setBinOnce(enter(platform, QStringLiteral("bin")));
        setOnce(App, m_folders[Bin]);
        setOnce(Bin3rdParty,
                enter(enter(platform, QStringLiteral("bin")), QStringLiteral("bin_3rdParty")));
        if (hasSubFolder(platform, QStringLiteral("plugins")))
            setOnce(LegacyPlugins, platform + QStringLiteral("/plugins"));
    }
    if (root.isEmpty())
        return;
    setOnce(LegacyPlugins, enter(root, QStringLiteral("plugins")));

    QDir plugins(root);
    if (root.endsWith(QLatin1String("Vellum")))
        plugins.cdUp();
    if (!plugins.cd(QStringLiteral("Plugins"))) {
        plugins.cd(QStringLiteral("src"));
        plugins.cd(QStringLiteral("Plugins"));
    }
    setOnce(Plugins, plugins.path());
}

void BAPP_SpecialFoldersImpl::computeFromEnvironment()
{
    static char const databaseVariable[] = "ZEKDB";
    if (!qEnvironmentVariableIsEmpty(databaseVariable))
        setOnce(Database, QDir::fromNativeSeparators(qEnvironmentVariable(databaseVariable)));

    if (!qEnvironmentVariableIsEmpty("TEMP"))
        setOnce(Temp, qEnvironmentVariable("TEMP"));
    else if (!qEnvironmentVariableIsEmpty("TMP"))
        setOnce(Temp, qEnvironmentVariable("TMP"));
    else
        setOnce(Temp, QStringLiteral("/tmp"));

    // Child processes must see the same database as this one.
    if (setOnce(Database, QStringLiteral("/ZEK_DB")))
        qputenv(databaseVariable, "/ZEK_DB");
}

QString BAPP_SpecialFoldersImpl::userConfigPath(QString const& subPath) const
{
    QString const& folder = m_folders[UserConfig];
    if (folder.isEmpty() || subPath.isEmpty())
        return folder;
    if (folder.endsWith(QLatin1Char('/')))
        return folder + subPath;
    return folder + QLatin1Char('/') + subPath;
}

QString BAPP_SpecialFoldersImpl::templateLibrary() const
{
    QString const documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return documents + QStringLiteral("/Brindle ") + BAPP_Identity::instance().flavour() +
           QStringLiteral(" Library");
}

void BAPP_SpecialFoldersImpl::setDatabase(QString const& folder)
{
    m_folders[Database] = BAPP_RemapPath(folder);
}

BAPP_SpecialFolders* BAPP_SharedSpecialFolders()
{
    if (!sharedFolders())
        return BAPP_CreateSharedSpecialFoldersWithPath(runningProgramPath(), true);
    return sharedFolders();
}

BAPP_SpecialFolders* BAPP_CreateSharedSpecialFoldersWithPath(QString const& path,
                                                             bool pathIsExecutable)
{
    if (!sharedFolders())
        sharedFolders() = new BAPP_SpecialFoldersImpl(path, pathIsExecutable);
    return sharedFolders();
}
