#include <BrindleBaseCore/app/UT_Tracking.h>

#include <gtest/gtest.h>

#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace {

// Records the reports it gets; counts its own destruction.
class RecordingTracker : public UT_Tracking
{
public:
    explicit RecordingTracker(int* destroyed = nullptr)
        : destroyed(destroyed)
    {}
    ~RecordingTracker() override
    {
        if (destroyed)
            ++*destroyed;
    }
    void trackCrash(std::string const& message, StackTrace const& trace, bool fatal) override
    {
        lastMessage = message;
        lastFrames = trace.count();
        lastFatal = fatal;
    }

    int* destroyed;
    std::string lastMessage;
    quint32 lastFrames = 0;
    bool lastFatal = false;
};

// Writes the report to standard error, where the death tests look for it.
class StdErrTracker : public UT_Tracking
{
public:
    void trackCrash(std::string const& message, StackTrace const& trace, bool) override
    {
        std::string const text = message + trace.getText(true);
        [[maybe_unused]] auto written = ::write(2, text.data(), text.size());
    }
};

// A tracker whose report aborts: the abort arrives while the first is handled.
class AbortingTracker : public UT_Tracking
{
public:
    void trackCrash(std::string const&, StackTrace const&, bool) override { std::abort(); }
};

void (*dispositionOf(int sig))(int)
{
    struct sigaction current = {};
    sigaction(sig, nullptr, &current);
    return current.sa_handler;
}

// In a death test's child: the crash handler must find the default action
// before it (a sanitizer's handler would end the process its own way).
void defaultDispositions()
{
    for (int sig : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGABRT})
        std::signal(sig, SIG_DFL);
}

__attribute__((noinline)) UT_Tracking::StackTrace captureHere()
{
    return UT_Tracking::StackTrace(16, 0);
}

// An address no process maps (not null, which the sanitizers check themselves).
int* volatile nowhere = reinterpret_cast<int*>(16);

TEST(Tracking, InstanceIsANoTrackerAndArmsNothing)
{
    auto const segv = dispositionOf(SIGSEGV);
    auto const abrt = dispositionOf(SIGABRT);
    UT_Tracking& tracker = UT_Tracking::instance();
    EXPECT_NE(dynamic_cast<UT_NoTracking*>(&tracker), nullptr);
    EXPECT_EQ(&UT_Tracking::instance(), &tracker);
    EXPECT_EQ(tracker.trackAction(QStringLiteral("a")), 0);
    tracker.trackExceptions(QStringLiteral("ignored"), UT_Tracking::StackTrace(), true);
    EXPECT_EQ(dispositionOf(SIGSEGV), segv);
    EXPECT_EQ(dispositionOf(SIGABRT), abrt);
    UT_Tracking::deleteInstance();
}

TEST(Tracking, SetInstanceArmsOnceAndDeleteInstanceDisarms)
{
    auto const segv = dispositionOf(SIGSEGV);
    int destroyed = 0;
    auto* tracker = new RecordingTracker(&destroyed);
    UT_Tracking::setInstance(tracker);
    auto const armed = dispositionOf(SIGSEGV);
    EXPECT_NE(armed, segv);
    EXPECT_NE(dispositionOf(SIGABRT), SIG_DFL);

    UT_Tracking::setInstance(tracker);
    EXPECT_EQ(destroyed, 0);
    EXPECT_EQ(&UT_Tracking::instance(), tracker);

    // Replacing the tracker deletes the old one and keeps the handlers armed.
    int replacedDestroyed = 0;
    UT_Tracking::setInstance(new RecordingTracker(&replacedDestroyed));
    EXPECT_EQ(destroyed, 1);
    EXPECT_EQ(dispositionOf(SIGSEGV), armed);

    UT_Tracking::deleteInstance();
    EXPECT_EQ(replacedDestroyed, 1);
    EXPECT_EQ(dispositionOf(SIGSEGV), segv) << "the previous disposition comes back";
    UT_Tracking::deleteInstance();
}

