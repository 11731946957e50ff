// Processes killed in the middle of saves, and processes competing for a lock.
#include <BrindleBaseCore/files/PL_FileUtil.h>

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include "FileContents.h"

#include <csignal>
#include <random>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// A version is "V<n> <size>\n", <size> payload bytes, then "END\n": a file
// holds a complete version only when all three are there.
QByteArray version(int n)
{
    QByteArray payload(48 * 1024 + n % 997, char('a' + n % 26));
    return "V" + QByteArray::number(n) + ' ' + QByteArray::number(payload.size()) + '\n' + payload +
           "END\n";
}

bool isComplete(QString const& path)
{
    QByteArray const all = files_test::readFile(path);
    return all.startsWith('V') && all == version(all.mid(1, all.indexOf(' ') - 1).toInt());
}

[[noreturn]] void saveForever(PL_FileSpec const& file, int first)
{
    for (int n = first;; ++n) {
        QFile next(PL_FileUtil::NewFileSpec(file).GetQFilePath());
        if (!PL_FileUtil::BackupFile(file) || !next.open(QIODevice::WriteOnly) ||
            next.write(version(n)) < 0)
            ::_exit(2);
        next.close();
        if (!PL_FileUtil::RenameNewFile(file))
            ::_exit(3);
    }
}

TEST(DataSafety, KilledSavesAlwaysLeaveACompleteVersion)
{
    QTemporaryDir dir;
    QString const path = dir.path() + "/scene.xstage";
    PL_FileSpec const file{UT_String(path)};
    files_test::writeFile(path, version(0));
    std::mt19937 random(12345);
    for (int round = 1; round <= 300; ++round) {
        pid_t const child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0)
            saveForever(file, round * 1000);
        ::usleep(std::uniform_int_distribution<useconds_t>(0, 3000)(random));
        ::kill(child, SIGKILL);
        int status = 0;
        ::waitpid(child, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status))
            << "the saver stopped by itself with " << WEXITSTATUS(status);
        bool const fileOk = isComplete(path);
        ASSERT_TRUE(fileOk || isComplete(path + QLatin1Char('~'))) << "round " << round;
        ASSERT_TRUE(fileOk || !QFile::exists(path)) << "a torn file in round " << round;
    }
}

TEST(LockStress, ProcessesCountExactlyUnderAnExclusiveLock)
{
    QTemporaryDir dir;
    QString const lock = dir.path() + "/counter.lock";
    QString const counter = dir.path() + "/counter";
    files_test::writeFile(counter, "0");
    constexpr int processes = 4, increments = 250;
    std::vector<pid_t> children;
    for (int p = 0; p < processes; ++p) {
        pid_t const child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            for (int i = 0; i < increments; ++i) {
                PL_FileUtil::FileLocker locker(lock, PL_FileUtil::ExclusiveLock);
                QFile file(counter); // closed, so written out, before the lock is released
                if (!locker.Locked() || !file.open(QIODevice::ReadWrite))
                    ::_exit(2);
                QByteArray const next = QByteArray::number(file.readAll().toInt() + 1);
                ::usleep(i % 7 == 0 ? 50 : 0); // widen the window a race would need
                if (!file.seek(0) || file.write(next) != next.size())
                    ::_exit(3);
            }
            ::_exit(0);
        }
        children.push_back(child);
    }
    for (pid_t child : children) {
        int status = 0;
        ::waitpid(child, &status, 0);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
    EXPECT_EQ(files_test::readFile(counter).toInt(), processes * increments);
}

} // namespace
