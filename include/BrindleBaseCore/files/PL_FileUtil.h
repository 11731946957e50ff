/// @file
/// Backups, new files for safe replacement, and lock files.
#pragma once

#include <BrindleBaseCore/Global.h>
#include <BrindleBaseCore/files/PL_FileSpec.h>

#include <QtCore/QString>

#include <memory>

// A save that keeps the previous version:
//   PL_FileUtil::BackupFile(file);            // file -> file~
//   write PL_FileUtil::NewFileSpec(file);      // file+
//   PL_FileUtil::RenameNewFile(file);          // file+ -> file
// At every moment either the file or its backup holds a complete version.
/// Backups, new files for safe replacement, and lock files.
namespace PL_FileUtil {

/// Keeps the file as its backup (name + "~"), replacing an older backup. True
/// when there was nothing to keep; afterwards the file itself no longer exists.
BRINDLE_EXPORT bool BackupFile(PL_FileSpec const& file);
/// Copies the backup onto the file (kept when it exists unless `overwrite`);
/// false when there is no backup. The backup remains.
BRINDLE_EXPORT bool RestoreBackupFile(PL_FileSpec const& file, bool overwrite);
/// True when there is no backup left.
BRINDLE_EXPORT bool DeleteBackupFile(PL_FileSpec const& file);
/// The file specification of the backup name (name + "~").
BRINDLE_EXPORT PL_FileSpec BackupFileSpec(PL_FileSpec const& file);
/// The file specification of the new-file name (name + "+").
BRINDLE_EXPORT PL_FileSpec NewFileSpec(PL_FileSpec const& file);
/// Renames the new file to the file's name, only when the new file exists and
/// the file does not: a present file is deliberately never replaced here.
BRINDLE_EXPORT bool RenameNewFile(PL_FileSpec const& file);
/// Whether the process may write the file, read afresh from the file system.
BRINDLE_EXPORT bool CanWriteFile(PL_FileSpec const& file);

/// The kinds of FileLocker lock.
enum LockType : int
{
    SharedLock = 0,   ///< Many holders at once; excludes exclusive lockers.
    ExclusiveLock = 1 ///< One holder; excludes every other locker.
};

/// An advisory lock on a lock file, held by this object: it excludes other
/// lockers of the same file in this process as in others, and a process that
/// dies loses it. The lock is on one byte far beyond the file's content, so
/// the lock file itself can still be read and written.
/// Copies share the lock, which is released when the last of them unlocks.
class BRINDLE_EXPORT FileLocker
{
public:
    FileLocker();
    /// Locks at once, waiting for the lock.
    FileLocker(QString const& path, LockType type);
    /// Shares the lock of `other`.
    FileLocker(FileLocker const& other);
    /// Shares the lock of `other`, giving up this object's share of its own.
    FileLocker& operator=(FileLocker const& other);
    ~FileLocker();

    /// Opens (creating it with mode 0600) and locks the file; with `wait`
    /// false a held lock is refused at once. Paths outside Latin-1 are not
    /// supported (false). An invalid type is reported as a trace.
    bool Lock(QString const& path, LockType type, bool wait);
    /// Gives up this object's share; the lock is released with the last share.
    void Unlock();
    /// True while the lock file is open, which deliberately includes the state
    /// after a refused lock: use the result of Lock.
    bool Locked() const;
    /// The lock file's path; empty before Lock().
    QString path() const;

private:
    struct Private;
    std::shared_ptr<Private> d;
};

} // namespace PL_FileUtil
