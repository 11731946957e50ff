#include <BrindleBaseCore/files/PL_FileSpec.h>
#include <BrindleBaseCore/os/OSW_Pipe.h>

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

PL_FileSpec uniqueName(QString const& stem)
{
    static int counter = 0;
    QString const name = stem + QStringLiteral("_%1_%2").arg(::getpid()).arg(++counter);
    return PL_FileSpec(UT_String(name.toStdU16String()));
}

QByteArray readAll(OSW_Pipe& pipe, int size)
{
    QByteArray buffer(size, '\0');
    int const n = pipe.readData(buffer.data(), quint64(size));
    return n < 0 ? QByteArray("<failed>") : buffer.left(n);
}

// The files of the pipe folder whose names hold the text.
QStringList pipeFiles(QString const& text)
{
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

TEST(OSW_Pipe, NamedPipeServerAndClient)
{
    PL_FileSpec const name = uniqueName(QStringLiteral("named"));
    OSW_Pipe server, client;
    EXPECT_FALSE(server.createNamedPipe(name, static_cast<OSW_Pipe::Mode_t>(2)));
    EXPECT_FALSE(server.openNamedPipe(name, static_cast<OSW_Pipe::Mode_t>(-1)));
    EXPECT_FALSE(server.isOpened());
    ASSERT_TRUE(server.createNamedPipe(name, OSW_Pipe::Read));
    EXPECT_FALSE(server.createNamedPipe(name, OSW_Pipe::Read));

    QStringList const files = pipeFiles(QString::fromStdU16String(name.GetFilePath()));
    ASSERT_EQ(files.size(), 1);
    QFileInfo const file(OSW_Pipe::pipeFolder() + QLatin1Char('/') + files.first());
    EXPECT_EQ(file.permissions() & 0x0077, QFileDevice::Permissions());
    struct stat folder;
    ASSERT_EQ(::stat(QFile::encodeName(OSW_Pipe::pipeFolder()).constData(), &folder), 0);
    EXPECT_EQ(folder.st_mode & 0777, 0700u);

    // The server waits for its client, then reads what it wrote.
    QByteArray received;
    std::thread serverThread([&] {
        if (server.openNamedPipe(name, OSW_Pipe::Read))
            received = readAll(server, 64);
    });
    ::usleep(50 * 1000);
    ASSERT_TRUE(client.openNamedPipe(name, OSW_Pipe::Write));
    EXPECT_TRUE(client.isOpenedForWriting());
    EXPECT_FALSE(client.isOpenedForReading());
    EXPECT_TRUE(client.writeData("hello", 5));
    serverThread.join();
    EXPECT_EQ(received, QByteArray("hello"));
    // Connected already: a second wait succeeds at once.
    EXPECT_TRUE(server.openNamedPipe(name, OSW_Pipe::Read));

    server.close();
    EXPECT_TRUE(pipeFiles(QString::fromStdU16String(name.GetFilePath())).isEmpty());
    testing::internal::CaptureStdout();
    EXPECT_FALSE(client.writeData("x", 1));
    EXPECT_TRUE(testing::internal::GetCapturedStdout().rfind("Failed to write in pipe", 0) == 0);
}

TEST(OSW_Pipe, NamedPipeFailuresArePrinted)
{
    OSW_Pipe first, second, client;
    PL_FileSpec const name = uniqueName(QStringLiteral("busy"));
    ASSERT_TRUE(first.createNamedPipe(name, OSW_Pipe::Write));
    testing::internal::CaptureStdout();
    EXPECT_FALSE(second.createNamedPipe(name, OSW_Pipe::Write));
    EXPECT_FALSE(client.openNamedPipe(uniqueName(QStringLiteral("missing")), OSW_Pipe::Read));
    std::string const out = testing::internal::GetCapturedStdout();
    EXPECT_NE(out.find("Failed to create named pipe with error:\n(98) '"), std::string::npos)
        << out;
    EXPECT_NE(out.find("Failed to open named pipe with error:\n(2) '"), std::string::npos) << out;
    EXPECT_FALSE(second.isOpened());
    EXPECT_FALSE(client.isOpened());

    // The refused second server leaves the first one serving its clients.
    expectServes(first, name);
}

TEST(OSW_Pipe, NameOfAServerThatDiedIsFreeAgain)
{
    PL_FileSpec const name = uniqueName(QStringLiteral("orphan"));
    pid_t const child = ::fork();
    if (child == 0) {
        OSW_Pipe server;
        ::_exit(server.createNamedPipe(name, OSW_Pipe::Write) ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_EQ(status, 0);
    ASSERT_EQ(pipeFiles(QString::fromStdU16String(name.GetFilePath())).size(), 1);
    OSW_Pipe server;
    ASSERT_TRUE(server.createNamedPipe(name, OSW_Pipe::Write));
    expectServes(server, name);
}

TEST(OSW_Pipe, NamesWithSlashesAndLongNamesWork)
{
    for (QString const& stem : {QStringLiteral("dir/sub%name"), QString(300, QLatin1Char('n'))}) {
        PL_FileSpec const name = uniqueName(stem);
        OSW_Pipe server;
        ASSERT_TRUE(server.createNamedPipe(name, OSW_Pipe::Write));
        expectServes(server, name);
    }
}
