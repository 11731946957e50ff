// brindle selftest-crash: the tool's crash report and the way the process ends.
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace {

struct Crash
{
    int signal = 0; // the signal that ended the tool, 0 if it exited
    int exitCode = -1;
    std::string err;
};

// Runs the tool with its standard error in a pipe. A sanitizer's own handlers
// are switched off so that the tool's report runs before the default action.
Crash runCrash(char const* kind)
{
    Crash result;
    std::string const tool = brindle_test::toolPath().toStdString();
    std::vector<std::string> env;
    std::string asan = "ASAN_OPTIONS=handle_segv=0:handle_sigbus=0:handle_sigfpe=0:"
                       "handle_abort=0:handle_sigill=0:handle_sigtrap=0";
    for (char** e = environ; *e; ++e) {
        std::string entry(*e);
        if (entry.rfind("ASAN_OPTIONS=", 0) == 0)
            asan.append(":").append(entry, 13);
        else
            env.push_back(entry);
    }
    env.push_back(asan);
    std::vector<char*> envp;
    for (std::string& entry : env)
        envp.push_back(entry.data());
    envp.push_back(nullptr);

    int fds[2];
    if (pipe(fds) != 0)
        return result;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, fds[1], 2);
    posix_spawn_file_actions_addclose(&actions, fds[0]);
    posix_spawn_file_actions_addclose(&actions, fds[1]);
    std::string command = "selftest-crash";
    std::string argument = kind;
    char* argv[] = {const_cast<char*>(tool.c_str()), command.data(), argument.data(), nullptr};
    pid_t pid = 0;
    int const spawned = posix_spawn(&pid, tool.c_str(), &actions, nullptr, argv, envp.data());
    posix_spawn_file_actions_destroy(&actions);
    close(fds[1]);
    if (spawned == 0) {
        char buffer[4096];
        for (ssize_t n; (n = read(fds[0], buffer, sizeof buffer)) > 0;)
            result.err.append(buffer, std::size_t(n));
        int status = 0;
        waitpid(pid, &status, 0);
        if (WIFSIGNALED(status))
            result.signal = WTERMSIG(status);
        else if (WIFEXITED(status))
            result.exitCode = WEXITSTATUS(status);
    }
    close(fds[0]);
    return result;
}

void expectReport(char const* kind, int signal, char const* name, char const* function)
{
    SCOPED_TRACE(kind);
    Crash const crash = runCrash(kind);
    EXPECT_EQ(crash.signal, signal) << crash.err;
    std::string header = "App terminated by ";
    header.append(name).append("Relative addresses:\n0");
    EXPECT_NE(crash.err.find(header), std::string::npos) << crash.err;
    std::size_t const trace = crash.err.find("Stack trace:\n");
    ASSERT_NE(trace, std::string::npos) << crash.err;
    EXPECT_NE(crash.err.find(function, trace), std::string::npos) << crash.err;
}

TEST(SelftestCrash, ReportsTheFaultAndEndsWithTheSignal)
{
    expectReport("segv", SIGSEGV, "EXCEPTION_ACCESS_VIOLATION", "crashByInvalidAccess()");
    expectReport("fpe", SIGFPE, "EXCEPTION_INT_DIVIDE_BY_ZERO", "crashByDivision()");
    expectReport("abort", SIGABRT, "SIGABRT", "crashByAbort()");
}

TEST(SelftestCrash, StackOverflowIsReportedFromTheAlternateStack)
{
    expectReport("stack-overflow", SIGSEGV, "EXCEPTION_STACK_OVERFLOW", "crashByRecursion(int)");
}

TEST(SelftestCrash, UnknownKindIsAUsageError)
{
    QByteArray out, err;
    EXPECT_EQ(
        brindle_test::runProgram(brindle_test::toolPath(), {"selftest-crash", "melt"}, &out, &err),
        2);
    EXPECT_TRUE(err.contains("brindle selftest-crash: unknown kind of crash 'melt'")) << err.data();
}

} // namespace
