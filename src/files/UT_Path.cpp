#include <BrindleBaseCore/files/UT_Path.h>

#include "PathText.h"

#include <QtCore/QFileInfo>
#include <QtCore/QRegularExpression>

#include <algorithm>
#include <iterator>

using namespace brindle::files;

namespace {

// Characters replaced by '_': sorted for binary search. The drive-safe set
// lacks ':' so that the colon of a drive survives the first pass.
constexpr char16_t kDriveSafeForbidden[] = {u'"', u'*', u'<', u'>', u'?'};
constexpr char16_t kFileNameForbidden[] = {u'"', u'*', u':', u'<', u'>', u'?'};
static_assert(std::is_sorted(std::begin(kDriveSafeForbidden), std::end(kDriveSafeForbidden)));
static_assert(std::is_sorted(std::begin(kFileNameForbidden), std::end(kFileNameForbidden)));

// Every forbidden character is below 64: one bit each, so that the common
// characters skip the search.
constexpr quint64 maskOf(char16_t const* first, char16_t const* last)
{
    quint64 mask = 0;
    for (; first != last; ++first)
        mask |= quint64(1) << *first;
    return mask;
}
constexpr quint64 kCandidates =
    maskOf(std::begin(kFileNameForbidden), std::end(kFileNameForbidden));

struct DriveExpressions
{
    QRegularExpression share{QStringLiteral("^//[\\w\\-_]+/[\\w\\-_]+")};
    QRegularExpression validLetters{QStringLiteral("^[a-zA-Z]+:$")};
    QRegularExpression validShare{QStringLiteral("^//[\\w\\-_]+/[\\w\\-_]+$")};
};

// Compiled once per thread: QRegularExpression matching is not meant to be
// shared between threads while it optimises itself.
DriveExpressions const& driveExpressions()
{
    thread_local DriveExpressions const expressions;
    return expressions;
}

} // namespace

QString UT_Path::FilterPath(QString const& text, bool fileNamePart)
{
    char16_t const* const first =
        fileNamePart ? std::begin(kFileNameForbidden) : std::begin(kDriveSafeForbidden);
    char16_t const* const last =
        fileNamePart ? std::end(kFileNameForbidden) : std::end(kDriveSafeForbidden);
    auto replacement = [first, last](char16_t u) -> char16_t {
        if (u == u'\\')
            return u'/';
        if (u < 64 && (kCandidates >> u & 1) && std::binary_search(first, last, u))
            return u'_';
        return u;
    };
    // Most paths need no change: share the text until a character must go.
    char16_t const* const begin = reinterpret_cast<char16_t const*>(text.constData());
    qsizetype const size = text.size();
    qsizetype i = 0;
    while (i < size && replacement(begin[i]) == begin[i])
        ++i;
    if (i == size)
        return text;
    QString out = text;
    for (QChar* c = out.data() + i; c != out.data() + size; ++c)
        *c = QChar(replacement(c->unicode()));
    return out;
}

UT_Path::UT_Path(bool filter)
    : m_filter(filter)
{}

UT_Path::UT_Path(QString const& path, bool filter)
    : m_filter(filter)
{
    SetPath(path);
}

UT_Path::UT_Path(char const* path, bool filter)
    : m_filter(filter)
{
    SetPath(QString::fromUtf8(path));
}

bool UT_Path::ValidatePath(QString& drive, QString& folder, QString& fileName,
                           QString const& text) const
{
    QString const whole = m_filter ? FilterPath(text, false) : text;
    // A drive candidate: everything up to a ':' that comes before any '/', or
    // a share prefix.
    qsizetype driveLength = 0;
    qsizetype const colon = whole.indexOf(u':');
    if (colon >= 0) {
        qsizetype const slash = whole.indexOf(u'/');
        if (slash < 0 || colon < slash)
            driveLength = colon + 1;
    }
    if (driveLength == 0 && whole.startsWith(QLatin1String("//"))) {
        QRegularExpressionMatch const match = driveExpressions().share.match(whole);
        if (match.hasMatch())
            driveLength = match.capturedLength();
    }
    QString rest;
    if (driveLength > 0) {
        drive = whole.left(driveLength);
        DriveExpressions const& expressions = driveExpressions();
        if (!expressions.validLetters.match(drive).hasMatch() &&
            !expressions.validShare.match(drive).hasMatch())
            return false;
        rest = whole.mid(driveLength);
        if (rest.isEmpty())
            rest = QStringLiteral("/");
    } else {
        drive.clear();
        rest = whole;
    }
    if (m_filter)
        rest = FilterPath(rest, true);
    qsizetype const split = lastComponentStart(rest);
    fileName = rest.mid(split);
    folder = cleanPath(QStringView(rest).left(split), true);
    if (folder.isEmpty() && split > 0 && rest.startsWith(u'/'))
        folder = QStringLiteral("/");
    return true;
}

