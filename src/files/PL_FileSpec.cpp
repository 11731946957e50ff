#include <BrindleBaseCore/files/PL_FileSpec.h>
#include <BrindleBaseCore/files/UT_Path.h>
#include <BrindleBaseCore/files/UT_RelPath.h>

#include "PathText.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QStandardPaths>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace brindle::files;

// --- PL_FileInfo -------------------------------------------------------------

PL_FileInfo::PL_FileInfo(QString const& path)
{
    init(path);
}

PL_FileInfo::PL_FileInfo(UT_String const& path)
{
    init(path.ToQString());
}

PL_FileInfo::PL_FileInfo(qint64 modifTime, unsigned int attributes, quint64 length)
    : m_modifTime(modifTime)
    , m_length(length)
    , m_init(true)
    , m_exists(true)
    , m_folder(attributes & FolderAttribute)
    , m_symLink(attributes & SymbolicLinkAttribute)
    , m_hidden(attributes & HiddenAttribute)
    , m_canRead(true)
    , m_canWrite(!(attributes & ReadOnlyAttribute))
{}

void PL_FileInfo::init(QString const& path)
{
    *this = PL_FileInfo();
    m_init = true;
    QByteArray native;
    if (!nativePath(path, native))
        return;
    struct stat st;
    if (::lstat(native.constData(), &st) != 0) {
        m_error = errno != ENOENT && errno != ENOTDIR;
        return;
    }
    m_exists = true;
    m_symLink = S_ISLNK(st.st_mode);
    if (m_symLink) {
        struct stat target;
        if (::stat(native.constData(), &target) == 0)
            st = target;
    }
    m_folder = S_ISDIR(st.st_mode);
    m_length = m_folder ? 0 : quint64(st.st_size);
    m_modifTime = qint64(st.st_mtim.tv_sec);
    m_canRead = ::access(native.constData(), R_OK) == 0;
    m_canWrite = ::access(native.constData(), W_OK) == 0;
    m_hidden = QStringView(path).mid(lastComponentStart(path)).startsWith(u'.');
}

bool PL_FileInfo::IsHidden(UT_Path const& path) const
{
    return m_hidden || path.GetFileName().startsWith(u'.');
}

// --- PL_FileSpec: construction and text ------------------------------------

PL_FileSpec::PL_FileSpec(UT_String const& path)
{
    IFileSpec(path);
}

PL_FileSpec::PL_FileSpec(UT_String const& path, PL_FileInfo const& info)
{
    IFileSpec(path, info);
}

PL_FileSpec::PL_FileSpec(UT_RelPath const& path)
{
    setPath(path.ToString());
}

void PL_FileSpec::setPath(QString const& path)
{
    QString text = path;
    qsizetype end = text.size();
    while (end > 1 && text.at(end - 1) == u'/')
        --end;
    text.truncate(end);
    m_path = UT_String(text);
    m_info = PL_FileInfo();
}

void PL_FileSpec::IFileSpec(UT_String const& path)
{
    setPath(path.ToQString());
}

void PL_FileSpec::IFileSpec(UT_String const& path, PL_FileSpec const& base)
{
    QString const text = path.ToQString();
    if (text.startsWith(u'/') || base.m_path.empty())
        setPath(text);
    else
        setPath(base.GetQFilePath() + QLatin1Char('/') + text);
}

void PL_FileSpec::IFileSpec(UT_String const& path, PL_FileInfo const& info)
{
    setPath(path.ToQString());
    m_info = info;
}

void PL_FileSpec::IFileSpec(PL_FileSpec const& other)
{
    *this = other;
}

void PL_FileSpec::IFileSpec(SavableID const& id)
{
    setPath(QString::fromUtf8(id.data));
}

PL_FileSpec::SavableID PL_FileSpec::GetSavableID() const
{
    return SavableID{GetQFilePath().toUtf8()};
}

