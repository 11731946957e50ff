// The operations of PL_FileSpec that change the file system, and folder
// enumeration.
#include <BrindleBaseCore/app/MSG_Text.h>
#include <BrindleBaseCore/files/PL_FileSpec.h>

#include "PathText.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <ftw.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

using namespace brindle::files;

namespace {

// errno of the last failure seen by the removal walk of this thread.
thread_local int removeError = 0;

int removeEntry(char const* path, struct stat const*, int, struct FTW*)
{
    if (::remove(path) != 0 && errno != ENOENT)
        removeError = errno;
    return 0; // go on: remove as much as possible
}

int removeTree(QByteArray const& native)
{
    struct stat st;
    if (::lstat(native.constData(), &st) != 0)
        return errno;
    if (!S_ISDIR(st.st_mode))
        return ::unlink(native.constData()) == 0 ? 0 : errno;
    removeError = 0;
    if (::nftw(native.constData(), removeEntry, 32, FTW_DEPTH | FTW_PHYS) != 0 && removeError == 0)
        removeError = errno;
    return removeError;
}

int makeFolders(QByteArray const& native)
{
    if (::mkdir(native.constData(), 0777) == 0)
        return 0;
    int error = errno;
    if (error == EEXIST) {
        struct stat st;
        return ::stat(native.constData(), &st) == 0 && S_ISDIR(st.st_mode) ? 0 : EEXIST;
    }
    if (error != ENOENT)
        return error;
    qsizetype const slash = native.lastIndexOf('/');
    if (slash <= 0)
        return error;
    error = makeFolders(native.left(slash));
    if (error != 0)
        return error;
    return ::mkdir(native.constData(), 0777) == 0 || errno == EEXIST ? 0 : errno;
}

struct Descriptor
{
    int fd = -1;
    ~Descriptor()
    {
        if (fd >= 0)
            ::close(fd);
    }
};

// Which side of a copy failed, with its errno.
struct CopyFailure
{
    enum Stage
    {
        None,
        Source,
        Target,
        Transfer
    } stage = None;
    int error = 0;
};

CopyFailure copyContents(QString const& source, QString const& target)
{
    Descriptor in;
    in.fd = PL_FileSpec::open(source, O_RDONLY, 0);
    if (in.fd < 0)
        return {CopyFailure::Source, errno};
    struct stat st;
    if (::fstat(in.fd, &st) != 0)
        return {CopyFailure::Source, errno};
    if (S_ISDIR(st.st_mode))
        return {CopyFailure::Source, EISDIR};
    Descriptor out;
    out.fd = PL_FileSpec::open(target, O_WRONLY | O_CREAT | O_TRUNC, int(st.st_mode & 0777));
    if (out.fd < 0)
        return {CopyFailure::Target, errno};
    bool useRange = true;
    std::unique_ptr<char[]> buffer;
    constexpr size_t blockSize = 1 << 20;
    for (;;) {
        ssize_t done;
        if (useRange) {
            done = ::copy_file_range(in.fd, nullptr, out.fd, nullptr, blockSize * 16, 0);
            if (done < 0 && (errno == EXDEV || errno == EINVAL || errno == ENOSYS ||
                             errno == EOPNOTSUPP || errno == EPERM)) {
                useRange = false;
                continue;
            }
        } else {
            if (!buffer)
                buffer.reset(new char[blockSize]);
            done = ::read(in.fd, buffer.get(), blockSize);
            for (ssize_t written = 0; done > 0 && written < done;) {
                ssize_t const n = ::write(out.fd, buffer.get() + written, size_t(done - written));
                if (n < 0 && errno != EINTR) {
                    done = -1;
                    break;
                }
                written += n > 0 ? n : 0;
            }
        }
        if (done == 0)
            break;
        if (done < 0 && errno != EINTR) {
            CopyFailure failure{CopyFailure::Transfer, errno};
            ::unlink(QFile::encodeName(target).constData()); // no half copy left behind
            return failure;
        }
    }
    if (::close(out.fd) != 0) {
        out.fd = -1;
        CopyFailure failure{CopyFailure::Transfer, errno};
        ::unlink(QFile::encodeName(target).constData());
        return failure;
    }
    out.fd = -1;
    return {};
}

} // namespace

