#include <BrindleBaseCore/files/PL_FileSpec.h>
#include <BrindleBaseCore/os/OSW_Pipe.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QtCore/QByteArrayList>
#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>

#include <thread>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using testing::HasSubstr;
using testing::StartsWith;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

QByteArray readAll(OSW_Pipe& pipe, int size)
{
    QByteArray buffer(size, '\0');
    int const n = pipe.readData(buffer.data(), quint64(size));
    return n < 0 ? QByteArray("<failed>") : buffer.left(n);
}

bool descriptorOpen(int fd)
{
    return ::fcntl(fd, F_GETFD) != -1;
}

PL_FileSpec uniqueName(QString const& stem)
{
    static int counter = 0;
    QString const name = stem + QStringLiteral("_%1_%2").arg(::getpid()).arg(++counter);
    return PL_FileSpec(UT_String(name.toStdU16String()));
}

// The files of the pipe folder named after `name` (plain names only).
QStringList pipeFiles(PL_FileSpec const& name)
{
    QString const text = QString::fromStdU16String(name.GetFilePath());
    return QDir(OSW_Pipe::pipeFolder())
        .entryList({QLatin1Char('*') + text + QLatin1Char('*')}, QDir::System | QDir::Files);
}

// A client connects to the created pipe, the server takes it and sends "ok".
void expectServes(OSW_Pipe& server, PL_FileSpec const& name)
{
    OSW_Pipe client;
    ASSERT_TRUE(client.openNamedPipe(name, OSW_Pipe::Read));
    ASSERT_TRUE(server.openNamedPipe(name, OSW_Pipe::Write));
    EXPECT_TRUE(server.writeData("ok", 2));
    EXPECT_EQ(readAll(client, 8), QByteArray("ok"));
}

} // namespace

TEST(OSW_Pipe, AnonymousPipeKeepsMessageBoundariesAndSharesOnAssignment)
{
    OSW_Pipe pipe;
    ASSERT_TRUE(pipe.createAnonymous());
    EXPECT_TRUE(pipe.isOpenedForReading() && pipe.isOpenedForWriting());
    OSW_Handle readHandle = -1, writeHandle = -1, again = -1;
    EXPECT_TRUE(pipe.getReadHandle(&readHandle) && pipe.getWriteHandle(&writeHandle));
    EXPECT_FALSE(pipe.getReadHandle(nullptr));
    // A second creation is refused and changes nothing.
    EXPECT_FALSE(pipe.createAnonymous());
    EXPECT_TRUE(pipe.getReadHandle(&again) && again == readHandle);

    // Each write is one message, the empty one included; a message longer than
    // the buffer comes in parts, each one a success.
    for (QByteArray const message : {"abc", "defgh", "", "0123456789", "next"})
        EXPECT_TRUE(pipe.writeData(message.constData(), quint64(message.size())));
    QByteArrayList got;
    for (int size : {100, 100, 100, 4, 4, 4, 100})
        got << readAll(pipe, size);
    EXPECT_EQ(got, (QByteArrayList{"abc", "defgh", "", "0123", "4567", "89", "next"}));

    // Assignment shares the record: the copy's end does not close the handles.
    {
        OSW_Pipe copy;
        copy = pipe;
        EXPECT_TRUE(copy.writeData("shared", 6));
    }
    EXPECT_EQ(readAll(pipe, 16), QByteArray("shared"));

    pipe.close();
    EXPECT_FALSE(pipe.isOpened());
    EXPECT_FALSE(descriptorOpen(readHandle) || descriptorOpen(writeHandle));
}

// A read times out with code 258, an end of stream fails with 32 at once, and so
// does a write without reader; no call hangs or raises a signal.
TEST(OSW_Pipe, FailuresPrintTheirCodeWithoutHangingOrSignals)
{
    OSW_Pipe pipe;
    char buffer[8];
    EXPECT_EQ(pipe.readData(buffer, sizeof buffer), -1); // nothing opened
    EXPECT_FALSE(pipe.writeData("x", 1));

    ASSERT_TRUE(pipe.createAnonymous());
    CaptureStdout();
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(pipe.readData(buffer, sizeof buffer, 100), -1);
    qint64 const elapsed = timer.elapsed();
    EXPECT_THAT(GetCapturedStdout(),
                StartsWith("Failed to read in pipe with error (size = 8):\n(258) '"));
    EXPECT_GE(elapsed, 95);
    EXPECT_LT(elapsed, 2000);

    // What is there comes at once, timed or not; then the stream ends.
    pipe.writeData("x", 1);
    pipe.writeData("last", 4);
    pipe.closeWrite();
    EXPECT_TRUE(pipe.isOpened() && !pipe.isOpenedForWriting());
    EXPECT_EQ(pipe.readData(buffer, sizeof buffer, 100), 1);
    EXPECT_EQ(readAll(pipe, 8), QByteArray("last"));
    CaptureStdout();
    EXPECT_EQ(pipe.readData(buffer, sizeof buffer), -1);
    EXPECT_EQ(pipe.readData(buffer, sizeof buffer, 5000), -1);
    EXPECT_THAT(GetCapturedStdout(),
                StartsWith("Failed to read in pipe with error (size = 8):\n(32) '"));

    OSW_Pipe other;
    ASSERT_TRUE(other.createAnonymous());
    other.closeRead();
    CaptureStdout();
    EXPECT_FALSE(other.writeData("x", 1));
    EXPECT_THAT(GetCapturedStdout(), StartsWith("Failed to write in pipe with error:\n(32) '"));
}

