#include <BrindleBaseCore/app/UT_Tracking.h>

#include "UT_TrackingSymbols.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <execinfo.h>
#include <sys/mman.h>
#include <ucontext.h>
#include <unistd.h>

// Room for state of the tracker's own; both counters start at 0.
struct UT_Tracking::Private
{
    quint32 counters[2] = {0, 0};
};

namespace {

std::atomic<UT_Tracking*> installed{nullptr};
// Fatal events seen by the handlers; never reset.
std::atomic<unsigned> signalCount{0};

int const faultSignals[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGABRT};
int const handledSignals = int(sizeof faultSignals / sizeof faultSignals[0]);
struct sigaction previousActions[handledSignals];
std::atomic<bool> armed{false};

// Large enough for the symbol lookup that runs inside the handler.
std::size_t const alternateStackBytes = 256 * 1024;

void writeToStdErr(char const* text, std::size_t length)
{
    while (length > 0) {
        ssize_t const written = ::write(2, text, length);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return;
        text += written;
        length -= std::size_t(written);
    }
}

// The calling thread gets a stack of its own for the handlers, so that a
// stack overflow can still be reported.
void ensureAlternateStack()
{
    thread_local bool done = false;
    if (done)
        return;
    stack_t current{};
    if (sigaltstack(nullptr, &current) == 0 && !(current.ss_flags & SS_DISABLE) &&
        current.ss_size >= alternateStackBytes) {
        done = true;
        return;
    }
    void* memory = mmap(nullptr, alternateStackBytes, PROT_READ | PROT_WRITE,
                        MAP_PRIVATE | MAP_ANONYMOUS | MAP_STACK, -1, 0);
    if (memory == MAP_FAILED)
        return;
    stack_t stack{};
    stack.ss_sp = memory;
    stack.ss_size = alternateStackBytes;
    if (sigaltstack(&stack, nullptr) == 0)
        done = true;
    else
        munmap(memory, alternateStackBytes);
}

int slotOf(int sig)
{
    for (int i = 0; i < handledSignals; ++i) {
        if (faultSignals[i] == sig)
            return i;
    }
    return -1;
}

void restorePrevious(int sig)
{
    int const slot = slotOf(sig);
    if (slot >= 0)
        sigaction(sig, &previousActions[slot], nullptr);
}

struct FaultContext
{
    void* pc = nullptr;
    quintptr sp = 0;
};

FaultContext faultContext(void* context)
{
    FaultContext fault;
    auto* uc = static_cast<ucontext_t*>(context);
    if (!uc)
        return fault;
#if defined(__x86_64__)
    fault.pc = reinterpret_cast<void*>(uc->uc_mcontext.gregs[REG_RIP]);
    fault.sp = quintptr(uc->uc_mcontext.gregs[REG_RSP]);
#elif defined(__aarch64__)
    fault.pc = reinterpret_cast<void*>(uc->uc_mcontext.pc);
    fault.sp = quintptr(uc->uc_mcontext.sp);
#endif
    return fault;
}

// A fault this close to the stack pointer ran off the end of the stack.
bool nearStackPointer(void* address, quintptr sp)
{
    quintptr const at = reinterpret_cast<quintptr>(address);
    quintptr const margin = 64 * 1024;
    return sp != 0 && at + margin >= sp && at <= sp + margin;
}

char const* faultName(int sig, siginfo_t const* info, FaultContext const& fault)
{
    int const code = info ? info->si_code : SI_USER;
    switch (sig) {
    case SIGSEGV:
        if (code == SEGV_BNDERR)
            return "EXCEPTION_ARRAY_BOUNDS_EXCEEDED";
        if (code == SEGV_MAPERR || code == SEGV_ACCERR || code == SEGV_PKUERR)
            return nearStackPointer(info->si_addr, fault.sp) ? "EXCEPTION_STACK_OVERFLOW"
                                                             : "EXCEPTION_ACCESS_VIOLATION";
        break;
    case SIGBUS:
        if (code == BUS_ADRALN)
            return "EXCEPTION_DATATYPE_MISALIGNMENT";
        if (code == BUS_ADRERR || code == BUS_OBJERR || code == BUS_MCEERR_AR ||
            code == BUS_MCEERR_AO)
            return "EXCEPTION_IN_PAGE_ERROR";
        break;
    case SIGFPE:
        switch (code) {
        case FPE_INTDIV:
            return "EXCEPTION_INT_DIVIDE_BY_ZERO";
        case FPE_INTOVF:
            return "EXCEPTION_INT_OVERFLOW";
        case FPE_FLTDIV:
            return "EXCEPTION_FLT_DIVIDE_BY_ZERO";
        case FPE_FLTOVF:
            return "EXCEPTION_FLT_OVERFLOW";
        case FPE_FLTUND:
            return "EXCEPTION_FLT_UNDERFLOW";
        case FPE_FLTRES:
            return "EXCEPTION_FLT_INEXACT_RESULT";
        case FPE_FLTINV:
            return "EXCEPTION_FLT_INVALID_OPERATION";
        case FPE_FLTSUB:
            return "EXCEPTION_ARRAY_BOUNDS_EXCEEDED";
        }
        break;
    case SIGILL:
        switch (code) {
        case ILL_ILLOPC:
        case ILL_ILLOPN:
        case ILL_ILLADR:
        case ILL_ILLTRP:
        case ILL_COPROC:
            return "EXCEPTION_ILLEGAL_INSTRUCTION";
        case ILL_PRVOPC:
        case ILL_PRVREG:
            return "EXCEPTION_PRIV_INSTRUCTION";
        case ILL_BADSTK:
            return "EXCEPTION_STACK_OVERFLOW";
        }
        break;
    case SIGTRAP:
        // An int3 instruction is reported by the kernel itself.
        if (code == TRAP_BRKPT || code == SI_KERNEL)
            return "EXCEPTION_BREAKPOINT";
        if (code == TRAP_TRACE)
            return "EXCEPTION_SINGLE_STEP";
        break;
    }
    return "Unknown Exception";
}

// "App terminated by NAME" with the stack and its relative addresses, to the
// installed tracker.
void reportFatal(char const* name, UT_Tracking::StackTrace const& trace)
{
    UT_Tracking* tracker = installed.load();
    if (!tracker)
        return;
    std::string message = "App terminated by ";
    message += name;
    message += "Relative addresses:\n"; // directly after the name (intended)
    message += trace.getRelativeOffsets();
    tracker->trackCrash(message, trace, true);
}

// Gives the signal back to its previous disposition. A fault raised by an
// instruction happens again when the handler returns; anything else is raised.
void endWithPreviousDisposition(int sig, siginfo_t const* info)
{
    restorePrevious(sig);
    bool const instructionFault = info && info->si_code > 0 && sig != SIGTRAP && sig != SIGABRT;
    if (!instructionFault)
        raise(sig);
}

// A fatal event while another is being handled: wait a little for the first
// report, then hand every signal back so that the next event ends the process.
void multipleSignal(unsigned previous)
{
    char line[64];
    int length = std::snprintf(line, sizeof line, "Multiple signal %u Start\n", previous);
    writeToStdErr(line, std::size_t(length));
    timespec const pause = {0, 5 * 1000 * 1000};
    nanosleep(&pause, nullptr);
    length = std::snprintf(line, sizeof line, "Multiple signal %u End\n", previous);
    writeToStdErr(line, std::size_t(length));
    UT_Tracking::RedirectSignals(false);
}

void faultHandler(int sig, siginfo_t* info, void* context)
{
    int const savedErrno = errno;
    unsigned const previous = signalCount.fetch_add(1);
    if (previous == 0) {
        FaultContext const fault = faultContext(context);
        UT_Tracking::StackTrace const trace(128, 1, fault.pc, context);
        reportFatal(faultName(sig, info, fault), trace);
    } else {
        multipleSignal(previous);
    }
    endWithPreviousDisposition(sig, info);
    errno = savedErrno;
}

void abortHandler(int sig, siginfo_t* info, void*)
{
    UT_Tracking::SignalHandler(sig);
    endWithPreviousDisposition(sig, info);
}

} // namespace

