// Backups, new files and lock files.
#include <BrindleBaseCore/app/TUMessage.h>
#include <BrindleBaseCore/files/PL_FileUtil.h>

#include <QtCore/QFile>

#include <gtest/gtest.h>

#include "FileContents.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace PL_FileUtil;

using FileUtilTest = files_test::FolderTest;

TEST_F(FileUtilTest, BackupRestoreDeleteAndRenameNewFile)
{
    EXPECT_TRUE(BackupFile(spec("f")));
    EXPECT_FALSE(QFile::exists(at("f~"))) << "nothing to keep, nothing made";
    EXPECT_FALSE(RestoreBackupFile(spec("f"), true)) << "no backup";
    write("f", "v1");
    EXPECT_TRUE(BackupFile(spec("f")));
    EXPECT_FALSE(QFile::exists(at("f")));
    write("f", "v2");
    EXPECT_TRUE(BackupFile(spec("f")));
    EXPECT_EQ(read("f~"), "v2") << "one generation is kept";

    write("f", "new");
    EXPECT_FALSE(RestoreBackupFile(spec("f"), false));
    EXPECT_EQ(read("f"), "new");
    EXPECT_TRUE(RestoreBackupFile(spec("f"), true));
    EXPECT_EQ(read("f") + '|' + read("f~"), "v2|v2") << "the backup remains";
    EXPECT_TRUE(DeleteBackupFile(spec("f")));
    EXPECT_FALSE(QFile::exists(at("f~")));
    EXPECT_TRUE(DeleteBackupFile(spec("f")));

    // The new file never replaces a target that is there.
    EXPECT_FALSE(RenameNewFile(spec("x"))) << "no new file";
    write("x", "target");
    write("x+", "new");
    EXPECT_FALSE(RenameNewFile(spec("x")));
    EXPECT_EQ(read("x"), "target");
    QFile::remove(at("x"));
    EXPECT_TRUE(RenameNewFile(spec("x")));
    EXPECT_EQ(read("x"), "new");
    EXPECT_FALSE(QFile::exists(at("x+")));
    EXPECT_TRUE(CanWriteFile(spec("x")));
    EXPECT_FALSE(CanWriteFile(spec("missing/x")));
}

TEST_F(FileUtilTest, LockersAndTheirCopiesExcludeOthersInOneProcess)
{
    QString const path = at("scene.lock");
    auto first = std::make_unique<FileLocker>();
    EXPECT_TRUE(first->Lock(path, ExclusiveLock, false));
    EXPECT_EQ(QFileInfo(path).permissions() & (QFile::ReadOther | QFile::WriteOther), 0);

    FileLocker second;
    EXPECT_FALSE(second.Lock(path, ExclusiveLock, false));
    EXPECT_TRUE(second.Locked()) << "open after a refused lock, deliberately";
    EXPECT_FALSE(second.Lock(path, SharedLock, false));

    // The lock byte lies beyond the content: the file stays readable and writable.
    write("scene.lock", "data");
    EXPECT_EQ(read("scene.lock"), "data");

    // A copy shares the lock, which outlives the original.
    FileLocker copy;
    copy = *first;
    first.reset();
    EXPECT_FALSE(second.Lock(path, SharedLock, false)) << "the copy still holds it";
    copy.Unlock();
    EXPECT_FALSE(copy.Locked());
    EXPECT_TRUE(second.Lock(path, SharedLock, false));
    FileLocker third(path, SharedLock);
    EXPECT_TRUE(third.Locked());
    EXPECT_FALSE(copy.Lock(path, ExclusiveLock, false));
}

// Keeps the reports instead of writing them.
struct CapturingChannel : TUMessage
{
    using TUMessage::TUMessage;
    void writeLog(char type, QString const& text, QString const&, bool) override
    {
        reports << QLatin1Char(type) + QStringLiteral(":") + text;
    }
    QStringList reports;
};

TEST_F(FileUtilTest, RefusedInputs)
{
    auto* channel = new CapturingChannel(QStringLiteral("test"), false, true);
    TUMessage::setInstance(channel);
    FileLocker locker;
    EXPECT_FALSE(locker.Lock(at("bad.lock"), static_cast<LockType>(2), false));
    EXPECT_EQ(channel->reports, QStringList{"T:Invalid lock type"});
    TUMessage::releaseInstance();
    EXPECT_FALSE(locker.Locked());
    EXPECT_FALSE(QFile::exists(at("bad.lock")));
    EXPECT_FALSE(locker.Lock(QString(), ExclusiveLock, false));
    EXPECT_FALSE(locker.Lock(at(QString::fromUtf8("日本.lock")), ExclusiveLock, false));
    EXPECT_FALSE(locker.Lock(at("no/folder.lock"), ExclusiveLock, false));
    EXPECT_FALSE(locker.Locked());
    // Latin-1 names are fine.
    EXPECT_TRUE(locker.Lock(at(QString::fromUtf8("café.lock")), ExclusiveLock, false));
}

TEST_F(FileUtilTest, UnreadableLockFileIsRepaired)
{
    // Root may read and write any file: run the locker as an ordinary user then.
    QByteArray const path = QFile::encodeName(at("ro.lock"));
    pid_t const child = ::fork();
    if (child == 0) {
        if (::geteuid() == 0) {
            ::chmod(QFile::encodeName(dir.path()).constData(), 0777);
            if (::setgid(65534) != 0 || ::setuid(65534) != 0)
                ::_exit(3);
        }
        ::close(::open(path.constData(), O_CREAT | O_WRONLY, 0400));
        FileLocker locker;
        ::_exit(locker.Lock(at("ro.lock"), ExclusiveLock, false) ? 0 : 1);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "status " << status;
    struct stat st;
    ASSERT_EQ(::stat(path.constData(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0600u);
}

TEST_F(FileUtilTest, DeadProcessLosesItsLock)
{
    QString const path = at("dead.lock");
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    pid_t const child = ::fork();
    if (child == 0) {
        FileLocker locker;
        char ok = locker.Lock(path, ExclusiveLock, false) ? 1 : 0;
        (void)!::write(ready[1], &ok, 1);
        ::pause(); // killed while holding the lock
        ::_exit(0);
    }
    char ok = 0;
    ASSERT_EQ(::read(ready[0], &ok, 1), 1);
    ASSERT_EQ(ok, 1);
    FileLocker mine;
    EXPECT_FALSE(mine.Lock(path, SharedLock, false)) << "held by the other process";
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    EXPECT_TRUE(mine.Lock(path, ExclusiveLock, false));
    ::close(ready[0]);
    ::close(ready[1]);
}

} // namespace