TEST(Tracking, ExceptionsAreReportedAsNotFatal)
{
    auto* tracker = new RecordingTracker;
    UT_Tracking::setInstance(tracker);
    try {
        throw UT_Tracking::Exception("src/file.cpp", "load", 42, "bad header");
    } catch (UT_Tracking::Exception const& e) {
        EXPECT_STREQ(e.what(), "bad header");
        EXPECT_EQ(e.filePath(), "src/file.cpp");
        EXPECT_EQ(e.functionName(), "load");
        EXPECT_EQ(e.lineNumber(), 42);
        EXPECT_GT(e.getStackTrace().count(), 0u);
        e.TrackCatch("caller", 7);
    }
    EXPECT_FALSE(tracker->lastFatal);
    EXPECT_NE(tracker->lastMessage.find("load"), std::string::npos);
    EXPECT_NE(tracker->lastMessage.find("Line=42"), std::string::npos);
    EXPECT_NE(tracker->lastMessage.find("caller Line=7"), std::string::npos);
    EXPECT_NE(tracker->lastMessage.find("bad header"), std::string::npos);

    tracker->trackExceptions(QString::fromUtf8("é"), UT_Tracking::StackTrace(), true);
    EXPECT_EQ(tracker->lastMessage, "\xc3\xa9");
    EXPECT_TRUE(tracker->lastFatal);
    UT_Tracking::deleteInstance();
}

TEST(StackTrace, CaptureLimitsAndTexts)
{
    int marker = 0;
    EXPECT_EQ(UT_Tracking::StackTrace(1, 0, &marker).count(), 0u);
    EXPECT_EQ(UT_Tracking::StackTrace(0, 0).getText(true), "Empty stack trace\n");
    EXPECT_EQ(UT_Tracking::StackTrace(INT_MAX, INT_MAX).getText(true),
              "Can't allocate stack trace\n");

    UT_Tracking::StackTrace const two(2, 0, &marker);
    ASSERT_GE(two.count(), 1u);
    EXPECT_LE(two.count(), 2u);
    EXPECT_EQ(two.address(0), quint64(reinterpret_cast<quintptr>(&marker)));

    UT_Tracking::StackTrace const here = captureHere();
    ASSERT_GE(here.count(), 2u);
    std::string const text = here.getText(false);
    EXPECT_EQ(text.rfind("0   0x", 0), 0u) << text;
    EXPECT_NE(text.find("captureHere"), std::string::npos) << text;
    EXPECT_NE(text.find("test_app_tracking!"), std::string::npos) << text;

    std::string const offsets = here.getRelativeOffsets();
    EXPECT_EQ(std::count(offsets.begin(), offsets.end(), '\n'), int(here.count()));
    EXPECT_NE(offsets.find("test_app_tracking + 0x"), std::string::npos) << offsets;

    UT_Tracking::StackTrace copy(two);
    EXPECT_EQ(copy.count(), two.count());
    copy = here;
    EXPECT_EQ(copy.getText(false), text);
}

TEST(TrackingDeathTest, FaultIsReportedAndStillEndsTheProcess)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            defaultDispositions();
            UT_Tracking::setInstance(new StdErrTracker);
            *nowhere = 1;
        },
        testing::KilledBySignal(SIGSEGV),
        "App terminated by EXCEPTION_ACCESS_VIOLATIONRelative addresses:\n0 ");
    EXPECT_EXIT(
        {
            defaultDispositions();
            UT_Tracking::setInstance(new StdErrTracker);
            std::abort();
        },
        testing::KilledBySignal(SIGABRT), "App terminated by SIGABRTRelative addresses:\n");
    EXPECT_EXIT(
        {
            defaultDispositions();
            UT_Tracking::setInstance(new StdErrTracker);
            raise(SIGTRAP);
        },
        testing::KilledBySignal(SIGTRAP),
        "App terminated by Unknown ExceptionRelative addresses:\n");
}

TEST(TrackingDeathTest, SignalsAreNamedAndOnlyTheFirstIsReported)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    auto signalTwice = [](int sig) {
        auto const before = dispositionOf(SIGSEGV);
        UT_Tracking::setInstance(new StdErrTracker);
        UT_Tracking::SignalHandler(sig);
        UT_Tracking::SignalHandler(sig);
        std::fputs(dispositionOf(SIGSEGV) == before ? "disarmed\n" : "armed\n", stderr);
        std::exit(0);
    };
    EXPECT_EXIT(
        signalTwice(22), testing::ExitedWithCode(0),
        "App terminated by SIG:22Relative addresses:\n.*Multiple signal 1 Start\nMultiple signal 1 "
        "End\ndisarmed");
    EXPECT_EXIT(signalTwice(SIGFPE), testing::ExitedWithCode(0),
                "App terminated by SIGFPERelative addresses:\n");
    EXPECT_EXIT(signalTwice(SIGILL), testing::ExitedWithCode(0),
                "App terminated by SIGILLRelative addresses:\n");
    EXPECT_EXIT(signalTwice(SIGSEGV), testing::ExitedWithCode(0),
                "App terminated by SIGSEGVRelative addresses:\n");
    EXPECT_EXIT(
        {
            defaultDispositions();
            UT_Tracking::setInstance(new AbortingTracker);
            std::abort();
        },
        testing::KilledBySignal(SIGABRT), "^Multiple signal 1 Start\nMultiple signal 1 End\n$");
}

