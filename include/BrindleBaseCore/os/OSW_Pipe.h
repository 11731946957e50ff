// One-way channels between processes: pseudo-anonymous and named pipes.
#pragma once

#include <BrindleBaseCore/Global.h>

#include <QtCore/QString>
#include <QtCore/QtGlobal>

class PL_FileSpec;

/// An operating-system handle: a file descriptor, -1 when invalid.
typedef int OSW_Handle;

/// A one-way byte channel, opened on its read side, its write side or both.
///
/// Pipes made here are message pipes: every writeData is one message and
/// readData returns at most one message. A message longer than the reader's
/// buffer is handed out in parts by successive reads (each part counts as a
/// success). Handles adopted through assign() may be plain byte pipes; they are
/// read and written as byte streams.
///
/// Names: the pipe namespace is a folder of the user's own (mode 0700) under
/// $XDG_RUNTIME_DIR, else under the temporary folder (pipeFolder()). A named
/// pipe is a local socket file there, readable by its owner only, and is
/// removed when the server end closes. A message can be at most as long as the
/// system's socket send buffer (about 200 KiB by default).
///
/// Failures print two lines to standard output: one of the documented
/// `Failed to ... with error:` lines, then the code in parentheses and its
/// system text in single quotes. The code is errno, or 258 for a read that
/// timed out. End of stream (the writer closed) is such
/// a failure: readData prints it and returns -1.
///
/// Assignment is deliberately shallow: both objects then share one record (and
/// its handles); a record dropped by the target is released without closing
/// its handles. Handles are closed when the last object sharing them closes or
/// is destroyed. There is no copy constructor. One thread at a time per object;
/// writing never raises SIGPIPE.
class BRINDLE_EXPORT OSW_Pipe
{
public:
    /// The side of a named pipe an end works on.
    enum Mode_t
    {
        Read = 0, ///< The read side.
        Write = 1 ///< The write side.
    };

    OSW_Pipe();
    ~OSW_Pipe();
    OSW_Pipe(OSW_Pipe const&) = delete;
    /// Shares `other`'s record (shallow, see the class).
    OSW_Pipe& operator=(OSW_Pipe const& other);

    /// Adopts the handles (either pointer may be null); the pipe owns and closes
    /// them from now on. False if the pipe is already opened.
    bool assign(OSW_Handle const* readHandle, OSW_Handle const* writeHandle);

    /// A uniquely named pipe opened at both ends by this process. False if
    /// already opened or on failure.
    bool createAnonymous();

    /// Creates the server end of the named pipe, reading (Read) or writing
    /// (Write). False if already opened, the mode is invalid or on failure.
    bool createNamedPipe(PL_FileSpec const& name, Mode_t mode);

    /// On the object that created the server end for this mode: waits (for ever)
    /// for a client to connect. Otherwise opens the client end by name.
    bool openNamedPipe(PL_FileSpec const& name, Mode_t mode);

    /// Reads one message (or the next part of one). Returns the byte count, or
    /// -1 when there is no read side or on failure (end of stream included).
    int readData(void* buffer, quint64 size);
    /// As above, waiting at most timeoutMs for data (0xFFFFFFFF: for ever);
    /// prints the failure with code 258 and returns -1 when the time runs out.
    int readData(void* buffer, quint64 size, quint32 timeoutMs);
    /// Writes the buffer as one message. True on success.
    bool writeData(void const* buffer, quint64 size);

    /// The read handle in `*handle`; false when there is no read side.
    bool getReadHandle(OSW_Handle* handle) const;
    /// The write handle in `*handle`; false when there is no write side.
    bool getWriteHandle(OSW_Handle* handle) const;

    /// Whether either side is open.
    bool isOpened() const;
    /// Whether the read side is open.
    bool isOpenedForReading() const;
    /// Whether the write side is open.
    bool isOpenedForWriting() const;

    /// Closes the read side.
    void closeRead();
    /// Closes the write side.
    void closeWrite();
    /// Closes both sides.
    void close();

    /// The folder that holds the pipe names of this user.
    static QString pipeFolder();

private:
    struct Private;
    Private* d;
};
