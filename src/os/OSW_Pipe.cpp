#include <BrindleBaseCore/files/PL_FileSpec.h>
#include <BrindleBaseCore/os/OSW_Pipe.h>
#include <BrindleBaseCore/os/UT_Id.h>

#include "OSW_PipeSocket.h"
#include "OSW_SysCalls.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <memory>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

// One side of a pipe.
struct Cell
{
    OSW_Handle handle = -1;
    // A message socket: one read returns at most one message.
    bool message = false;
    // Server end: the listening socket (the handle itself until a client is
    // accepted) and its file, removed when the side closes.
    int listener = -1;
    QByteArray socketPath;
    // The rest of a message that was longer than the reader's buffer.
    QByteArray pending;
    qsizetype pendingAt = 0;

    ~Cell()
    {
        if (listener != handle)
            osw_sys::closeFd(listener);
        osw_sys::closeFd(handle);
        if (!socketPath.isEmpty())
            ::unlink(socketPath.constData());
    }
};

bool isMessageSocket(int fd)
{
    int type = 0;
    socklen_t length = sizeof type;
    return ::getsockopt(fd, SOL_SOCKET, SO_TYPE, &type, &length) == 0 &&
           (type == SOCK_SEQPACKET || type == SOCK_DGRAM);
}

std::unique_ptr<Cell> makeCell(OSW_Handle handle, bool message)
{
    auto cell = std::make_unique<Cell>();
    cell->handle = handle;
    cell->message = message;
    return cell;
}

void printFailure(char const* format, int code)
{
    std::printf(format, code, osw_sys::errorText(code).constData());
    std::fflush(stdout);
}

QString fullName(PL_FileSpec const& name)
{
    return QString::fromUtf16(osw_pipe::NamespacePrefix) +
           QString::fromStdU16String(name.GetFilePath());
}

bool validMode(OSW_Pipe::Mode_t mode)
{
    return mode == OSW_Pipe::Read || mode == OSW_Pipe::Write;
}

// Receives one message, or its first `size` bytes when it is longer (the rest
// is kept in the cell for the next reads). Returns -1 with errno on failure;
// end of stream fails with EPIPE.
ssize_t receiveMessage(Cell& cell, char* buffer, size_t size)
{
    ssize_t length;
    do {
        length = ::recv(cell.handle, nullptr, 0, MSG_PEEK | MSG_TRUNC);
    } while (length < 0 && errno == EINTR);
    if (length < 0)
        return -1;
    if (length == 0) {
        pollfd p{cell.handle, POLLIN | POLLRDHUP, 0};
        if (::poll(&p, 1, 0) == 1 && (p.revents & (POLLHUP | POLLRDHUP))) {
            errno = EPIPE;
            return -1;
        }
    }
    bool const split = size_t(length) > size;
    if (split) {
        cell.pending.resize(length);
        cell.pendingAt = qsizetype(size);
    }
    char* target = split ? cell.pending.data() : buffer;
    ssize_t n;
    do {
        n = ::recv(cell.handle, target, size_t(length), 0);
    } while (n < 0 && errno == EINTR);
    if (n < 0) {
        cell.pending.clear();
        return -1;
    }
    if (split) {
        std::memcpy(buffer, target, size);
        return ssize_t(size);
    }
    return n;
}

} // namespace

struct OSW_Pipe::Private
{
    std::atomic<int> references{1};
    std::unique_ptr<Cell> read;
    std::unique_ptr<Cell> write;

    std::unique_ptr<Cell>& side(Mode_t mode) { return mode == Read ? read : write; }
    bool opened() const { return read || write; }

    int readData(void* buffer, quint64 size, qint64 timeoutMs);
};

OSW_Pipe::OSW_Pipe()
    : d(new Private)
{}

OSW_Pipe::~OSW_Pipe()
{
    if (--d->references == 0)
        delete d;
}

OSW_Pipe& OSW_Pipe::operator=(OSW_Pipe const& other)
{
    if (d != other.d) {
        ++other.d->references;
        // The record given up is not closed (sharing is shallow by design):
        // its handles are left to whoever else holds them.
        if (--d->references == 0) {
            for (auto* cell : {d->read.get(), d->write.get()}) {
                if (cell) {
                    cell->handle = cell->listener = -1;
                    cell->socketPath.clear();
                }
            }
            delete d;
        }
        d = other.d;
    }
    return *this;
}

QString OSW_Pipe::pipeFolder()
{
    QString const runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (!runtime.isEmpty() && QFileInfo(runtime).isDir())
        return runtime + QLatin1String("/brindle-pipes");
    return QDir::tempPath() + QLatin1String("/brindle-pipes-") + QString::number(::geteuid());
}

bool OSW_Pipe::assign(OSW_Handle const* readHandle, OSW_Handle const* writeHandle)
{
    if (d->opened())
        return false;
    if (readHandle)
        d->read = makeCell(*readHandle, isMessageSocket(*readHandle));
    if (writeHandle)
        d->write = makeCell(*writeHandle, isMessageSocket(*writeHandle));
    return true;
}

bool OSW_Pipe::createAnonymous()
{
    if (d->opened())
        return false;
    QString const name = QString::fromUtf16(osw_pipe::NamespacePrefix) +
                         QLatin1String("anonymous_pipe_") + QString::number(::getpid()) +
                         QLatin1Char('_') + UT_Id().toString();
    QByteArray const path = osw_pipe::socketPath(name);
    int listener = -1;
    if (int const error = osw_pipe::listenAt(path, &listener)) {
        printFailure("Failed to create pseudo anonymous pipe with error:\n(%i) '%s'\n", error);
        return false;
    }
    int client = -1, server = -1;
    int error = osw_pipe::connectTo(path, &client);
    if (error == 0)
        error = osw_pipe::acceptClient(listener, &server);
    // Both ends are connected: nobody else may open the name any more.
    ::unlink(path.constData());
    osw_sys::closeFd(listener);
    if (error != 0) {
        osw_sys::closeFd(client);
        printFailure("Failed to open pseudo anonymous pipe with error:\n(%i) '%s'\n", error);
        return false;
    }
    d->read = makeCell(server, true);
    d->write = makeCell(client, true);
    return true;
}

