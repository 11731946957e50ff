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
};

// A channel that records what reaches writeLog and the hooks.
class RecordingChannel : public TUMessage
{
public:
    using TUMessage::okToUseFile;
    using TUMessage::TUMessage;

    std::vector<std::string> reports; // "TYPE|text|translation|report"
    int heldBackFlushes = 0;
    bool* lastFlag = nullptr;

protected:
    void warning(QString const& text, QString const& translated, bool* flag) override
    {
        lastFlag = flag;
        TUMessage::warning(text, translated, flag);
    }
    void writeLog(char type, QString const& text, QString const& translated, bool report) override
    {
        reports.push_back(std::string(1, type) + "|" +
                          (text + "|" + translated + (report ? "|1" : "|0")).toStdString());
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

// "text|translation|code"
std::string describe(MSG_Text const& text)
{
    return (text.getText() + "|" + text.getTranslatedText()).toStdString() + "|" +
           std::to_string(text.errorCode());
}

MSG_Text both(char const* text, char const* translated)
{
    return MSG_Text(text, QString::fromUtf8(translated), MSG_Text::WithTranslatedText);
}

// --- MSG_Text ------------------------------------------------------------------

TEST(MsgText, CopyAssignmentAndConcatenationTreatTheCodeAsIntended)
{
    MSG_Text five = both("five", "fünf");
    five.errorCode(ErrorCode::Type(5));
    EXPECT_EQ(describe(five), "five|fünf|5");
    EXPECT_EQ(describe(MSG_Text(five)), "five|fünf|0");
    MSG_Text two;
    two.errorCode(ErrorCode::Type(2));
    two = five;
    EXPECT_EQ(describe(two), "five|fünf|2");
    EXPECT_EQ(describe(five + five), "fivefive|fünffünf|0");
    EXPECT_EQ(describe(five + QStringLiteral("!")), "five!|fünf!|0");
    five += QStringLiteral("?");
    five += both("a", "b");
    EXPECT_EQ(describe(five), "five?a|fünf?b|5");
}

TEST(MsgText, ConstructorsReadLatin1AndTranslateInTheGivenContext)
{
    EXPECT_TRUE(both("", "x").isEmpty());
    EXPECT_EQ(describe(both("caf\xe9", "t")), "café|t|0");
    // The translator is given the source bytes as they are (it reads them as UTF-8 here).
    EXPECT_EQ(describe(MSG_Text("Ctx", "Open \xe9", MSG_Text::WithContext)),
              "Open é|<Ctx>Open \xEF\xBF\xBD|0");
}

TEST(MsgText, ArgActsOnBothStringsIndependentlyAndFormatsLikeQString)
{
    EXPECT_EQ(describe(both("%1 and %2", "%2 puis %1").arg(QStringLiteral("a")).arg(7)),
              "a and 7|7 puis a|0");
    // Different placeholder sets: each string takes its own lowest one.
    EXPECT_EQ(describe(both("%1-%3", "%2").arg(QStringLiteral("x"))), "x-%3|x|0");
    EXPECT_EQ(describe(both("[%1]", "{%1}").arg(both("src", "tr"))), "[src]|{tr}|0");
    MSG_Text many(QStringLiteral("%1%2%3%4"), QStringLiteral("%4%3%2%1"),
                  MSG_Text::WithTranslatedText);
    many.arg(QStringLiteral("a"), QStringLiteral("%2"), QStringLiteral("c"), QStringLiteral("d"));
    EXPECT_EQ(describe(many), "a%2cd|dc%2a|0");

    auto format = [](auto&&... args) {
        MSG_Text text = both("<%1>", "(%1)");
        text.arg(args...);
        EXPECT_EQ(text.getTranslatedText(),
                  QStringLiteral("(%1)").arg(text.getText().mid(1).chopped(1)));
        return text.getText().toStdString();
    };
    EXPECT_EQ(format("\xc3\xa9", 3), "<  é>");
    EXPECT_EQ(format(std::string("\xc3\xa9")), "<Ã©>");
    EXPECT_EQ(format(QStringLiteral("ab"), -4), "<ab  >");
    EXPECT_EQ(format(short(-3), 4), "<  -3>");
    EXPECT_EQ(format(42u, 0, 2), "<101010>");
    EXPECT_EQ(format(~quint64(0), 0, 16), "<ffffffffffffffff>");
    EXPECT_EQ(format(3.14159, 7, 'f', 2), "<   3.14>");
}

// --- routing through the channel --------------------------------------------------

class Channel : public ::testing::Test
{
protected:
    void SetUp() override
    {
        TUMessage::setInstance(channel = new RecordingChannel(QStringLiteral("r"), false, true));
    }
    RecordingChannel* channel = nullptr;
};

TEST_F(Channel, ScopesReportWithTheirActionWhenTheyEnd)
{
    {
        MSG_Scope w("Ctx", "warn", MSG_Scope::Warning);
        MSG_Scope e(both("err", "erreur"), MSG_Scope::Error, ErrorCode::Type(4));
        MSG_Scope i(QStringLiteral("info"), MSG_Scope::Information);
        MSG_Scope t("trace", QStringLiteral("tr"), MSG_Scope::Trace);
        MSG_Scope d("debug", MSG_Scope::Debug);
        MSG_Scope l("Ctx", "later", MSG_Scope::TraceLater, ErrorCode::Type(6));
        MSG_Scope none("nothing", static_cast<MSG_Scope::Action>(8));
        MSG_Scope plain("plain");
    }
    // Reported at each scope's end, so in reverse order; no debug report outside debug mode.
    EXPECT_EQ(channel->reports,
              (std::vector<std::string>{"E|plain|<QObject>plain|1", "T|later|<Ctx>later|0",
                                        "T|trace|tr|0", "I|info|info|1", "E|err|erreur|1",
                                        "W|warn|<Ctx>warn|1"}));
    EXPECT_EQ(channel->lastFlag, nullptr);
    EXPECT_EQ(channel->getErrorCode(), 4u);

    MSG_Scope("ask", QStringLiteral("?"), MSG_Scope::WarningWithFlag, true);
    EXPECT_EQ(channel->reports.back(), "W|ask|?|1");
    EXPECT_NE(channel->lastFlag, nullptr);

    // Switching debug mode is traced with its translation; then debug scopes report.
    channel->reports.clear();
    channel->setDebugMode(true);
    MSG_Scope("debug", QStringLiteral("dbg"), MSG_Scope::Debug);
    channel->setDebugMode(false);
    EXPECT_EQ(
        channel->reports,
        (std::vector<std::string>{"T|Debug mode : ON|<TUMessage>Debug mode : ON|0", "D|debug|dbg|0",
                                  "T|Debug mode : OFF|<TUMessage>Debug mode : OFF|0"}));
}

TEST_F(Channel, SmallestNonZeroCodeWinsAndAnErrorWithoutCodeGivesHundred)
{
    MSG_Scope("Ctx", "error", MSG_Scope::Error);
    EXPECT_EQ(channel->getErrorCode(), 100u);
    channel->catchErrorCode(100000);
    EXPECT_EQ(channel->getErrorCode(), 100u) << "the hundred is kept, not only reported";
    for (int value : {7, 3, 5, 0})
        MSG_Scope("e", QStringLiteral("e"), MSG_Scope::Trace).errorCode(ErrorCode::Type(value));
    channel->catchErrorCode(0);
    EXPECT_EQ(channel->getErrorCode(), 3u);
}

TEST_F(Channel, SuspensionNestsAndOnlyTheOutermostEndFlushesAndSilenceIsRestored)
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

    // The silent guard restores the previous setting.
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
    auto make = [&](qint64 ageSeconds) {
        QFile file(dir.filePath(QString::number(ageSeconds)));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.setFileTime(QDateTime::currentDateTime().addSecs(-ageSeconds),
                         QFileDevice::FileModificationTime);
        return file.fileName();
    };
    qint64 const day = 86400;
    QString const fresh = make(60), dayOld = make(day + 120), old = make(15 * day + 60);
    QString const twoWeeks = make(14 * day + 3600), missing = dir.filePath(QStringLiteral("x"));

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
    TUMessage::LogToStdErr(QStringLiteral("hello"));
    QString const err = QString::fromStdString(testing::internal::GetCapturedStderr());
    EXPECT_TRUE(err.contains(QRegularExpression(
        QStringLiteral(R"(^café\n\d\d:\d\d:\d\d\.\d\d\d timed\n)"
                       R"(\[\d{4}\.\d\d\.\d\d-\d\d\.\d\d\.\d\d\]\[%1@\d+\] hello\n$)")
            .arg(QCoreApplication::applicationPid()))))
        << err.toStdString();
}

TEST(ChannelLifecycle, SingletonMisuseIsReportedLetterForLetter)
{
    // In a fresh process, as the "destroyed" flag is never cleared. The channel
    // names are written between the steps.
    auto misuse = [] {
        auto name = [] {
            std::fprintf(stderr, "[%s]\n", qPrintable(FieldReader::name(TUMessage::instance())));
        };
        TUMessage::releaseInstance();
        name();
        TUMessage::createInstance(QStringLiteral("next"), false, false);
        name();
        TUMessage::createInstance(QStringLiteral("phoenix"), false, false);
        TUMessage::setInstance(new TUMessage(QStringLiteral("set"), false, true));
        TUMessage::releaseInstance();
        TUMessage::releaseInstance();
        std::exit(0);
    };
    std::string const release = "TUMessage::releaseInstance\\(\\):  The TUMessage singleton ";
    std::string const missing = release + "does not exists\n",
                      released = release + "has already been released once\n";
    std::string const second =
        "TUMessage::createInstace: Request to allocate a second TUMessage singleton\n";
    std::string const secondThrice = second + "<TUMessage>" + second + second;
    EXPECT_EXIT(
        misuse(), testing::ExitedWithCode(0),
        "^" + missing + "\\[test_app_messages\\]\n" + secondThrice + "\\[next\\]\n" +
            "TUMessage::createInstance: The TUMessage singleton has already been destroyed.\n" +
            "Will recreate \\(Phoenix\\) the singleton once more!!!\n" + secondThrice +
            "TUMessage::setInstance: Request to set a second TUMessage singleton\n" + released +
            missing + released + "$");
}

struct ClosingChannel : TUMessage
{
    using TUMessage::TUMessage;
    void close() override { std::fputs("closed\n", stderr); }
};

TEST(ChannelLifecycle, FatalErrorClosesAndEndsWithTheStatusRule)
{
    auto fatal = [](int value) {
        TUMessage::setInstance(new ClosingChannel(QStringLiteral("closing"), false, true));
        MSG_Scope("Ctx", "fatal", MSG_Scope::FatalError, ErrorCode::Type(value));
    };
    // The code is the status when it is 2 to 8; otherwise the status is 1.
    for (auto [value, status] : {std::pair{8, 8}, {2, 2}, {1, 1}, {9, 1}, {-1, 1}, {0, 1}})
        EXPECT_EXIT(fatal(value), testing::ExitedWithCode(status), "fatal\nclosed") << value;
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
