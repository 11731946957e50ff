#include "OSW_ExecutePrivate.h"
#include "OSW_SysCalls.h"

#include <BrindleBaseCore/app/TUMessage.h>

#include <climits>

namespace {

constexpr qsizetype ReadChunk = 1024;
constexpr qint32 WriteChunk = 2048;

quint64 drain(OSW_Handle handle, QByteArray& output)
{
    char buffer[ReadChunk];
    ssize_t n;
    while ((n = osw_sys::readRetry(handle, buffer, sizeof buffer)) > 0)
        output.append(buffer, qsizetype(n));
    return quint64(output.size());
}

quint64 readOnce(OSW_Handle handle, quint64 size, char* buffer)
{
    if (size == 0)
        return 0;
    ssize_t const n = osw_sys::readRetry(handle, buffer, size > SSIZE_MAX ? SSIZE_MAX : size);
    return n > 0 ? quint64(n) : 0;
}

} // namespace

bool OSW_Execute::Private::checkPipes() const
{
    if (stdioPipes)
        return true;
    MSG_Scope report("OSW_Execute", "Stdio communication has not been enabled for process",
                     MSG_Scope::Debug, ErrorCode::NoError);
    return false;
}

quint64 OSW_Execute::readFromStdout(QByteArray& output)
{
    return d->checkPipes() ? drain(d->handles[Private::ParentStdoutRead], output) : 0;
}

quint64 OSW_Execute::readFromStderr(QByteArray& output)
{
    return d->checkPipes() ? drain(d->handles[Private::ParentStderrRead], output) : 0;
}

quint64 OSW_Execute::readFromStdout(quint64 size, char* buffer)
{
    return d->checkPipes() ? readOnce(d->handles[Private::ParentStdoutRead], size, buffer) : 0;
}

quint64 OSW_Execute::readFromStderr(quint64 size, char* buffer)
{
    return d->checkPipes() ? readOnce(d->handles[Private::ParentStderrRead], size, buffer) : 0;
}

quint64 OSW_Execute::writeToStdin(QByteArray const& data)
{
    return writeToStdin(quint64(data.size()), data.constData());
}

quint64 OSW_Execute::writeToStdin(quint64 size, char const* data)
{
    if (!d->checkPipes() || size == 0)
        return 0;
    OSW_Handle const handle = d->handles[Private::ParentStdinWrite];
    quint64 written = 0;
    while (written < size) {
        // The count left is compared as a signed 32-bit number (intended); a
        // count that reads as 0 that way ends the write.
        qint32 const left = qint32(size - written);
        quint32 const chunk = left > WriteChunk ? quint32(WriteChunk) : quint32(left);
        if (chunk == 0)
            break;
        ssize_t const n = osw_sys::writeNoSigpipe(handle, data + written, chunk);
        if (n < 0)
            break;
        written += quint64(n);
    }
    return written;
}

void OSW_Execute::closeStdin()
{
    osw_sys::closeFd(d->handles[Private::ParentStdinWrite]);
}

OSW_ExecuteException::OSW_ExecuteException(int code, MSG_Text const& message, bool isSignal,
                                           bool isStopped)
    : m_code(code)
    , m_message(message)
    , m_isSignal(isSignal)
    , m_isStopped(isStopped)
{}

OSW_ExecuteException::OSW_ExecuteException(OSW_ExecuteException const& other)
    : std::exception(other)
    , m_code(other.m_code)
    , m_message(other.m_message)
    , m_isSignal(other.m_isSignal)
    , m_isStopped(other.m_isStopped)
{}

OSW_ExecuteException& OSW_ExecuteException::operator=(OSW_ExecuteException const& other)
{
    std::exception::operator=(other);
    m_code = other.m_code;
    m_message = other.m_message;
    m_isSignal = other.m_isSignal;
    m_isStopped = other.m_isStopped;
    return *this;
}

OSW_ExecuteException::~OSW_ExecuteException() = default;