UT_Tracking::UT_Tracking()
    : d(new Private)
{}

UT_Tracking::~UT_Tracking()
{
    UT_Tracking* self = this;
    installed.compare_exchange_strong(self, nullptr);
    delete d;
}

UT_Tracking& UT_Tracking::instance()
{
    UT_Tracking* current = installed.load();
    if (current)
        return *current;
    auto* created = new UT_NoTracking;
    if (installed.compare_exchange_strong(current, created))
        return *created;
    delete created;
    return *current;
}

void UT_Tracking::setInstance(UT_Tracking* tracker)
{
    UT_Tracking* old = installed.load();
    if (old == tracker)
        return;
    if (old) {
        RedirectSignals(false);
        installed = nullptr;
        delete old;
    }
    installed = tracker;
    RedirectSignals(true);
}

void UT_Tracking::deleteInstance()
{
    UT_Tracking* old = installed.load();
    if (!old)
        return;
    RedirectSignals(false);
    installed = nullptr;
    delete old;
}

void UT_Tracking::RedirectSignals(bool on)
{
    if (on) {
        ensureAlternateStack();
        if (armed.exchange(true))
            return;
        // The unwinder and the symbols are made ready here, not in the handler.
        void* warmUp[2];
        backtrace(warmUp, 2);
        brindle_app::prepareSymbols();
        for (int i = 0; i < handledSignals; ++i) {
            struct sigaction action = {};
            action.sa_sigaction = faultSignals[i] == SIGABRT ? abortHandler : faultHandler;
            action.sa_flags = SA_SIGINFO | SA_ONSTACK;
            sigemptyset(&action.sa_mask);
            sigaction(faultSignals[i], &action, &previousActions[i]);
        }
        return;
    }
    if (!armed.exchange(false))
        return;
    for (int i = 0; i < handledSignals; ++i)
        sigaction(faultSignals[i], &previousActions[i], nullptr);
}

