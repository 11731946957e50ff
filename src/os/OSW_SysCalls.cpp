#include "OSW_SysCalls.h"

#include <QtCore/QDeadlineTimer>

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <unistd.h>

namespace osw_sys {

QByteArray errorText(int code)
{
    // A time-out has no errno of its own; the system's time-out text stands for it.
    int const sysCode = code == ErrorTimeout ? ETIMEDOUT : code;
    char buffer[256];
    char const* text = strerror_r(sysCode, buffer, sizeof buffer);
    return QByteArray(text).trimmed();
}

ssize_t readRetry(int fd, void* buffer, size_t size)
{
    ssize_t n;
    do {
        n = ::read(fd, buffer, size);
    } while (n < 0 && errno == EINTR);
    return n;
}

ssize_t writeNoSigpipe(int fd, void const* buffer, size_t size)
{
    sigset_t pipeSet, oldMask;
    sigemptyset(&pipeSet);
    sigaddset(&pipeSet, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipeSet, &oldMask);
    sigset_t pending;
    sigpending(&pending);
    bool const wasPending = sigismember(&pending, SIGPIPE) == 1;

    ssize_t n;
    do {
        n = ::write(fd, buffer, size);
    } while (n < 0 && errno == EINTR);
    int const saved = errno;

    if (n < 0 && saved == EPIPE && !wasPending) {
        timespec const zero{0, 0};
        while (sigtimedwait(&pipeSet, nullptr, &zero) < 0 && errno == EINTR) {
        }
    }
    pthread_sigmask(SIG_SETMASK, &oldMask, nullptr);
    errno = saved;
    return n;
}

void closeFd(int& fd)
{
    if (fd >= 0)
        ::close(fd);
    fd = -1;
}

int moveAboveStdio(int fd)
{
    if (fd < 0 || fd > 2)
        return fd;
    int const moved = ::fcntl(fd, F_DUPFD_CLOEXEC, 3);
    ::close(fd);
    return moved;
}

int waitReadable(int fd, qint64 timeoutMs)
{
    QDeadlineTimer deadline(timeoutMs);
    for (;;) {
        pollfd p{fd, POLLIN, 0};
        qint64 const left = deadline.remainingTime();
        int const r = ::poll(&p, 1, left > INT_MAX ? INT_MAX : int(left));
        if (r == 0 && !deadline.hasExpired())
            continue;
        if (r >= 0)
            return r > 0 ? 1 : 0;
        if (errno != EINTR)
            return -1;
    }
}

} // namespace osw_sys
