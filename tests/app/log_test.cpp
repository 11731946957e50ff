// The action log: file naming, the line formats, scopes and pauses.
#include <BrindleBaseCore/app/BAPP_Services.h>
#include <BrindleBaseCore/app/UT_Log.h>
#include <BrindleBaseCore/app/UT_Tracking.h>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QRegularExpression>
#include <QtCore/QSysInfo>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

namespace {

struct RecordingTracker : UT_Tracking
{
    int trackAction(QString const& action) override
    {
        actions << action;
        return 0;
    }
    void trackCrash(std::string const&, UT_Tracking::StackTrace const&, bool) override {}
    QStringList actions;
};

QByteArray contents(QString const& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The lines after the header, with each time stamp replaced by "T".
std::string body(QString const& path)
{
    static QRegularExpression const time(
        QStringLiteral("(?m)^( *)\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d"));
    QString text = QString::fromUtf8(contents(path));
    return text.mid(text.indexOf('\n') + 1).replace(time, QStringLiteral("\\1T")).toStdString();
}

class Log : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(log.create(dir.path())); }
    QTemporaryDir dir;
    UT_Log log;
};

} // namespace

TEST_F(Log, NamesTheFileAndWritesTheHeader)
{
    QString const name = QFileInfo(log.fileName()).fileName();
    QString const host = QSysInfo::machineHostName().section('.', 0, 0);
    EXPECT_TRUE(
        name.contains(QRegularExpression(QStringLiteral("^\\d{8}-\\d{6}_%1_.+\\.log$").arg(host))))
        << name.toStdString();
    EXPECT_EQ(UT_LogIO::buildLogFileName(false).size() + 4,
              UT_LogIO::buildLogFileName(true).size());
    EXPECT_EQ(contents(log.fileName()), "\xEF\xBB\xBFLog file produced by: " +
                                            BAPP_Identity::instance().fullVersionText().toUtf8() +
                                            "\n");
}

TEST_F(Log, TheTwoOperationFormsDifferOnPurpose)
{
    EXPECT_TRUE(log.logAction(QStringLiteral(u"Open «scène».xml")));
    EXPECT_TRUE(log.add(QStringLiteral("Copy"), QStringLiteral("/a"), QStringLiteral("/b"), false));
    EXPECT_TRUE(
        log.add(UT_Log::eFileOperation::Copy, QStringLiteral("/a"), QStringLiteral("/b"), false));
    EXPECT_TRUE(log.add(QStringLiteral("Save"), UT_String(u"/c"), true));
    EXPECT_TRUE(log.add(UT_Log::eFileOperation::Delete, UT_String(u"/c"), true));
    EXPECT_TRUE(log.add(static_cast<UT_Log::eFileOperation>(9), QStringLiteral("/d"), true));
    log.setIndent(-3);
    EXPECT_EQ(log.indent(), 0);
    log.setIndent(3);
    EXPECT_TRUE(log.logAction(QStringLiteral("in")));
    EXPECT_EQ(
        body(log.fileName()),
        "T;ACTION;Open «scène».xml\nT;Copy;/a;/b;===> FAIL <===\nT;Copy;/a;/b ===> FAIL <==== \n"
        "T;Save;/c;;SUCCESS\nT;Delete;/c; OK \nT;Unknown;/d; OK \n   T;ACTION;in\n");
}

