#include "OSW_PipeSocket.h"

#include <BrindleBaseCore/os/OSW_Pipe.h>

#include "OSW_SysCalls.h"

#include <QtCore/QCryptographicHash>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <cerrno>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace osw_pipe {

namespace {

bool fillAddress(QByteArray const& path, sockaddr_un* address)
{
    std::memset(address, 0, sizeof *address);
    address->sun_family = AF_UNIX;
    if (path.isEmpty() || size_t(path.size()) >= sizeof address->sun_path)
        return false;
    std::memcpy(address->sun_path, path.constData(), size_t(path.size()));
    return true;
}

int newSocket(int* fd)
{
    *fd = ::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
    return *fd < 0 ? errno : 0;
}

// Whether a socket listens at the path, from the kernel's table of Unix
// sockets: asking by connecting would leave a dead connection in a live
// server's queue, for its next client to get. Without the table (no /proc),
// a connection it is.
bool serverAlive(QByteArray const& path, sockaddr_un const& address)
{
    QFile table(QStringLiteral("/proc/net/unix"));
    if (table.open(QIODevice::ReadOnly)) {
        // "Num RefCount Protocol Flags Type St Inode Path"; flag 0x10000 marks a
        // listening socket.
        table.readLine();
        while (!table.atEnd()) {
            QByteArray line = table.readLine();
            if (line.endsWith('\n'))
                line.chop(1);
            // Seven fields padded with spaces, one space, then the path (which
            // may hold spaces itself).
            QByteArray fields[7];
            qsizetype at = 0;
            for (QByteArray& field : fields) {
                while (at < line.size() && line[at] == ' ')
                    ++at;
                qsizetype const end = line.indexOf(' ', at);
                field = line.mid(at, end < 0 ? -1 : end - at);
                at = end < 0 ? line.size() : end;
            }
            if (line.mid(at + 1) == path && (fields[3].toUInt(nullptr, 16) & 0x10000u) != 0)
                return true;
        }
        return false;
    }
    int probe = -1;
    if (newSocket(&probe) != 0)
        return true;
    bool const alive =
        ::connect(probe, reinterpret_cast<sockaddr const*>(&address), sizeof address) == 0 ||
        errno != ECONNREFUSED;
    osw_sys::closeFd(probe);
    return alive;
}

} // namespace

QByteArray socketPath(QString const& fullName)
{
    QString name = fullName;
    if (name.startsWith(QStringView(NamespacePrefix)))
        name.remove(0, qsizetype(std::size(NamespacePrefix) - 1));
    name.replace(QLatin1Char('%'), QLatin1String("%25"))
        .replace(QLatin1Char('/'), QLatin1String("%2F"));
    QByteArray const folder = QFile::encodeName(OSW_Pipe::pipeFolder());
    QByteArray path = folder + '/' + QFile::encodeName(name);
    if (size_t(path.size()) >= sizeof(sockaddr_un::sun_path))
        path = folder + '/' +
               QCryptographicHash::hash(name.toUtf8(), QCryptographicHash::Sha1).toHex();
    return path;
}

int preparePipeFolder()
{
    QByteArray const folder = QFile::encodeName(OSW_Pipe::pipeFolder());
    if (::mkdir(folder.constData(), 0700) == 0)
        return 0;
    if (errno != EEXIST)
        return errno;
    struct stat info;
    if (::lstat(folder.constData(), &info) != 0)
        return errno;
    if (!S_ISDIR(info.st_mode))
        return ENOTDIR;
    if (info.st_uid != ::geteuid())
        return EACCES;
    if ((info.st_mode & 077) != 0 && ::chmod(folder.constData(), 0700) != 0)
        return errno;
    return 0;
}

int listenAt(QByteArray const& path, int* fd)
{
    *fd = -1;
    sockaddr_un address;
    if (!fillAddress(path, &address))
        return ENAMETOOLONG;
    if (int const error = preparePipeFolder())
        return error;
    if (int const error = newSocket(fd))
        return error;
    auto const* sa = reinterpret_cast<sockaddr const*>(&address);
    int r = ::bind(*fd, sa, sizeof address);
    if (r != 0 && errno == EADDRINUSE && !serverAlive(path, address)) {
        ::unlink(path.constData());
        r = ::bind(*fd, sa, sizeof address);
    }
    if (r == 0) {
        ::chmod(path.constData(), 0600);
        r = ::listen(*fd, 255);
        if (r != 0)
            ::unlink(path.constData());
    }
    if (r == 0)
        return 0;
    int const error = errno;
    osw_sys::closeFd(*fd);
    return error;
}

int connectTo(QByteArray const& path, int* fd)
{
    *fd = -1;
    sockaddr_un address;
    if (!fillAddress(path, &address))
        return ENAMETOOLONG;
    if (int const error = newSocket(fd))
        return error;
    int error = 0;
    if (::connect(*fd, reinterpret_cast<sockaddr const*>(&address), sizeof address) != 0) {
        error = errno;
        if (error == EINTR) {
            // The connection goes on in the background: wait for its outcome.
            pollfd p{*fd, POLLOUT, 0};
            while (::poll(&p, 1, -1) < 0 && errno == EINTR) {
            }
            socklen_t length = sizeof error;
            ::getsockopt(*fd, SOL_SOCKET, SO_ERROR, &error, &length);
        }
    }
    if (error != 0)
        osw_sys::closeFd(*fd);
    return error;
}

int acceptClient(int listenFd, int* fd)
{
    do {
        *fd = ::accept4(listenFd, nullptr, nullptr, SOCK_CLOEXEC);
    } while (*fd < 0 && errno == EINTR);
    return *fd < 0 ? errno : 0;
}

} // namespace osw_pipe
