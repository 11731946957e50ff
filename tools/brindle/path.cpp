// brindle path: how the library splits and reads paths.
#include "Command.h"

#include <BrindleBaseCore/files/UT_Path.h>
#include <BrindleBaseCore/files/UT_RelPath.h>

namespace {

int runPath(brindle::Invocation& cmd)
{
    QCommandLineParser& parser = cmd.parser();
    QCommandLineOption rel(QStringLiteral("rel"),
                           QStringLiteral("Also shows each path relative to BASE."),
                           QStringLiteral("BASE"));
    parser.addOption(rel);
    parser.addPositionalArgument(QStringLiteral("PATH"), QStringLiteral("Paths to describe."),
                                 QStringLiteral("PATH..."));
    int status = 0;
    if (!cmd.parse(&status))
        return status;
    QStringList const paths = parser.positionalArguments();
    if (paths.isEmpty())
        return cmd.usageError(QStringLiteral("no PATH given"));
    int result = brindle::Success;
    bool first = true;
    for (QString const& text : paths) {
        UT_Path path(true);
        if (!path.SetPath(text)) {
            result = cmd.fail(QStringLiteral("'%1' has an invalid drive").arg(text));
            continue;
        }
        if (!first)
            brindle::printLine(QString());
        first = false;
        UT_RelPath const asText(path.GetPath());
        auto line = [](char const* label, QString const& value) {
            brindle::printLine(QStringLiteral("%1 %2").arg(QLatin1String(label), -11).arg(value));
        };
        line("path:", path.GetPath());
        line("drive:", path.GetDrive());
        line("folder:", path.GetBasePath(false));
        line("file name:", path.GetFileName());
        line("base name:", path.GetBaseName());
        line("extension:", path.GetExtension());
        line("extensions:", path.GetExtension(true));
        if (asText.isCompressed())
            line("compressed:", QStringLiteral("gz (inner extension: %1)")
                                    .arg(asText.extensionWithCompressExtensionRemoved()));
        QString kind = QStringLiteral("no");
        if (path.IsFolder())
            kind = QStringLiteral("yes (folder)");
        else if (path.Exists())
            kind = QStringLiteral("yes (file, %1 bytes)").arg(path.GetFileLength());
        line("exists:", kind);
        if (parser.isSet(rel)) {
            UT_RelPath relative;
            relative.makeRelativeToPath(asText, UT_RelPath(parser.value(rel)));
            line("relative:", relative.ToString());
        }
    }
    return result;
}

} // namespace

BRINDLE_COMMAND(path, "path PATH... [--rel BASE]",
                "Splits paths into drive, folder, name and extensions", runPath);
