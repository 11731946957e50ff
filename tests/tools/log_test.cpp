// brindle log: action lines, and a command bracketed by a scope.
#include "TestSupport.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

using brindle_test::runProgram;
using brindle_test::toolPath;

namespace {

// The lines of the log file named on the last line of out, without the
// header and with the time stamps replaced by "T".
QStringList logLines(QByteArray const& out)
{
    QString const path = QString::fromUtf8(out).trimmed().section('\n', -1);
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    QStringList lines = QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts);
    if (!lines.isEmpty())
        lines.removeFirst();
    static QRegularExpression const time(
        QStringLiteral("\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d"));
    for (QString& line : lines)
        line.replace(time, QStringLiteral("T"));
    return lines;
}

} // namespace

TEST(LogCommand, WritesOneActionLinePerArgument)
{
    QTemporaryDir dir;
    QByteArray out, err;
    ASSERT_EQ(runProgram(toolPath(), {"log", dir.path() + "/logs", "Open a.xml", "-x", "Save"},
                         &out, &err),
              0)
        << err.constData();
    EXPECT_EQ(logLines(out), QStringList({"T;ACTION;Open a.xml", "T;ACTION;-x", "T;ACTION;Save"}));
}

TEST(LogCommand, ScopeBracketsTheCommandAndReportsItsFailure)
{
    QTemporaryDir dir;
    QByteArray out, err;
    ASSERT_EQ(runProgram(toolPath(),
                         {"log", "--scope", "Export", dir.path(), "--", "sh", "-c", "echo hi"},
                         &out, &err),
              0)
        << err.constData();
    EXPECT_TRUE(out.startsWith("hi\n"));
    EXPECT_EQ(logLines(out), QStringList({"T;ACTION;Start Export", "  T;ACTION;Run sh -c echo hi",
                                          "  T;ACTION;Exit status 0", "T;ACTION;End Export"}));

    QTemporaryDir other;
    EXPECT_EQ(runProgram(toolPath(),
                         {"log", "--scope", "Bad", other.path(), "--", "sh", "-c", "exit 3"}, &out,
                         &err),
              1);
    EXPECT_TRUE(err.contains("brindle log: 'sh' exited with status 3")) << err.constData();
    EXPECT_EQ(logLines(out).last(), "T;ACTION;End Bad");
}

TEST(LogCommand, BadInputIsReportedNotCrashedOn)
{
    QTemporaryDir dir;
    QByteArray out, err;
    EXPECT_EQ(runProgram(toolPath(), {"log"}, &out, &err), 2);
    EXPECT_EQ(runProgram(toolPath(), {"log", dir.path()}, &out, &err), 2);
    EXPECT_EQ(runProgram(toolPath(), {"log", "--scope", "S", dir.path(), "--"}, &out, &err), 2);
    EXPECT_TRUE(err.contains("missing the command")) << err.constData();
    EXPECT_EQ(runProgram(toolPath(), {"log", dir.path() + "/a/b", "x"}, &out, &err), 1);
    EXPECT_TRUE(err.startsWith("brindle log: cannot create a log file in")) << err.constData();
    EXPECT_EQ(runProgram(toolPath(), {"log", "--scope", "S", dir.path(), "--", "/no/such/program"},
                         &out, &err),
              1);
}