bool UT_Path::assign(QString const& text)
{
    QString drive, folder, fileName;
    if (!ValidatePath(drive, folder, fileName, text))
        return false;
    m_drive = std::move(drive);
    m_folder = std::move(folder);
    m_fileName = std::move(fileName);
    syncSpec();
    return true;
}

void UT_Path::syncSpec()
{
    m_spec.IFileSpec(UT_String(GetPath(true)));
}

bool UT_Path::SetPath(QString const& path)
{
    return assign(path);
}

QString UT_Path::GetPath(bool withFileName) const
{
    QString path = IsRelative() ? m_folder : m_drive + m_folder;
    if (withFileName) {
        if (!m_fileName.isEmpty())
            path += m_fileName;
        else if (path.endsWith(u'/') && path.size() - 1 >= 2)
            path.chop(1);
    }
    return path;
}

namespace {
qsizetype extensionDot(QString const& name, bool firstDot)
{
    return firstDot ? name.indexOf(u'.') : name.lastIndexOf(u'.');
}
} // namespace

QString UT_Path::GetFileName(bool withExtension, bool firstDot) const
{
    return withExtension ? m_fileName : GetBaseName(firstDot);
}

QString UT_Path::GetBaseName(bool firstDot) const
{
    qsizetype const dot = extensionDot(m_fileName, firstDot);
    return dot < 0 ? m_fileName : m_fileName.left(dot);
}

QString UT_Path::GetExtension(bool firstDot) const
{
    qsizetype const dot = extensionDot(m_fileName, firstDot);
    return dot < 0 ? QString() : m_fileName.mid(dot + 1);
}

QString UT_Path::GetBasePath(bool withDrive) const
{
    return withDrive && !IsRelative() ? m_drive + m_folder : m_folder;
}

QString UT_Path::GetResolvedPath() const
{
    QString const path = GetPath(true);
    if (path.isEmpty())
        return path;
    QString const resolved = QFileInfo(path).canonicalFilePath();
    return resolved.isEmpty() ? path : resolved;
}

UT_PathIterator UT_Path::GetFolderIterator() const
{
    return UT_PathIterator(*this);
}

bool UT_Path::SetDrive(QString const& drive)
{
    return assign(drive + m_folder + m_fileName);
}

bool UT_Path::SetFolder(UT_Path const& folder)
{
    return assign(folder.m_drive + folder.m_folder + m_fileName);
}

bool UT_Path::SetFolder(QString const& folder)
{
    UT_Path parsed(m_filter);
    if (!parsed.SetFolderPath(folder))
        return false;
    QString const& drive = parsed.m_drive.isEmpty() ? m_drive : parsed.m_drive;
    return assign(drive + parsed.m_folder + m_fileName);
}

bool UT_Path::SetFolderPath(QString const& folder)
{
    return assign(folder.isEmpty() ? folder : folder + QLatin1Char('/'));
}

bool UT_Path::SetFileName(QString const& name)
{
    return assign(m_drive + m_folder + name);
}

bool UT_Path::SetExtension(QString const& extension, bool firstDot)
{
    if (m_fileName.isEmpty())
        return false;
    QString name = GetBaseName(firstDot);
    if (!extension.isEmpty())
        name += QLatin1Char('.') + extension;
    return SetFileName(name);
}

