#include "OSW_ExecutePrivate.h"
#include "OSW_SysCalls.h"

#include <QtCore/QFile>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace {

constexpr int PipeBufferSize = 1 << 20;

// A pipe whose ends are close-on-exec and numbered above the standard
// descriptors, with a 1 MiB buffer.
bool makePipe(OSW_Handle& readEnd, OSW_Handle& writeEnd)
{
    int fds[2];
    if (::pipe2(fds, O_CLOEXEC) != 0)
        return false;
    fds[0] = osw_sys::moveAboveStdio(fds[0]);
    fds[1] = osw_sys::moveAboveStdio(fds[1]);
    if (fds[0] < 0 || fds[1] < 0) {
        osw_sys::closeFd(fds[0]);
        osw_sys::closeFd(fds[1]);
        return false;
    }
    // Above the system's limit the pipe keeps its default size.
    ::fcntl(fds[1], F_SETPIPE_SZ, PipeBufferSize);
    readEnd = fds[0];
    writeEnd = fds[1];
    return true;
}

int exitStatusOf(int status)
{
    if (WIFEXITED(status))
        return WEXITSTATUS(status);
    if (WIFSIGNALED(status))
        return 128 + WTERMSIG(status);
    return status;
}

// posix_spawn's two records, freed on every path.
struct SpawnSetup
{
    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;

    SpawnSetup()
    {
        posix_spawn_file_actions_init(&actions);
        posix_spawnattr_init(&attributes);
        // The child starts with no signal blocked and SIGPIPE at its default,
        // whatever the calling thread and the application have set.
        sigset_t set;
        sigemptyset(&set);
        posix_spawnattr_setsigmask(&attributes, &set);
        sigaddset(&set, SIGPIPE);
        posix_spawnattr_setsigdefault(&attributes, &set);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    ~SpawnSetup()
    {
        posix_spawnattr_destroy(&attributes);
        posix_spawn_file_actions_destroy(&actions);
    }
};

} // namespace

void OSW_Execute::Private::closeHandles()
{
    for (OSW_Handle& handle : handles)
        osw_sys::closeFd(handle);
}

void OSW_Execute::Private::createPipes()
{
    // Ends left over from an earlier child are closed so that nothing leaks.
    closeHandles();
    makePipe(handles[ChildStdinRead], handles[ParentStdinWrite]);
    makePipe(handles[ParentStdoutRead], handles[ChildStdoutWrite]);
    makePipe(handles[ParentStderrRead], handles[ChildStderrWrite]);
}

OSW_Execute::OSW_Execute()
    : d(new Private)
{}

OSW_Execute::~OSW_Execute()
{
    if (--d->references == 0) {
        d->closeHandles();
        delete d;
    }
}

OSW_Execute& OSW_Execute::operator=(OSW_Execute const& other)
{
    if (d != other.d) {
        ++other.d->references;
        // Shallow by design: the record given up is not closed.
        if (--d->references == 0)
            delete d;
        d = other.d;
    }
    return *this;
}

void OSW_Execute::setDetached(bool detached)
{
    d->detached = detached;
}
bool OSW_Execute::detached() const
{
    return d->detached;
}
void OSW_Execute::enableStdioPipes(bool enable)
{
    d->stdioPipes = enable;
}
void OSW_Execute::setWorkingDirectory(QString const& folder)
{
    d->workingDirectory = folder;
}
QString OSW_Execute::workingDirectory() const
{
    return d->workingDirectory;
}
void OSW_Execute::addInheritedHandle(OSW_Handle handle)
{
    d->inheritedHandles.insert(handle);
}
quint32 OSW_Execute::pid() const
{
    return d->pid;
}

QString OSW_Execute::commandLine(QStringList const& words)
{
    QString line;
    for (QString const& word : words) {
        if (word.contains(QLatin1Char(' ')))
            line += QLatin1Char('"') + word + QLatin1Char('"');
        else
            line += word;
        // Every word, the last one included, is followed by a blank (intended).
        line += QLatin1Char(' ');
    }
    return line;
}

