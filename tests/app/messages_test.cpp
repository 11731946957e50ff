#include <BrindleBaseCore/app/MSG_Text.h>
#include <BrindleBaseCore/app/TUMessage.h>

#include <gtest/gtest.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDateTime>
#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTranslator>

#include <cstdio>
#include <vector>

namespace {

// Translates the contexts the tests use into recognisable texts.
class MarkingTranslator : public QTranslator
{
public:
    QString translate(char const* context, char const* source, char const*, int) const override
    {
        return QStringLiteral("<%1>%2").arg(QLatin1String(context), QString::fromUtf8(source));
    }
    bool isEmpty() const override { return false; }
};

struct Report
{
    char type;
    QString text;
    QString translated;
    bool report;
};

// A channel that records what reaches writeLog and the hooks.
class RecordingChannel : public TUMessage
{
public:
    RecordingChannel()
        : TUMessage(QStringLiteral("recording"), false, true)
    {}

    std::vector<Report> reports;
    int heldBackFlushes = 0;
    bool* lastFlag = nullptr;

    using TUMessage::okToUseFile;

    static RecordingChannel& install()
    {
        auto* channel = new RecordingChannel;
        TUMessage::setInstance(channel);
        return *channel;
    }

protected:
    void warning(QString const& text, QString const& translated, bool* flag) override
    {
        lastFlag = flag;
        TUMessage::warning(text, translated, flag);
    }
    void writeLog(char type, QString const& text, QString const& translated, bool report) override
    {
        reports.push_back({type, text, translated, report});
    }
    void interactiveReport(char type, QString const&, bool*) override
    {
        if (type == 'Z')
            ++heldBackFlushes;
    }
};

// Reads a protected field of any channel.
struct FieldReader : TUMessage
{
    static QString name(TUMessage& channel) { return channel.*(&FieldReader::m_name); }
};

ErrorCode::Type code(int value)
{
    return static_cast<ErrorCode::Type>(value);
}

// --- MSG_Text ------------------------------------------------------------------

TEST(MsgText, CopyAssignmentAndConcatenationTreatTheCodeAsDocumented)
{
    MSG_Text five("five", QStringLiteral("fünf"), MSG_Text::WithTranslatedText);
    five.errorCode(code(5));
    EXPECT_EQ(five.errorCode(), 5u);

    MSG_Text copy(five);
    EXPECT_EQ(copy.getText(), QStringLiteral("five"));
    EXPECT_EQ(copy.getTranslatedText(), QStringLiteral("fünf"));
    EXPECT_EQ(copy.errorCode(), 0u);

    MSG_Text two;
    two.errorCode(code(2));
    two = five;
    EXPECT_EQ(two.getTranslatedText(), QStringLiteral("fünf"));
    EXPECT_EQ(two.errorCode(), 2u);

    MSG_Text sum = five + five;
    EXPECT_EQ(sum.getText(), QStringLiteral("fivefive"));
    EXPECT_EQ(sum.getTranslatedText(), QStringLiteral("fünffünf"));
    EXPECT_EQ(sum.errorCode(), 0u);
    EXPECT_EQ((five + QStringLiteral("!")).getTranslatedText(), QStringLiteral("fünf!"));

    five += QStringLiteral("?");
    five += MSG_Text("a", QStringLiteral("b"), MSG_Text::WithTranslatedText);
    EXPECT_EQ(five.getText(), QStringLiteral("five?a"));
    EXPECT_EQ(five.getTranslatedText(), QStringLiteral("fünf?b"));
    EXPECT_EQ(five.errorCode(), 5u);
}

TEST(MsgText, ConstructorsReadLatin1AndTranslateInTheGivenContext)
{
    MSG_Text empty;
    EXPECT_TRUE(empty.isEmpty());
    EXPECT_EQ(empty.errorCode(), 0u);
    EXPECT_TRUE(MSG_Text("", QStringLiteral("x"), MSG_Text::WithTranslatedText).isEmpty());

    MSG_Text latin("caf\xe9", QStringLiteral("t"), MSG_Text::WithTranslatedText);
    EXPECT_EQ(latin.getText(), QString::fromUtf8("café"));

    MSG_Text contextual("Ctx", "Open \xe9", MSG_Text::WithContext);
    EXPECT_EQ(contextual.getText(), QString::fromUtf8("Open é"));
    EXPECT_EQ(contextual.getTranslatedText(),
              QStringLiteral("<Ctx>") + QString::fromUtf8("Open \xe9"));
}

TEST(MsgText, ArgActsOnBothStringsIndependently)
{
    MSG_Text text(QStringLiteral("%1 and %2"), QStringLiteral("%2 puis %1"),
                  MSG_Text::WithTranslatedText);
    text.arg(QStringLiteral("a")).arg(7);
    EXPECT_EQ(text.getText(), QStringLiteral("a and 7"));
    EXPECT_EQ(text.getTranslatedText(), QStringLiteral("7 puis a"));

    // Different placeholder sets: each string takes its own lowest one.
    MSG_Text uneven(QStringLiteral("%1-%3"), QStringLiteral("%2"), MSG_Text::WithTranslatedText);
    uneven.arg(QStringLiteral("x"));
    EXPECT_EQ(uneven.getText(), QStringLiteral("x-%3"));
    EXPECT_EQ(uneven.getTranslatedText(), QStringLiteral("x"));

    MSG_Text nested(QStringLiteral("[%1]"), QStringLiteral("{%1}"), MSG_Text::WithTranslatedText);
    nested.arg(MSG_Text("src", QStringLiteral("tr"), MSG_Text::WithTranslatedText));
    EXPECT_EQ(nested.getText(), QStringLiteral("[src]"));
    EXPECT_EQ(nested.getTranslatedText(), QStringLiteral("{tr}"));
}

TEST(MsgText, ArgOverloadsFormatLikeQString)
{
    auto format = [](auto&&... args) {
        MSG_Text text(QStringLiteral("<%1>"), QStringLiteral("(%1)"), MSG_Text::WithTranslatedText);
        text.arg(args...);
        EXPECT_EQ(text.getTranslatedText(),
                  QStringLiteral("(%1)").arg(text.getText().mid(1).chopped(1)));
        return text.getText();
    };
    EXPECT_EQ(format("\xc3\xa9", 3), QString::fromUtf8("<  é>"));
    EXPECT_EQ(format(std::string("\xc3\xa9")), QString::fromUtf8("<Ã©>"));
    EXPECT_EQ(format(QStringLiteral("ab"), -4), QStringLiteral("<ab  >"));
    EXPECT_EQ(format(short(-3), 4), QStringLiteral("<  -3>"));
    EXPECT_EQ(format(42u, 0, 2), QStringLiteral("<101010>"));
    EXPECT_EQ(format(~quint64(0), 0, 16), QStringLiteral("<ffffffffffffffff>"));
    EXPECT_EQ(format(3.14159, 7, 'f', 2), QStringLiteral("<   3.14>"));

    MSG_Text many(QStringLiteral("%1%2%3%4"), QStringLiteral("%4%3%2%1"),
                  MSG_Text::WithTranslatedText);
    many.arg(QStringLiteral("a"), QStringLiteral("%2"), QStringLiteral("c"), QStringLiteral("d"));
    EXPECT_EQ(many.getText(), QStringLiteral("a%2cd"));
    EXPECT_EQ(many.getTranslatedText(), QStringLiteral("dc%2a"));
}

// --- routing through the channel --------------------------------------------------

class Channel : public ::testing::Test
{
protected:
    void SetUp() override { channel = &RecordingChannel::install(); }
    RecordingChannel* channel = nullptr;
};

TEST_F(Channel, ScopesReportWithTheirActionWhenTheyEnd)
{
    channel->setDebugMode(false);
    channel->reports.clear();
    {
        MSG_Scope w("Ctx", "warn", MSG_Scope::Warning);
        MSG_Scope e(MSG_Text("err", QStringLiteral("erreur"), MSG_Text::WithTranslatedText),
                    MSG_Scope::Error, code(4));
        MSG_Scope i(QStringLiteral("info"), MSG_Scope::Information);
        MSG_Scope t("trace", QStringLiteral("tr"), MSG_Scope::Trace);
        MSG_Scope d("debug", MSG_Scope::Debug);
        MSG_Scope l("Ctx", "later", MSG_Scope::TraceLater, code(6));
        MSG_Scope none("nothing", static_cast<MSG_Scope::Action>(8));
        MSG_Scope plain("plain");
        EXPECT_TRUE(channel->reports.empty());
    }
    // Destroyed in reverse order; the debug report is dropped outside debug mode.
    ASSERT_EQ(channel->reports.size(), 6u);
    auto expect = [&](size_t i, char type, char const* text, QString const& tr, bool report) {
        SCOPED_TRACE(i);
        EXPECT_EQ(channel->reports[i].type, type);
        EXPECT_EQ(channel->reports[i].text, QString::fromLatin1(text));
        EXPECT_EQ(channel->reports[i].translated, tr);
        EXPECT_EQ(channel->reports[i].report, report);
    };
    expect(0, 'E', "plain", QStringLiteral("<QObject>plain"), true);
    expect(1, 'T', "later", QStringLiteral("<Ctx>later"), false);
    expect(2, 'T', "trace", QStringLiteral("tr"), false);
    expect(3, 'I', "info", QStringLiteral("info"), true);
    expect(4, 'E', "err", QStringLiteral("erreur"), true);
    expect(5, 'W', "warn", QStringLiteral("<Ctx>warn"), true);
    EXPECT_EQ(channel->lastFlag, nullptr);
    EXPECT_EQ(channel->getErrorCode(), 4u);

    {
        MSG_Scope ask("ask", QStringLiteral("?"), MSG_Scope::WarningWithFlag, true);
    }
    EXPECT_EQ(channel->reports.back().type, 'W');
    EXPECT_NE(channel->lastFlag, nullptr);

    channel->setDebugMode(true);
    channel->reports.clear();
    {
        MSG_Scope d("debug", QStringLiteral("dbg"), MSG_Scope::Debug);
    }
    ASSERT_EQ(channel->reports.size(), 1u);
    expect(0, 'D', "debug", QStringLiteral("dbg"), false);
}

TEST_F(Channel, DebugModeSwitchIsTracedWithTranslation)
{
    channel->setDebugMode(true);
    EXPECT_TRUE(channel->getDebugMode());
    EXPECT_TRUE(channel->isDebugMode());
    channel->setDebugMode(false);
    ASSERT_EQ(channel->reports.size(), 2u);
    EXPECT_EQ(channel->reports[0].type, 'T');
    EXPECT_EQ(channel->reports[0].text, QStringLiteral("Debug mode : ON"));
    EXPECT_EQ(channel->reports[0].translated, QStringLiteral("<TUMessage>Debug mode : ON"));
    EXPECT_EQ(channel->reports[1].text, QStringLiteral("Debug mode : OFF"));
    EXPECT_EQ(channel->getErrorCode(), 0u);
}

TEST_F(Channel, SmallestNonZeroCodeWinsAndAnErrorWithoutCodeGivesHundred)
{
    MSG_Scope("Ctx", "error", MSG_Scope::Error);
    EXPECT_EQ(channel->getErrorCode(), 100u);
    channel->catchErrorCode(100000);
    EXPECT_EQ(channel->getErrorCode(), 100u);

    RecordingChannel& fresh = RecordingChannel::install();
    for (int value : {7, 3, 5})
        MSG_Scope("e", QStringLiteral("e"), MSG_Scope::Trace).errorCode(code(value));
    fresh.catchErrorCode(5);
    fresh.catchErrorCode(0);
    EXPECT_EQ(fresh.getErrorCode(), 3u);
}

TEST_F(Channel, SuspensionNestsAndOnlyTheOutermostEndFlushes)
{
    {
        TUMessageSuspend outer;
        {
            TUMessageSuspend inner;
            EXPECT_TRUE(channel->isReportSuspended());
        }
        EXPECT_EQ(channel->heldBackFlushes, 0);
        {
            TUMessageUnsuspend lifted;
            EXPECT_FALSE(channel->isReportSuspended());
            TUMessageSuspend again;
        }
        EXPECT_EQ(channel->heldBackFlushes, 1) << "the inner suspension inside the lift ended";
        EXPECT_TRUE(channel->isReportSuspended());
    }
    EXPECT_EQ(channel->heldBackFlushes, 2);
    EXPECT_FALSE(channel->isReportSuspended());

    channel->suspendReport(false); // unbalanced: wraps around, no flush
    EXPECT_TRUE(channel->isReportSuspended());
    EXPECT_EQ(channel->heldBackFlushes, 2);
    channel->suspendReport(true);
    EXPECT_FALSE(channel->isReportSuspended());
}

TEST_F(Channel, SilentGuardRestoresThePreviousSetting)
{
    for (bool before : {true, false}) {
        channel->setSilent(before);
        {
            TUMessageSilent guard;
            EXPECT_TRUE(channel->isSilent());
        }
        EXPECT_EQ(channel->isSilent(), before);
    }
}

TEST_F(Channel, OkToUseFileFollowsModificationAges)
{
    QTemporaryDir dir;
    auto make = [&](char const* name, qint64 ageSeconds) {
        QString path = dir.filePath(QLatin1String(name));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.setFileTime(QDateTime::currentDateTime().addSecs(-ageSeconds),
                         QFileDevice::FileModificationTime);
        return path;
    };
    qint64 const day = 86400;
    QString const fresh = make("fresh", 60);
    QString const dayOld = make("dayOld", day + 120);
    QString const twoWeeks = make("twoWeeks", 14 * day + 3600);
    QString const old = make("old", 15 * day + 60);
    QString const missing = dir.filePath(QStringLiteral("missing"));

    EXPECT_TRUE(channel->okToUseFile(missing, missing));
    EXPECT_FALSE(channel->okToUseFile(missing, twoWeeks)) << "14 days and an hour is not 15";
    EXPECT_TRUE(channel->okToUseFile(missing, old));
    EXPECT_FALSE(channel->okToUseFile(fresh, missing));
    EXPECT_TRUE(channel->okToUseFile(dayOld, missing));
    EXPECT_FALSE(channel->okToUseFile(old, fresh));
    EXPECT_TRUE(channel->okToUseFile(fresh, old));
}

// --- standard error and process end --------------------------------------------------

TEST(BaseChannel, WritesTheSourceTextOnlyAsUtf8)
{
    TUMessage::setInstance(new TUMessage(QStringLiteral("base"), false, true));
    testing::internal::CaptureStderr();
    MSG_Scope("caf\xe9", QStringLiteral("translated"), MSG_Scope::Information);
    TUMessage::instance().setTimeLogging(true);
    MSG_Scope(QStringLiteral("timed"), MSG_Scope::Warning);
    TUMessage::instance().setTimeLogging(false);
    std::string const err = testing::internal::GetCapturedStderr();
    EXPECT_TRUE(QRegularExpression(QStringLiteral(R"(^café\n\d\d:\d\d:\d\d\.\d\d\d timed\n$)"))
                    .match(QString::fromStdString(err))
                    .hasMatch())
        << err;

    testing::internal::CaptureStderr();
    TUMessage::LogToStdErr(QStringLiteral("hello"));
    std::string const logged = testing::internal::GetCapturedStderr();
    QString const pattern =
        QStringLiteral(R"(^\[\d{4}\.\d\d\.\d\d-\d\d\.\d\d\.\d\d\]\[%1@\d+\] hello\n$)")
            .arg(QCoreApplication::applicationPid());
    EXPECT_TRUE(QRegularExpression(pattern).match(QString::fromStdString(logged)).hasMatch())
        << logged;
}

// Ends the process with status 0 when stderr got exactly what was expected.
void expectStderr(std::string const& expected, std::string const& actual)
{
    if (expected == actual)
        return;
    std::fprintf(stderr, "expected:\n%s\nactual:\n%s\n", expected.c_str(), actual.c_str());
    std::exit(1);
}

TEST(ChannelLifecycle, SingletonMisuseIsReportedLetterForLetter)
{
    // In a fresh process: the "destroyed" flag is never cleared.
    EXPECT_EXIT(
        {
            testing::internal::CaptureStderr();
            TUMessage::releaseInstance();
            expectStderr("TUMessage::releaseInstance():  The TUMessage singleton does not exists\n",
                         testing::internal::GetCapturedStderr());

            TUMessage& first = TUMessage::instance();
            if (FieldReader::name(first) != QStringLiteral("test_app_messages"))
                std::exit(2);
            char const* second = "TUMessage::createInstace: Request to allocate a second "
                                 "TUMessage singleton\n";
            testing::internal::CaptureStderr();
            TUMessage::createInstance(QStringLiteral("next"), false, false);
            expectStderr(std::string(second) + "<TUMessage>" + second + second,
                         testing::internal::GetCapturedStderr());
            if (FieldReader::name(TUMessage::instance()) != QStringLiteral("next"))
                std::exit(3);

            testing::internal::CaptureStderr();
            TUMessage::createInstance(QStringLiteral("phoenix"), false, false);
            expectStderr(std::string("TUMessage::createInstance: The TUMessage singleton has "
                                     "already been destroyed.\nWill recreate (Phoenix) the "
                                     "singleton once more!!!\n") +
                             second + "<TUMessage>" + second + second,
                         testing::internal::GetCapturedStderr());

            testing::internal::CaptureStderr();
            TUMessage::setInstance(new TUMessage(QStringLiteral("set"), false, true));
            TUMessage::releaseInstance();
            TUMessage::releaseInstance();
            char const* released = "TUMessage::releaseInstance():  The TUMessage singleton has "
                                   "already been released once\n";
            expectStderr(std::string("TUMessage::setInstance: Request to set a second TUMessage "
                                     "singleton\n") +
                             released +
                             "TUMessage::releaseInstance():  The TUMessage singleton does not "
                             "exists\n" +
                             released,
                         testing::internal::GetCapturedStderr());
            std::exit(0);
        },
        testing::ExitedWithCode(0), "");
}

class ClosingChannel : public TUMessage
{
public:
    ClosingChannel()
        : TUMessage(QStringLiteral("closing"), false, true)
    {}
    void close() override { std::fputs("closed\n", stderr); }
};

TEST(ChannelLifecycle, FatalErrorClosesAndEndsWithTheStatusRule)
{
    auto fatal = [](int value) {
        TUMessage::setInstance(new ClosingChannel);
        MSG_Scope("Ctx", "fatal", MSG_Scope::FatalError, code(value));
    };
    EXPECT_EXIT(fatal(8), testing::ExitedWithCode(8), "fatal\nclosed");
    EXPECT_EXIT(fatal(2), testing::ExitedWithCode(2), "closed");
    EXPECT_EXIT(fatal(9), testing::ExitedWithCode(1), "closed");
    EXPECT_EXIT(fatal(-1), testing::ExitedWithCode(1), "closed");
    EXPECT_EXIT(fatal(0), testing::ExitedWithCode(1), "closed");
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    MarkingTranslator translator;
    QCoreApplication::installTranslator(&translator);
    ::testing::InitGoogleTest(&argc, argv);
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    return RUN_ALL_TESTS();
}