TEST(OSW_Pipe, AssignAdoptsByteStreamHandles)
{
    int fds[2];
    ASSERT_EQ(::pipe(fds), 0);
    OSW_Pipe pipe;
    ASSERT_TRUE(pipe.assign(&fds[0], &fds[1]));
    EXPECT_FALSE(pipe.assign(&fds[0], nullptr));
    EXPECT_TRUE(pipe.writeData("abcdef", 6));
    EXPECT_EQ(readAll(pipe, 4), QByteArray("abcd"));
    EXPECT_EQ(readAll(pipe, 4), QByteArray("ef"));
    pipe.closeWrite();
    EXPECT_FALSE(descriptorOpen(fds[1]));
    CaptureStdout();
    EXPECT_EQ(readAll(pipe, 4), QByteArray("<failed>"));
    GetCapturedStdout();
    pipe.close();
    EXPECT_FALSE(descriptorOpen(fds[0]));

    // Closed, it adopts again, one side alone.
    int const fd = ::dup(0);
    EXPECT_TRUE(pipe.assign(&fd, nullptr));
    EXPECT_TRUE(pipe.isOpenedForReading() && !pipe.isOpenedForWriting());
}

TEST(OSW_Pipe, NamedPipeServerAndClient)
{
    PL_FileSpec const name = uniqueName(QStringLiteral("named"));
    OSW_Pipe server, client;
    EXPECT_FALSE(server.createNamedPipe(name, static_cast<OSW_Pipe::Mode_t>(2)));
    EXPECT_FALSE(server.openNamedPipe(name, static_cast<OSW_Pipe::Mode_t>(-1)));
    EXPECT_FALSE(server.isOpened());
    ASSERT_TRUE(server.createNamedPipe(name, OSW_Pipe::Read));
    EXPECT_FALSE(server.createNamedPipe(name, OSW_Pipe::Read));

    // The folder and the pipe's file are the owner's alone.
    auto mode = [](QString const& path) {
        struct stat info = {};
        return ::stat(QFile::encodeName(path).constData(), &info) == 0 ? info.st_mode & 0777 : ~0u;
    };
    QStringList const files = pipeFiles(name);
    ASSERT_EQ(files.size(), 1);
    EXPECT_EQ(mode(OSW_Pipe::pipeFolder()), 0700u);
    EXPECT_EQ(mode(OSW_Pipe::pipeFolder() + QLatin1Char('/') + files.first()) & 0077, 0u);

    // The server waits for its client, then reads what it wrote.
    QByteArray received;
    std::thread serverThread([&] {
        if (server.openNamedPipe(name, OSW_Pipe::Read))
            received = readAll(server, 64);
    });
    ::usleep(50 * 1000);
    ASSERT_TRUE(client.openNamedPipe(name, OSW_Pipe::Write));
    EXPECT_TRUE(client.isOpenedForWriting() && !client.isOpenedForReading());
    EXPECT_TRUE(client.writeData("hello", 5));
    serverThread.join();
    EXPECT_EQ(received, QByteArray("hello"));
    // Connected already: a second wait succeeds at once.
    EXPECT_TRUE(server.openNamedPipe(name, OSW_Pipe::Read));

    server.close();
    EXPECT_TRUE(pipeFiles(name).isEmpty());
    CaptureStdout();
    EXPECT_FALSE(client.writeData("x", 1));
    EXPECT_THAT(GetCapturedStdout(), StartsWith("Failed to write in pipe"));
}

TEST(OSW_Pipe, NamedPipeFailuresArePrinted)
{
    OSW_Pipe first, second, client;
    PL_FileSpec const name = uniqueName(QStringLiteral("busy"));
    ASSERT_TRUE(first.createNamedPipe(name, OSW_Pipe::Write));
    CaptureStdout();
    EXPECT_FALSE(second.createNamedPipe(name, OSW_Pipe::Write));
    EXPECT_FALSE(client.openNamedPipe(uniqueName(QStringLiteral("missing")), OSW_Pipe::Read));
    std::string const out = GetCapturedStdout();
    EXPECT_THAT(out, HasSubstr("Failed to create named pipe with error:\n(98) '"));
    EXPECT_THAT(out, HasSubstr("Failed to open named pipe with error:\n(2) '"));
    EXPECT_FALSE(second.isOpened() || client.isOpened());

    // The refused second server leaves the first one serving its clients.
    expectServes(first, name);
}

// A server that died leaves its file behind, yet its name is free again; names
// with slashes and long names work as well.
TEST(OSW_Pipe, NamesOfDeadServersSlashedAndLongNamesWork)
{
    for (QString const& stem : {QStringLiteral("orphan"), QStringLiteral("dir/sub%name"),
                                QString(300, QLatin1Char('n'))}) {
        PL_FileSpec const name = uniqueName(stem);
        pid_t const child = ::fork();
        if (child == 0) {
            OSW_Pipe server;
            ::_exit(server.createNamedPipe(name, OSW_Pipe::Write) ? 0 : 1);
        }
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        ASSERT_EQ(status, 0) << stem.left(20).toStdString();
        // The file is left behind (seen by name: those of the others are escaped or hashed).
        ASSERT_TRUE(stem != QLatin1String("orphan") || pipeFiles(name).size() == 1);
        OSW_Pipe server;
        ASSERT_TRUE(server.createNamedPipe(name, OSW_Pipe::Write)) << stem.left(20).toStdString();
        expectServes(server, name);
    }
}