int PL_FileSpec::IFileSpec(SpecialFolderType type)
{
    QString folder;
    switch (type) {
    case UserAppDataFolder:
        folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
        break;
    case UserLocalAppDataFolder:
        folder = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
        break;
    case SharedAppDataFolder: {
        // The last of the data folders is the machine-wide one.
        QStringList const all =
            QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation);
        if (all.size() > 1)
            folder = all.last();
        break;
    }
    case UserDocumentsFolder:
        folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
        break;
    case PublicDocumentsFolder:
        return ENOTSUP;
    }
    setPath(folder);
    return folder.isEmpty() ? ENOENT : 0;
}

int PL_FileSpec::InitUserAppDataFolder()
{
    return IFileSpec(UserAppDataFolder);
}

int PL_FileSpec::InitUserLocalAppDataFolder()
{
    return IFileSpec(UserLocalAppDataFolder);
}

int PL_FileSpec::InitSharedAppDataFolder()
{
    return IFileSpec(SharedAppDataFolder);
}

int PL_FileSpec::InitUserDocumentsFolder()
{
    return IFileSpec(UserDocumentsFolder);
}

int PL_FileSpec::WindowsPublicDocumentPath()
{
    return ENOTSUP;
}

int PL_FileSpec::resolveShortcuts()
{
    return HasExtension(UT_String(u"lnk")) ? ENOTSUP : 0;
}

UT_String PL_FileSpec::GetDisplayFilePath() const
{
    return UT_String(QDir::toNativeSeparators(GetQFilePath()));
}

UT_String PL_FileSpec::GetDisplayName() const
{
    QString const path = GetQFilePath();
    return UT_String(path.mid(lastComponentStart(path)));
}

UT_String PL_FileSpec::GetName(bool withExtension) const
{
    QString const path = GetQFilePath();
    qsizetype const start = lastComponentStart(path);
    qsizetype const dot = withExtension ? -1 : lastExtensionDot(path);
    return UT_String(path.mid(start, (dot >= 0 ? dot : path.size()) - start));
}

UT_String PL_FileSpec::GetExtension() const
{
    UT_String extension;
    GetExtension(extension);
    return extension;
}

bool PL_FileSpec::GetExtension(UT_String& extension) const
{
    QString const path = GetQFilePath();
    qsizetype const dot = lastExtensionDot(path);
    extension = UT_String(dot >= 0 ? path.mid(dot + 1) : QString());
    return dot >= 0;
}

bool PL_FileSpec::HasExtension(UT_String const& extension) const
{
    UT_String own;
    return GetExtension(own) &&
           own.ToQString().compare(extension.ToQString(), Qt::CaseInsensitive) == 0;
}

void PL_FileSpec::SetExtension(UT_String const& extension)
{
    QString path = GetQFilePath();
    qsizetype const dot = lastExtensionDot(path);
    if (dot >= 0)
        path.truncate(dot);
    if (!extension.empty())
        path += QLatin1Char('.') + extension.ToQString();
    setPath(path);
}

void PL_FileSpec::AddExtension(UT_String const& extension)
{
    setPath(GetQFilePath() + QLatin1Char('.') + extension.ToQString());
}

void PL_FileSpec::Add(UT_String const& component)
{
    QString path = GetQFilePath();
    if (!path.isEmpty() && !path.endsWith(u'/'))
        path += u'/';
    setPath(path + component.ToQString());
}

bool PL_FileSpec::Up()
{
    QString const path = GetQFilePath();
    qsizetype const slash = path.lastIndexOf(u'/');
    if (slash < 0 || path == QLatin1String("/"))
        return false;
    setPath(slash == 0 ? QStringLiteral("/") : path.left(slash));
    return true;
}

bool PL_FileSpec::GetRelativePath(UT_String& relative, PL_FileSpec const& base) const
{
    if (!IsValid() || !base.IsValid())
        return false;
    UT_RelPath path;
    path.makeRelativeToPath(UT_RelPath(GetQFilePath()), UT_RelPath(base.GetQFilePath()));
    relative = UT_String(path.ToString());
    return true;
}

std::string PL_FileSpec::GetUTF8Path() const
{
    return GetQFilePath().toStdString();
}