TEST_F(Log, ClosedOrNeverCreatedLogsWriteNothingAndCreateMakesOneLevel)
{
    EXPECT_FALSE(log.reopen()); // already open
    EXPECT_TRUE(log.close());
    EXPECT_FALSE(log.close());
    EXPECT_FALSE(log.logAction(QStringLiteral("lost")));
    EXPECT_FALSE(log.add(QStringLiteral("Copy"), QStringLiteral("/a"), true));
    EXPECT_TRUE(log.reopen());
    EXPECT_TRUE(log.logAction(QStringLiteral("kept")));
    EXPECT_EQ(body(log.fileName()), "T;ACTION;kept\n");

    UT_Log other; // no file yet
    EXPECT_FALSE(other.reopen());
    EXPECT_FALSE(other.copyLog(dir.path(), QStringLiteral("_x")));
    EXPECT_FALSE(other.create(dir.path() + "/missing/deeper"));
    ASSERT_TRUE(QFile(dir.path() + "/file").open(QIODevice::WriteOnly));
    EXPECT_FALSE(other.create(dir.path() + "/file"));
    EXPECT_FALSE(other.isOpen());
    // One missing level is made.
    EXPECT_TRUE(other.create(dir.path() + "/logs"));
    EXPECT_TRUE(other.fileName().startsWith(dir.path() + "/logs/"));
}

TEST_F(Log, CopyLogReplacesAnEarlierCopy)
{
    QString const copy = log.fileName().chopped(4) + "_crash.log";
    EXPECT_TRUE(log.copyLog(dir.path(), QStringLiteral("_crash")));
    log.logAction(QStringLiteral("more"));
    EXPECT_TRUE(log.copyLog(dir.path(), QStringLiteral("_crash")));
    EXPECT_EQ(contents(copy), contents(log.fileName()));
    EXPECT_FALSE(log.copyLog(dir.path() + "/no/such", QStringLiteral("_crash")));
}

TEST(LogIO, CreateMsgKeepsTheFileNameOnly)
{
    // A backslash counts only where there is no slash.
    EXPECT_EQ(UT_LogIO::createMsg("x", "a/b/c\\d.cpp", -1), u"x (c\\d.cpp,-1)");
    EXPECT_EQ(UT_LogIO::createMsg("y", "dir\\file.cpp", 3), u"y (file.cpp,3)");
}

TEST(LogIO, SharedLogWithScopesPausesAndTheTracker)
{
    auto* tracker = new RecordingTracker;
    UT_Tracking::setInstance(tracker);
    QTemporaryDir dir;

    // Without a shared log nothing is written, but actions still reach the tracker.
    EXPECT_FALSE(UT_LogIO::logAction(QStringLiteral("early")));
    EXPECT_FALSE(UT_LogIO::add(UT_Log::eFileOperation::Copy, QStringLiteral("/a"), true));
    EXPECT_FALSE(UT_LogIO::pause());
    UT_LogIO::Scope(QStringLiteral("nothing"));

    ASSERT_TRUE(UT_LogIO::create(dir.path()));
    QString const file = UT_LogIO::sharedLog()->fileName();
    {
        UT_LogIO::Scope outer(QStringLiteral("Render"));
        {
            UT_LogIO::Scope inner(QStringLiteral("Frame"));
            EXPECT_TRUE(UT_LogIO::add(QStringLiteral("Write"), QStringLiteral("/f"), true));
            EXPECT_TRUE(UT_LogIO::pause());
            EXPECT_FALSE(UT_LogIO::isOpen());
            EXPECT_FALSE(UT_LogIO::logAction(QStringLiteral("while paused")));
            EXPECT_TRUE(UT_LogIO::resume());
            EXPECT_FALSE(UT_LogIO::resume());
            UT_LogIO::sharedLog()->setIndent(0);
        }
        EXPECT_EQ(UT_LogIO::sharedLog()->indent(), 0);
    }
    EXPECT_TRUE(UT_LogIO::close());
    EXPECT_FALSE(UT_LogIO::close());
    EXPECT_EQ(body(file), "T;ACTION;Start Render\n  T;ACTION;Start Frame\n    T;Write;/f;;SUCCESS\n"
                          "T;ACTION;End Frame\nT;ACTION;End Render\n");
    EXPECT_EQ(tracker->actions, QStringList({"early", "Start Render", "Start Frame", "while paused",
                                             "End Frame", "End Render"}));
    UT_Tracking::deleteInstance();
}
