// brindle backup / brindle restore: the one-generation backup beside a file.
#include "Command.h"

#include <BrindleBaseCore/files/PL_FileUtil.h>

namespace {

bool oneFile(brindle::Invocation& cmd, QString* file, int* status)
{
    cmd.parser().addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The file."));
    if (!cmd.parse(status))
        return false;
    QStringList const args = cmd.parser().positionalArguments();
    if (args.size() != 1) {
        *status = cmd.usageError(QStringLiteral("exactly one FILE expected"));
        return false;
    }
    *file = args.first();
    return true;
}

// Keeps the file as FILE~ and leaves the file in place.
int runBackup(brindle::Invocation& cmd)
{
    QString path;
    int status = 0;
    if (!oneFile(cmd, &path, &status))
        return status;
    PL_FileSpec const file{UT_String(path)};
    if (!file.IsFile())
        return cmd.fail(QStringLiteral("'%1' is not a file").arg(path));
    if (!PL_FileUtil::BackupFile(file))
        return cmd.fail(QStringLiteral("cannot replace the backup of '%1'").arg(path));
    if (!PL_FileUtil::RestoreBackupFile(file, false))
        return cmd.fail(
            QStringLiteral("'%1' was moved to its backup but could not be copied back").arg(path));
    brindle::printLine(PL_FileUtil::BackupFileSpec(file).GetQFilePath());
    return brindle::Success;
}

int runRestore(brindle::Invocation& cmd)
{
    QCommandLineOption overwrite(QStringLiteral("overwrite"),
                                 QStringLiteral("Replaces the file when it exists."));
    cmd.parser().addOption(overwrite);
    QString path;
    int status = 0;
    if (!oneFile(cmd, &path, &status))
        return status;
    PL_FileSpec const file{UT_String(path)};
    PL_FileSpec const backup = PL_FileUtil::BackupFileSpec(file);
    if (!backup.Exists())
        return cmd.fail(QStringLiteral("'%1' has no backup").arg(path));
    bool const replace = cmd.parser().isSet(overwrite);
    if (!replace && file.Exists())
        return cmd.fail(QStringLiteral("'%1' exists (use --overwrite to replace it)").arg(path));
    if (!PL_FileUtil::RestoreBackupFile(file, replace))
        return cmd.fail(
            QStringLiteral("cannot copy '%1' onto '%2'").arg(backup.GetQFilePath(), path));
    brindle::printLine(path);
    return brindle::Success;
}

} // namespace

BRINDLE_COMMAND(backup, "backup FILE", "Keeps a copy of FILE as FILE~", runBackup);
BRINDLE_COMMAND(restore, "restore FILE [--overwrite]", "Copies FILE~ back onto FILE", runRestore);