int PL_FileSpec::CreateFolder() const
{
    QByteArray native;
    if (!nativePath(GetQFilePath(), native))
        return EINVAL;
    m_info = PL_FileInfo();
    return makeFolders(native);
}

int PL_FileSpec::createSubFolder(QString const& name, QString& created) const
{
    created.clear();
    if (!IsValid() || name.isEmpty() || name.contains(u'/'))
        return EINVAL;
    for (int n = 0; n < 1000; ++n) {
        QString const path = GetQFilePath() + QLatin1Char('/') + name +
                             (n == 0 ? QString() : QLatin1Char('_') + QString::number(n));
        QByteArray native;
        if (!nativePath(path, native))
            return EINVAL;
        if (::mkdir(native.constData(), 0777) == 0) {
            created = path;
            return 0;
        }
        if (errno != EEXIST)
            return errno;
    }
    return EEXIST;
}

int PL_FileSpec::Delete() const
{
    QByteArray native;
    if (!nativePath(GetQFilePath(), native))
        return EINVAL;
    m_info = PL_FileInfo();
    return removeTree(native);
}

int PL_FileSpec::Rename(UT_String const& newName)
{
    QString target = newName.ToQString();
    if (!target.contains(u'/')) {
        QString const path = GetQFilePath();
        target.prepend(path.left(lastComponentStart(path)));
    }
    QByteArray from, to;
    if (!nativePath(GetQFilePath(), from) || !nativePath(target, to))
        return EINVAL;
    if (::rename(from.constData(), to.constData()) != 0) {
        m_info = PL_FileInfo();
        return errno;
    }
    setPath(target);
    return 0;
}

int PL_FileSpec::Move(PL_FileSpec const& target)
{
    QByteArray from, to;
    if (!nativePath(GetQFilePath(), from) || !nativePath(target.GetQFilePath(), to))
        return EINVAL;
    if (::rename(from.constData(), to.constData()) != 0) {
        if (errno != EXDEV || IsFolder())
            return errno;
        // Another file system: copy, then remove the original.
        if (int const error = CloneFile(target, true))
            return error;
        if (::unlink(from.constData()) != 0)
            return errno;
    }
    setPath(target.GetQFilePath());
    return 0;
}

int PL_FileSpec::Exchange(PL_FileSpec const& other) const
{
    QByteArray a, b;
    if (!nativePath(GetQFilePath(), a) || !nativePath(other.GetQFilePath(), b))
        return EINVAL;
    m_info = PL_FileInfo();
    other.m_info = PL_FileInfo();
    if (::renameat2(AT_FDCWD, a.constData(), AT_FDCWD, b.constData(), RENAME_EXCHANGE) == 0)
        return 0;
    if (errno != EINVAL && errno != ENOSYS)
        return errno;
    // The file system cannot swap atomically: three renames through a free name.
    QByteArray const parked = a + ".exchange~";
    if (::rename(a.constData(), parked.constData()) != 0)
        return errno;
    if (::rename(b.constData(), a.constData()) != 0) {
        int const error = errno;
        ::rename(parked.constData(), a.constData());
        return error;
    }
    return ::rename(parked.constData(), b.constData()) == 0 ? 0 : errno;
}

int PL_FileSpec::CloneFile(PL_FileSpec const& target, bool overwrite) const
{
    if (!IsValid() || !target.IsValid())
        return EINVAL;
    target.m_info = PL_FileInfo();
    if (!overwrite && target.Exists())
        return EEXIST;
    target.m_info = PL_FileInfo();
    return copyContents(GetQFilePath(), target.GetQFilePath()).error;
}

