// brindle selftest-crash: the tool's crash report and the way the process ends.
#include "Tool.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace {

struct Crash
{
    int signal = 0; // the signal that ended the tool, 0 if it exited
    std::string err;
};

// Runs the tool with its standard error in a pipe. A sanitizer's own handlers
// are switched off so that the tool's report runs before the default action.
Crash runCrash(char const* kind)
{
    Crash result;
    std::string const tool = brindle_test::toolPath().toStdString();
    // Set here after start-up, so only the child reads it; given options come last.
    static bool const asanSet = [] {
        std::string asan = "handle_segv=0:handle_sigbus=0:handle_sigfpe=0:handle_abort=0:"
                           "handle_sigill=0:handle_sigtrap=0";
        if (char const* given = std::getenv("ASAN_OPTIONS"))
            asan.append(":").append(given);
        return setenv("ASAN_OPTIONS", asan.c_str(), 1) == 0;
    }();
    EXPECT_TRUE(asanSet);

    int fds[2];
    if (pipe(fds) != 0)
        return result;
    pid_t const pid = fork();
    if (pid == 0) { // only async-signal-safe calls until the tool runs
        dup2(fds[1], 2);
        dup2(open("/dev/null", O_WRONLY), 1);
        close(fds[0]);
        execl(tool.c_str(), tool.c_str(), "selftest-crash", kind, nullptr);
        _exit(127);
    }
    close(fds[1]);
    if (pid > 0) {
        char buffer[4096];
        for (ssize_t n; (n = read(fds[0], buffer, sizeof buffer)) > 0;)
            result.err.append(buffer, std::size_t(n));
        int status = 0;
        waitpid(pid, &status, 0);
        if (WIFSIGNALED(status))
            result.signal = WTERMSIG(status);
    }
    close(fds[0]);
    return result;
}

} // namespace

TEST(SelftestCrash, ReportsTheFaultAndEndsWithTheSignal)
{
    struct
    {
        char const* kind;
        int signal;
        char const* name;
        char const* function;
    } const cases[] = {
        {"segv", SIGSEGV, "EXCEPTION_ACCESS_VIOLATION", "crashByInvalidAccess()"},
        {"fpe", SIGFPE, "EXCEPTION_INT_DIVIDE_BY_ZERO", "crashByDivision()"},
        {"abort", SIGABRT, "SIGABRT", "crashByAbort()"},
        // Reported from the alternate stack.
        {"stack-overflow", SIGSEGV, "EXCEPTION_STACK_OVERFLOW", "crashByRecursion(int)"},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.kind);
        Crash const crash = runCrash(c.kind);
        EXPECT_EQ(crash.signal, c.signal) << crash.err;
        std::string const header =
            std::string("App terminated by ") + c.name + "Relative addresses:\n0";
        EXPECT_NE(crash.err.find(header), std::string::npos) << crash.err;
        std::size_t const trace = crash.err.find("Stack trace:\n");
        ASSERT_NE(trace, std::string::npos) << crash.err;
        EXPECT_NE(crash.err.find(c.function, trace), std::string::npos) << crash.err;
    }
    tools_test::expectFailures(
        {{{"selftest-crash", "melt"}, 2, "brindle selftest-crash: unknown kind of crash 'melt'"}});
}