int PL_FileSpec::ConvertToLongName()
{
    if (!IsValid())
        return EINVAL;
    setPath(QDir::cleanPath(QFileInfo(GetQFilePath()).absoluteFilePath()));
    return 0;
}

UT_String PL_FileSpec::fileURLToPath(QUrl const& url)
{
    return UT_String(url.isLocalFile() ? url.toLocalFile() : QString());
}

bool PL_FileSpec::analysePath(UT_String& folder, UT_String& baseName, UT_String& extension) const
{
    if (!IsValid())
        return false;
    QString const path = GetQFilePath();
    folder = UT_String(path.left(lastComponentStart(path)));
    baseName = GetName(false);
    GetExtension(extension);
    return true;
}

bool PL_FileSpec::analyseSubPath(PL_FileSpec const& parent, UT_String& subPath) const
{
    QString const path = GetQFilePath();
    QString prefix = parent.GetQFilePath();
    if (!IsValid() || prefix.isEmpty())
        return false;
    if (path == prefix) {
        subPath.clear();
        return true;
    }
    if (!prefix.endsWith(u'/'))
        prefix += u'/';
    if (!path.startsWith(prefix))
        return false;
    subPath = UT_String(path.mid(prefix.size()));
    return true;
}

// --- tests -------------------------------------------------------------------

PL_FileInfo const& PL_FileSpec::info() const
{
    if (!m_info.IsInit())
        m_info.init(GetQFilePath());
    return m_info;
}

PL_FileInfo const& PL_FileSpec::GetFileInfo() const
{
    return info();
}

bool PL_FileSpec::Exists() const
{
    return info().IsExists();
}

bool PL_FileSpec::IsFile() const
{
    return info().IsFile();
}

bool PL_FileSpec::IsFolder() const
{
    return info().IsFolder();
}

bool PL_FileSpec::IsSymbolicLink() const
{
    return info().IsSymbolicLink();
}

bool PL_FileSpec::IsHidden() const
{
    return info().IsHidden(UT_Path(GetQFilePath(), true));
}

bool PL_FileSpec::IsShare() const
{
    return rootLength(GetQFilePath()) > 2 && GetQFilePath().startsWith(QLatin1String("//"));
}

bool PL_FileSpec::TestAccess(bool write) const
{
    return write ? info().CanWrite() : info().CanRead();
}

quint64 PL_FileSpec::GetFileLength() const
{
    return info().GetFileLength();
}

bool PL_FileSpec::GetFileTime(qint64& modifTime) const
{
    if (!info().IsExists())
        return false;
    modifTime = m_info.GetModifTime();
    return true;
}

// --- opening -----------------------------------------------------------------

FILE* PL_FileSpec::fopen(QString const& path, char const* mode)
{
    QByteArray native;
    if (!nativePath(path, native) || !mode) {
        errno = EINVAL;
        return nullptr;
    }
    return ::fopen(native.constData(), mode);
}

FILE* PL_FileSpec::freopen(QString const& path, char const* mode, FILE* stream)
{
    QByteArray native;
    if (!nativePath(path, native) || !mode || !stream) {
        errno = EINVAL;
        return nullptr;
    }
    return ::freopen(native.constData(), mode, stream);
}

int PL_FileSpec::open(QString const& path, int flags, int mode)
{
    QByteArray native;
    if (!nativePath(path, native)) {
        errno = EINVAL;
        return -1;
    }
    int fd;
    do {
        fd = ::open(native.constData(), flags | O_CLOEXEC, mode);
    } while (fd < 0 && errno == EINTR);
    return fd;
}

int PL_FileSpec::open(int flags, int mode) const
{
    return open(GetQFilePath(), flags, mode);
}

FILE* PL_FileSpec::reopen(char const* mode, FILE* stream) const
{
    return freopen(GetQFilePath(), mode, stream);
}

FILE* PL_FileSpec::get_fs(char const* mode) const
{
    return fopen(GetQFilePath(), mode);
}
