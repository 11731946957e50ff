// brindle lock
#include "Tool.h"

using namespace tools_test;

TEST(BrindleLock, RunsTheCommandUnderTheLock)
{
    QTemporaryDir dir;
    QString const lock = dir.path() + "/x.lock";
    Result const r = brindle({"lock", lock, "--", "sh", "-c", "echo inside; exit 7"});
    EXPECT_EQ(r.status, 7);
    EXPECT_EQ(r.out, "inside\n");

    // While held exclusively, a second --nowait locker is refused; shared
    // lockers admit each other.
    QString const nested = QStringLiteral("'%1' lock %3--nowait '%2' -- true");
    QString const tool = brindle_test::toolPath();
    QByteArray const refused = "brindle lock: '" + lock.toUtf8() + "' is locked by another process";
    expectFailures({
        {{"lock", lock, "--", "sh", "-c", nested.arg(tool, lock, QString())}, 1, refused.data()},
        {{"lock", lock}, 2},
        {{"lock", dir.path() + "/none/x.lock", "--", "true"}, 1, "cannot open the lock file"},
        {{"lock", lock, "--", "/no/such/program"}, 1, "cannot run '/no/such/program'"},
    });
    ok({"lock", "--shared", lock, "--", "sh", "-c", nested.arg(tool, lock, "--shared ")});
    ok({"lock", "--nowait", lock, "--", "true"}); // released when the holder ended
}
