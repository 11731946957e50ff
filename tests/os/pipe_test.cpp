#include <BrindleBaseCore/os/OSW_Pipe.h>

#include <gtest/gtest.h>

#include <QtCore/QByteArrayList>
#include <QtCore/QElapsedTimer>

#include <fcntl.h>
#include <unistd.h>

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

} // namespace

TEST(OSW_Pipe, AnonymousPipeKeepsMessageBoundariesAndSharesOnAssignment)
{
    OSW_Pipe pipe;
    EXPECT_FALSE(pipe.isOpened());
    ASSERT_TRUE(pipe.createAnonymous());
    EXPECT_TRUE(pipe.isOpenedForReading());
    EXPECT_TRUE(pipe.isOpenedForWriting());
    OSW_Handle readHandle = -1, writeHandle = -1;
    EXPECT_TRUE(pipe.getReadHandle(&readHandle));
    EXPECT_TRUE(pipe.getWriteHandle(&writeHandle));
    EXPECT_FALSE(pipe.getReadHandle(nullptr));

    // A second creation is refused and changes nothing.
    EXPECT_FALSE(pipe.createAnonymous());
    OSW_Handle again = -1;
    pipe.getReadHandle(&again);
    EXPECT_EQ(again, readHandle);

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
    EXPECT_TRUE(pipe.isOpened());
    EXPECT_EQ(readAll(pipe, 16), QByteArray("shared"));

    pipe.close();
    EXPECT_FALSE(pipe.isOpened());
    EXPECT_FALSE(descriptorOpen(readHandle));
    EXPECT_FALSE(descriptorOpen(writeHandle));
}

TEST(OSW_Pipe, ReadTimesOutWithCode258)
{
    OSW_Pipe pipe;
    ASSERT_TRUE(pipe.createAnonymous());
    char buffer[10];
    testing::internal::CaptureStdout();
    QElapsedTimer timer;
    timer.start();
    EXPECT_EQ(pipe.readData(buffer, sizeof buffer, 100), -1);
    qint64 const elapsed = timer.elapsed();
    std::string const out = testing::internal::GetCapturedStdout();
    EXPECT_GE(elapsed, 95);
    EXPECT_LT(elapsed, 2000);
    EXPECT_EQ(out.rfind("Failed to read in pipe with error (size = 10):\n(258) '", 0), 0u) << out;

    // Data already there is returned at once.
    pipe.writeData("x", 1);
    EXPECT_EQ(pipe.readData(buffer, sizeof buffer, 100), 1);
}

TEST(OSW_Pipe, ClosedEndsFailWithoutHangingOrSignals)
{
    OSW_Pipe pipe;
    char buffer[8];
    EXPECT_EQ(pipe.readData(buffer, sizeof buffer), -1);
    EXPECT_FALSE(pipe.writeData("x", 1));

    ASSERT_TRUE(pipe.createAnonymous());
    pipe.writeData("last", 4);
    pipe.closeWrite();
    EXPECT_FALSE(pipe.isOpenedForWriting());
    EXPECT_TRUE(pipe.isOpened());
    EXPECT_EQ(readAll(pipe, 8), QByteArray("last"));
    testing::internal::CaptureStdout();
    EXPECT_EQ(pipe.readData(buffer, sizeof buffer), -1);
    EXPECT_EQ(pipe.readData(buffer, sizeof buffer, 5000), -1);
    std::string out = testing::internal::GetCapturedStdout();
    EXPECT_EQ(out.rfind("Failed to read in pipe with error (size = 8):\n(32) '", 0), 0u) << out;

    OSW_Pipe other;
    ASSERT_TRUE(other.createAnonymous());
    other.closeRead();
    testing::internal::CaptureStdout();
    EXPECT_FALSE(other.writeData("x", 1));
    out = testing::internal::GetCapturedStdout();
    EXPECT_EQ(out.rfind("Failed to write in pipe with error:\n(32) '", 0), 0u) << out;
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
    testing::internal::CaptureStdout();
    EXPECT_EQ(readAll(pipe, 4), QByteArray("<failed>"));
    testing::internal::GetCapturedStdout();
    pipe.close();
    EXPECT_FALSE(descriptorOpen(fds[0]));

    OSW_Pipe readOnly;
    int const fd = ::dup(0);
    EXPECT_TRUE(readOnly.assign(&fd, nullptr));
    EXPECT_TRUE(readOnly.isOpenedForReading());
    EXPECT_FALSE(readOnly.isOpenedForWriting());
}