void UT_Tracking::SignalHandler(int sig)
{
    unsigned const previous = signalCount.fetch_add(1);
    if (previous == 0) {
        char number[24];
        std::snprintf(number, sizeof number, "SIG:%d", sig);
        char const* name = sig == SIGILL    ? "SIGILL"
                           : sig == SIGFPE  ? "SIGFPE"
                           : sig == SIGSEGV ? "SIGSEGV"
                           : sig == SIGABRT ? "SIGABRT"
                                            : number;
        TrackSignal(name);
    } else {
        multipleSignal(previous);
    }
}

void UT_Tracking::TrackSignal(std::string const& name)
{
    if (!installed.load())
        return;
    StackTrace const trace(128, 1);
    reportFatal(name.c_str(), trace);
}

int UT_Tracking::trackAction(QString const&)
{
    return 0;
}

int UT_Tracking::trackBreadcrumb(std::string const&)
{
    return 0;
}

int UT_Tracking::trackScreenViewClose(QString const&)
{
    return 0;
}

void UT_Tracking::trackMouseDown() {}

void UT_Tracking::aboutToClose() {}

void UT_Tracking::trackExceptions(QString const& message, StackTrace const& trace, bool fatal)
{
    trackCrash(message.toStdString(), trace, fatal);
}

void UT_NoTracking::trackCrash(std::string const&, StackTrace const&, bool) {}

// --- UT_Tracking::Exception ------------------------------------------------------

UT_Tracking::Exception::Exception(char const* filePath, char const* functionName, int lineNumber,
                                  std::string message)
    : m_filePath(filePath ? filePath : "")
    , m_functionName(functionName ? functionName : "")
    , m_message(std::move(message))
    , m_lineNumber(lineNumber)
    , m_stackTrace(128, 1)
{}

UT_Tracking::Exception::~Exception() = default;

char const* UT_Tracking::Exception::what() const noexcept
{
    return m_message.c_str();
}

void UT_Tracking::Exception::TrackCatch(char const* where, int line) const
{
    QString const report =
        QStringLiteral("UT_Tracking::Exception throw in %1 (%2) Line=%3: %4\n"
                       "Catch UT_Tracking::Exception in %5 Line=%6\n")
            .arg(QString::fromStdString(m_functionName), QString::fromStdString(m_filePath),
                 QString::number(m_lineNumber), QString::fromStdString(m_message),
                 QString::fromUtf8(where ? where : ""), QString::number(line));
    UT_Tracking::instance().trackExceptions(report, m_stackTrace, false);
}
