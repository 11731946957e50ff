// Removes what the process leaves behind for its own lifetime (registered files,
// a process-id file among them, and shared-memory segments) however it ends: at
// a normal exit, and when it is interrupted, terminated or crashes by a signal.
#pragma once

#include <BrindleBaseCore/Global.h>

#include <QtCore/QSharedMemory>
#include <QtCore/QSharedPointer>
#include <QtCore/QString>

/// Clean-up of the process's leftovers at any end. One process-wide instance, created by the first
/// setup(), deleteAtExit() or createSharedMemory() and never destroyed. Its creation is not locked:
/// make the first call on one thread (normally at start-up); registration may then come from any
/// thread.
///
/// Creation registers clean() to run at exit and installs handlers for SIGINT and
/// SIGTERM (clean up, then chain to the earlier handler, or else exit with status
/// 255; SIGTERM writes `Terminated\n` to standard error first) and for SIGILL,
/// SIGABRT and SIGSEGV (clean up, chain to the earlier handler, then let the
/// signal take its default course). An earlier "ignore" disposition is chained
/// to as doing nothing.
class BRINDLE_EXPORT CU_TerminationCleaner
{
public:
    /// The instance, created and installed on the first call.
    static CU_TerminationCleaner* setup();

    /// Registers QFileInfo(path).absoluteFilePath() for deletion.
    static void deleteAtExit(QString const& path);
    /// Writes this process's id (decimal, no line end) into the file and registers
    /// it; false when the file cannot be opened for writing.
    static bool createPidFile(QString const& path);
    /// A new segment object with no key, detached at the end; the caller sets its
    /// key and creates or attaches it.
    static QSharedPointer<QSharedMemory> createSharedMemory();

    /// cleanFiles(), then cleanSharedMemory().
    static void clean();
    /// Deletes every registered file ("Error deleting %s" warning for a failure)
    /// and empties the list.
    static void cleanFiles();
    /// Detaches every registered segment and empties the list.
    static void cleanSharedMemory();

    /// Installs `handler` (a void (*)(int)) for `signal`, remembering the earlier
    /// handler unless it was the default disposition. Always returns true.
    bool installOnSignal(int signal, void* handler);

    CU_TerminationCleaner(CU_TerminationCleaner const&) = delete;
    CU_TerminationCleaner& operator=(CU_TerminationCleaner const&) = delete;

protected:
    CU_TerminationCleaner();
    ~CU_TerminationCleaner();

    /// The exit hook: clean().
    static void handleExit();
    /// Signal handler: clean up, chain, then return to the default course.
    static void handleSignal(int sig);
    /// Signal handler: clean up, chain, or else exit with status 255.
    static void handleSignalAndExit(int sig);

private:
    static void chainOrReturn(int sig, bool exitWhenUnchained);

    struct Private;
    Private* d;
};