bool UT_Path::AddFolder(UT_Path const& folder)
{
    return AddFolder(folder.m_folder + folder.m_fileName);
}

bool UT_Path::AddFolder(QString const& folder)
{
    if (folder.isEmpty())
        return true;
    return assign(m_drive + m_folder + folder + QLatin1Char('/') + m_fileName);
}

bool UT_Path::AddFolder(char const* folder)
{
    return AddFolder(QString::fromUtf8(folder));
}

bool UT_Path::AddName(QString const& name)
{
    if (name.isEmpty())
        return true;
    QString text = m_drive + m_folder + m_fileName;
    if (!m_fileName.isEmpty())
        text += u'/';
    return assign(text + name);
}

bool UT_Path::AddName(char const* name)
{
    return AddName(QString::fromUtf8(name));
}

bool UT_Path::AddExtension(QString const& extension)
{
    return SetFileName(m_fileName + QLatin1Char('.') + extension);
}

bool UT_Path::Up()
{
    if (!m_fileName.isEmpty()) {
        m_fileName.clear();
    } else {
        // "/a/b/" -> "/a/"; "a/" -> ""; the root has nothing above it.
        if (m_folder.isEmpty() || m_folder == QLatin1String("/"))
            return false;
        qsizetype const slash = m_folder.lastIndexOf(u'/', m_folder.size() - 2);
        m_folder.truncate(slash + 1);
    }
    syncSpec();
    return true;
}

bool UT_Path::Exists() const
{
    return m_spec.Exists();
}

bool UT_Path::IsFile() const
{
    return m_spec.IsFile();
}

bool UT_Path::IsFolder() const
{
    return m_spec.IsFolder();
}

bool UT_Path::IsSymbolicLink() const
{
    return m_spec.IsSymbolicLink();
}

bool UT_Path::IsHidden() const
{
    return m_spec.IsHidden();
}

bool UT_Path::CanRead() const
{
    return m_spec.TestAccess(false);
}

bool UT_Path::CanWrite() const
{
    return m_spec.TestAccess(true);
}

quint64 UT_Path::GetFileLength() const
{
    return m_spec.GetFileLength();
}

bool UT_Path::GetFileTime(qint64& modifTime) const
{
    return m_spec.GetFileTime(modifTime);
}

FILE* UT_Path::GetFileAccess(char const* mode) const
{
    return m_spec.get_fs(mode);
}

int UT_Path::CreateFolder() const
{
    return m_spec.CreateFolder();
}

int UT_Path::Delete() const
{
    return m_spec.Delete();
}

int UT_Path::Rename(QString const& newName)
{
    PL_FileSpec spec = m_spec;
    int const result = spec.Rename(UT_String(newName));
    if (result == 0)
        assign(spec.GetQFilePath());
    return result;
}

bool UT_Path::MakeUniqueFileName()
{
    if (!Exists())
        return true;
    QString const base = GetBaseName(true);
    QString const extension = GetExtension(true);
    for (int n = 1; n < 1000; ++n) {
        QString name = base + QLatin1Char('_') + QString::number(n);
        if (!extension.isEmpty())
            name += QLatin1Char('.') + extension;
        if (!SetFileName(name))
            return false;
        if (!Exists())
            return true;
    }
    return false;
}

UT_PathIterator::UT_PathIterator(UT_Path const& path)
    : m_path(path)
    , m_current(path.IsFilter())
{
    QString const& folder = m_path.GetFolder();
    m_end = folder.isEmpty();
    if (!m_end) {
        m_position = folder.indexOf(u'/') + 1;
        m_current.SetPath(m_path.GetDrive() + folder.left(m_position));
    }
}

UT_PathIterator& UT_PathIterator::operator++()
{
    if (m_end)
        return *this;
    QString const& folder = m_path.GetFolder();
    qsizetype const slash = folder.indexOf(u'/', m_position);
    if (slash < 0) {
        m_end = true;
        m_current = UT_Path(m_path.IsFilter());
        return *this;
    }
    m_position = slash + 1;
    m_current.SetPath(m_path.GetDrive() + folder.left(m_position));
    return *this;
}
