// Child processes with optional pipes on their standard streams.
#pragma once

#include <BrindleBaseCore/Global.h>
#include <BrindleBaseCore/app/MSG_Text.h>

#include <QtCore/QByteArray>
#include <QtCore/QCoreApplication>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <exception>

/// An operating-system handle: a file descriptor, -1 when invalid.
typedef int OSW_Handle;

/// Thrown by OSW_Execute::execm when it is given no word at all (code 0). The
/// signal and stopped flags are never set by the library; they exist for
/// callers that throw the exception themselves.
class BRINDLE_EXPORT OSW_ExecuteException : public std::exception
{
public:
    /// Records the four fields.
    OSW_ExecuteException(int code, MSG_Text const& message, bool isSignal, bool isStopped);
    /// Copy.
    OSW_ExecuteException(OSW_ExecuteException const& other);
    /// Copy.
    OSW_ExecuteException& operator=(OSW_ExecuteException const& other);
    ~OSW_ExecuteException() override;

    /// The code (0 for an empty word list).
    int errorCode() const { return m_code; }
    /// The message.
    MSG_Text const& errorMessage() const { return m_message; }
    /// Whether the child ended by a signal (set by callers only).
    bool isSignal() const { return m_isSignal; }
    /// Whether the child was stopped (set by callers only).
    bool isStopped() const { return m_isStopped; }
    /// The message.
    operator MSG_Text() const { return m_message; }

private:
    int m_code;
    MSG_Text m_message;
    bool m_isSignal;
    bool m_isStopped;
};

/// Starts one child process from a list of words and, when asked, connects its
/// standard input, output and error to pipes (1 MiB each).
///
/// The words give the command line of commandLine(): a word holding a blank is
/// put in double quotes, every word is followed by one blank. The child
/// receives exactly the words that this line stands for: the original words,
/// a word with blanks as one argument, empty words left out. The first word is
/// the program, looked up through PATH unless it holds a '/'. The child runs in
/// workingDirectory() (the caller's own when empty), with the caller's
/// environment and only its descriptors 0, 1 and 2 (the pipes when enabled,
/// else the caller's own).
///
/// execm returns the exit status when not detached, 0 at once when detached,
/// -1 when the child cannot be started (missing program or working directory).
/// A non-detached execm with pipes waits before anything is read: a child that
/// writes more than 1 MiB to one stream blocks for ever (dead-lock by design).
/// A detached child stays this process's child until waitForProcEnd reads its
/// status; call it before starting another child on the same object or
/// destroying the object, or the earlier child is never reaped.
/// Statuses: the exit code (0-255, so -1 is 255), or 128 + the signal number
/// for a child ended by a signal; a child ended by kill() has status 0, as a
/// terminated process has. If the application
/// ignores SIGCHLD the system reaps children itself and waitForProcEnd returns 0.
///
/// Assignment is deliberately shallow: both objects then share one record; a
/// record dropped by the target is released without closing its handles. The
/// last object sharing a record closes its handles. There is no copy
/// constructor. One thread at a time per object, except that the three stream
/// operations (stdin, stdout, stderr) may each run on a thread of its own.
/// Writing to a child that is gone never raises SIGPIPE in this process.
class BRINDLE_EXPORT OSW_Execute
{
    Q_DECLARE_TR_FUNCTIONS(OSW_Execute)

public:
    OSW_Execute();
    ~OSW_Execute();
    OSW_Execute(OSW_Execute const&) = delete;
    /// Shares `other`'s record (shallow, see the class).
    OSW_Execute& operator=(OSW_Execute const& other);

    /// Translation of a message of this class (same as tr()).
    static QString trUtf8(char const* source, char const* disambiguation = nullptr, int n = -1)
    {
        return tr(source, disambiguation, n);
    }

    /// Whether the next execm returns at once instead of waiting.
    void setDetached(bool detached);
    /// See setDetached(); false at start.
    bool detached() const;
    /// Read by the next execm.
    void enableStdioPipes(bool enable);
    /// Folder of the next child; empty: the caller's own.
    void setWorkingDirectory(QString const& folder);
    /// See setWorkingDirectory().
    QString workingDirectory() const;
    /// Kept in an ordered set for the object's lifetime; the launch does not
    /// consult it (children inherit only descriptors 0, 1 and 2).
    void addInheritedHandle(OSW_Handle handle);

    /// Throws OSW_ExecuteException when words is empty.
    int execm(QStringList const& words);
    /// execm() with these words.
    int execm(QString const& a, QString const& b);
    /// execm() with these words.
    int execm(QString const& a, QString const& b, QString const& c);
    /// execm() with these words.
    int execm(QString const& a, QString const& b, QString const& c, QString const& d);

    /// Waits (blocking, no polling) for the last child and returns its status;
    /// 0 if there is none. Once read, the status is returned again by later calls.
    int waitForProcEnd();
    /// Whether the last child is still running (a child that has ended but not
    /// been waited for is not running).
    bool isRunning();
    /// Kills the last child (SIGKILL) unless its status has been read already;
    /// waitForProcEnd then returns 0 for it.
    void kill();
    /// The process id of the last child, 0 when none was started.
    quint32 pid() const;

    /// Without pipes these report "Stdio communication has not been enabled for
    /// process" (debug) and return 0.
    /// Reads until the child closes the stream; returns the array's total size.
    quint64 readFromStdout(QByteArray& output);
    /// As readFromStdout(), on standard error.
    quint64 readFromStderr(QByteArray& output);
    /// One read of at most size bytes; the count read, 0 on failure or end.
    quint64 readFromStdout(quint64 size, char* buffer);
    /// As readFromStdout(), on standard error.
    quint64 readFromStderr(quint64 size, char* buffer);
    /// Writes in chunks of at most 2,048 bytes; returns the count written.
    quint64 writeToStdin(QByteArray const& data);
    /// As writeToStdin(QByteArray const&), on raw bytes.
    quint64 writeToStdin(quint64 size, char const* data);
    /// Closes this side of the child's standard input, so that the child reads
    /// end of file.
    void closeStdin();

    /// The command line that stands for the words (it ends with a blank).
    static QString commandLine(QStringList const& words);

    struct Private;

private:
    Private* d;
};
