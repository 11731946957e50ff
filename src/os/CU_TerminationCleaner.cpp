#include <BrindleBaseCore/os/CU_TerminationCleaner.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QList>
#include <QtCore/QMutex>
#include <QtCore/QStringList>
#include <QtCore/QtDebug>

#include <csignal>
#include <cstdlib>

#include <signal.h>
#include <unistd.h>

namespace {

constexpr int kSignalSlots = 128;

using Handler = void (*)(int);

// What the current signal delivered, for an earlier handler that wants it (plain
// statics: thread-local storage of a shared library is not safe in a handler).
siginfo_t* t_signalInfo = nullptr;
void* t_signalContext = nullptr;

Handler g_handlers[kSignalSlots] = {};

void trampoline(int sig, siginfo_t* info, void* context)
{
    t_signalInfo = info;
    t_signalContext = context;
    if (sig > 0 && sig < kSignalSlots && g_handlers[sig])
        g_handlers[sig](sig);
}

// A fault signal that returns from its handler must meet the default disposition
// when it strikes again, so the process still ends as it would have.
bool isFault(int sig)
{
    return sig == SIGILL || sig == SIGABRT || sig == SIGSEGV || sig == SIGBUS || sig == SIGFPE ||
           sig == SIGTRAP;
}

CU_TerminationCleaner* g_instance = nullptr;

} // namespace

struct CU_TerminationCleaner::Private
{
    QStringList files;
    QList<QSharedPointer<QSharedMemory>> memories;
    QMutex mutex;
    struct sigaction previous[kSignalSlots] = {};
    bool remembered[kSignalSlots] = {};
};

CU_TerminationCleaner::CU_TerminationCleaner()
    : d(new Private)
{}

CU_TerminationCleaner::~CU_TerminationCleaner()
{
    delete d;
}

CU_TerminationCleaner* CU_TerminationCleaner::setup()
{
    if (g_instance)
        return g_instance;
    g_instance = new CU_TerminationCleaner;
    std::atexit(&CU_TerminationCleaner::handleExit);
    auto* const andExit = reinterpret_cast<void*>(&CU_TerminationCleaner::handleSignalAndExit);
    auto* const andReturn = reinterpret_cast<void*>(&CU_TerminationCleaner::handleSignal);
    g_instance->installOnSignal(SIGINT, andExit);
    g_instance->installOnSignal(SIGILL, andReturn);
    g_instance->installOnSignal(SIGABRT, andReturn);
    g_instance->installOnSignal(SIGSEGV, andReturn);
    g_instance->installOnSignal(SIGTERM, andExit);
    return g_instance;
}

bool CU_TerminationCleaner::installOnSignal(int signal, void* handler)
{
    if (signal <= 0 || signal >= kSignalSlots || !handler)
        return true;
    g_handlers[signal] = reinterpret_cast<Handler>(handler);
    struct sigaction action = {};
    action.sa_sigaction = &trampoline;
    action.sa_flags = SA_SIGINFO | (isFault(signal) ? SA_RESETHAND | SA_NODEFER : SA_RESTART);
    sigemptyset(&action.sa_mask);
    struct sigaction before = {};
    if (sigaction(signal, &action, &before) != 0)
        return true;
    bool const isDefault = !(before.sa_flags & SA_SIGINFO) && before.sa_handler == SIG_DFL;
    if (!isDefault) {
        d->previous[signal] = before;
        d->remembered[signal] = true;
    }
    return true;
}

void CU_TerminationCleaner::deleteAtExit(QString const& path)
{
    Private* const d = setup()->d;
    QMutexLocker lock(&d->mutex);
    d->files << QFileInfo(path).absoluteFilePath();
}

bool CU_TerminationCleaner::createPidFile(QString const& path)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    file.write(QByteArray::number(QCoreApplication::applicationPid()));
    file.close();
    deleteAtExit(path);
    return true;
}

QSharedPointer<QSharedMemory> CU_TerminationCleaner::createSharedMemory()
{
    Private* const d = setup()->d;
    QSharedPointer<QSharedMemory> memory(new QSharedMemory);
    QMutexLocker lock(&d->mutex);
    d->memories << memory;
    return memory;
}

void CU_TerminationCleaner::clean()
{
    cleanFiles();
    cleanSharedMemory();
}

void CU_TerminationCleaner::cleanFiles()
{
    if (!g_instance)
        return;
    Private* const d = g_instance->d;
    QMutexLocker lock(&d->mutex);
    for (QString const& path : std::as_const(d->files)) {
        if (!QFile::remove(path))
            qWarning("Error deleting %s", qUtf8Printable(path));
    }
    d->files.clear();
}

void CU_TerminationCleaner::cleanSharedMemory()
{
    if (!g_instance)
        return;
    Private* const d = g_instance->d;
    QMutexLocker lock(&d->mutex);
    for (QSharedPointer<QSharedMemory> const& registered : std::as_const(d->memories)) {
        QSharedPointer<QSharedMemory> const memory = registered;
        memory->detach();
    }
    d->memories.clear();
}

void CU_TerminationCleaner::handleExit()
{
    clean();
}

void CU_TerminationCleaner::handleSignal(int sig)
{
    cleanFiles();
    cleanSharedMemory();
    chainOrReturn(sig, false);
}

void CU_TerminationCleaner::handleSignalAndExit(int sig)
{
    cleanFiles();
    cleanSharedMemory();
    chainOrReturn(sig, true);
}

void CU_TerminationCleaner::chainOrReturn(int sig, bool exitWhenUnchained)
{
    Private* const d = g_instance ? g_instance->d : nullptr;
    if (d && sig > 0 && sig < kSignalSlots && d->remembered[sig]) {
        struct sigaction const& before = d->previous[sig];
        if (before.sa_flags & SA_SIGINFO)
            before.sa_sigaction(sig, t_signalInfo, t_signalContext);
        else if (before.sa_handler != SIG_IGN)
            before.sa_handler(sig);
        return;
    }
    if (!exitWhenUnchained)
        return;
    if (sig == SIGTERM) {
        static char const text[] = "Terminated\n";
        [[maybe_unused]] ssize_t const written = ::write(2, text, sizeof(text) - 1);
    }
    ::_exit(255);
}
