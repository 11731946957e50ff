// Crash and exception tracking: the process's tracking service, its crash
// handlers, stack traces and the assertion reporter.
#pragma once

#include <BrindleBaseCore/Global.h>

#include <QtCore/QString>
#include <QtCore/QtGlobal>

#include <cstddef>
#include <exception>
#include <string>

/// The tracking service. An application derives its own tracker (which sends or
/// stores reports) and installs it with setInstance(), which also arms the
/// crash handlers; until then instance() supplies a UT_NoTracking.
///
/// Crash handlers: the fault signals (SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP)
/// are named after the fault ("EXCEPTION_ACCESS_VIOLATION", ...), SIGABRT by
/// SignalHandler(). The first fatal event in the process is reported through
/// trackCrash(), on the faulting thread and inside the signal handler, so a
/// tracker must not take locks the crashing code may hold. The previous
/// disposition is then restored and the signal raised again, so the process
/// still ends as it would have. Stack overflows are reported on the threads
/// that armed the handlers (they get an alternate signal stack).
class BRINDLE_EXPORT UT_Tracking
{
public:
    /// Return addresses of a thread's stack, innermost first.
    class BRINDLE_EXPORT StackTrace
    {
    public:
        /// Captures up to maxFrames addresses of the caller's stack after
        /// skipping skipFrames frames. firstAddress, when given (the faulting
        /// address of a crash), is frame 0 and the capture continues with the
        /// frames below it. Usable inside a signal handler. The last argument
        /// is accepted for the faulting context and not needed on this platform.
        explicit StackTrace(int maxFrames = 128, int skipFrames = 0, void* firstAddress = nullptr,
                            void* context = nullptr);
        /// Copies the addresses.
        StackTrace(StackTrace const& other);
        /// Copies the addresses.
        StackTrace& operator=(StackTrace const& other);
        /// Frees the addresses.
        ~StackTrace();

        /// Number of frames captured.
        quint32 count() const { return m_count; }
        /// The address of a frame; frame < count().
        quint64 address(quint32 frame) const { return m_addresses[frame]; }

        /// One line per frame: `NNN 0x<address> module!symbol + 0x<offset>`
        /// followed, with withSourceLines and when debug information is
        /// available, by ` [file:line]`. `Empty stack trace\n` for an empty
        /// trace, `Can't allocate stack trace\n` when the capture had no memory.
        std::string getText(bool withSourceLines = true) const;
        /// One line per frame: `NNN module + 0x<offset from the module's base>`.
        std::string getRelativeOffsets() const;

    private:
        quint64* m_addresses = nullptr;
        quint32 m_count = 0;
        std::size_t m_mappedBytes = 0;
        bool m_allocationFailed = false;
        /// Frame 0 is the faulting instruction rather than a return address.
        bool m_startsAtFault = false;
    };

    /// An exception that remembers where it was thrown and the stack there.
    class BRINDLE_EXPORT Exception : public std::exception
    {
    public:
        /// Records the place and the message and captures the stack.
        Exception(char const* filePath, char const* functionName, int lineNumber,
                  std::string message);
        /// Destructor.
        ~Exception() override;

        /// The message.
        char const* what() const noexcept override;
        /// Source file of the throw.
        std::string const& filePath() const { return m_filePath; }
        /// Function of the throw.
        std::string const& functionName() const { return m_functionName; }
        /// Line of the throw.
        int lineNumber() const { return m_lineNumber; }
        /// The stack where it was thrown.
        StackTrace const& getStackTrace() const { return m_stackTrace; }

        /// Reports to the tracker (not fatal) that the exception was caught at
        /// where, line.
        void TrackCatch(char const* where, int line) const;

    private:
        std::string m_filePath;
        std::string m_functionName;
        std::string m_message;
        int m_lineNumber;
        StackTrace m_stackTrace;
    };

    /// A tracker; setInstance() installs it.
    UT_Tracking();
    /// Destructor.
    virtual ~UT_Tracking();

    /// The installed tracker; installs a UT_NoTracking (without arming the crash
    /// handlers) when there is none.
    static UT_Tracking& instance();
    /// Installs tracker and arms the crash handlers, deleting the previous
    /// tracker. Nothing happens when tracker is already the installed one.
    static void setInstance(UT_Tracking* tracker);
    /// Disarms the handlers and deletes the installed tracker.
    static void deleteInstance();
    /// Arms (on) or disarms (off) the crash handlers.
    static void RedirectSignals(bool on);
    /// Reports a fatal signal: the first one through TrackSignal(); any later
    /// one writes "Multiple signal N Start/End" and disarms the handlers.
    static void SignalHandler(int sig);
    /// Reports `App terminated by <name>` with the caller's stack (fatal).
    static void TrackSignal(std::string const& name);

    /// A user action, as a breadcrumb for the crash reports. The breadcrumb
    /// operations of the base do nothing (and return 0).
    virtual int trackAction(QString const& action);
    /// A free-form breadcrumb.
    virtual int trackBreadcrumb(std::string const& breadcrumb);
    /// A screen or view was closed.
    virtual int trackScreenViewClose(QString const& screen);
    /// The user pressed a mouse button.
    virtual void trackMouseDown();
    /// The application is about to close.
    virtual void aboutToClose();
    /// The crash report: message (8-bit), the stack and whether the process is
    /// about to end.
    virtual void trackCrash(std::string const& message, StackTrace const& trace, bool fatal) = 0;

    /// Converts the message (UTF-8) and forwards to trackCrash().
    void trackExceptions(QString const& message, StackTrace const& trace, bool fatal);

    /// Shortened processor and graphics card names for reports
    /// ("Intel(R) Core(TM) i7-8700 CPU @ 3.20GHz" gives "Intel(R) Core i7-8700").
    static QString normalizeCPUName(QString const& name);
    /// As normalizeCPUName(), for graphics cards.
    static QString normalizeGraphicCardName(QString const& name);

private:
    UT_Tracking(UT_Tracking const&) = delete;
    UT_Tracking& operator=(UT_Tracking const&) = delete;

    struct Private;
    Private* d;
};

/// The tracker in place until an application installs its own: does nothing.
class BRINDLE_EXPORT UT_NoTracking : public UT_Tracking
{
public:
    /// Does nothing.
    void trackCrash(std::string const& message, StackTrace const& trace, bool fatal) override;
};

/// The assertion reporter.
namespace Assertion {
/// Writes `file(line):\tASSERT: "expression" \nmessage\n` (LEGACY_ASSERT when
/// legacy; the last line feed only with a message) to standard output and to
/// standard error, then, unless legacy, stops in the debugger when one is
/// attached. A legacy assertion only reports.
BRINDLE_EXPORT void AssertFunction(char const* expression, char const* message, char const* file,
                                   int line, bool legacy);
} // namespace Assertion
