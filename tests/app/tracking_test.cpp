#include <BrindleBaseCore/app/UT_Tracking.h>

#include <gtest/gtest.h>

#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace {

// Records the reports it gets; counts the destructions of its kind.
class RecordingTracker : public UT_Tracking
{
public:
    ~RecordingTracker() override { ++destroyed; }
    void trackCrash(std::string const& message, StackTrace const&, bool fatal) override
    {
        lastMessage = message;
        lastFatal = fatal;
    }

    static inline int destroyed = 0;
    std::string lastMessage;
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

TEST(Tracking, OnlyASetTrackerArmsTheHandlersAndDeletingItDisarms)
{
    auto const segv = dispositionOf(SIGSEGV);
    auto const abrt = dispositionOf(SIGABRT);
    UT_Tracking& none = UT_Tracking::instance();
    EXPECT_NE(dynamic_cast<UT_NoTracking*>(&none), nullptr);
    EXPECT_EQ(&UT_Tracking::instance(), &none);
    EXPECT_TRUE(dispositionOf(SIGSEGV) == segv && dispositionOf(SIGABRT) == abrt);

    RecordingTracker::destroyed = 0;
    auto* tracker = new RecordingTracker;
    UT_Tracking::setInstance(tracker);
    auto const armed = dispositionOf(SIGSEGV);
    EXPECT_NE(armed, segv);
    EXPECT_NE(dispositionOf(SIGABRT), SIG_DFL);
    UT_Tracking::setInstance(tracker); // the same one again: kept, armed once
    EXPECT_EQ(RecordingTracker::destroyed, 0);
    EXPECT_EQ(&UT_Tracking::instance(), tracker);

    // Replacing the tracker deletes the old one and keeps the handlers armed.
    UT_Tracking::setInstance(new RecordingTracker);
    EXPECT_EQ(RecordingTracker::destroyed, 1);
    EXPECT_EQ(dispositionOf(SIGSEGV), armed);

    UT_Tracking::deleteInstance();
    EXPECT_EQ(RecordingTracker::destroyed, 2);
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
        EXPECT_GT(e.getStackTrace().count(), 0u);
        e.TrackCatch("caller", 7);
    }
    EXPECT_FALSE(tracker->lastFatal);
    EXPECT_EQ(tracker->lastMessage, "UT_Tracking::Exception throw in load (src/file.cpp) Line=42: "
                                    "bad header\nCatch UT_Tracking::Exception in caller Line=7\n");

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

// In a death test's child: arms TRACKER, then runs FAULT.
void crash(UT_Tracking* tracker, void (*fault)())
{
    defaultDispositions();
    UT_Tracking::setInstance(tracker);
    fault();
}

TEST(TrackingDeathTest, SignalsAreReportedOnceByNameAndTheProcessStillEnds)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(crash(new StdErrTracker, [] { *nowhere = 1; }), testing::KilledBySignal(SIGSEGV),
                "App terminated by EXCEPTION_ACCESS_VIOLATIONRelative addresses:\n0 ");
    EXPECT_EXIT(crash(new StdErrTracker, [] { std::abort(); }), testing::KilledBySignal(SIGABRT),
                "App terminated by SIGABRTRelative addresses:\n");
    EXPECT_EXIT(crash(new StdErrTracker, [] { raise(SIGTRAP); }), testing::KilledBySignal(SIGTRAP),
                "App terminated by Unknown ExceptionRelative addresses:\n");
    // A report that aborts: the second signal only marks its start and end.
    EXPECT_EXIT(crash(new AbortingTracker, [] { std::abort(); }), testing::KilledBySignal(SIGABRT),
                "^Multiple signal 1 Start\nMultiple signal 1 End\n$");

    // Signals handled directly: named, and only the first reported.
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
    for (auto [sig, name] : {std::pair{SIGFPE, "SIGFPE"}, {SIGILL, "SIGILL"}, {SIGSEGV, "SIGSEGV"}})
        EXPECT_EXIT(signalTwice(sig), testing::ExitedWithCode(0),
                    std::string("App terminated by ") + name + "Relative addresses:\n");
}

TEST(Names, ProcessorAndGraphicsCardNamesAreNormalised)
{
    using Rows = std::initializer_list<std::pair<char const*, char const*>>;
    for (auto [name, expected] :
         Rows{{"12th Gen Intel(R) Core(TM) i7-12700H CPU @ 2.30GHz", "Intel(R) Core i7-12700H"},
              {"AMD Ryzen 7 5800H with Radeon Graphics", "AMD Ryzen 7 5800H"},
              {"AMD Ryzen 5 3500U with Radeon Vega Mobile Gfx", "AMD Ryzen 5 3500U Mobile Gfx"},
              {"AMD Ryzen 5 2400G with Radeon Vega Graphics  ", "AMD Ryzen 5 2400G"},
              {"Quad-Core processor  @ 2 GHz", "Quad-Core"},
              {"11TH GEN chip @ 2.5ghz", "11TH GEN chip @ 2.5ghz"}, // the patterns match case
              {"Fast(tm) cpu", "Fast(tm)"}})
        EXPECT_EQ(UT_Tracking::normalizeCPUName(name).toStdString(), expected) << name;
    for (auto [name, expected] :
         Rows{{"GeForce GTX 1080/PCIe/SSE2", "NVIDIA GeForce GTX 1080"},
              {"NVIDIA GTX 1080", "NVIDIA GeForce GTX 1080"},
              {"NVIDIA GeForce RTX 3060 Laptop GPU/PCIe/SSE2", "NVIDIA GeForce RTX 3060 Laptop"},
              {"Radeon RX 580 Series", "AMD Radeon RX 580"},
              {"AMD RX 6600 (TM)", "AMD Radeon RX 6600"},
              {"Intel(R) Iris(TM) Plus OpenGL Engine", "Intel(R) Iris Plus"},
              {"geforce gtx", "geforce gtx"}}) // brands match case
        EXPECT_EQ(UT_Tracking::normalizeGraphicCardName(name).toStdString(), expected) << name;
}

TEST(Assertion, ReportsToBothStreams)
{
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    Assertion::AssertFunction("x > 0", "x was -1", "file.cpp", 12, true);
    Assertion::AssertFunction("ok()", "", "a.cpp", 3, false); // no debugger: reports only
    std::string const longText(3000, 'm');
    Assertion::AssertFunction("e", longText.c_str(), "f", 1, true); // cut to one 1024-byte buffer
    std::string const out = testing::internal::GetCapturedStdout();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), out);
    EXPECT_EQ(out,
              "file.cpp(12):\tLEGACY_ASSERT: \"x > 0\" \nx was -1\na.cpp(3):\tASSERT: \"ok()\" \n" +
                  ("f(1):\tLEGACY_ASSERT: \"e\" \n" + longText).substr(0, 1023));
}

} // namespace
