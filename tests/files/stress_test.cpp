// Processes killed in the middle of saves, and processes competing for a lock.
#include <BrindleBaseCore/files/PL_FileUtil.h>

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
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
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    QByteArray const all = file.readAll();
    qsizetype const eol = all.indexOf('\n');
    if (!all.startsWith('V') || eol < 0)
        return false;
    QList<QByteArray> const header = all.mid(1, eol - 1).split(' ');
    if (header.size() != 2)
        return false;
    return all == version(header[0].toInt());
}

bool writeAll(PL_FileSpec const& spec, QByteArray const& data)
{
    int const fd = spec.open(O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (fd < 0)
        return false;
    qsizetype done = 0;
    while (done < data.size()) {
        ssize_t const n = ::write(fd, data.constData() + done, size_t(data.size() - done));
        if (n <= 0)
            break;
        done += n;
    }
    ::close(fd);
    return done == data.size();
}

[[noreturn]] void saveForever(PL_FileSpec const& file, int first)
{
    for (int n = first;; ++n) {
        if (!PL_FileUtil::BackupFile(file))
            ::_exit(2);
        if (!writeAll(PL_FileUtil::NewFileSpec(file), version(n)))
            ::_exit(3);
        if (!PL_FileUtil::RenameNewFile(file))
            ::_exit(4);
    }
}

TEST(DataSafety, KilledSavesAlwaysLeaveACompleteVersion)
{
    QTemporaryDir dir;
    QString const path = dir.path() + "/scene.xstage";
    PL_FileSpec const file{UT_String(path)};
    ASSERT_TRUE(writeAll(file, version(0)));
    std::mt19937 random(12345);
    int killedMidway = 0;
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
        bool const backupOk = isComplete(path + QLatin1Char('~'));
        ASSERT_TRUE(fileOk || backupOk) << "round " << round;
        if (QFile::exists(path) && !fileOk)
            FAIL() << "a torn file in round " << round;
        killedMidway += fileOk ? 0 : 1;
    }
    // Not a requirement, but the kills should land between the steps at times.
    RecordProperty("killedBetweenBackupAndRename", killedMidway);
}

TEST(LockStress, ProcessesCountExactlyUnderAnExclusiveLock)
{
    QTemporaryDir dir;
    QString const lock = dir.path() + "/counter.lock";
    QString const counter = dir.path() + "/counter";
    ASSERT_TRUE(QFile(counter).open(QIODevice::WriteOnly));
    constexpr int processes = 4, increments = 250;
    std::vector<pid_t> children;
    for (int p = 0; p < processes; ++p) {
        pid_t const child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            QByteArray const name = QFile::encodeName(counter);
            for (int i = 0; i < increments; ++i) {
                PL_FileUtil::FileLocker locker(lock, PL_FileUtil::ExclusiveLock);
                if (!locker.Locked())
                    ::_exit(2);
                char text[32] = {};
                int fd = ::open(name.constData(), O_RDWR);
                ssize_t const n = ::read(fd, text, sizeof text - 1);
                long const value = n > 0 ? std::atol(text) : 0;
                int const length = std::snprintf(text, sizeof text, "%ld", value + 1);
                ::usleep(i % 7 == 0 ? 50 : 0); // widen the window a race would need
                if (::pwrite(fd, text, size_t(length), 0) != length)
                    ::_exit(3);
                ::close(fd);
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
    QFile result(counter);
    ASSERT_TRUE(result.open(QIODevice::ReadOnly));
    EXPECT_EQ(result.readAll().toInt(), processes * increments);
}

} // namespace