int OSW_Execute::execm(QStringList const& words)
{
    if (words.isEmpty())
        throw OSW_ExecuteException(0,
                                   MSG_Text("OSW_Execute", "OSW_Execute: no application to execute",
                                            MSG_Text::WithContext),
                                   false, false);
    // The words of the command line, read back: an empty word leaves only its
    // separator behind, so it does not reach the child.
    std::vector<QByteArray> arguments;
    for (QString const& word : words) {
        if (!word.isEmpty())
            arguments.push_back(QFile::encodeName(word));
    }
    if (arguments.empty())
        return -1;
    std::vector<char*> argv;
    for (QByteArray& argument : arguments)
        argv.push_back(argument.data());
    argv.push_back(nullptr);

    using S = Private::Slot;
    SpawnSetup setup;
    if (d->stdioPipes) {
        d->createPipes();
        struct
        {
            int target;
            S slot;
        } const streams[] = {
            {0, S::ChildStdinRead}, {1, S::ChildStdoutWrite}, {2, S::ChildStderrWrite}};
        for (auto const& stream : streams) {
            if (d->handles[stream.slot] >= 0)
                posix_spawn_file_actions_adddup2(&setup.actions, d->handles[stream.slot],
                                                 stream.target);
            else
                posix_spawn_file_actions_addopen(&setup.actions, stream.target, "/dev/null",
                                                 stream.target == 0 ? O_RDONLY : O_WRONLY, 0);
        }
    }
    posix_spawn_file_actions_addclosefrom_np(&setup.actions, 3);
    QByteArray const folder = QFile::encodeName(d->workingDirectory);
    if (!folder.isEmpty())
        posix_spawn_file_actions_addchdir_np(&setup.actions, folder.constData());

    pid_t child = 0;
    int const error =
        posix_spawnp(&child, argv[0], &setup.actions, &setup.attributes, argv.data(), environ);
    for (S slot : {S::ChildStdinRead, S::ChildStdoutWrite, S::ChildStderrWrite})
        osw_sys::closeFd(d->handles[slot]);
    if (error != 0) {
        d->closeHandles();
        return -1;
    }
    d->pid = quint32(child);
    d->reaped = false;
    d->killed = false;
    d->exitStatus = 0;
    return d->detached ? 0 : waitForProcEnd();
}

int OSW_Execute::execm(QString const& a, QString const& b)
{
    return execm(QStringList{a, b});
}

int OSW_Execute::execm(QString const& a, QString const& b, QString const& c)
{
    return execm(QStringList{a, b, c});
}

int OSW_Execute::execm(QString const& a, QString const& b, QString const& c, QString const& d)
{
    return execm(QStringList{a, b, c, d});
}

int OSW_Execute::waitForProcEnd()
{
    if (d->pid == 0)
        return 0;
    if (!d->reaped) {
        int status = 0;
        pid_t r;
        do {
            r = ::waitpid(pid_t(d->pid), &status, 0);
        } while (r < 0 && errno == EINTR);
        // A child reaped elsewhere (SIGCHLD ignored, say) has no status for us.
        d->reaped = true;
        bool const killedByUs = d->killed && WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
        d->exitStatus = r == pid_t(d->pid) && !killedByUs ? exitStatusOf(status) : 0;
    }
    return d->exitStatus;
}

bool OSW_Execute::isRunning()
{
    if (d->pid == 0 || d->reaped)
        return false;
    siginfo_t info{};
    return ::waitid(P_PID, id_t(d->pid), &info, WEXITED | WNOHANG | WNOWAIT) == 0 &&
           info.si_pid == 0;
}

void OSW_Execute::kill()
{
    // An unreaped child keeps its pid, so the signal cannot reach another process.
    if (d->pid != 0 && !d->reaped && ::kill(pid_t(d->pid), SIGKILL) == 0)
        d->killed = true;
}
