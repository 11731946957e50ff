// brindle frame: formats a frame number as timecode, number or feet and frames.
#include "Command.h"

#include <BrindleBaseCore/text/UT_Format.h>

#include <limits>

namespace {

// A decimal number from 0 to max; false for anything else (signs included).
bool parseUnsigned(QString const& text, unsigned max, unsigned& value)
{
    if (text.isEmpty() || !text.front().isDigit())
        return false;
    bool ok = false;
    qulonglong number = text.toULongLong(&ok, 10);
    if (!ok || number > max)
        return false;
    value = unsigned(number);
    return true;
}

int runFrame(brindle::Invocation& cmd)
{
    QCommandLineParser& parser = cmd.parser();
    QCommandLineOption fps(QStringLiteral("fps"), QStringLiteral("Frames per second (default 24)."),
                           QStringLiteral("R"), QStringLiteral("24"));
    QCommandLineOption format(QStringLiteral("format"),
                              QStringLiteral("timecode (default), frames or feet (16 frames to "
                                             "the foot)."),
                              QStringLiteral("F"), QStringLiteral("timecode"));
    QCommandLineOption forceHours(QStringLiteral("force-hours"),
                                  QStringLiteral("Always show the hours of a timecode."));
    parser.addOptions({fps, format, forceHours});
    parser.addPositionalArgument(QStringLiteral("N"),
                                 QStringLiteral("The frame number (0 or more)."));
    // "-5" would otherwise be reported as an unknown option.
    QStringList const& raw = cmd.arguments();
    for (qsizetype i = 0; i < raw.size(); ++i) {
        QString const& arg = raw[i];
        if (arg == QLatin1String("--fps") || arg == QLatin1String("--format"))
            ++i; // the option's value
        else if (arg.size() > 1 && arg[0] == QLatin1Char('-') && arg[1].isDigit())
            return cmd.usageError(
                QStringLiteral("invalid frame number '%1': frames cannot be negative").arg(arg));
    }
    int status = 0;
    if (!cmd.parse(&status))
        return status;

    QStringList const args = parser.positionalArguments();
    if (args.size() != 1)
        return cmd.usageError(QStringLiteral("expected one frame number N"));
    // Frame numbers print as signed 32-bit numbers: keep them in that range.
    constexpr unsigned maxFrame = std::numeric_limits<int>::max();
    unsigned frame = 0;
    if (!parseUnsigned(args.first(), maxFrame, frame))
        return cmd.usageError(
            QStringLiteral("invalid frame number '%1': expected a whole number from 0 to %2")
                .arg(args.first())
                .arg(maxFrame));
    unsigned rate = 0;
    // Frames per hour must fit in 32 bits.
    constexpr unsigned maxRate = std::numeric_limits<unsigned>::max() / 3600;
    if (!parseUnsigned(parser.value(fps), maxRate, rate) || rate == 0)
        return cmd.usageError(
            QStringLiteral("invalid --fps '%1': expected a whole number from 1 to %2")
                .arg(parser.value(fps))
                .arg(maxRate));

    QString const name = parser.value(format);
    UT_Format::frameFormat kind;
    if (name == QLatin1String("timecode"))
        kind = UT_Format::Timecode;
    else if (name == QLatin1String("frames"))
        kind = UT_Format::FrameNumber;
    else if (name == QLatin1String("feet"))
        kind = UT_Format::FeetAndFrames;
    else
        return cmd.usageError(
            QStringLiteral("invalid --format '%1': expected timecode, frames or feet").arg(name));

    brindle::printLine(
        UT_Format::formatFrame(frame, rate, parser.isSet(forceHours), kind).ToQString());
    return brindle::Success;
}

} // namespace

BRINDLE_COMMAND(frame, "frame N [--fps R] [--format timecode|frames|feet] [--force-hours]",
                "Formats a frame number as timecode, frame number or feet and frames", runFrame);
