// brindle log: action lines, and a command bracketed by a scope.
#include "Tool.h"

#include <QtCore/QRegularExpression>

using namespace tools_test;

namespace {

// The lines of the log file named on the last line of out, without the
// header and with the time stamps replaced by "T".
QStringList logLines(QByteArray const& out)
{
    QFile file(QString::fromUtf8(out).trimmed().section('\n', -1));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << file.fileName().toStdString();
    static QRegularExpression const time(
        QStringLiteral("\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d"));
    QString const text = QString::fromUtf8(file.readAll()).replace(time, QStringLiteral("T"));
    return text.split('\n', Qt::SkipEmptyParts).mid(1);
}

} // namespace

TEST(LogCommand, ActionLinesScopesAndBadInput)
{
    QTemporaryDir dir, other;
    EXPECT_EQ(logLines(ok({"log", dir.path() + "/logs", "Open a.xml", "-x", "Save"}).out),
              QStringList({"T;ACTION;Open a.xml", "T;ACTION;-x", "T;ACTION;Save"}));
    Result r = ok({"log", "--scope", "Export", dir.path(), "--", "sh", "-c", "echo hi"});
    EXPECT_TRUE(r.out.startsWith("hi\n"));
    EXPECT_EQ(logLines(r.out), QStringList({"T;ACTION;Start Export", "  T;ACTION;Run sh -c echo hi",
                                            "  T;ACTION;Exit status 0", "T;ACTION;End Export"}));

    r = brindle({"log", "--scope", "Bad", other.path(), "--", "sh", "-c", "exit 3"});
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(r.err.contains("brindle log: 'sh' exited with status 3")) << r.err.constData();
    EXPECT_EQ(logLines(r.out).last(), "T;ACTION;End Bad");

    QString const d = dir.path();
    expectFailures({
        {{"log"}, 2},
        {{"log", d}, 2},
        {{"log", "--scope", "S", d, "--"}, 2, "missing the command"},
        {{"log", d + "/a/b", "x"}, 1, "brindle log: cannot create a log file in"},
        {{"log", "--scope", "S", d, "--", "/no/such/program"}, 1},
    });
}