TEST(Names, ProcessorNamesAreShortened)
{
    auto cpu = [](char const* name) {
        return UT_Tracking::normalizeCPUName(QString::fromUtf8(name));
    };
    EXPECT_EQ(cpu("Intel(R) Core(TM) i7-8700 CPU @ 3.20GHz"),
              QStringLiteral("Intel(R) Core i7-8700"));
    EXPECT_EQ(cpu("12th Gen Intel(R) Core(TM) i7-12700H"),
              QStringLiteral("Intel(R) Core i7-12700H"));
    EXPECT_EQ(cpu("AMD Ryzen 7 5800H with Radeon Graphics"), QStringLiteral("AMD Ryzen 7 5800H"));
    EXPECT_EQ(cpu("AMD Ryzen 5 3500U with Radeon Vega Mobile Gfx"),
              QStringLiteral("AMD Ryzen 5 3500U Mobile Gfx"));
    EXPECT_EQ(cpu("AMD Ryzen 5 2400G with Radeon Vega Graphics  "),
              QStringLiteral("AMD Ryzen 5 2400G"));
    EXPECT_EQ(cpu("Quad-Core processor  @ 2 GHz"), QStringLiteral("Quad-Core"));
    // The generation and frequency patterns match case.
    EXPECT_EQ(cpu("11TH GEN chip @ 2.5ghz"), QStringLiteral("11TH GEN chip @ 2.5ghz"));
    EXPECT_EQ(cpu("Fast(tm) cpu"), QStringLiteral("Fast(tm)"));
}

TEST(Names, GraphicsCardNamesAreCompleted)
{
    auto gpu = [](char const* name) {
        return UT_Tracking::normalizeGraphicCardName(QString::fromUtf8(name));
    };
    EXPECT_EQ(gpu("GeForce GTX 1080/PCIe/SSE2"), QStringLiteral("NVIDIA GeForce GTX 1080"));
    EXPECT_EQ(gpu("NVIDIA GTX 1080"), QStringLiteral("NVIDIA GeForce GTX 1080"));
    EXPECT_EQ(gpu("NVIDIA GeForce RTX 3060 Laptop GPU/PCIe/SSE2"),
              QStringLiteral("NVIDIA GeForce RTX 3060 Laptop"));
    EXPECT_EQ(gpu("Radeon RX 580 Series"), QStringLiteral("AMD Radeon RX 580"));
    EXPECT_EQ(gpu("AMD RX 6600 (TM)"), QStringLiteral("AMD Radeon RX 6600"));
    EXPECT_EQ(gpu("Intel(R) Iris(TM) Plus OpenGL Engine"), QStringLiteral("Intel(R) Iris Plus"));
    EXPECT_EQ(gpu("geforce gtx"), QStringLiteral("geforce gtx")) << "brands match case";
}

TEST(Assertion, ReportsToBothStreams)
{
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    Assertion::AssertFunction("x > 0", "x was -1", "file.cpp", 12, true);
    Assertion::AssertFunction("ok()", "", "a.cpp", 3, false); // no debugger: reports only
    std::string const expected =
        "file.cpp(12):\tLEGACY_ASSERT: \"x > 0\" \nx was -1\na.cpp(3):\tASSERT: \"ok()\" \n";
    EXPECT_EQ(testing::internal::GetCapturedStdout(), expected);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), expected);

    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    std::string const longText(3000, 'm');
    Assertion::AssertFunction("e", longText.c_str(), "f", 1, true);
    EXPECT_EQ(testing::internal::GetCapturedStdout().size(), 1023u) << "one 1024-byte buffer";
    testing::internal::GetCapturedStderr();
}

} // namespace
