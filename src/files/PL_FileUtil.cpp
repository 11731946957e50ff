#include <BrindleBaseCore/app/TUMessage.h>
#include <BrindleBaseCore/files/PL_FileUtil.h>

#include <QtCore/QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace PL_FileUtil {

namespace {
PL_FileSpec sibling(PL_FileSpec const& file, char16_t mark)
{
    return PL_FileSpec(UT_String(file.GetQFilePath() + QChar(mark)));
}
} // namespace

PL_FileSpec BackupFileSpec(PL_FileSpec const& file)
{
    return sibling(file, u'~');
}

PL_FileSpec NewFileSpec(PL_FileSpec const& file)
{
    return sibling(file, u'+');
}

bool BackupFile(PL_FileSpec const& file)
{
    PL_FileSpec current(file.GetFilePath());
    if (!current.Exists())
        return true; // nothing to keep
    PL_FileSpec const backup = BackupFileSpec(file);
    if (backup.Exists() && backup.Delete() != 0)
        return false;
    return current.Rename(backup.GetFilePath()) == 0;
}

bool RestoreBackupFile(PL_FileSpec const& file, bool overwrite)
{
    PL_FileSpec const backup = BackupFileSpec(file);
    if (!backup.Exists())
        return false;
    return backup.HardLink(PL_FileSpec(file.GetFilePath()), overwrite);
}

bool DeleteBackupFile(PL_FileSpec const& file)
{
    PL_FileSpec const backup = BackupFileSpec(file);
    if (!backup.Exists())
        return true;
    return backup.Delete() == 0;
}

bool RenameNewFile(PL_FileSpec const& file)
{
    PL_FileSpec newFile = NewFileSpec(file);
    PL_FileSpec const target(file.GetFilePath());
    // A present target is deliberately never replaced here.
    if (!newFile.Exists() || target.Exists())
        return false;
    return newFile.Rename(target.GetFilePath()) == 0;
}

bool CanWriteFile(PL_FileSpec const& file)
{
    return PL_FileSpec(file.GetFilePath()).TestAccess(true);
}

// --- FileLocker ----------------------------------------------------------------

namespace {
// The locked byte lies far beyond any lock file's content.
constexpr off_t kLockOffset = 0x3FFFFFFE;

bool setLock(int fd, short type, bool wait)
{
    struct flock request = {};
    request.l_type = type;
    request.l_whence = SEEK_SET;
    request.l_start = kLockOffset;
    request.l_len = 1;
    int result;
    do {
        result = ::fcntl(fd, wait ? F_OFD_SETLKW : F_OFD_SETLK, &request);
    } while (result != 0 && errno == EINTR);
    return result == 0;
}
} // namespace

struct FileLocker::Private
{
    int fd = -1;
    bool locked = false;
    QString path;

    ~Private()
    {
        if (fd < 0)
            return;
        if (locked)
            setLock(fd, F_UNLCK, false);
        ::close(fd);
    }
};

FileLocker::FileLocker() = default;

FileLocker::FileLocker(QString const& path, LockType type)
{
    Lock(path, type, true);
}

FileLocker::FileLocker(FileLocker const& other) = default;

FileLocker& FileLocker::operator=(FileLocker const& other) = default;

FileLocker::~FileLocker() = default;

bool FileLocker::Lock(QString const& path, LockType type, bool wait)
{
    if (type != SharedLock && type != ExclusiveLock) {
        MSG_Scope report("PL_FileUtil::FileLocker", "Invalid lock type", MSG_Scope::Trace,
                         ErrorCode::NoError);
        return false;
    }
    Unlock();
    // Lock files are named in Latin-1 only (deliberate): other names are refused.
    if (path.isEmpty())
        return false;
    for (QChar c : path) {
        if (c.unicode() > 0xFF || c.unicode() == 0)
            return false;
    }
    QByteArray const native = QFile::encodeName(path);
    if (::access(native.constData(), F_OK) == 0 && ::access(native.constData(), R_OK | W_OK) != 0)
        ::chmod(native.constData(), 0600);
    int fd;
    do {
        fd = ::open(native.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    } while (fd < 0 && errno == EINTR);
    if (fd < 0)
        return false;
    d = std::make_shared<Private>();
    d->fd = fd;
    d->path = path;
    d->locked = setLock(fd, type == ExclusiveLock ? F_WRLCK : F_RDLCK, wait);
    return d->locked;
}

void FileLocker::Unlock()
{
    d.reset();
}

bool FileLocker::Locked() const
{
    return d && d->fd >= 0;
}

QString FileLocker::path() const
{
    return d ? d->path : QString();
}

} // namespace PL_FileUtil
