// Small POSIX helpers shared by the process and pipe classes (private).
#pragma once

#include <QtCore/QByteArray>

#include <sys/types.h>

namespace osw_sys {

// Error numbers that keep the values callers know from the pipe services.
enum : int
{
    ErrorTimeout = 258,
    ErrorMoreData = 234,
    ErrorPending = 997,
    ErrorPipeConnected = 535,
};

// The system's text for an error number (errno or one of the values above),
// in the user's language, trimmed.
QByteArray errorText(int code);

// read()/write() retried on EINTR.
ssize_t readRetry(int fd, void* buffer, size_t size);

// One write() that cannot raise SIGPIPE in this process: the signal is blocked
// for the calling thread during the call and a SIGPIPE it caused is consumed.
// The process's signal dispositions are left alone. Returns as write().
ssize_t writeNoSigpipe(int fd, void const* buffer, size_t size);

// Closes fd if it is valid and sets it to -1.
void closeFd(int& fd);

// Moves fd to a number of at least 3 (keeping FD_CLOEXEC) so that it can never
// collide with a standard descriptor of a child. Returns the new fd or -1.
int moveAboveStdio(int fd);

// Waits up to timeoutMs (negative: for ever) for fd to become readable or hung
// up. Returns 1 when ready, 0 on time-out, -1 on error (errno set). EINTR
// restarts the wait with the time left.
int waitReadable(int fd, qint64 timeoutMs);

} // namespace osw_sys
