// Crash reports of the brindle tool: a tracker that writes the report to
// standard error, and a hidden command that crashes on purpose for the tests.
#include "Command.h"

#include <BrindleBaseCore/app/UT_Tracking.h>

#include <cerrno>
#include <cstdlib>
#include <unistd.h>

namespace {

void writeAll(std::string const& text)
{
    char const* data = text.data();
    std::size_t left = text.size();
    while (left > 0) {
        ssize_t const written = ::write(2, data, left);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return;
        data += written;
        left -= std::size_t(written);
    }
}

// Runs inside the signal handler: writes straight to the descriptor.
class StdErrTracker : public UT_Tracking
{
public:
    void trackCrash(std::string const& message, StackTrace const& trace, bool fatal) override
    {
        writeAll(std::string(fatal ? "Fatal error\n" : "Error\n") + message + "Stack trace:\n" +
                 trace.getText(true));
    }
};

void installTracker()
{
    UT_Tracking::setInstance(new StdErrTracker);
}

BRINDLE_STARTUP_HOOK(installTracker);

// Read at run time so that the compiler cannot see the crashes coming.
// An address no process maps (not null, which the sanitizers check themselves).
int* volatile nowhere = reinterpret_cast<int*>(16);
volatile int zero = 0;
volatile int dividend = 7;
volatile bool keepRecursing = true;

__attribute__((noinline)) void crashByInvalidAccess()
{
    *nowhere = 1;
}

__attribute__((noinline)) void crashByAbort()
{
    std::abort();
}

// The undefined-behaviour checker would stop the division before the processor faults.
__attribute__((noinline, no_sanitize("undefined"))) int crashByDivision()
{
    volatile int result = dividend / zero;
    return result;
}

__attribute__((noinline)) int crashByRecursion(int depth)
{
    volatile char frame[512];
    frame[depth % sizeof frame] = char(depth);
    if (keepRecursing)
        return crashByRecursion(depth + 1) + frame[0];
    return frame[0];
}

int runSelftestCrash(brindle::Invocation& cmd)
{
    int status = brindle::Success;
    cmd.parser().addPositionalArgument(QStringLiteral("kind"),
                                       QStringLiteral("segv, abort, fpe or stack-overflow"));
    if (!cmd.parse(&status))
        return status;
    QStringList const args = cmd.parser().positionalArguments();
    if (args.size() != 1)
        return cmd.usageError(QStringLiteral("expected one kind of crash"));
    QString const kind = args.first();
    if (kind == QLatin1String("segv"))
        crashByInvalidAccess();
    else if (kind == QLatin1String("abort"))
        crashByAbort();
    else if (kind == QLatin1String("fpe"))
        return crashByDivision();
    else if (kind == QLatin1String("stack-overflow"))
        return crashByRecursion(0);
    else
        return cmd.usageError(QStringLiteral("unknown kind of crash '%1'").arg(kind));
    return brindle::Failure;
}

} // namespace

// clang-format off
BRINDLE_HIDDEN_COMMAND(selftest-crash, "selftest-crash segv|abort|fpe|stack-overflow",
                       runSelftestCrash);
// clang-format on