bool PL_FileSpec::CopyFileW(UT_String const& target, MSG_Text& error) const
{
    QString const source = GetQFilePath();
    QString const destination = target.ToQString();
    CopyFailure failure;
    if (!IsValid())
        failure = {CopyFailure::Source, ENOENT};
    else if (destination.isEmpty())
        failure = {CopyFailure::Target, ENOENT};
    else
        failure = copyContents(source, destination);
    if (failure.stage == CopyFailure::None)
        return true;
    char const* reason = nullptr;
    if (failure.stage == CopyFailure::Source && failure.error == ENOENT)
        reason = QT_TRANSLATE_NOOP("PL_FileSpec",
                                   "Cannot copy \"%1\" to \"%2\": the file does not exist.");
    else if (failure.stage == CopyFailure::Target &&
             (failure.error == ENOENT || failure.error == ENOTDIR))
        reason = QT_TRANSLATE_NOOP(
            "PL_FileSpec", "Cannot copy \"%1\" to \"%2\": the target folder does not exist.");
    else if (failure.error == ENOSPC || failure.error == EDQUOT)
        reason =
            QT_TRANSLATE_NOOP("PL_FileSpec", "Cannot copy \"%1\" to \"%2\": the disk is full.");
    else if (failure.error == EACCES || failure.error == EPERM || failure.error == EROFS)
        reason =
            QT_TRANSLATE_NOOP("PL_FileSpec", "Cannot copy \"%1\" to \"%2\": permission denied.");
    if (reason) {
        error = MSG_Text("PL_FileSpec", reason, MSG_Text::WithContext);
        error.arg(source, destination);
    } else {
        error = MSG_Text("PL_FileSpec",
                         QT_TRANSLATE_NOOP("PL_FileSpec", "Cannot copy \"%1\" to \"%2\": %3."),
                         MSG_Text::WithContext);
        error.arg(source, destination, QString::fromLocal8Bit(std::strerror(failure.error)));
    }
    return false;
}

bool PL_FileSpec::HardLink(PL_FileSpec const& target, bool overwrite) const
{
    target.m_info = PL_FileInfo();
    if (target.Exists()) {
        if (!overwrite || target.Delete() != 0)
            return false;
    }
    MSG_Text error;
    return CopyFileW(target.GetFilePath(), error);
}

// --- enumeration -------------------------------------------------------------

struct PL_FileSpec_iterator::Handle
{
    DIR* dir = nullptr;
    QString folder;
    ~Handle()
    {
        if (dir)
            ::closedir(dir);
    }
};

PL_FileSpec_iterator::PL_FileSpec_iterator(PL_FileSpec const& folder)
{
    QByteArray native;
    if (!nativePath(folder.GetQFilePath(), native))
        return;
    DIR* dir = ::opendir(native.constData());
    if (!dir)
        return;
    m_handle = std::make_shared<Handle>();
    m_handle->dir = dir;
    m_handle->folder = folder.GetQFilePath();
    if (!m_handle->folder.endsWith(u'/'))
        m_handle->folder += u'/';
    Advance();
}

PL_FileSpec_iterator::~PL_FileSpec_iterator() = default;

bool PL_FileSpec_iterator::next()
{
    DIR* const dir = m_handle->dir;
    while (struct dirent* entry = ::readdir(dir)) {
        char const* const name = entry->d_name;
        if (name[0] == '.' && (name[1] == 0 || (name[1] == '.' && name[2] == 0)))
            continue;
        struct stat st;
        if (::fstatat(::dirfd(dir), name, &st, AT_SYMLINK_NOFOLLOW) != 0)
            continue; // removed meanwhile
        unsigned int attributes = 0;
        if (S_ISLNK(st.st_mode)) {
            attributes |= PL_FileInfo::SymbolicLinkAttribute;
            struct stat target;
            if (::fstatat(::dirfd(dir), name, &target, 0) == 0)
                st = target;
        }
        if (S_ISDIR(st.st_mode))
            attributes |= PL_FileInfo::FolderAttribute;
        if (name[0] == '.')
            attributes |= PL_FileInfo::HiddenAttribute;
        if (::faccessat(::dirfd(dir), name, W_OK, 0) != 0)
            attributes |= PL_FileInfo::ReadOnlyAttribute;
        QString path = m_handle->folder + QFile::decodeName(name);
        m_current.IFileSpec(UT_String(path),
                            PL_FileInfo(qint64(st.st_mtim.tv_sec), attributes,
                                        S_ISDIR(st.st_mode) ? 0 : quint64(st.st_size)));
        return true;
    }
    return false;
}

void PL_FileSpec_iterator::Advance()
{
    if (!m_handle)
        return;
    if (!next()) {
        m_handle.reset();
        m_current = PL_FileSpec();
    }
}

bool PL_FileSpec_iterator::operator==(PL_FileSpec_iterator const& other) const
{
    return m_handle == other.m_handle && m_current == other.m_current;
}

PL_FileSpec_iterator PL_FileSpec::begin() const
{
    return PL_FileSpec_iterator(*this);
}

PL_FileSpec_iterator PL_FileSpec::end() const
{
    return PL_FileSpec_iterator();
}
