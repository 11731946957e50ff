// brindle timecode TC [--fps R]: the frame count of a timecode.
#include "Command.h"

#include <BrindleBaseCore/data/UT_FrameRate.h>

#include <cmath>

namespace {

// "25", "29.97" or "30000/1001"; false when the text is no positive rate.
bool parseRate(QString const& text, double& fps)
{
    QStringList const parts = text.split(QLatin1Char('/'));
    bool ok = parts.size() <= 2;
    double value = ok ? parts[0].toDouble(&ok) : 0;
    if (ok && parts.size() == 2) {
        double const divisor = parts[1].toDouble(&ok);
        ok = ok && divisor > 0;
        value = ok ? value / divisor : 0;
    }
    fps = value;
    return ok && std::isfinite(value) && value > 0;
}

int runTimecode(brindle::Invocation& cmd)
{
    QCommandLineOption fpsOption(QStringLiteral("fps"),
                                 QStringLiteral("Frame rate: 24 (default), 29.97, 30000/1001..."),
                                 QStringLiteral("R"), QStringLiteral("24"));
    cmd.parser().addOption(fpsOption);
    cmd.parser().addPositionalArgument(QStringLiteral("TC"),
                                       QStringLiteral("Timecode hours:minutes:seconds.frames."));
    int status = 0;
    if (!cmd.parse(&status))
        return status;
    QStringList const args = cmd.parser().positionalArguments();
    if (args.size() != 1)
        return cmd.usageError(QStringLiteral("expected one timecode"));
    double fps = 0;
    QString const rate = cmd.parser().value(fpsOption);
    if (!parseRate(rate, fps))
        return cmd.usageError(QStringLiteral("--fps: not a frame rate: '%1'").arg(rate));
    brindle::printLine(
        QString::number(UT_Timecode::getTimeInFrames(args.first(), UT_FrameRate(fps))));
    return brindle::Success;
}

} // namespace

BRINDLE_COMMAND(timecode, "timecode TC [--fps R]", "Converts a timecode to a frame count",
                runTimecode);