bool OSW_Pipe::createNamedPipe(PL_FileSpec const& name, Mode_t mode)
{
    if (d->opened() || !validMode(mode))
        return false;
    QByteArray const path = osw_pipe::socketPath(fullName(name));
    int listener = -1;
    if (int const error = osw_pipe::listenAt(path, &listener)) {
        printFailure("Failed to create named pipe with error:\n(%i) '%s'\n", error);
        return false;
    }
    auto cell = makeCell(listener, true);
    cell->listener = listener;
    cell->socketPath = path;
    d->side(mode) = std::move(cell);
    return true;
}

bool OSW_Pipe::openNamedPipe(PL_FileSpec const& name, Mode_t mode)
{
    if (!validMode(mode))
        return false;
    if (Cell* server = d->side(mode).get()) {
        // A server end already connected to its client counts as connected.
        if (server->listener < 0 || server->handle != server->listener)
            return true;
        int client = -1;
        if (int const error = osw_pipe::acceptClient(server->listener, &client)) {
            printFailure("Failed to connect to named pipe with error:\n(%i) '%s'\n", error);
            return false;
        }
        server->handle = client;
        return true;
    }
    int client = -1;
    if (int const error = osw_pipe::connectTo(osw_pipe::socketPath(fullName(name)), &client)) {
        printFailure("Failed to open named pipe with error:\n(%i) '%s'\n", error);
        return false;
    }
    d->side(mode) = makeCell(client, true);
    return true;
}

int OSW_Pipe::Private::readData(void* buffer, quint64 size, qint64 timeoutMs)
{
    if (!read)
        return -1;
    Cell& cell = *read;
    size_t const wanted = size > quint64(INT_MAX) ? size_t(INT_MAX) : size_t(size);
    if (cell.pendingAt < cell.pending.size()) {
        size_t const n = std::min(wanted, size_t(cell.pending.size() - cell.pendingAt));
        std::memcpy(buffer, cell.pending.constData() + cell.pendingAt, n);
        cell.pendingAt += qsizetype(n);
        if (cell.pendingAt == cell.pending.size()) {
            cell.pending.clear();
            cell.pendingAt = 0;
        }
        return int(n);
    }
    int error = 0;
    if (timeoutMs >= 0) {
        int const ready = osw_sys::waitReadable(cell.handle, timeoutMs);
        if (ready <= 0)
            error = ready == 0 ? osw_sys::ErrorTimeout : errno;
    }
    if (error == 0) {
        ssize_t n;
        if (cell.message)
            n = receiveMessage(cell, static_cast<char*>(buffer), wanted);
        else if ((n = osw_sys::readRetry(cell.handle, buffer, wanted)) == 0 && wanted > 0) {
            n = -1; // end of stream
            errno = EPIPE;
        }
        if (n >= 0)
            return int(n);
        error = errno;
    }
    std::printf("Failed to read in pipe with error (size = %d):\n(%i) '%s'\n", int(size), error,
                osw_sys::errorText(error).constData());
    std::fflush(stdout);
    return -1;
}

int OSW_Pipe::readData(void* buffer, quint64 size)
{
    return d->readData(buffer, size, -1);
}

int OSW_Pipe::readData(void* buffer, quint64 size, quint32 timeoutMs)
{
    return d->readData(buffer, size, timeoutMs == 0xFFFFFFFFu ? -1 : qint64(timeoutMs));
}

bool OSW_Pipe::writeData(void const* buffer, quint64 size)
{
    if (!d->write)
        return false;
    Cell const& cell = *d->write;
    auto const* bytes = static_cast<char const*>(buffer);
    bool ok;
    if (cell.message) {
        ssize_t n;
        do {
            n = ::send(cell.handle, bytes, size_t(size), MSG_NOSIGNAL);
        } while (n < 0 && errno == EINTR);
        ok = n >= 0 && quint64(n) == size;
    } else {
        quint64 done = 0;
        ssize_t n = 0;
        while (done < size &&
               (n = osw_sys::writeNoSigpipe(cell.handle, bytes + done, size_t(size - done))) > 0)
            done += quint64(n);
        ok = done == size;
    }
    if (!ok)
        printFailure("Failed to write in pipe with error:\n(%i) '%s'\n", errno);
    return ok;
}

bool OSW_Pipe::getReadHandle(OSW_Handle* handle) const
{
    if (!d->read || !handle)
        return false;
    *handle = d->read->handle;
    return true;
}

bool OSW_Pipe::getWriteHandle(OSW_Handle* handle) const
{
    if (!d->write || !handle)
        return false;
    *handle = d->write->handle;
    return true;
}

bool OSW_Pipe::isOpened() const
{
    return d->opened();
}
bool OSW_Pipe::isOpenedForReading() const
{
    return bool(d->read);
}
bool OSW_Pipe::isOpenedForWriting() const
{
    return bool(d->write);
}

void OSW_Pipe::closeRead()
{
    d->read.reset();
}
void OSW_Pipe::closeWrite()
{
    d->write.reset();
}

void OSW_Pipe::close()
{
    closeRead();
    closeWrite();
}
